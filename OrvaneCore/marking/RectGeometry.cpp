#include "OrvaneCore/marking/RectGeometry.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace orvane {

using Handle = Annotation::Handle;

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

std::vector<Annotation::HandlePoint> RectEdges::corners() const {
    return {
        {Handle::topLeft, {left, top}},
        {Handle::topRight, {right, top}},
        {Handle::bottomLeft, {left, bottom}},
        {Handle::bottomRight, {right, bottom}},
    };
}

QPointF RectEdges::cornerOpposite(Handle handle) const {
    switch (handle) {
    case Handle::topLeft:
        return {right, bottom};
    case Handle::topRight:
        return {left, bottom};
    case Handle::bottomLeft:
        return {right, top};
    case Handle::bottomRight:
    case Handle::start:
    case Handle::end:
    case Handle::rotate:
        break;
    }
    return {left, top};
}

bool isFinite(const QPointF& point) {
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

bool isFinite(const QRectF& rect) {
    return isFinite(rect.topLeft()) && isFinite(rect.bottomRight());
}

std::optional<Handle> nearestHandle(const std::vector<Annotation::HandlePoint>& handles, const QPointF& point,
                                    qreal tolerance) {
    std::optional<Handle> nearest;
    qreal nearestDistance = 0;
    for (const auto& [handle, place] : handles) {
        const qreal distance = std::hypot(place.x() - point.x(), place.y() - point.y());
        if (!std::isfinite(distance) || !(distance <= tolerance))
            continue;
        if (!nearest || distance < nearestDistance) {
            nearest = handle;
            nearestDistance = distance;
        }
    }
    return nearest;
}

} // namespace orvane
