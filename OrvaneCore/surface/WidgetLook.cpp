#include "OrvaneCore/surface/WidgetLook.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/drawing/PlateEdge.h"

#include <QPainter>
#include <QPainterPath>
#include <QRectF>

namespace orvane::look {

QColor ground() {
    return gray(0.12F, 0.92F);
}

QColor accent() {
    return QColor(0x2F, 0x7D, 0xF6);
}

void drawPlate(QPainter& painter, const QRectF& rect, qreal radius) {
    const PainterState state(painter);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground());
    painter.drawRoundedRect(rect, radius, radius);
    drawPlateEdge(painter, rect, radius);
}

void drawPlate(QPainter& painter, const QPainterPath& outline) {
    const PainterState state(painter);
    painter.fillPath(outline, ground());
    drawPlateEdge(painter, outline);
}

} // namespace orvane::look
