#include "OrvaneCore/drawing/RectEdges.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace orvane {

RectEdges RectEdges::between(const QPointF& corner, const QPointF& otherCorner) {
    return {
        .left = std::min(corner.x(), otherCorner.x()),
        .top = std::min(corner.y(), otherCorner.y()),
        .right = std::max(corner.x(), otherCorner.x()),
        .bottom = std::max(corner.y(), otherCorner.y()),
    };
}

QPointF RectEdges::center() const {
    return {std::midpoint(left, right), std::midpoint(top, bottom)};
}

QRectF RectEdges::toRect() const {
    return {left, top, width(), height()};
}

bool RectEdges::contains(const QPointF& point, qreal margin) const {
    return point.x() >= left - margin && point.x() < right + margin && point.y() >= top - margin &&
           point.y() < bottom + margin;
}

bool RectEdges::outlineContains(const QPointF& point, qreal tolerance) const {
    return contains(point, tolerance) && !contains(point, -tolerance);
}

QRectF movedInto(const QRectF& rect, const QRectF& bounds) {
    const auto moved = [](qreal first, qreal length, qreal boundsFirst, qreal boundsLength) {
        return std::max(boundsFirst, std::min(first, boundsFirst + boundsLength - length));
    };
    return {{moved(rect.x(), rect.width(), bounds.x(), bounds.width()),
             moved(rect.y(), rect.height(), bounds.y(), bounds.height())},
            rect.size()};
}

bool isFinite(const QPointF& point) {
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

bool isFinite(const QRectF& rect) {
    return isFinite(rect.topLeft()) && isFinite(rect.bottomRight());
}

} // namespace orvane
