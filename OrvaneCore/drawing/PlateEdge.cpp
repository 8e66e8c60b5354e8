#include "OrvaneCore/drawing/PlateEdge.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/PainterState.h"

#include <QPainter>
#include <QPainterPathStroker>

#include <algorithm>

namespace orvane {

namespace {

QColor edgeColor() {
    return gray(1, 0.26F);
}

} // namespace

void drawPlateEdge(QPainter& painter, const QRectF& plate, qreal radius, qreal width) {
    const PainterState state(painter);
    const qreal half = width / 2;
    const qreal innerRadius = std::max(0.0, radius - half);
    painter.setPen(QPen(edgeColor(), width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(plate.adjusted(half, half, -half, -half), innerRadius, innerRadius);
}

void drawPlateEdge(QPainter& painter, const QPainterPath& outline, qreal width) {
    const PainterState state(painter);
    QPainterPathStroker stroker;
    // Half of it is outside.
    stroker.setWidth(2 * width);
    painter.fillPath(stroker.createStroke(outline) & outline, edgeColor());
}

} // namespace orvane
