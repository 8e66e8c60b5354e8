#include "OrvaneCore/recording/FrameDiff.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace orvane {

namespace {

/// In x and in y, from each cell's own corner.
constexpr int sampleStep = 4;
/// The largest difference of a channel that is none.
constexpr int channelTolerance = 20;
constexpr double unreportedPercent = 2.0;

constexpr qsizetype pixelBytes = sizeof(QRgb);

struct SampleCount {
    qsizetype changed = 0;
    qsizetype counted = 0;
};

QImage premultiplied(const QImage& image) {
    const bool isReadable =
        image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32_Premultiplied;
    return isReadable ? image : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage withoutLineGaps(const QImage& image) {
    return image.bytesPerLine() == image.width() * pixelBytes ? image : image.copy();
}

const QRgb* pixels(const QImage& image) {
    return reinterpret_cast<const QRgb*>(image.constBits());
}

bool isVisible(QRgb before, QRgb after) {
    return std::max({std::abs(qRed(before) - qRed(after)), std::abs(qGreen(before) - qGreen(after)),
                     std::abs(qBlue(before) - qBlue(after))}) > channelTolerance;
}

qsizetype changedSamples(const QRgb* before, const QRgb* after, qsizetype count) {
    unsigned changed = 0;
    for (qsizetype i = 0; i < count * sampleStep; i += sampleStep)
        changed += isVisible(before[i], after[i]) ? 1 : 0;
    return changed;
}

} // namespace

std::vector<RegionDiff> diffFrames(const QImage& prev, const QImage& current) {
    const QImage before = premultiplied(prev);
    QImage after = premultiplied(current);
    const qsizetype width = before.width();
    const bool isSkewed = after.width() != width;
    if (isSkewed)
        after = withoutLineGaps(after);
    if (before.isNull() || after.isNull())
        return {};

    const qsizetype beforeStride = before.bytesPerLine() / pixelBytes;
    const qsizetype afterStride = isSkewed ? width : after.bytesPerLine() / pixelBytes;
    const qsizetype afterLength = static_cast<qsizetype>(after.width()) * after.height();
    const int cellWidth = before.width() / gridCols;
    const int cellHeight = before.height() / gridRows;

    std::vector<RegionDiff> regions;
    regions.reserve(gridCells);
    for (int row = 0; row < gridRows; ++row) {
        const int top = row * cellHeight;
        std::array<SampleCount, gridCols> cells;
        // Line by line through all cells and not cell by cell: in the order of the memory.
        for (qsizetype y = top; y < top + cellHeight; y += sampleStep) {
            for (int col = 0; col < gridCols; ++col) {
                const int x = col * cellWidth;
                const qsizetype length = std::min<qsizetype>(cellWidth, afterLength - (y * width + x));
                if (length <= 0)
                    break;
                const qsizetype count = (length + sampleStep - 1) / sampleStep;
                SampleCount& cell = cells[static_cast<std::size_t>(col)];
                cell.changed += changedSamples(pixels(before) + y * beforeStride + x,
                                               pixels(after) + y * afterStride + x, count);
                cell.counted += count;
            }
        }
        for (int col = 0; col < gridCols; ++col) {
            const SampleCount& cell = cells[static_cast<std::size_t>(col)];
            if (cell.counted == 0)
                continue;
            const double percent =
                static_cast<double>(cell.changed) / static_cast<double>(cell.counted) * 100;
            if (percent > unreportedPercent) {
                regions.push_back({.col = col,
                                   .row = row,
                                   .diffPercent = percent,
                                   .pixelRect = QRectF(col * cellWidth, top, cellWidth, cellHeight)});
            }
        }
    }
    return regions;
}

} // namespace orvane
