#include "OrvaneCore/surface/WidgetLook.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/PainterState.h"

#include <QPainterPath>

namespace orvane::look {

QColor ground() {
    return gray(0.12F, 0.92F);
}

QColor accent() {
    return QColor(0x2F, 0x7D, 0xF6);
}

void drawPlate(QPainter& painter, const QPainterPath& outline) {
    const PainterState state(painter);
    painter.fillPath(outline, ground());
}

} // namespace orvane::look
