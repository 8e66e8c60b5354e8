#include "OrvaneCore/marking/overlay/MonospacedText.h"

#include <QFontMetricsF>
#include <QPainter>

#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

QFont monospacedFont(int pixelSize) {
    // Named when it is made: otherwise it would start as a copy of the application's font.
    QFont font(QStringList{u"monospace"_s});
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(pixelSize);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

} // namespace

MonospacedText::MonospacedText(QString text, int pixelSize)
    : m_text(std::move(text))
    , m_font(monospacedFont(pixelSize)) {
    const QFontMetricsF metrics(m_font);
    m_size = {metrics.horizontalAdvance(m_text), metrics.height()};
    m_ascent = metrics.ascent();
}

void MonospacedText::draw(QPainter& painter, const QPointF& topLeft, const QColor& color) const {
    painter.save();
    painter.setPen(color);
    painter.setFont(m_font);
    painter.drawText(topLeft + QPointF(0, m_ascent), m_text);
    painter.restore();
}

} // namespace orvane
