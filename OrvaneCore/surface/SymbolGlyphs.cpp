#include "OrvaneCore/surface/SymbolGlyphs.h"

#include "OrvaneCore/drawing/PainterState.h"

#include <QColor>
#include <QHash>
#include <QPainterPathStroker>
#include <QPolygonF>
#include <QTransform>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr QPointF center(symbolSide / 2, symbolSide / 2);
constexpr qreal lineWidth = 2.2;
// Between two shapes that would otherwise run into each other.
constexpr qreal gapWidth = 5.4;

QPainterPath circle(const QPointF& middle, qreal radius) {
    QPainterPath path;
    path.addEllipse(middle, radius, radius);
    return path;
}

QPainterPath box(qreal x, qreal y, qreal width, qreal height, qreal radius) {
    QPainterPath path;
    path.addRoundedRect(QRectF(x, y, width, height), radius, radius);
    return path;
}

QPainterPath polygon(const QPolygonF& points) {
    QPainterPath path;
    path.addPolygon(points);
    path.closeSubpath();
    return path;
}

QPainterPath stroked(const QPainterPath& path, qreal width = lineWidth) {
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    // Simplified: where a stroke crosses itself there would be holes.
    return stroker.createStroke(path).simplified();
}

QPainterPath line(const QPolygonF& points, qreal width = lineWidth) {
    QPainterPath path;
    path.addPolygon(points);
    return stroked(path, width);
}

QPainterPath arc(qreal radius, qreal fromDegrees, qreal sweepDegrees) {
    const QRectF around(center.x() - radius, center.y() - radius, 2 * radius, 2 * radius);
    QPainterPath path;
    path.arcMoveTo(around, fromDegrees);
    path.arcTo(around, fromDegrees, sweepDegrees);
    return path;
}

QPainterPath checkmark() {
    return line({{8.6, 14.6}, {12.4, 18.4}, {19.4, 10}});
}

QPainterPath disc() {
    return circle(center, 12);
}

QPainterPath checkmarkDisc() {
    return disc() - checkmark();
}

QPainterPath crossDisc() {
    return disc() - line({{9.8, 9.8}, {18.2, 18.2}}) - line({{18.2, 9.8}, {9.8, 18.2}});
}

QPainterPath recordDisc() {
    return disc() - (circle(center, 8) - circle(center, 5.4));
}

QPainterPath warningTriangle() {
    const QPolygonF corners{{14, 4.5}, {25, 23}, {3, 23}};
    return (polygon(corners) | stroked(polygon(corners), 3)) - line({{14, 10.5}, {14, 16}}) -
           circle({14, 20}, 1.4);
}

QPainterPath paperPlane() {
    const QPolygonF outline{{3, 13.5}, {25, 3.5}, {18.5, 24.5}, {12.5, 17}};
    return (polygon(outline) | stroked(polygon(outline), 1.4)) - line({{24, 4.8}, {12.5, 17}}, 1.4);
}

QPainterPath documentOnClipboard() {
    const QPainterPath sheet = box(11.5, 11, 12.5, 15, 2);
    const QPainterPath board = (box(4, 4, 15, 19, 2.5) - box(7, 2.5, 9, 4.6, 2)) | box(8.2, 2, 6.6, 4, 1.5);
    const QPainterPath lines = line({{14.5, 16}, {21, 16}}, 1.6) | line({{14.5, 20.5}, {21, 20.5}}, 1.6);
    return (board - stroked(sheet, 3) - sheet) | (sheet - lines);
}

QPainterPath checkmarkBubble() {
    const QPainterPath bubble = box(2.5, 3, 23, 18.5, 5) | polygon({{7, 20}, {7, 26}, {14, 20}});
    return bubble - line({{9.2, 12.6}, {12.6, 16}, {19, 8.6}});
}

QPainterPath crossedOut(const QPainterPath& shape) {
    const QPolygonF slash{{4.5, 4}, {23.5, 24}};
    return (shape - line(slash, gapWidth)) | line(slash);
}

QPainterPath crossedMicrophone() {
    QPainterPath holder;
    holder.moveTo(7.5, 13);
    holder.arcTo(QRectF(7.5, 6.5, 13, 13), 180, 180);
    return crossedOut(box(10.5, 2.5, 7, 13.5, 3.5) | stroked(holder) | line({{14, 19.5}, {14, 25}}) |
                      line({{10, 25}, {18, 25}}));
}

QPainterPath crossedCamera() {
    const QPolygonF lens{{20, 12.5}, {25.5, 8.8}, {25.5, 19.2}, {20, 15.5}};
    return crossedOut(box(2, 7, 16, 14, 3) | polygon(lens) | stroked(polygon(lens), 1));
}

