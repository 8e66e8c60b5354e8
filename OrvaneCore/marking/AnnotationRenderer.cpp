#include "OrvaneCore/marking/AnnotationRenderer.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawingLimits.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/Identical.h"
#include "OrvaneCore/drawing/PainterState.h"

#include <QLineF>
#include <QPolygonF>
#include <QTransform>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace orvane {

namespace {

/// A text on a rounded plate.
struct PlateStyle {
    int pixelSize;
    QFont::Weight weight;
    /// Around the text on every side, at scale 1; the radius of the corners as well.
    qreal padding;

    QFont font() const { return systemFont(pixelSize, weight); }
};

// The sizes of all that is drawn, in points at scale 1.
constexpr PlateStyle textPlate{.pixelSize = 15, .weight = QFont::Bold, .padding = 5};
constexpr PlateStyle labelPlate{.pixelSize = 12, .weight = QFont::DemiBold, .padding = 4};
constexpr QSizeF emptyTextSize(80, 20);
constexpr qreal headPerWidth = 3.5;
constexpr qreal handleRadius = 4.5;
constexpr qreal handleLineWidth = 1.5;
// These have their size in units of the drawing at every scale.
constexpr qreal thinnestStroke = 1;
constexpr qreal shortestHead = 12;
constexpr qreal missingPictureLineWidth = 1.5;
constexpr qreal handleRingGrowth = 1;

// Qt hands translucent fills to other threads when they come to 96 pieces of rows or more, and waiting for
// these takes longer than filling shapes of the sizes that people draw, ten times as long for a plate. So
// they are painted in bands of so many rows of pixels. A row has at most three pieces, across round corners
// about ten. Not so pictures, where the bands would be seen: a colour here and there is rounded otherwise.
constexpr int straightBand = 31;
constexpr int roundBand = 8;

// More than anybody draws with, and no work for the rasteriser yet.
constexpr qreal widestStroke = 1e4;
// Nearer than what a number of 64 bits resolves to a hundredth of a pixel.
constexpr qreal farthestArrowEnd = 1e12;

bool hasFinitePoints(const Annotation& annotation) {
    return isFinite(annotation.start) && isFinite(annotation.end);
}

QColor textColorOn(const QColor& ground) {
    return annotation_renderer::prefersDarkText(ground) ? Qt::black : Qt::white;
}

QPen stroke(const QColor& color, qreal width) {
    // Sharp corners; but where a flat shape turns back, Qt's own miter would stick out by twice the width.
    return {color, width, Qt::SolidLine, Qt::FlatCap, Qt::SvgMiterJoin};
}

/// Where the parts of an annotation lie in a drawing: what it is painted by and what its extent is made of.
class ShapeLayout {
public:
    struct Arrow {
        /// Drawn with round ends.
        std::optional<QLineF> shaft;
        /// The tip and the two points behind it; nothing when it is far from what is visible.
        std::optional<QPolygonF> head;
    };

    /// The annotation outlives this object.
    ShapeLayout(const Annotation& annotation, const PointMap& mapPoint, qreal scale,
                const std::optional<QRectF>& display)
        : m_annotation(annotation)
        , m_scale(scale)
        , m_display(display)
        , m_start(mapPoint(annotation.start))
        , m_end(mapPoint(annotation.end))
        // Of points that are near already: a QRectF keeps a width, which far points round or overflow.
        , m_rect(QRectF(drawable(m_start), drawable(m_end)).normalized())
        // In this order, because comparing with a width that is no number chooses the first.
        , m_lineWidth(std::min(std::max(thinnestStroke, annotation.strokeWidth * scale), widestStroke)) {}

    const QRectF& rect() const { return m_rect; }
    qreal lineWidth() const { return m_lineWidth; }

    Arrow arrow(const QRectF& visible) const {
        const qreal head = std::max(m_lineWidth * headPerWidth, shortestHead);
        constexpr qreal halfOpening = std::numbers::pi / 7;
        // Far ends keep the arrow's direction; only what shows of it is drawn.
        const QPointF tail = drawable(m_start, farthestArrowEnd);
        const QPointF tip = drawable(m_end, farthestArrowEnd);
        const QRectF shown = visible.adjusted(-head, -head, head, head);
        const qreal angle = std::atan2(tip.y() - tail.y(), tip.x() - tail.x());
        const auto back = [&](qreal length, qreal direction) {
            return tip - length * QPointF(std::cos(direction), std::sin(direction));
        };
        Arrow arrow;
        // The shaft ends inside the head, so that a thick one does not show beside its tip.
        arrow.shaft = clipped(QLineF(tail, back(0.8 * head, angle)), shown);
        if (shown.contains(tip))
            arrow.head = QPolygonF({tip, back(head, angle - halfOpening), back(head, angle + halfOpening)});
        return arrow;
    }

