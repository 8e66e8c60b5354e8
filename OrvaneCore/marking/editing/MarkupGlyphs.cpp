#include "OrvaneCore/marking/editing/MarkupGlyphs.h"

#include <QPainterPathStroker>
#include <QPolygonF>
#include <QTransform>

namespace orvane {

namespace {

constexpr qreal lineWidth = 1.6;
constexpr qreal strokeLength = 18;

QPainterPath stroked(const QPainterPath& path) {
    QPainterPathStroker stroker;
    stroker.setWidth(lineWidth);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    // Simplified: where a stroke crosses itself there would be holes.
    return stroker.createStroke(path).simplified();
}

QPainterPath line(const QPolygonF& points) {
    QPainterPath path;
    path.addPolygon(points);
    return stroked(path);
}

QPainterPath polygon(const QPolygonF& points) {
    QPainterPath path;
    path.addPolygon(points);
    path.closeSubpath();
    return path;
}

QPainterPath frame(const QRectF& rect, qreal radius) {
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return stroked(path);
}

QPainterPath pointer() {
    const QPainterPath shape =
        polygon({{-4.5, -7.5}, {-4.5, 5.5}, {-1.4, 2.8}, {0.8, 7.6}, {3, 6.6}, {0.9, 1.9}, {5, 1.5}});
    return shape | stroked(shape);
}

QPainterPath corners() {
    return line({{-7, -3.2}, {-7, -7}, {-3.2, -7}}) | line({{3.2, -7}, {7, -7}, {7, -3.2}}) |
           line({{7, 3.2}, {7, 7}, {3.2, 7}}) | line({{-3.2, 7}, {-7, 7}, {-7, 3.2}});
}

QPainterPath arrow() {
    return line({{-6.5, 6.5}, {6.5, -6.5}}) | line({{0, -6.5}, {6.5, -6.5}, {6.5, 0}});
}

QPainterPath ellipse() {
    QPainterPath path;
    path.addEllipse(QPointF(0, 0), 8, 6.2);
    return stroked(path);
}

QPainterPath markerPen() {
    QTransform tilt;
    tilt.translate(1.2, -1.6);
    tilt.rotate(45);
    const QPainterPath body = tilt.map(polygon({{-2.8, -7}, {2.8, -7}, {2.8, 2}, {-2.8, 2}}));
    const QPainterPath tip = tilt.map(polygon({{-2, 3.6}, {2, 3.6}, {2, 5}, {-2, 7}}));
    return stroked(body) | body | tip | line({{-2, 7.4}, {7.5, 7.4}});
}

QPainterPath letter() {
    return line({{-6, -4.2}, {-6, -6.8}, {6, -6.8}, {6, -4.2}}) | line({{0, -6.8}, {0, 6.8}}) |
           line({{-2.4, 6.8}, {2.4, 6.8}});
}

QPainterPath photograph() {
    QPainterPath sun;
    sun.addEllipse(QPointF(3.4, -2.6), 1.5, 1.5);
    return frame({-8, -6.5, 16, 13}, 2.2) | sun |
           polygon({{-6, 4.4}, {-2.2, -1.4}, {0.6, 2.2}, {2.2, 0.6}, {5.8, 4.4}});
}

} // namespace

QPainterPath toolGlyph(AnnotationTool tool) {
    switch (tool) {
    case AnnotationTool::select:
        return pointer();
    case AnnotationTool::region:
        return corners();
    case AnnotationTool::arrow:
        return arrow();
    case AnnotationTool::box:
        return frame({-7.5, -6, 15, 12}, 1.6);
    case AnnotationTool::ellipse:
        return ellipse();
    case AnnotationTool::highlight:
        return markerPen();
    case AnnotationTool::text:
        return letter();
    case AnnotationTool::image:
        return photograph();
    }
    return {};
}

QPainterPath strokeGlyph(qreal width) {
    QPainterPath path;
    path.addRoundedRect(QRectF(-strokeLength / 2, -width / 2, strokeLength, width), width / 2, width / 2);
    return path;
}

} // namespace orvane