QPainterPath trashCan() {
    QPainterPath can;
    can.addPolygon({{6, 8}, {7.4, 25}, {20.6, 25}, {22, 8}});
    return stroked(can) | line({{3.5, 7}, {24.5, 7}}) | line({{10.5, 6}, {11.5, 3}, {16.5, 3}, {17.5, 6}}) |
           line({{11.3, 11.5}, {11.8, 21}}, 1.6) | line({{16.7, 11.5}, {16.2, 21}}, 1.6);
}

QPainterPath gearInArrows() {
    QPainterPath gear = circle(center, 4.6);
    for (int tooth = 0; tooth < 8; ++tooth) {
        QTransform turn;
        turn.translate(center.x(), center.y());
        turn.rotate(45.0 * tooth);
        gear |= turn.map(box(-1.1, -6.6, 2.2, 4, 0.5));
    }
    const QPainterPath upper = stroked(arc(11, 170, -140)) | polygon({{26.8, 10.2}, {19.6, 10.2}, {24.6, 4}});
    QTransform halfTurn;
    halfTurn.translate(symbolSide, symbolSide);
    halfTurn.rotate(180);
    return (gear - circle(center, 2)) | upper | halfTurn.map(upper);
}

QPainterPath scribble() {
    QPainterPath path;
    path.moveTo(3, 19);
    path.cubicTo(5, 5, 13, 2, 12, 9);
    path.cubicTo(11, 16, 6, 24, 10, 24);
    path.cubicTo(15, 24, 16, 10, 20, 10);
    path.cubicTo(23, 10, 17, 21, 20, 22);
    path.cubicTo(22, 22.6, 24, 20, 25, 18);
    return stroked(path, 2.6);
}

QPainterPath textInCorners() {
    const QPainterPath corners =
        line({{3, 9}, {3, 4.5}, {8.5, 4.5}}) | line({{19.5, 4.5}, {25, 4.5}, {25, 9}}) |
        line({{25, 19}, {25, 23.5}, {19.5, 23.5}}) | line({{8.5, 23.5}, {3, 23.5}, {3, 19}});
    return corners | line({{8.5, 10}, {19.5, 10}}) | line({{8.5, 14}, {19.5, 14}}) |
           line({{8.5, 18}, {15, 18}});
}

QPainterPath tiltedPhotographs() {
    QTransform tilt;
    tilt.translate(12, 10);
    tilt.rotate(-10);
    const QPainterPath back = tilt.map(box(-9.5, -7, 19, 14, 2.5));
    const QPainterPath front = box(6, 9.5, 20, 15.5, 2.5);
    const QPainterPath picture =
        polygon({{8.5, 22.5}, {14, 16}, {17, 19.5}, {19.5, 17}, {23.5, 22.5}}) | circle({20.5, 13.7}, 1.7);
    return (back - stroked(front, 3) - front) | (front - picture);
}

using Drawing = QPainterPath (*)();

const QHash<QString, Drawing>& drawings() {
    static const QHash<QString, Drawing> table = {
        {u"checkmark.bubble.fill"_s, &checkmarkBubble},
        {u"checkmark.circle.fill"_s, &checkmarkDisc},
        {u"doc.on.clipboard.fill"_s, &documentOnClipboard},
        {u"exclamationmark.triangle.fill"_s, &warningTriangle},
        {u"gearshape.arrow.triangle.2.circlepath"_s, &gearInArrows},
        {u"mic.slash"_s, &crossedMicrophone},
        {u"paperplane.fill"_s, &paperPlane},
        {u"photo.on.rectangle.angled"_s, &tiltedPhotographs},
        {u"record.circle.fill"_s, &recordDisc},
        {u"scribble.variable"_s, &scribble},
        {u"text.viewfinder"_s, &textInCorners},
        {u"trash"_s, &trashCan},
        {u"video.slash"_s, &crossedCamera},
        {u"xmark.circle.fill"_s, &crossDisc},
    };
    return table;
}

} // namespace

QPainterPath symbolPath(const QString& name) {
    const Drawing drawing = drawings().value(name, nullptr);
    return drawing ? drawing() : QPainterPath();
}

void drawSymbol(QPainter& painter, const QString& name, const QRectF& square, const QColor& color) {
    const QPainterPath path = symbolPath(name);
    if (path.isEmpty())
        return;
    const PainterState state(painter);
    painter.translate(square.topLeft());
    painter.scale(square.width() / symbolSide, square.height() / symbolSide);
    painter.fillPath(path, color);
}

} // namespace orvane
