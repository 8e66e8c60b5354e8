#pragma once

#include "OrvaneCore/marking/MarkerPainter.h"
#include "OrvaneCore/marking/overlay/OverlayScene.h"
#include "OrvaneCore/surface/VisualBounds.h"

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QString>

#include <optional>
#include <vector>

namespace orvane {

/// The bounds of all that a scene shows but its shapes, for which there is AnnotationBounds. Needs a
/// QGuiApplication; any thread.
class OverlayBounds {
public:
    /// The scene outlives this object.
    explicit OverlayBounds(const OverlayScene& scene);

    /// The whole view.
    QRect view() const { return m_view; }
    VisualBounds marker(const Marker& marker) const;
    VisualBounds currentRect() const;
    VisualBounds selectedMarker() const;
    VisualBounds crosshair() const;
    VisualBounds instructions() const;

private:
    const OverlayScene& m_scene;
    QRect m_view;
};

// How the scene's marks come to the view; nothing for what is not finite.

std::optional<QRectF> regionInView(const OverlayScene& scene, const Marker& marker);
/// Where the layers of a marker with that region in the view lie.
MarkerLayout markerInView(const OverlayScene& scene, const Marker& marker, const QRectF& region);
/// The corners of the selected marker's region; none without one.
std::vector<QPointF> selectedCornersInView(const OverlayScene& scene);
std::optional<QRectF> currentRectInView(const OverlayScene& scene);
std::optional<QPointF> pointerInView(const OverlayScene& scene);

/// The first marker with the selected id; null for none.
const Marker* selectedMarker(const OverlayScene& scene);

marker_painter::Spotlight spotlight(const OverlayScene& scene);

/// True when the marker has a hint in its label's place.
bool hasHint(const OverlayScene& scene, const Marker& marker);

/// The global coordinates beside the pointer.
QString coordinateText(const OverlayScene& scene, const QPointF& pointer);

QString overlayInstructions(const OverlayScene& scene);

} // namespace orvane
