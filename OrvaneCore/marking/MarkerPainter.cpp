#include "OrvaneCore/marking/MarkerPainter.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawingLimits.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/drawing/SoftShadow.h"
#include "OrvaneCore/marking/Palettes.h"

#include <QPainter>
#include <QPainterPath>

namespace orvane {

const MarkerStyle MarkerStyle::onImage{
    .outlineWidth = 2,
    .spotlightOutlineWidth = 2,
    .badgeDiameter = 27,
    .numberPixelSize = 15,
    .labelPixelSize = 13,
    .labelWeight = QFont::Medium,
};

const MarkerStyle MarkerStyle::onOverlay{
    .outlineWidth = 1.5,
    .spotlightOutlineWidth = 2,
    .badgeDiameter = 24,
    .numberPixelSize = 13,
    .labelPixelSize = 12,
    .labelWeight = QFont::Normal,
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
constexpr QPointF shadowOffset(0, 1);

/// One marker on its way to one painter.
class MarkerDrawing {
public:
    MarkerDrawing(QPainter& painter, const Marker& marker, const QRectF& rect, qreal scale,
                  const MarkerStyle& style)
        : m_painter(painter)
        , m_marker(marker)
        , m_rect(drawable(rect))
        , m_scale(scale)
        , m_style(style) {}

    void drawHalo() {
        const qreal grown = haloGrowth * m_scale;
        strokeRounded(m_rect.adjusted(-grown, -grown, grown, grown), withAlpha(Qt::black, 0.18F), haloWidth);
    }

    void drawTint() {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(withAlpha(m_marker.color, 0.09F));
        m_painter.drawRoundedRect(m_rect, cornerRadius * m_scale, cornerRadius * m_scale);
    }

    void drawOutline(qreal width) { strokeRounded(m_rect, m_marker.color, width); }

    /// On the region's top-left corner.
    void drawBadge() {
        const QPointF center = m_rect.topLeft();
        const qreal radius = m_style.badgeDiameter / 2 * m_scale;
        QPainterPath circle;
        circle.addEllipse(center, radius, radius);
        drawSoftShadow(m_painter, circle, withAlpha(Qt::black, 0.45F), badgeShadowBlur * m_scale,
                       shadowOffset * m_scale);
        m_painter.fillPath(circle, m_marker.color);
        m_painter.setPen(QPen(marker_palette::badgeRing(), badgeRingWidth * m_scale));
        m_painter.setBrush(Qt::NoBrush);
        m_painter.drawEllipse(center, radius + badgeRingGrowth * m_scale, radius + badgeRingGrowth * m_scale);

        const DrawnText number(QString::number(m_marker.index), m_style.numberPixelSize, QFont::Bold,
                               m_scale);
        number.drawCentered(m_painter, center, Qt::white);
    }

    /// In a capsule below the region.
    void drawLabel() {
        const DrawnText text(m_marker.label, m_style.labelPixelSize, m_style.labelWeight, m_scale);
        const qreal textInset = (dotInset + dotDiameter + dotGap) * m_scale;
        const QRectF capsule(m_rect.bottomLeft() + QPointF(0, labelGap * m_scale),
                             text.size() +
                                 QSizeF(textInset + labelEnd * m_scale, 2 * labelPaddingY * m_scale));
        QPainterPath outline;
        outline.addRoundedRect(capsule, cornerRadius * m_scale, cornerRadius * m_scale);
        drawSoftShadow(m_painter, outline, withAlpha(Qt::black, 0.3F), labelShadowBlur * m_scale,
                       shadowOffset * m_scale);
        m_painter.fillPath(outline, marker_palette::labelFill());

        const qreal dotRadius = dotDiameter / 2 * m_scale;
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(marker_palette::dot(m_marker.index));
        m_painter.drawEllipse(QPointF(capsule.left() + dotInset * m_scale + dotRadius, capsule.center().y()),
                              dotRadius, dotRadius);
        text.draw(m_painter, capsule.topLeft() + QPointF(textInset, labelPaddingY * m_scale), Qt::white);
    }

private:
    void strokeRounded(const QRectF& rect, const QColor& color, qreal width) {
        m_painter.setPen(QPen(color, width * m_scale));
        m_painter.setBrush(Qt::NoBrush);
        m_painter.drawRoundedRect(rect, cornerRadius * m_scale, cornerRadius * m_scale);
    }

    QPainter& m_painter;
    const Marker& m_marker;
    QRectF m_rect;
    qreal m_scale;
    const MarkerStyle& m_style;
};

} // namespace

void marker_painter::draw(QPainter& painter, const Marker& marker, const QRectF& rect, qreal scale,
                          const MarkerStyle& style, Spotlight spotlight) {
    if (!isFinite(rect))
        return;
    const PainterState state(painter);
    MarkerDrawing drawing(painter, marker, rect, scale, style);
    drawing.drawHalo();
    if (spotlight == Spotlight::off)
        drawing.drawTint();
    drawing.drawOutline(spotlight == Spotlight::on ? style.spotlightOutlineWidth : style.outlineWidth);
    drawing.drawBadge();
    if (!marker.label.isEmpty())
        drawing.drawLabel();
}

} // namespace orvane
