#include "OrvaneCore/marking/CornerHandles.h"

#include <cmath>

namespace orvane {

using Handle = Annotation::Handle;

std::vector<Annotation::HandlePoint> cornerHandles(const RectEdges& edges) {
    return {
        {Handle::topLeft, {edges.left, edges.top}},
        {Handle::topRight, {edges.right, edges.top}},
        {Handle::bottomLeft, {edges.left, edges.bottom}},
        {Handle::bottomRight, {edges.right, edges.bottom}},
    };
}

QPointF cornerOpposite(const RectEdges& edges, Handle handle) {
    switch (handle) {
    case Handle::topLeft:
        return {edges.right, edges.bottom};
    case Handle::topRight:
        return {edges.left, edges.bottom};
    case Handle::bottomLeft:
        return {edges.right, edges.top};
    case Handle::bottomRight:
    case Handle::start:
    case Handle::end:
    case Handle::rotate:
        break;
    }
    return {edges.left, edges.top};
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
