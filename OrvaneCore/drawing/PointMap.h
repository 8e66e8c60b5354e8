#pragma once

#include <QPointF>
#include <QRectF>

namespace orvane {

/// Takes global display points to the space of a drawing: points of a view or pixels of a picture, y down.
struct PointMap {
    /// The global point at the drawing's top-left corner.
    QPointF origin;
    /// What a point of the display measures in the drawing.
    qreal scaleX = 1;
    qreal scaleY = 1;

    QPointF operator()(const QPointF& point) const {
        return {(point.x() - origin.x()) * scaleX, (point.y() - origin.y()) * scaleY};
    }
    QRectF operator()(const QRectF& rect) const {
        return {(*this)(rect.topLeft()), QSizeF(rect.width() * scaleX, rect.height() * scaleY)};
    }
};

} // namespace orvane
