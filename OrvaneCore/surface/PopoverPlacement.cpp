#include "OrvaneCore/surface/PopoverPlacement.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

/// Between the point and the arrow.
constexpr int gap = 1;

/// Where both cannot be had, not below the lower limit.
template <typename Number>
Number within(Number value, Number low, Number high) {
    return std::max(low, std::min(value, high));
}

QPoint nearestInside(const QPointF& point, const QRect& view) {
    if (!std::isfinite(point.x()) || !std::isfinite(point.y()))
        return view.center();
    const auto nearest = [](qreal at, int from, int length) {
        return static_cast<int>(std::lround(within<qreal>(at, from, from + length)));
    };
    return {nearest(point.x(), view.x(), view.width()), nearest(point.y(), view.y(), view.height())};
}

} // namespace

QRect PopoverPlacement::frame() const {
    return side == Side::above ? bubble.adjusted(0, 0, 0, arrowHeight)
                               : bubble.adjusted(0, -arrowHeight, 0, 0);
}

PopoverPlacement popoverPlacement(const QSize& bubble, const QPointF& anchor, const QRect& view) {
    using Side = PopoverPlacement::Side;
    constexpr int margin = PopoverPlacement::margin;
    constexpr int arrowHeight = PopoverPlacement::arrowHeight;
    const QPoint point = nearestInside(anchor, view);
    const int needed = gap + arrowHeight + bubble.height() + margin;
    const int roomAbove = point.y() - view.y();
    const int roomBelow = view.y() + view.height() - point.y();
    const bool isAbove = roomAbove >= needed || (roomBelow < needed && roomAbove >= roomBelow);

    PopoverPlacement placement;
    placement.side = isAbove ? Side::above : Side::below;
    // The extent of all that is drawn, arrow included.
    const int height = bubble.height() + arrowHeight;
    const int top = within(isAbove ? point.y() - gap - height : point.y() + gap, view.y() + margin,
                           view.y() + view.height() - margin - height);
    const int left = within(point.x() - bubble.width() / 2, view.x() + margin,
                            view.x() + view.width() - margin - bubble.width());
    placement.bubble = QRect(QPoint(left, isAbove ? top : top + arrowHeight), bubble);
    // The arrow begins where the edge of the bubble is straight.
    const int end = static_cast<int>(PopoverPlacement::cornerRadius) + PopoverPlacement::arrowHalfWidth;
    placement.tip = {within(point.x(), left + end, left + bubble.width() - end),
                     isAbove ? top + height : top};
    return placement;
}

} // namespace orvane
