#include "Orvane/MenuBarGlyph.h"

#include "OrvaneCore/drawing/PainterState.h"

#include <QColor>
#include <QPen>
#include <QRectF>

namespace orvane {

namespace {

constexpr QRgb lightFill = 0xffffffff;
constexpr QRgb darkRim = 0xff202124;
constexpr qreal rimWidth = 1.4;

} // namespace

QPainterPath menu_bar_glyph::pin() {
    constexpr qreal radius = 5.5;
    const QPointF head(side / 2, 7);
    const QPointF tip(side / 2, 16.8);
    QPainterPath path;
    path.moveTo(tip);
    path.cubicTo(QPointF(8, 14.2), QPointF(head.x() - radius, 11), QPointF(head.x() - radius, head.y()));
    path.arcTo(QRectF(head.x() - radius, head.y() - radius, 2 * radius, 2 * radius), 180, -180);
    path.cubicTo(QPointF(head.x() + radius, 11), QPointF(10, 14.2), tip);
    path.closeSubpath();
    path.addEllipse(head, 2, 2);
    return path;
}

void menu_bar_glyph::drawPin(QPainter& painter, const QRectF& square) {
    const PainterState state(painter);
    painter.translate(square.topLeft());
    painter.scale(square.width() / side, square.height() / side);
    painter.setPen(QPen(QColor::fromRgba(darkRim), rimWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor::fromRgba(lightFill));
    painter.drawPath(pin());
}

} // namespace orvane
