#include "OrvaneCore/marking/Marker.h"

#include "OrvaneCore/marking/RectGeometry.h"

namespace orvane {

namespace {

RectEdges edgesOf(const QRectF& rect) {
    return RectEdges::between(rect.topLeft(), rect.bottomRight());
}

} // namespace

std::vector<Annotation::HandlePoint> Marker::cornerHandles() const {
    return isFinite(rect) ? edgesOf(rect).corners() : std::vector<Annotation::HandlePoint>();
}

std::optional<Annotation::Handle> Marker::cornerHandle(const QPointF& point, qreal tolerance) const {
    return nearestHandle(cornerHandles(), point, tolerance);
}

bool Marker::isOnBorder(const QPointF& point, qreal tolerance) const {
    return isFinite(rect) && isFinite(point) && edgesOf(rect).outlineContains(point, tolerance);
}

QRectF Marker::reshapedRect(const QRectF& rect, Annotation::Handle handle, const QPointF& point) {
    if (!isFinite(point))
        return rect;
    return RectEdges::between(edgesOf(rect).cornerOpposite(handle), point).toRect();
}

} // namespace orvane
