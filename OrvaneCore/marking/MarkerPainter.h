#pragma once

#include "OrvaneCore/marking/Marker.h"

#include <QFont>
#include <QRectF>

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

    /// On a picture that goes to an agent.
    static const MarkerStyle onImage;
    /// On the live screen.
    static const MarkerStyle onOverlay;
};

/// How a marker looks. The one drawing of its layers: halo, tint, outline, badge, number and label.
namespace marker_painter {

enum class Spotlight { off, on };

/// `rect` is the marker's region in the painter's space, y down, and `scale` the painter's units of a
/// point, finite and positive. A region that is not finite is not drawn. The painter is left as it was.
/// Needs a QGuiApplication; any thread.
void draw(QPainter& painter, const Marker& marker, const QRectF& rect, qreal scale, const MarkerStyle& style,
          Spotlight spotlight);

} // namespace marker_painter

} // namespace orvane
