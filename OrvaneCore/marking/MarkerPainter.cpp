#include "OrvaneCore/marking/MarkerPainter.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawingLimits.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/Identical.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/drawing/PlateEdge.h"
#include "OrvaneCore/drawing/SoftShadow.h"
#include "OrvaneCore/marking/Palettes.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <numbers>

namespace orvane {

const MarkerStyle MarkerStyle::onImage{
    .outlineWidth = 2,
    .spotlightOutlineWidth = 2,
    .badgeDiameter = 27,
    .numberPixelSize = 15,
    .labelPixelSize = 13,
    .labelWeight = QFont::Medium,
    .hasLabelEdge = false,
};

const MarkerStyle MarkerStyle::onOverlay{
    .outlineWidth = 1.5,
    .spotlightOutlineWidth = 2,
    .badgeDiameter = 24,
    .numberPixelSize = 13,
    .labelPixelSize = 12,
    .labelWeight = QFont::Normal,
    .hasLabelEdge = true,
};

namespace {

// The sizes that all surfaces share, in points at scale 1.
constexpr qreal cornerRadius = 6;
constexpr qreal haloGrowth = 0.75;
constexpr qreal haloWidth = 1;
constexpr qreal badgeRingWidth = 2;
constexpr qreal badgeRingGrowth = 1;
constexpr qreal badgeShadowBlur = 3;
constexpr qreal labelGap = 6;
constexpr qreal labelPaddingY = 4;
constexpr qreal labelShadowBlur = 4;
constexpr qreal dotInset = 9;
constexpr qreal dotDiameter = 7;
constexpr qreal dotGap = 6;
constexpr qreal labelEnd = 9;
/// Around the text of a label.
constexpr QSizeF labelPadding(dotInset + dotDiameter + dotGap + labelEnd, 2 * labelPaddingY);
constexpr QPointF shadowOffset(0, 1);

QFont numberFont(const MarkerStyle& style) {
    return systemFont(style.numberPixelSize, QFont::Bold);
}

QFont labelFont(const MarkerStyle& style) {
    return systemFont(style.labelPixelSize, style.labelWeight);
}

QString numberText(const Marker& marker) {
    return QString::number(marker.index);
}

QRectF circle(const QPointF& center, qreal radius) {
    return {center.x() - radius, center.y() - radius, 2 * radius, 2 * radius};
}

QRectF grown(const QRectF& rect, qreal margin) {
    return rect.adjusted(-margin, -margin, margin, margin);
}

QRectF shadowArea(const QRectF& rect, qreal blur, qreal scale) {
    return grown(rect, softShadowReach(blur * scale)).translated(shadowOffset * scale);
}

/// For the text, at scale 1.
std::optional<QSizeF> labelRoom(const QString& label, const MarkerLayout& layout, qreal scale,
                                const MarkerStyle& style) {
    if (!layout.display)
        return std::nullopt;
    const QSizeF most = layout.display->size() / scale - labelPadding;
    const qreal asRegion = layout.region.width() / scale - labelPadding.width();
    return roomForText(label, labelFont(style), most, std::max(readableTextWidth, asRegion));
}

MarkerLayout::Label labelLayout(const QString& label, const MarkerLayout& layout, qreal scale,
                                const MarkerStyle& style) {
    const std::optional<QSizeF> room = labelRoom(label, layout, scale, style);
    const QSizeF text = drawnTextSize(label, labelFont(style), room) * scale;
    const qreal textInset = (dotInset + dotDiameter + dotGap) * scale;
    const QSizeF size = text + labelPadding * scale;
    const QRectF capsule(layout.labelPlace(size), size);
    const qreal dotRadius = dotDiameter / 2 * scale;
    return {
        .capsule = capsule,
        .shadow = shadowArea(capsule, labelShadowBlur, scale),
        .dot = circle({capsule.left() + dotInset * scale + dotRadius, capsule.center().y()}, dotRadius),
        .text = {capsule.topLeft() + QPointF(textInset, labelPaddingY * scale), text},
        .room = room,
    };
}

/// One marker on its way to one painter.
class MarkerDrawing {
public:
    MarkerDrawing(QPainter& painter, const Marker& marker, const MarkerLayout& layout, qreal scale,
                  const MarkerStyle& style)
        : m_painter(painter)
        , m_marker(marker)
        , m_layout(layout)
        , m_scale(scale)
        , m_style(style) {}

