#pragma once

#include <QPointF>
#include <QRectF>

namespace orvane {

/// Where a view lies. View space has its origin at the top-left corner of the view, global space at that of
/// the primary display; both are in points, y down. Without a frame both are the same.
struct ViewCoordinates {
    /// That of the view, in global space.
    QRectF frame = {};

    QPointF convertPointToScreen(const QPointF& viewPoint) const;
    QPointF convertPointFromScreen(const QPointF& globalPoint) const;
    QRectF convertToScreen(const QRectF& viewRect) const;
    QRectF convertFromScreen(const QRectF& globalRect) const;

    /// Whether a pointer can be there: the point is finite and on a place that can be drawn on.
    bool isReachable(const QPointF& viewPoint) const;
};

} // namespace orvane
