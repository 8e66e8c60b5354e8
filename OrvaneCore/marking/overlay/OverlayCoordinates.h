#pragma once

#include "OrvaneCore/drawing/ViewCoordinates.h"

namespace orvane {

/// Where one view of the overlay lies among the displays.
struct OverlayCoordinates {
    ViewCoordinates view = {};
    /// The height of the primary display, in points.
    qreal primaryHeight = 0;

    /// From view to global space. Also logs the rectangle in both, and in those in which y points up.
    QRectF convertToScreen(const QRectF& viewRect) const;
};

} // namespace orvane
