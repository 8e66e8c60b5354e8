#pragma once

#include "OrvaneCore/drawing/ViewCoordinates.h"

namespace orvane {

/// Where one view of the overlay lies among the displays.
struct OverlayCoordinates {
    ViewCoordinates view = {};
    /// The height of the primary display, in points.
    qreal primaryHeight = 0;
    /// The side of a pixel of the display, in points.
    qreal pixelSide = 1;

    /// From view to global space. Also logs the rectangle in both, and in those in which y points up.
    QRectF convertToScreen(const QRectF& viewRect) const;

    /// The corner of a region that a pointer at that place means, both in view space: the place itself, but
    /// in the last column and row of the display its edge, which no pointer can reach. A region ends before
    /// the pixel that its right or lower edge lies on.
    QPointF regionCorner(const QPointF& viewPoint) const;
};

} // namespace orvane
