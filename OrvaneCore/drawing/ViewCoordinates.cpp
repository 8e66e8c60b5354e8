#include "OrvaneCore/drawing/ViewCoordinates.h"

#include "OrvaneCore/drawing/DrawingLimits.h"

#include <cmath>

namespace orvane {

QPointF ViewCoordinates::convertPointToScreen(const QPointF& viewPoint) const {
    return viewPoint + frame.topLeft();
}

QPointF ViewCoordinates::convertPointFromScreen(const QPointF& globalPoint) const {
    return globalPoint - frame.topLeft();
}

QRectF ViewCoordinates::convertToScreen(const QRectF& viewRect) const {
    return viewRect.translated(frame.topLeft());
}

QRectF ViewCoordinates::convertFromScreen(const QRectF& globalRect) const {
    return globalRect.translated(-frame.topLeft());
}

bool ViewCoordinates::isReachable(const QPointF& viewPoint) const {
    const QPointF point = convertPointToScreen(viewPoint);
    return std::abs(point.x()) <= drawingLimit && std::abs(point.y()) <= drawingLimit;
}

} // namespace orvane