    void drawHalo() { stroke(m_layout.halo, withAlpha(Qt::black, 0.18F)); }

    void drawTint() {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(withAlpha(m_marker.color, 0.09F));
        m_painter.drawRoundedRect(m_layout.region, m_layout.cornerRadius, m_layout.cornerRadius);
    }

    void drawOutline() { stroke(m_layout.outline, m_marker.color); }

    void drawBadge() {
        QPainterPath badge;
        badge.addEllipse(m_layout.badge);
        drawSoftShadow(m_painter, badge, withAlpha(Qt::black, 0.45F), badgeShadowBlur * m_scale,
                       shadowOffset * m_scale);
        m_painter.fillPath(badge, m_marker.color);
        m_painter.setPen(QPen(marker_palette::badgeRing(), m_layout.badgeRing.width));
        m_painter.setBrush(Qt::NoBrush);
        m_painter.drawEllipse(m_layout.badgeRing.rect);

        const DrawnText number(numberText(m_marker), numberFont(m_style), m_scale);
        number.draw(m_painter, m_layout.number.topLeft(), Qt::white);
    }

    void drawLabel(const MarkerLayout::Label& label) {
        QPainterPath outline;
        outline.addRoundedRect(label.capsule, m_layout.cornerRadius, m_layout.cornerRadius);
        drawSoftShadow(m_painter, outline, withAlpha(Qt::black, 0.3F), labelShadowBlur * m_scale,
                       shadowOffset * m_scale);
        m_painter.fillPath(outline, marker_palette::labelFill());
        if (m_style.hasLabelEdge)
            drawPlateEdge(m_painter, label.capsule, m_layout.cornerRadius, m_scale);

        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(marker_palette::dot(m_marker.index));
        m_painter.drawEllipse(label.dot);
        const DrawnText text(m_marker.label, labelFont(m_style), m_scale, label.room);
        text.draw(m_painter, label.text.topLeft(), Qt::white);
    }

private:
    void stroke(const MarkerLayout::Line& line, const QColor& color) {
        m_painter.setPen(QPen(color, line.width));
        m_painter.setBrush(Qt::NoBrush);
        m_painter.drawRoundedRect(line.rect, m_layout.cornerRadius, m_layout.cornerRadius);
    }

