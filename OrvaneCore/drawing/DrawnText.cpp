#include "OrvaneCore/drawing/DrawnText.h"

#include <QCache>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

// What Qt's fixed-point numbers hold.
constexpr int widestLine = std::numeric_limits<int>::max() / 256;
constexpr int allLines = std::numeric_limits<int>::max();

QFont drawnFont(const QString& family, QFont::StyleHint hint, int pixelSize, QFont::Weight weight) {
    // A font that is made without a family would start as a copy of the application's, with its slant,
    // stretch and spacing.
    QFont font(QStringList{family});
    font.setStyleHint(hint);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

/// The first line of a text, shortened to a width, with an ellipsis at its end.
QString shortenedLine(const QString& text, const QFont& font, qreal width) {
    constexpr QChar ellipsis(0x2026);
    const qsizetype end = text.indexOf(QChar::LineSeparator);
    // A layout adds the widths up in another order than the metrics do.
    constexpr qreal rounding = 1;
    return QFontMetricsF(font).elidedText(text.left(end) + ellipsis, Qt::ElideRight, width - rounding);
}

/// A text in one of the two fonts. Not the font itself, which must not outlive the application.
struct SizeKey {
    QString family;
    int pixelSize = 0;
    int weight = 0;
    QString text;
    /// Nothing but a number where there is none.
    qreal roomWidth = -1;
    qreal roomHeight = -1;

    bool operator==(const SizeKey&) const = default;
};

size_t qHash(const SizeKey& key, size_t seed) {
    return qHashMulti(seed, key.family, key.pixelSize, key.weight, key.text, key.roomWidth, key.roomHeight);
}

} // namespace

QFont systemFont(int pixelSize, QFont::Weight weight) {
    // Not the desktop's own choice: pictures look the same whichever process draws them.
    return drawnFont(u"sans-serif"_s, QFont::SansSerif, pixelSize, weight);
}

QFont monospacedFont(int pixelSize) {
    return drawnFont(u"monospace"_s, QFont::Monospace, pixelSize, QFont::Normal);
}

DrawnText::DrawnText(const QString& text, int pixelSize, QFont::Weight weight, qreal scale)
    : DrawnText(text, systemFont(pixelSize, weight), scale) {}

DrawnText::DrawnText(const QString& text, const QFont& font, qreal scale, const std::optional<QSizeF>& room)
    : m_layout(std::make_unique<QTextLayout>())
    , m_scale(scale) {
    m_layout->setFont(font);
    QTextOption option;
    option.setWrapMode(room ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
    m_layout->setTextOption(option);

    QString lines = text;
    lines.replace(u'\n', QChar::LineSeparator);
    const int whole = layOut(lines, room, allLines);
    if (const int shown = linesWithin(room); shown < whole) {
        const int last = m_layout->lineAt(shown - 1).textStart();
        layOut(lines.left(last) + shortenedLine(lines.mid(last), font, room->width()), room, shown);
    }
    for (int i = 0; i < m_layout->lineCount(); ++i) {
        const QTextLine line = m_layout->lineAt(i);
        m_size = {std::max(m_size.width(), line.naturalTextWidth()), line.y() + line.height()};
    }
}

int DrawnText::layOut(const QString& text, const std::optional<QSizeF>& room, int mostLines) {
    m_layout->setText(text);
    m_layout->beginLayout();
    qreal height = 0;
    int count = 0;
    for (; count < mostLines; ++count) {
        QTextLine line = m_layout->createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(room ? room->width() : widestLine);
        line.setPosition({0, height});
        height += line.height();
    }
    m_layout->endLayout();
    return count;
}

int DrawnText::linesWithin(const std::optional<QSizeF>& room) const {
    int count = m_layout->lineCount();
    while (room && count > 1 && m_layout->lineAt(count - 1).rect().bottom() > room->height())
        --count;
    return count;
}

DrawnText::~DrawnText() = default;

void DrawnText::draw(QPainter& painter, const QPointF& topLeft, const QColor& color) const {
    painter.save();
    painter.setPen(color);
    painter.translate(topLeft);
    painter.scale(m_scale, m_scale);
    m_layout->draw(&painter, {});
    painter.restore();
}

void DrawnText::drawCentered(QPainter& painter, const QPointF& center, const QColor& color) const {
    draw(painter, center - QPointF(size().width() / 2, size().height() / 2), color);
}

QSizeF drawnTextSize(const QString& text, const QFont& font, const std::optional<QSizeF>& room) {
    // Every move of a pointer asks where all texts are. Counted in characters, with something for a text.
    constexpr int mostCharacters = 4'000'000;
    constexpr qsizetype perText = 64;
    thread_local QCache<SizeKey, QSizeF> sizes(mostCharacters);

    const QSizeF keyRoom = room.value_or(QSizeF(-1, -1));
    const SizeKey key{.family = font.family(),
                      .pixelSize = font.pixelSize(),
                      .weight = font.weight(),
                      .text = text,
                      .roomWidth = keyRoom.width(),
                      .roomHeight = keyRoom.height()};
    if (const QSizeF* known = sizes.object(key))
        return *known;
    const QSizeF size = DrawnText(text, font, 1, room).size();
    // The cache owns what it is given, and takes it at once out again when it is too large.
    auto kept = std::make_unique<QSizeF>(size);
    sizes.insert(key, kept.release(), perText + text.size());
    return size;
}

std::optional<QSizeF> roomForText(const QString& text, const QFont& font, const QSizeF& most,
                                  qreal preferredWidth) {
    const QSizeF whole = drawnTextSize(text, font);
    if (whole.width() <= most.width() && whole.height() <= most.height())
        return std::nullopt;
    constexpr qreal anyHeight = 1e9;
    const qreal width = std::max(1.0, std::min(preferredWidth, most.width()));
    const bool isHighEnough = drawnTextSize(text, font, QSizeF(width, anyHeight)).height() <= most.height();
    return QSizeF(isHighEnough ? width : std::max(1.0, most.width()), most.height());
}

} // namespace orvane