    bool hasPicture() const { return m_rect.width() > 1 && m_rect.height() > 1; }

    /// The picture before it is turned.
    QRectF picture() const {
        return annotation_renderer::aspectFit(m_annotation.image.deviceIndependentSize(), m_rect);
    }

    QTransform pictureTurn() const {
        QTransform turn;
        if (std::isfinite(m_annotation.rotation) && m_annotation.rotation != 0) {
            const QPointF center = picture().center();
            turn.translate(center.x(), center.y());
            turn.rotate(m_annotation.rotation * 180 / std::numbers::pi);
            turn.translate(-center.x(), -center.y());
        }
        return turn;
    }

    /// Of a text annotation.
    QRectF text() const {
        const qreal padding = textPlate.padding * m_scale;
        return {drawable(m_start) - QPointF(padding, padding),
                plateSize(textPlate, m_annotation.text, std::nullopt)};
    }

    /// Just above the shape's top-left corner, and as near to that as the display allows.
    QRectF label() const {
        const QSizeF size = plateSize(labelPlate, m_annotation.label, labelRoom());
        const qreal padding = labelPlate.padding * m_scale;
        const QRectF usual(m_rect.topLeft() - QPointF(0, padding + size.height()), size);
        return m_display ? movedInto(usual, *m_display) : usual;
    }

    /// For the text of the label, at scale 1.
    std::optional<QSizeF> labelRoom() const {
        if (!m_display)
            return std::nullopt;
        const QSizeF padding(2 * labelPlate.padding, 2 * labelPlate.padding);
        return roomForText(m_annotation.label, labelPlate.font(), m_display->size() / m_scale - padding,
                           readableTextWidth);
    }

private:
    QSizeF plateSize(const PlateStyle& style, const QString& text, const std::optional<QSizeF>& room) const {
        const qreal padding = style.padding * m_scale;
        return drawnTextSize(text, style.font(), room) * m_scale + QSizeF(2 * padding, 2 * padding);
    }

    const Annotation& m_annotation;
    qreal m_scale;
    std::optional<QRectF> m_display;
    QPointF m_start;
    QPointF m_end;
    QRectF m_rect;
    qreal m_lineWidth;
};

/// One annotation on its way to one painter.
class ShapeDrawing {
public:
    ShapeDrawing(QPainter& painter, const Annotation& annotation, const PointMap& mapPoint, qreal scale,
                 const std::optional<QRectF>& display)
        : m_painter(painter)
        , m_annotation(annotation)
        , m_layout(annotation, mapPoint, scale, display)
        , m_scale(scale) {}

    void draw() {
        switch (m_annotation.kind) {
        case Annotation::Kind::arrow:
            drawArrow();
            break;
        case Annotation::Kind::box:
            m_painter.setPen(stroke(m_annotation.color, m_layout.lineWidth()));
            m_painter.setBrush(Qt::NoBrush);
            m_painter.drawRect(m_layout.rect());
            break;
        case Annotation::Kind::ellipse:
            m_painter.setPen(stroke(m_annotation.color, m_layout.lineWidth()));
            m_painter.setBrush(Qt::NoBrush);
            m_painter.drawEllipse(m_layout.rect());
            break;
        case Annotation::Kind::highlight:
            inBands(m_layout.rect(), straightBand,
                    [&] { m_painter.fillRect(m_layout.rect(), withAlpha(m_annotation.color, 0.35F)); });
            break;
        case Annotation::Kind::text:
            if (!m_annotation.text.isEmpty())
                drawPlate(textPlate, m_annotation.text, m_layout.text(), std::nullopt);
            return;
        case Annotation::Kind::image:
            if (!m_layout.hasPicture())
                return;
            drawImage();
            break;
        }
        if (!m_annotation.label.isEmpty())
            drawPlate(labelPlate, m_annotation.label, m_layout.label(), m_layout.labelRoom());
    }

private:
    void drawArrow() {
        const ShapeLayout::Arrow arrow = m_layout.arrow(visibleArea());
        if (arrow.shaft) {
            m_painter.setPen(QPen(m_annotation.color, m_layout.lineWidth(), Qt::SolidLine, Qt::RoundCap));
            m_painter.drawLine(*arrow.shaft);
        }
        if (arrow.head) {
            m_painter.setPen(Qt::NoPen);
            m_painter.setBrush(m_annotation.color);
            m_painter.drawPolygon(*arrow.head);
        }
    }

