#include "OrvaneCore/drawing/DrawnText.h"

#include <QCache>
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

/// A text in one of the two fonts. Not the font itself, which must not outlive the application.
struct SizeKey {
    QString family;
    int pixelSize = 0;
    int weight = 0;
    QString text;

    bool operator==(const SizeKey&) const = default;
};

size_t qHash(const SizeKey& key, size_t seed) {
    return qHashMulti(seed, key.family, key.pixelSize, key.weight, key.text);
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

DrawnText::DrawnText(const QString& text, const QFont& font, qreal scale)
    : m_layout(std::make_unique<QTextLayout>())
    , m_scale(scale) {
    QString lines = text;
    m_layout->setText(lines.replace(u'\n', QChar::LineSeparator));
    m_layout->setFont(font);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    m_layout->setTextOption(option);

    m_layout->beginLayout();
    qreal width = 0;
    qreal height = 0;
    for (QTextLine line = m_layout->createLine(); line.isValid(); line = m_layout->createLine()) {
        line.setLineWidth(widestLine);
        line.setPosition({0, height});
        width = std::max(width, line.naturalTextWidth());
        height += line.height();
    }
    m_layout->endLayout();
    m_size = {width, height};
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

QSizeF drawnTextSize(const QString& text, const QFont& font) {
    // Every move of a pointer asks where all texts are. Counted in characters, with something for a text.
    constexpr int mostCharacters = 4'000'000;
    constexpr qsizetype perText = 64;
    thread_local QCache<SizeKey, QSizeF> sizes(mostCharacters);

    const SizeKey key{
        .family = font.family(), .pixelSize = font.pixelSize(), .weight = font.weight(), .text = text};
    if (const QSizeF* known = sizes.object(key))
        return *known;
    const QSizeF size = DrawnText(text, font, 1).size();
    // The cache owns what it is given, and takes it at once out again when it is too large.
    auto kept = std::make_unique<QSizeF>(size);
    sizes.insert(key, kept.release(), perText + text.size());
    return size;
}

} // namespace orvane
