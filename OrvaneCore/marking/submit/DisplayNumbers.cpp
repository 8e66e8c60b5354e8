#include "OrvaneCore/marking/submit/DisplayNumbers.h"

#include "OrvaneCore/base/FixedText.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace orvane {

namespace {

constexpr std::size_t mostDisplays = 16;

auto find(const std::vector<Display>& displays, quint32 displayId) {
    return std::find_if(displays.begin(), displays.end(),
                        [displayId](const Display& display) { return display.id == displayId; });
}

} // namespace

std::vector<Display> getDisplays(const std::vector<Display>& displays) {
    const auto count = static_cast<std::ptrdiff_t>(std::min(displays.size(), mostDisplays));
    return {displays.begin(), displays.begin() + count};
}

std::vector<Display> activeDisplaysSorted(const std::vector<Display>& displays) {
    std::vector<Display> sorted = getDisplays(displays);
    std::stable_sort(sorted.begin(), sorted.end(), [](const Display& left, const Display& right) {
        return left.boundsPoints.left() < right.boundsPoints.left();
    });
    return sorted;
}

int displayNumber(const std::vector<Display>& sorted, quint32 displayId) {
    const auto found = find(sorted, displayId);
    return found == sorted.end() ? 1 : static_cast<int>(std::distance(sorted.begin(), found)) + 1;
}

bool isMainDisplay(const std::vector<Display>& displays, quint32 displayId) {
    return !displays.empty() && displays.front().id == displayId;
}

qreal backingScale(const std::vector<Display>& displays, std::optional<quint32> displayId) {
    if (!displayId)
        return 1;
    const auto found = find(displays, *displayId);
    return found == displays.end() ? 1 : found->scale;
}

QString scaleStr(qreal scale) {
    return fixedText(scale, scale == std::trunc(scale) ? 0 : 1);
}

} // namespace orvane