    /// In the painter's space.
    QRectF visibleArea() const {
        return m_painter.combinedTransform().inverted().mapRect(QRectF(m_painter.viewport()));
    }

    void drawImage() {
        if (m_annotation.image.isNull()) {
            m_painter.fillRect(m_layout.rect(), withAlpha(m_annotation.color, 0.12F));
            m_painter.setPen(stroke(withAlpha(m_annotation.color, 0.9F), missingPictureLineWidth));
            m_painter.setBrush(Qt::NoBrush);
            m_painter.drawRect(m_layout.rect());
            return;
        }
        const QRectF fitted = m_layout.picture();
        QImage picture = m_annotation.image;
        // A smooth painter looks at four pixels for each it paints, which leaves most of a large picture out.
        const QSizeF pixels = m_painter.deviceTransform().mapRect(fitted).size();
        if (2 * pixels.width() < picture.width()) {
            picture = picture.scaled(pixels.toSize().expandedTo({1, 1}), Qt::IgnoreAspectRatio,
                                     Qt::SmoothTransformation);
        }
        const PainterState state(m_painter);
        m_painter.setTransform(m_layout.pictureTurn(), true);
        m_painter.drawImage(fitted, picture);
    }

    /// In the shape's colour.
    void drawPlate(const PlateStyle& style, const QString& text, const QRectF& plate,
                   const std::optional<QSizeF>& room) {
        const qreal padding = style.padding * m_scale;
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(withAlpha(m_annotation.color, 0.95F));
        inBands(plate, roundBand, [&] { m_painter.drawRoundedRect(plate, padding, padding); });
        DrawnText(text, style.font(), m_scale, room)
            .draw(m_painter, plate.topLeft() + QPointF(padding, padding), textColorOn(m_annotation.color));
    }

    /// Draws what lies in `bounds` band by band, with the same outcome as at once.
    template <typename Paint>
    void inBands(const QRectF& bounds, int bandRows, Paint paint) {
        const QTransform toDevice = m_painter.deviceTransform();
        // The bands of a turned painter would overlap.
        if (toDevice.type() > QTransform::TxScale) {
            paint();
            return;
        }
        const QTransform fromDevice = toDevice.inverted();
        const QRectF onDevice = toDevice.mapRect(bounds.adjusted(-1, -1, 1, 1) & visibleArea());
        const int bottom = qCeil(onDevice.bottom());
        for (int top = qFloor(onDevice.top()); top < bottom; top += bandRows) {
            m_painter.save();
            m_painter.setClipRect(fromDevice.mapRect(QRectF(std::floor(onDevice.left()), top,
                                                            std::ceil(onDevice.width()) + 1, bandRows)),
                                  Qt::IntersectClip);
            paint();
            m_painter.restore();
        }
    }

    QPainter& m_painter;
    const Annotation& m_annotation;
    ShapeLayout m_layout;
    qreal m_scale;
};

/// The marks of a selected annotation in a drawing.
struct SelectionLayout {
    std::vector<QPointF> dots;
    /// From the middle of the shape's upper side to the handle that turns it.
    std::optional<QLineF> stem;
};

SelectionLayout selectionLayout(const Annotation& annotation, const PointMap& mapPoint) {
    const std::vector<Annotation::HandlePoint> handles = annotation.handles();
    SelectionLayout layout;
    layout.dots.reserve(handles.size());
    for (const auto& [handle, point] : handles) {
        // An angle that is not finite takes the handles with it.
        if (!isFinite(point))
            continue;
        layout.dots.push_back(drawable(mapPoint(point)));
        if (handle != Annotation::Handle::rotate)
            continue;
        const QRectF bounds = annotation.boundingRect();
        const QPointF topCenter =
            Annotation::rotate({bounds.center().x(), bounds.top()}, annotation.center(), annotation.rotation);
        layout.stem = QLineF(drawable(mapPoint(topCenter)), layout.dots.back());
    }
    return layout;
}

} // namespace

void annotation_renderer::draw(QPainter& painter, const Annotation& annotation, const PointMap& mapPoint,
                               qreal scale, const std::optional<QRectF>& display) {
    if (!hasFinitePoints(annotation))
        return;
    const PainterState state(painter);
    ShapeDrawing(painter, annotation, mapPoint, scale, display).draw();
}

