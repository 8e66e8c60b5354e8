#pragma once

#include "OrvaneCore/marking/overlay/OverlayScene.h"

#include <QColor>
#include <QRect>
#include <QRegion>

#include <optional>
#include <vector>

namespace orvane {

/// Where an item of the overlay shows: in whole points of the view, with room for what antialiasing and
/// displays with fractions of pixels to the point add. Nothing of it lies outside the view.
struct VisualBounds {
    /// A rectangle whose inside has one look all over.
    struct Plane {
        QRect outer;
        /// The inside; between it and `outer` is the edge.
        QRect inner;
        /// What it is painted with; nothing where it only matters to the spotlight.
        std::optional<QColor> paint;
    };

    /// Around all that shows but the plane.
    std::vector<QRect> parts;
    std::optional<Plane> plane;

    QRect boundingRect() const;
    bool touches(const QRegion& region) const;
    /// What may differ between the pictures of an item at one time and at another.
    static QRegion difference(const VisualBounds& before, const VisualBounds& after);
};

/// The bounds of all that a scene shows; the one place that knows them. Needs a QGuiApplication; any thread.
class OverlayBounds {
public:
    /// The scene outlives this object.
    explicit OverlayBounds(const OverlayScene& scene);

    /// The whole view.
    QRect view() const { return m_view; }
    VisualBounds marker(const Marker& marker) const;
    VisualBounds currentRect() const;
    VisualBounds annotation(const Annotation& annotation) const;
    VisualBounds selectedMarker() const;
    VisualBounds selectedAnnotation() const;
    VisualBounds crosshair() const;
    VisualBounds instructions() const;

private:
    void add(VisualBounds& bounds, const QRectF& rect, qreal margin) const;
    void addDot(VisualBounds& bounds, const QPointF& center) const;
    void addFrame(VisualBounds& bounds, const QRectF& rect, qreal margin) const;
    void addEllipse(VisualBounds& bounds, const QRectF& rect, qreal margin) const;
    void addArrow(VisualBounds& bounds, const QPointF& start, const QPointF& end, qreal width) const;
    void setPlane(VisualBounds& bounds, const QRectF& rect, qreal margin, qreal inset,
                  const std::optional<QColor>& paint) const;
    /// Text that humans have typed may leave its line.
    void addText(VisualBounds& bounds, const QRectF& plate, qreal margin, const QString& text) const;

    const OverlayScene& m_scene;
    QRect m_view;
};

// How the scene's marks come to the view; nothing for what is not finite.

std::optional<QRectF> regionInView(const OverlayScene& scene, const Marker& marker);
std::optional<QRectF> currentRectInView(const OverlayScene& scene);
std::optional<QPointF> pointerInView(const OverlayScene& scene);
bool isShown(const OverlayScene& scene, const Annotation& annotation);

/// The first marker or annotation with the selected id; null for none.
const Marker* selectedMarker(const OverlayScene& scene);
const Annotation* selectedAnnotation(const OverlayScene& scene);

/// The global coordinates beside the pointer.
QString coordinateText(const OverlayScene& scene, const QPointF& pointer);

QString overlayInstructions(const OverlayScene& scene);

} // namespace orvane