    QPainter& m_painter;
    const Marker& m_marker;
    const MarkerLayout& m_layout;
    qreal m_scale;
    const MarkerStyle& m_style;
};

} // namespace

QPointF MarkerLayout::labelPlace(const QSizeF& size) const {
    if (!display)
        return belowRegion;
    const QRectF ring = badgeRing.outer();
    const QRectF usual(belowRegion, size);
    const QRectF nearest = movedInto(usual, *display);
    const bool isUsual = nearest == usual && badge.center() == region.topLeft();
    if (isUsual || !nearest.intersects(ring))
        return nearest.topLeft();
    const qreal gap = belowRegion.y() - region.bottom();
    const std::array besideBadge{QPointF(nearest.left(), ring.bottom() + gap),
                                 QPointF(ring.right() + gap, nearest.top()),
                                 QPointF(ring.left() - gap - size.width(), nearest.top()),
                                 QPointF(nearest.left(), ring.top() - gap - size.height())};
    const auto* free = std::find_if(besideBadge.begin(), besideBadge.end(), [&](const QPointF& place) {
        return display->contains(QRectF(place, size));
    });
    return free == besideBadge.end() ? nearest.topLeft() : *free;
}

MarkerLayout marker_painter::layout(const Marker& marker, const QRectF& rect, qreal scale,
                                    const MarkerStyle& style, Spotlight spotlight,
                                    const std::optional<QRectF>& display) {
    const QRectF region = drawable(rect);
    const qreal outlineWidth = spotlight == Spotlight::on ? style.spotlightOutlineWidth : style.outlineWidth;
    const qreal radius = style.badgeDiameter / 2 * scale;
    const qreal ringRadius = radius + badgeRingGrowth * scale;
    const QRectF ring = circle(region.topLeft(), ringRadius + badgeRingWidth / 2 * scale);
    const QPointF moved = display ? movedInto(ring, *display).topLeft() - ring.topLeft() : QPointF();
    // Not the middle of what was moved, which may be rounded.
    const QPointF center = region.topLeft() + moved;
    const QRectF badge = circle(center, radius);
    const QSizeF number = drawnTextSize(numberText(marker), numberFont(style)) * scale;
    MarkerLayout layout{
        .region = region,
        .cornerRadius = cornerRadius * scale,
        .halo = {.rect = grown(region, haloGrowth * scale), .width = haloWidth * scale},
        .outline = {.rect = region, .width = outlineWidth * scale},
        .badge = badge,
        .badgeShadow = shadowArea(badge, badgeShadowBlur, scale),
        .badgeRing = {.rect = circle(center, ringRadius), .width = badgeRingWidth * scale},
        .number = {center - QPointF(number.width() / 2, number.height() / 2), number},
        .belowRegion = region.bottomLeft() + QPointF(0, labelGap * scale),
        .display = display,
        .label = std::nullopt,
    };
    if (!marker.label.isEmpty())
        layout.label = labelLayout(marker.label, layout, scale, style);
    return layout;
}

Extent marker_painter::extent(const Marker& marker, const QRectF& rect, qreal scale, const MarkerStyle& style,
                              Spotlight spotlight, const std::optional<QRectF>& display) {
    return isFinite(rect)
               ? extent(marker, layout(marker, rect, scale, style, spotlight, display), scale, spotlight)
               : Extent();
}

Extent marker_painter::extent(const Marker& marker, const MarkerLayout& layout, qreal scale,
                              Spotlight spotlight) {
    // As far inside as the outline reaches at the round corners.
    const qreal innerRadius = layout.cornerRadius - layout.outline.width / 2;
    const qreal inset = layout.cornerRadius - innerRadius / std::numbers::sqrt2;
    Extent extent;
    extent.plane = {.outer = layout.halo.outer() | layout.outline.outer(),
                    .inner = grown(layout.region, -inset),
                    .paint = spotlight == Spotlight::on ? std::nullopt : std::optional(marker.color)};
    extent.add(layout.badgeShadow | layout.badgeRing.outer() | layout.number);
    if (layout.label) {
        extent.add(layout.label->shadow);
        extent.addTypedText(layout.label->capsule, marker.label, scale);
    }
    return extent;
}

void marker_painter::draw(QPainter& painter, const Marker& marker, const QRectF& rect, qreal scale,
                          const MarkerStyle& style, Spotlight spotlight,
                          const std::optional<QRectF>& display) {
    if (isFinite(rect)) {
        draw(painter, marker, layout(marker, rect, scale, style, spotlight, display), scale, style,
             spotlight);
    }
}

void marker_painter::draw(QPainter& painter, const Marker& marker, const MarkerLayout& layout, qreal scale,
                          const MarkerStyle& style, Spotlight spotlight) {
    const PainterState state(painter);
    MarkerDrawing drawing(painter, marker, layout, scale, style);
    drawing.drawHalo();
    if (spotlight == Spotlight::off)
        drawing.drawTint();
    drawing.drawOutline();
    drawing.drawBadge();
    if (layout.label)
        drawing.drawLabel(*layout.label);
}

bool marker_painter::looksSame(const Marker& left, const Marker& right) {
    return identical(left.rect, right.rect) && left.label == right.label && left.color == right.color &&
           left.index == right.index;
}

} // namespace orvane
