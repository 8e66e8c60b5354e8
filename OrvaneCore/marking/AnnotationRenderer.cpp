#include "OrvaneCore/marking/AnnotationRenderer.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawingLimits.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/PainterState.h"

#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace orvane {

namespace {

constexpr int textPixelSize = 15;
constexpr int labelPixelSize = 12;
constexpr QSizeF emptyTextSize(80, 20);

// More than anybody draws with, and no work for the rasteriser yet.
constexpr qreal widestStroke = 1e4;
// Nearer than what a number of 64 bits resolves to a hundredth of a pixel.
constexpr qreal farthestArrowEnd = 1e12;

QColor textColorOn(const QColor& ground) {
    return annotation_renderer::prefersDarkText(ground) ? Qt::black : Qt::white;
}

QPen stroke(const QColor& color, qreal width) {
    // Sharp corners; but where a flat shape turns back, Qt's own miter would stick out by twice the width.
    return {color, width, Qt::SolidLine, Qt::FlatCap, Qt::SvgMiterJoin};
}

/// Text on a rounded plate of the shape's colour. `pad` lies around the text on every side.
void drawPlate(QPainter& painter, const DrawnText& text, const QPointF& topLeft, qreal pad,
               const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(withAlpha(color, 0.95F));
    painter.drawRoundedRect({topLeft, text.size() + QSizeF(2 * pad, 2 * pad)}, pad, pad);
    text.draw(painter, topLeft + QPointF(pad, pad), textColorOn(color));
}

/// One annotation on its way to one painter.
class ShapeDrawing {
public:
    ShapeDrawing(QPainter& painter, const Annotation& annotation, const PointMap& mapPoint, qreal scale)
        : m_painter(painter)
        , m_annotation(annotation)
        , m_scale(scale)
        , m_start(mapPoint(annotation.start))
        , m_end(mapPoint(annotation.end))
        // Of points that are near already: a QRectF keeps a width, which far points round or overflow.
        , m_rect(QRectF(drawable(m_start), drawable(m_end)).normalized())
        // In this order, because comparing with a width that is no number chooses the first.
        , m_lineWidth(std::min(std::max(1.0, annotation.strokeWidth * scale), widestStroke)) {}

    void draw() {
        switch (m_annotation.kind) {
        case Annotation::Kind::arrow:
            drawArrow();
            break;
        case Annotation::Kind::box:
            m_painter.setPen(stroke(m_annotation.color, m_lineWidth));
            m_painter.setBrush(Qt::NoBrush);
            m_painter.drawRect(m_rect);
            break;
        case Annotation::Kind::ellipse:
            m_painter.setPen(stroke(m_annotation.color, m_lineWidth));
            m_painter.setBrush(Qt::NoBrush);
            m_painter.drawEllipse(m_rect);
            break;
        case Annotation::Kind::highlight:
            m_painter.fillRect(m_rect, withAlpha(m_annotation.color, 0.35F));
            break;
        case Annotation::Kind::text:
            drawText();
            return;
        case Annotation::Kind::image:
            if (m_rect.width() <= 1 || m_rect.height() <= 1)
                return;
            drawImage();
            break;
        }
        drawLabel();
    }

private:
    void drawArrow() {
        // The shortest head has its length in units of the drawing at every scale.
        const qreal head = std::max(m_lineWidth * 3.5, 12.0);
        constexpr qreal halfOpening = std::numbers::pi / 7;
        // Far ends keep the arrow's direction; only what shows of it is drawn.
        const QPointF tail = drawable(m_start, farthestArrowEnd);
        const QPointF tip = drawable(m_end, farthestArrowEnd);
        const QRectF shown = visibleArea().adjusted(-head, -head, head, head);
        const qreal angle = std::atan2(tip.y() - tail.y(), tip.x() - tail.x());
        const auto back = [&](qreal length, qreal direction) {
            return tip - length * QPointF(std::cos(direction), std::sin(direction));
        };
        // The shaft ends inside the head, so that a thick one does not show beside its tip.
        if (const auto shaft = clipped(QLineF(tail, back(0.8 * head, angle)), shown)) {
            m_painter.setPen(QPen(m_annotation.color, m_lineWidth, Qt::SolidLine, Qt::RoundCap));
            m_painter.drawLine(*shaft);
        }
        if (shown.contains(tip)) {
            m_painter.setPen(Qt::NoPen);
            m_painter.setBrush(m_annotation.color);
            m_painter.drawPolygon(
                QPolygonF({tip, back(head, angle - halfOpening), back(head, angle + halfOpening)}));
        }
    }

    /// In the painter's space.
    QRectF visibleArea() const {
        return m_painter.combinedTransform().inverted().mapRect(QRectF(m_painter.viewport()));
    }

    void drawText() {
        if (m_annotation.text.isEmpty())
            return;
        const DrawnText text(m_annotation.text, textPixelSize, QFont::Bold, m_scale);
        const qreal pad = 5 * m_scale;
        drawPlate(m_painter, text, drawable(m_start) - QPointF(pad, pad), pad, m_annotation.color);
    }

