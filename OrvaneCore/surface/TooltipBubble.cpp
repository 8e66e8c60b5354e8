#include "OrvaneCore/surface/TooltipBubble.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/platform/Surfaces.h"
#include "OrvaneCore/surface/WidgetLook.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <algorithm>

namespace orvane {

namespace {

constexpr int textPixelSize = 12;
/// Longer texts are wrapped.
constexpr int widestText = 280;
constexpr QMargins textPadding(10, 7, 10, 7);
constexpr qreal cornerRadius = 8;
/// Between the widget and the bubble.
constexpr int gapToWidget = 6;
/// Kept free between the bubble and the edges of the screen.
constexpr int screenMargin = 8;

QSize textSize(const QString& text) {
    const QRect room(0, 0, widestText, QWIDGETSIZE_MAX);
    return QFontMetrics(systemFont(textPixelSize)).boundingRect(room, Qt::TextWordWrap, text).size();
}

} // namespace

TooltipBubble::TooltipBubble(const QString& text, const QRect& around, QScreen& screen, Surfaces& surfaces)
    : m_text(text)
    , m_isTranslucent(surfaces.canBeTranslucent()) {
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_TranslucentBackground, m_isTranslucent);
    setAccessibleName(text);
    setWindowTitle(text);
    setGeometry(place(textSize(text).grownBy(textPadding), around, screen.geometry()));
    if (!m_isTranslucent) {
        QPainterPath outline;
        outline.addRoundedRect(rect(), cornerRadius, cornerRadius);
        setMask(outline.toFillPolygon().toPolygon());
    }
    surfaces.dress(*this, SurfaceRole::toast, SurfaceKeyboard::never, screen);
}

QRect TooltipBubble::place(const QSize& size, const QRect& around, const QRect& screen) {
    const auto within = [](int at, int length, int from, int space) {
        return std::max(from + screenMargin, std::min(at, from + space - screenMargin - length));
    };
    const int above = around.y() - gapToWidget - size.height();
    const int top = above >= screen.y() + screenMargin ? above : around.y() + around.height() + gapToWidget;
    return {QPoint(within(around.x() + (around.width() - size.width()) / 2, size.width(), screen.x(),
                          screen.width()),
                   within(top, size.height(), screen.y(), screen.height())),
            size};
}

void TooltipBubble::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (!m_isTranslucent)
        painter.fillRect(rect(), gray(0.12F));
    QPainterPath outline;
    outline.addRoundedRect(rect(), cornerRadius, cornerRadius);
    look::drawPlate(painter, outline);
    painter.setFont(systemFont(textPixelSize));
    painter.setPen(gray(1, 0.9F));
    painter.drawText(rect().marginsRemoved(textPadding), Qt::TextWordWrap, m_text);
}

} // namespace orvane
