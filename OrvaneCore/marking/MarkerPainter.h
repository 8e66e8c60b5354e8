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
    /// Whether the label's capsule has a light edge, by which it shows on dark windows.
    bool hasLabelEdge;

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
        /// What the text may take, at scale 1, where it does not fit in one piece.
        std::optional<QSizeF> room;
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
    /// Where the region puts the top-left corner of its label.
    QPointF belowRegion;
    /// The display that badge and label are kept on, where they are kept.
    std::optional<QRectF> display;
    /// Nothing where the label is empty.
    std::optional<Label> label;

    /// The top-left corner of a label of that size, or of what is shown instead of one: below the region's
    /// bottom left corner, and as near to that as the display and the badge allow.
    QPointF labelPlace(const QSizeF& size) const;
};

/// How a marker looks and how far it reaches, for every surface that shows one. The one drawing of its
/// layers: halo, tint, outline, badge, number and label.
///
/// `rect` is the marker's region in the space of the drawing, y down, and `scale` the units there of a point,
/// finite and positive; no unit is smaller than a pixel. `display` is the display that the region belongs to,
/// in that space: badge and label are kept on it, and a label that is wider than it is wrapped. Without one
/// they are where the region puts them. Needs a QGuiApplication; any thread.
namespace marker_painter {

enum class Spotlight { off, on };

/// `rect` is finite.
MarkerLayout layout(const Marker& marker, const QRectF& rect, qreal scale, const MarkerStyle& style,
                    Spotlight spotlight, const std::optional<QRectF>& display = std::nullopt);

/// Where the marker shows: nowhere when its region is not finite. The plane is the region with its tint.
Extent extent(const Marker& marker, const QRectF& rect, qreal scale, const MarkerStyle& style,
              Spotlight spotlight, const std::optional<QRectF>& display = std::nullopt);

/// A region that is not finite is not drawn. The painter is left as it was.
void draw(QPainter& painter, const Marker& marker, const QRectF& rect, qreal scale, const MarkerStyle& style,
          Spotlight spotlight, const std::optional<QRectF>& display = std::nullopt);

// The same of a layout that is there already, of that marker in that style and under that spotlight.

Extent extent(const Marker& marker, const MarkerLayout& layout, qreal scale, Spotlight spotlight);
void draw(QPainter& painter, const Marker& marker, const MarkerLayout& layout, qreal scale,
          const MarkerStyle& style, Spotlight spotlight);

/// True when both look the same wherever they are shown alike.
bool looksSame(const Marker& left, const Marker& right);

} // namespace marker_painter

} // namespace orvane
