#include "OrvaneCore/marking/Marker.h"

#include "OrvaneCore/marking/CornerHandles.h"

namespace orvane {

namespace {

RectEdges edgesOf(const QRectF& rect) {
    return RectEdges::between(rect.topLeft(), rect.bottomRight());
}

} // namespace

std::vector<Annotation::HandlePoint> Marker::cornerHandles() const {
    return isFinite(rect) ? orvane::cornerHandles(edgesOf(rect)) : std::vector<Annotation::HandlePoint>();
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
    return RectEdges::between(cornerOpposite(edgesOf(rect), handle), point).toRect();
}

std::optional<int> resolveRegionIndex(const Annotation& annotation, const std::vector<Marker>& markers) {
    const QPointF anchor = annotation.anchorForRegion();
    for (const Marker& marker : markers) {
        if (RectEdges::between(marker.rect.topLeft(), marker.rect.bottomRight()).contains(anchor, 0))
            return marker.index;
    }
    return std::nullopt;
}

} // namespace orvane
