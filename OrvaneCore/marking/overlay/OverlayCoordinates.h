#pragma once

#include <QPointF>
#include <QRectF>

namespace orvane {

/// Where one view of the overlay lies. View space has its origin at the top-left corner of the view, global
/// space at that of the primary display; both are in points, y down. Without a frame both are the same.
struct OverlayCoordinates {
    /// That of the view, in global space.
    QRectF frame = {};
    /// The height of the primary display, in points.
    qreal primaryHeight = 0;

    QPointF convertPointToScreen(const QPointF& viewPoint) const;
    QPointF convertPointFromScreen(const QPointF& globalPoint) const;
    /// Also logs the rectangle in both spaces, and in those in which y points up.
    QRectF convertToScreen(const QRectF& viewRect) const;
    QRectF convertFromScreen(const QRectF& globalRect) const;
};

} // namespace orvane
