#include "OrvaneCore/recording/ChangeSentence.h"

#include "OrvaneCore/base/FixedText.h"

#include <QStringList>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr double mostOfTheScreen = 50.0;

/// How many regions lie in each band of rows and of columns.
struct Bands {
    int top = 0;
    int middle = 0;
    int bottom = 0;
    int left = 0;
    int center = 0;
    int right = 0;

    explicit Bands(const std::vector<RegionDiff>& regions) {
        for (const RegionDiff& region : regions) {
            ++(region.row < 2 ? top : region.row < 4 ? middle : bottom);
            ++(region.col < 2 ? left : region.col < 5 ? center : right);
        }
    }
};

} // namespace

QString areaName(const std::vector<RegionDiff>& regions) {
    const Bands bands(regions);
    // Not symmetric: a change that is spread over several bands is named after one or two of them, and agents
    // know the names as they come out here.
    QStringList words;
    if (bands.top > bands.middle && bands.top > bands.bottom)
        words << u"top"_s;
    if (bands.middle != 0 && bands.middle >= bands.top)
        words << u"middle"_s;
    if (bands.bottom != 0 && bands.bottom > bands.top)
        words << u"bottom"_s;
    if (bands.left > bands.center && bands.left > bands.right)
        words << u"left"_s;
    if (bands.center != 0)
        words << u"center"_s;
    if (bands.right > bands.left)
        words << u"right"_s;
    return words.isEmpty() ? u"screen"_s : words.mid(0, 2).join(u'-');
}

QString describeChange(const std::vector<RegionDiff>& changedRegions, int cellCount, double avgDiff,
                       bool isMajor) {
    if (!isMajor)
        return u"New activity in %1 area (%2 cells changed)."_s.arg(areaName(changedRegions)).arg(cellCount);
    const double screenPercent = static_cast<double>(cellCount) / gridCells * 100;
    if (screenPercent > mostOfTheScreen) {
        return u"Major visual update (%1 of screen, avg %2 diff). "
               u"Likely: full content refresh or navigation."_s.arg(percentText(screenPercent),
                                                                    percentText(avgDiff));
    }
    return u"Significant change in %1 area (%2 cells, avg %3 diff)."_s.arg(areaName(changedRegions))
        .arg(cellCount)
        .arg(percentText(avgDiff));
}

QString percentText(double percent) {
    return fixedText(percent, 0) + u'%';
}

} // namespace orvane