    void drawImage() {
        if (m_annotation.image.isNull()) {
            m_painter.fillRect(m_rect, withAlpha(m_annotation.color, 0.12F));
            m_painter.setPen(stroke(withAlpha(m_annotation.color, 0.9F), 1.5));
            m_painter.setBrush(Qt::NoBrush);
            m_painter.drawRect(m_rect);
            return;
        }
        const QRectF fitted =
            annotation_renderer::aspectFit(m_annotation.image.deviceIndependentSize(), m_rect);
        QImage picture = m_annotation.image;
        // A smooth painter looks at four pixels for each it paints, which leaves most of a large picture out.
        const QSizeF pixels = m_painter.deviceTransform().mapRect(fitted).size();
        if (2 * pixels.width() < picture.width()) {
            picture = picture.scaled(pixels.toSize().expandedTo({1, 1}), Qt::IgnoreAspectRatio,
                                     Qt::SmoothTransformation);
        }
        const PainterState state(m_painter);
        if (std::isfinite(m_annotation.rotation) && m_annotation.rotation != 0) {
            m_painter.translate(fitted.center());
            m_painter.rotate(m_annotation.rotation * 180 / std::numbers::pi);
            m_painter.translate(-fitted.center());
        }
        m_painter.drawImage(fitted, picture);
    }

    /// Just above the shape's top-left corner.
    void drawLabel() {
        if (m_annotation.label.isEmpty())
            return;
        const DrawnText text(m_annotation.label, labelPixelSize, QFont::DemiBold, m_scale);
        const qreal pad = 4 * m_scale;
        const qreal plateHeight = text.size().height() + 2 * pad;
        drawPlate(m_painter, text, m_rect.topLeft() - QPointF(0, pad + plateHeight), pad, m_annotation.color);
    }

    QPainter& m_painter;
    const Annotation& m_annotation;
    qreal m_scale;
    QPointF m_start;
    QPointF m_end;
    QRectF m_rect;
    qreal m_lineWidth;
};

} // namespace

void annotation_renderer::draw(QPainter& painter, const Annotation& annotation, const PointMap& mapPoint,
                               qreal scale) {
    if (!isFinite(annotation.start) || !isFinite(annotation.end))
        return;
    const PainterState state(painter);
    ShapeDrawing(painter, annotation, mapPoint, scale).draw();
}

void annotation_renderer::drawSelectionHandles(QPainter& painter, const Annotation& annotation,
                                               const PointMap& mapPoint, qreal scale) {
    if (!isFinite(annotation.start) || !isFinite(annotation.end))
        return;
    const PainterState state(painter);
    const std::vector<Annotation::HandlePoint> handles = annotation.handles();
    std::vector<QPointF> points;
    points.reserve(handles.size());
    for (const auto& [handle, point] : handles) {
        // An angle that is not finite takes the handles with it.
        if (!isFinite(point))
            continue;
        points.push_back(drawable(mapPoint(point)));
        if (handle != Annotation::Handle::rotate)
            continue;
        const QRectF bounds = annotation.boundingRect();
        const QPointF topCenter =
            Annotation::rotate({bounds.center().x(), bounds.top()}, annotation.center(), annotation.rotation);
        painter.setPen(stroke(QColor(SystemColors::blue), 1.5 * scale));
        painter.drawLine(drawable(mapPoint(topCenter)), points.back());
    }
    drawHandleDots(painter, points, scale);
}

void annotation_renderer::drawHandleDots(QPainter& painter, const std::vector<QPointF>& points, qreal scale) {
    const PainterState state(painter);
    const qreal radius = 4.5 * scale;
    for (const QPointF& point : points) {
        if (!isFinite(point))
            continue;
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(point, radius, radius);
        painter.setPen(stroke(QColor(SystemColors::blue), 1.5 * scale));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(point, radius + 1, radius + 1);
    }
}

QSizeF annotation_renderer::textSize(const Annotation& annotation, qreal scale) {
    if (annotation.text.isEmpty())
        return emptyTextSize * scale;
    return DrawnText(annotation.text, textPixelSize, QFont::Bold, scale).size();
}

std::optional<QRectF> annotation_renderer::strokesBounds(const std::vector<Annotation>& annotations) {
    std::optional<QRectF> bounds;
    for (const Annotation& annotation : annotations) {
        if (annotation.removed || !isFinite(annotation.start) || !isFinite(annotation.end))
            continue;
        const QRectF rect = annotation.boundingRect();
        // Not QRectF's own union, which leaves out what has neither width nor height.
        bounds =
            bounds
                ? QRectF(QPointF(std::min(bounds->left(), rect.left()), std::min(bounds->top(), rect.top())),
                         QPointF(std::max(bounds->right(), rect.right()),
                                 std::max(bounds->bottom(), rect.bottom())))
                : rect;
    }
    return bounds;
}

QRectF annotation_renderer::aspectFit(const QSizeF& imageSize, const QRectF& rect) {
    if (imageSize.width() <= 0 || imageSize.height() <= 0 || rect.width() <= 0 || rect.height() <= 0)
        return rect;
    const qreal factor = std::min(rect.width() / imageSize.width(), rect.height() / imageSize.height());
    const QSizeF size = imageSize * factor;
    return {rect.center() - QPointF(size.width() / 2, size.height() / 2), size};
}

bool annotation_renderer::prefersDarkText(const QColor& color) {
    // Not the channels as floats, which put a grey of exactly 0.6 above the limit.
    const QRgba64 rgb = color.toRgb().rgba64();
    constexpr qreal full = std::numeric_limits<quint16>::max();
    return 0.299 * (rgb.red() / full) + 0.587 * (rgb.green() / full) + 0.114 * (rgb.blue() / full) > 0.6;
}

} // namespace orvane
