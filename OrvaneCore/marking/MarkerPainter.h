#pragma once

#include "OrvaneCore/drawing/Extent.h"
#include "OrvaneCore/marking/Marker.h"

#include <QFont>
#include <QPointF>
#include <QRectF>

#include <optional>

class QPainter;

namespace orvane {

/// The sizes of a marker's layers at scale 1, in points.
struct MarkerStyle {
    qreal outlineWidth;
    /// Where all but the regions is dimmed or blurred.
    qreal spotlightOutlineWidth;
    qreal badgeDiameter;
    int numberPixelSize;
    int labelPixelSize;
    QFont::Weight labelWeight;

    /// The sizes on a picture that goes to an agent.
    static const MarkerStyle onImage;
    /// The sizes on the live screen.
    static const MarkerStyle onOverlay;
};

/// Where the layers of a marker lie, in the space of their drawing, y down.
struct MarkerLayout {
    /// A line along a rectangle or an ellipse.
    struct Line {
        /// Its middle.
        QRectF rect;
        qreal width;

        QRectF outer() const { return rect.adjusted(-width / 2, -width / 2, width / 2, width / 2); }
    };
    struct Label {
        QRectF capsule;
        /// Where the capsule's shadow shows.
        QRectF shadow;
        QRectF dot;
        QRectF text;
    };

    /// What is tinted.
    QRectF region;
    /// The radius of the region and the lines around it, and of the label's capsule.
    qreal cornerRadius;
    Line halo;
    Line outline;
    /// The circle that is filled; its ring lies around it.
    QRectF badge;
    /// Where the badge's shadow shows.
    QRectF badgeShadow;
    Line badgeRing;
    QRectF number;
    /// The top-left corner of the label's capsule, or of what is shown instead of one.
    QPointF labelPlace;
    /// Nothing where the label is empty.
    std::optional<Label> label;
};

/// How a marker looks and how far it reaches, for every surface that shows one. The one drawing of its
/// layers: halo, tint, outline, badge, number and label.
///
/// `rect` is the marker's region in the space of the drawing, y down, and `scale` the units there of a point,
/// finite and positive; no unit is smaller than a pixel. Needs a QGuiApplication; any thread.
namespace marker_painter {

enum class Spotlight { off, on };

/// `rect` is finite.
MarkerLayout layout(const Marker& marker, const QRectF& rect, qreal scale, const MarkerStyle& style,
                    Spotlight spotlight);

/// Where the marker shows: nowhere when its region is not finite. The plane is the region with its tint.
Extent extent(const Marker& marker, const QRectF& rect, qreal scale, const MarkerStyle& style,
              Spotlight spotlight);

/// A region that is not finite is not drawn. The painter is left as it was.
void draw(QPainter& painter, const Marker& marker, const QRectF& rect, qreal scale, const MarkerStyle& style,
          Spotlight spotlight);

// The same of a layout that is there already, of that marker in that style and under that spotlight.

Extent extent(const Marker& marker, const MarkerLayout& layout, qreal scale, Spotlight spotlight);
void draw(QPainter& painter, const Marker& marker, const MarkerLayout& layout, qreal scale,
          const MarkerStyle& style, Spotlight spotlight);

/// True when both look the same wherever they are shown alike.
bool looksSame(const Marker& left, const Marker& right);

} // namespace marker_painter

} // namespace orvane
