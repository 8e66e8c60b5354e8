#pragma once

#include <QPainterPath>
#include <QRectF>

class QPainter;

namespace orvane {

// The edge of a dark plate: a thin light line that lies inside it, so that the plate does not melt into a
// dark window below it and yet reaches no further. In the painter's units; the painter is left as it was.

/// Of a rounded rectangle; `width` is that of the line.
void drawPlateEdge(QPainter& painter, const QRectF& plate, qreal radius, qreal width = 1);

/// Of any shape; it takes more time.
void drawPlateEdge(QPainter& painter, const QPainterPath& outline, qreal width = 1);

} // namespace orvane