void annotation_renderer::drawSelectionHandles(QPainter& painter, const Annotation& annotation,
                                               const PointMap& mapPoint, qreal scale) {
    if (!hasFinitePoints(annotation))
        return;
    const PainterState state(painter);
    const SelectionLayout layout = selectionLayout(annotation, mapPoint);
    if (layout.stem) {
        painter.setPen(stroke(QColor(system_colors::blue), handleLineWidth * scale));
        painter.drawLine(*layout.stem);
    }
    drawHandleDots(painter, layout.dots, scale);
}

void annotation_renderer::drawHandleDots(QPainter& painter, const std::vector<QPointF>& points, qreal scale) {
    const PainterState state(painter);
    const qreal radius = handleRadius * scale;
    for (const QPointF& point : points) {
        if (!isFinite(point))
            continue;
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(point, radius, radius);
        painter.setPen(stroke(QColor(system_colors::blue), handleLineWidth * scale));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(point, radius + handleRingGrowth, radius + handleRingGrowth);
    }
}

Extent annotation_renderer::extent(const Annotation& annotation, const PointMap& mapPoint, qreal scale,
                                   const QRectF& visible, const std::optional<QRectF>& display) {
    Extent extent;
    if (!hasFinitePoints(annotation))
        return extent;
    const ShapeLayout layout(annotation, mapPoint, scale, display);
    const qreal halfLine = layout.lineWidth() / 2;
    switch (annotation.kind) {
    case Annotation::Kind::arrow: {
        const ShapeLayout::Arrow arrow = layout.arrow(visible);
        if (arrow.shaft)
            extent.addLine(arrow.shaft->p1(), arrow.shaft->p2(), halfLine);
        if (arrow.head)
            extent.add(arrow.head->boundingRect());
        break;
    }
    case Annotation::Kind::box:
        extent.addFrame(layout.rect(), halfLine);
        break;
    case Annotation::Kind::ellipse:
        extent.addEllipse(layout.rect(), halfLine);
        break;
    case Annotation::Kind::highlight:
        extent.plane = {.outer = layout.rect(), .inner = layout.rect(), .paint = annotation.color};
        break;
    case Annotation::Kind::text:
        if (!annotation.text.isEmpty())
            extent.addTypedText(layout.text(), annotation.text, scale);
        return extent;
    case Annotation::Kind::image:
        if (!layout.hasPicture())
            return extent;
        if (annotation.image.isNull()) {
            extent.add(layout.rect(), missingPictureLineWidth / 2);
        } else {
            extent.add(layout.pictureTurn().mapRect(layout.picture()));
        }
        break;
    }
    if (!annotation.label.isEmpty())
        extent.addTypedText(layout.label(), annotation.label, scale);
    return extent;
}

Extent annotation_renderer::selectionExtent(const Annotation& annotation, const PointMap& mapPoint,
                                            qreal scale) {
    if (!hasFinitePoints(annotation))
        return {};
    const SelectionLayout layout = selectionLayout(annotation, mapPoint);
    Extent extent = handleDotsExtent(layout.dots, scale);
    if (layout.stem)
        extent.addLine(layout.stem->p1(), layout.stem->p2(), handleLineWidth / 2 * scale);
    return extent;
}

Extent annotation_renderer::handleDotsExtent(const std::vector<QPointF>& points, qreal scale) {
    const qreal reach = handleRadius * scale + handleRingGrowth + handleLineWidth / 2 * scale;
    Extent extent;
    for (const QPointF& point : points) {
        if (isFinite(point))
            extent.add({drawable(point), QSizeF(0, 0)}, reach);
    }
    return extent;
}

bool annotation_renderer::looksSame(const Annotation& left, const Annotation& right) {
    return left.kind == right.kind && identical(left.start, right.start) && identical(left.end, right.end) &&
           left.text == right.text && left.label == right.label &&
           identical(left.strokeWidth, right.strokeWidth) && identical(left.rotation, right.rotation) &&
           left.color == right.color && left.image == right.image;
}

QSizeF annotation_renderer::textSize(const Annotation& annotation, qreal scale) {
    if (annotation.text.isEmpty())
        return emptyTextSize * scale;
    return drawnTextSize(annotation.text, textPlate.font()) * scale;
}

std::optional<QRectF> annotation_renderer::strokesBounds(const std::vector<Annotation>& annotations) {
    std::optional<QRectF> bounds;
    for (const Annotation& annotation : annotations) {
        if (annotation.removed || !hasFinitePoints(annotation))
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
