#include "OrvaneCore/marking/overlay/OverlayBounds.h"

#include "OrvaneCore/drawing/DrawingLimits.h"
#include "OrvaneCore/drawing/PointMap.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/overlay/OverlayLayout.h"
#include "OrvaneCore/marking/overlay/OverlayTexts.h"

#include <algorithm>

namespace orvane {

OverlayBounds::OverlayBounds(const OverlayScene& scene)
    : m_scene(scene)
    , m_view(pointsOfView(scene.shapes.size)) {}

VisualBounds OverlayBounds::marker(const Marker& marker) const {
    const auto region = regionInView(m_scene, marker);
    if (!region)
        return {};
    const MarkerLayout layout = markerInView(m_scene, marker, *region);
    Extent extent = marker_painter::extent(marker, layout, 1, spotlight(m_scene));
    extent.add(overlay_layout::sizeTag(layout, m_scene.shapes.size));
    if (hasHint(m_scene, marker))
        extent.add(overlay_layout::hint(layout));
    return VisualBounds::of(extent, m_view);
}

VisualBounds OverlayBounds::currentRect() const {
    const auto rect = currentRectInView(m_scene);
    if (!rect)
        return {};
    constexpr qreal half = overlay_layout::currentRectOutline / 2;
    Extent extent;
    extent.plane = {.outer = rect->adjusted(-half, -half, half, half),
                    .inner = rect->adjusted(half, half, -half, -half),
                    .paint = QColor(overlay_layout::currentRectColor)};
    extent.add(overlay_layout::dimensionLabel(*rect, m_scene.shapes.size));
    return VisualBounds::of(extent, m_view);
}

VisualBounds OverlayBounds::selectedMarker() const {
    return VisualBounds::of(annotation_renderer::handleDotsExtent(selectedCornersInView(m_scene), 1), m_view);
}

VisualBounds OverlayBounds::crosshair() const {
    const auto pointer = pointerInView(m_scene);
    if (!pointer)
        return {};
    constexpr qreal width = overlay_layout::crosshairWidth;
    Extent extent;
    extent.add(QRectF(0, pointer->y(), m_view.width(), width));
    extent.add(QRectF(pointer->x(), 0, width, m_view.height()));
    extent.add(
        overlay_layout::coordinatePlate(*pointer, coordinateText(m_scene, *pointer), m_scene.shapes.size));
    return VisualBounds::of(extent, m_view);
}

VisualBounds OverlayBounds::instructions() const {
    if (m_view.isEmpty())
        return {};
    Extent extent;
    extent.add(overlay_layout::instructions(overlayInstructions(m_scene), m_scene.shapes.size).pill);
    return VisualBounds::of(extent, m_view);
}

std::optional<QRectF> regionInView(const OverlayScene& scene, const Marker& marker) {
    const QRectF region = PointMap{.origin = scene.shapes.origin}(marker.rect);
    if (!isFinite(region))
        return std::nullopt;
    return drawable(region);
}

MarkerLayout markerInView(const OverlayScene& scene, const Marker& marker, const QRectF& region) {
    return marker_painter::layout(marker, region, 1, MarkerStyle::onOverlay, spotlight(scene),
                                  displayInView(scene.shapes, marker.rect.center()));
}

std::vector<QPointF> selectedCornersInView(const OverlayScene& scene) {
    const Marker* marker = selectedMarker(scene);
    const auto region = marker != nullptr ? regionInView(scene, *marker) : std::nullopt;
    if (!region)
        return {};
    return {region->topLeft(), region->topRight(), region->bottomLeft(), region->bottomRight()};
}

std::optional<QRectF> currentRectInView(const OverlayScene& scene) {
    if (!scene.currentRect || !isFinite(*scene.currentRect))
        return std::nullopt;
    return drawable(*scene.currentRect);
}

std::optional<QPointF> pointerInView(const OverlayScene& scene) {
    if (!scene.mousePosition || !isFinite(*scene.mousePosition))
        return std::nullopt;
    return drawable(*scene.mousePosition);
}

const Marker* selectedMarker(const OverlayScene& scene) {
    const auto found =
        std::find_if(scene.markers.begin(), scene.markers.end(),
                     [&scene](const Marker& marker) { return scene.selectedMarkerId == marker.id; });
    return found == scene.markers.end() ? nullptr : &*found;
}

marker_painter::Spotlight spotlight(const OverlayScene& scene) {
    return scene.modes.spotlight ? marker_painter::Spotlight::on : marker_painter::Spotlight::off;
}

bool hasHint(const OverlayScene& scene, const Marker& marker) {
    return marker.label.isEmpty() && !scene.modes.ocr;
}

QString coordinateText(const OverlayScene& scene, const QPointF& pointer) {
    return coordinateText(scene.shapes.origin + pointer);
}

QString overlayInstructions(const OverlayScene& scene) {
    return overlayInstructions(scene.modes, static_cast<int>(scene.markers.size()), scene.tool,
                               !scene.shapes.annotations.empty());
}

} // namespace orvane
