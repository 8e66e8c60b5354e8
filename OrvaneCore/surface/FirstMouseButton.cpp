#include "OrvaneCore/surface/FirstMouseButton.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/surface/WidgetLook.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace orvane {

namespace {

constexpr int usualPadding = 12;
constexpr qreal swatchRadius = 8;
constexpr qreal ringRadius = 11;
constexpr qreal ringWidth = 2;

} // namespace

FirstMouseButton::FirstMouseButton(const QString& title, QWidget* parent)
    : QAbstractButton(parent)
    , m_cornerRadius(look::buttonHeight / 2.0)
    , m_padding(usualPadding) {
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::ArrowCursor);
    setTitle(title);
}

void FirstMouseButton::setTitle(const QString& title) {
    // Not the text of the base class, in which "&" makes a shortcut.
    m_title = title;
    setAccessibleName(title);
    updateGeometry();
    update();
}

void FirstMouseButton::setGlyph(const QPainterPath& glyph) {
    m_glyph = glyph;
    update();
}

void FirstMouseButton::setSwatch(const QColor& color) {
    m_swatch = color;
    update();
}

void FirstMouseButton::setProminent(bool prominent) {
    m_isProminent = prominent;
    update();
}

void FirstMouseButton::setDimmed(bool dimmed) {
    if (m_isDimmed == dimmed)
        return;
    m_isDimmed = dimmed;
    update();
}

void FirstMouseButton::setCornerRadius(qreal radius) {
    m_cornerRadius = radius;
    update();
}

void FirstMouseButton::setPadding(int padding) {
    m_padding = padding;
    update();
}

int FirstMouseButton::titleWidth() const {
    return static_cast<int>(std::ceil(QFontMetricsF(titleFont()).horizontalAdvance(m_title)));
}

QSize FirstMouseButton::sizeHint() const {
    return {titleWidth() + 2 * m_padding, look::buttonHeight};
}

void FirstMouseButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const PainterState state(painter);
    drawGround(painter);
    if (m_swatch) {
        drawSwatch(painter);
    } else if (!m_glyph.isEmpty()) {
        painter.translate(QRectF(rect()).center());
        painter.fillPath(m_glyph, gray(1, isChecked() ? 1.0F : 0.85F));
    } else {
        drawTitle(painter);
    }
}

QFont FirstMouseButton::titleFont() const {
    return systemFont(look::textPixelSize, m_isProminent ? QFont::DemiBold : QFont::Normal);
}

void FirstMouseButton::drawGround(QPainter& painter) const {
    QPainterPath outline;
    outline.addRoundedRect(rect(), m_cornerRadius, m_cornerRadius);
    if (m_isProminent) {
        painter.fillPath(outline, m_isDimmed ? withAlpha(look::accent(), 0.3F) : look::accent());
    } else if (isChecked() && !m_swatch) {
        painter.fillPath(outline, withAlpha(look::accent(), 0.45F));
    }
    if (isDown()) {
        painter.fillPath(outline, gray(1, 0.22F));
    } else if (underMouse()) {
        painter.fillPath(outline, gray(1, 0.12F));
    }
}

void FirstMouseButton::drawTitle(QPainter& painter) const {
    const QFontMetricsF metrics(titleFont());
    const qreal room = width() - 2.0 * m_padding;
    // In the middle: what a title ends with is the key to press.
    const QString shown = titleWidth() <= room ? m_title : metrics.elidedText(m_title, Qt::ElideMiddle, room);
    painter.setFont(titleFont());
    const float usual = m_isProminent || isChecked() ? 1.0F : 0.85F;
    painter.setPen(gray(1, m_isDimmed ? 0.45F : usual));
    painter.drawText(
        QPointF((width() - metrics.horizontalAdvance(shown)) / 2, (height() + metrics.capHeight()) / 2),
        shown);
}

void FirstMouseButton::drawSwatch(QPainter& painter) const {
    const QPointF center = QRectF(rect()).center();
    painter.setPen(Qt::NoPen);
    painter.setBrush(*m_swatch);
    painter.drawEllipse(center, swatchRadius, swatchRadius);
    painter.setBrush(Qt::NoBrush);
    // Without it the black one would be a hole in the dark.
    painter.setPen(QPen(gray(1, 0.35F), 1));
    painter.drawEllipse(center, swatchRadius - 0.5, swatchRadius - 0.5);
    if (isChecked()) {
        painter.setPen(QPen(Qt::white, ringWidth));
        painter.drawEllipse(center, ringRadius - ringWidth / 2, ringRadius - ringWidth / 2);
    }
}

} // namespace orvane
