#include "bench/ocr/Corpus.h"

#include "bench/ocr/Panels.h"
#include "bench/ocr/TextPool.h"

#include <QFile>
#include <QFontMetrics>
#include <QPainter>

#include <array>
#include <stdexcept>
#include <utility>

namespace orvane::bench {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array sizes{11, 12, 13, 14, 15, 16, 17, 18};
constexpr std::array kinds{"sentence", "label", "code", "path", "row"};
// For each size, font, theme and kind.
constexpr int cropsOfEach = 3;

QImage crop(const QString& text, const Look& look, Random& random) {
    const QFontMetrics metrics(look.font);
    const int margin = random.between(2, 8);
    QImage picture(metrics.horizontalAdvance(text) + 2 * margin, metrics.height() + 2 * (margin / 2),
                   QImage::Format_RGB32);
    picture.fill(look.background);
    QPainter painter(&picture);
    painter.setFont(look.font);
    painter.setPen(look.ink);
    painter.drawText(margin, margin / 2 + metrics.ascent(), text);
    return picture;
}

QString fontFor(const QString& kind, const QString& family) {
    if (kind != u"code"_s)
        return family;
    return family.startsWith(u"Liberation"_s) ? u"Liberation Mono"_s : u"DejaVu Sans Mono"_s;
}

} // namespace

Corpus::Corpus(QString folder, QStringList fonts, quint32 seed)
    : m_folder(std::move(folder))
    , m_fonts(std::move(fonts))
    , m_seed(seed) {}

QStringList Corpus::read(const QString& name) const {
    QFile file(QStringLiteral(ORVANE_BENCH_TEXTS) + u"/"_s + m_folder + u'/' + name + u".txt"_s);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read " + file.fileName().toStdString());
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

std::vector<Sample> Corpus::englishCrops() const {
    Random random(m_seed);
    const TextPool pool{read(u"sentences"_s), read(u"labels"_s), read(u"code"_s), read(u"words"_s)};
    std::vector<Sample> samples;
    for (const int size : sizes) {
        for (const QString& family : m_fonts) {
            for (const bool isDark : {false, true}) {
                for (const char* kindName : kinds) {
                    const QString kind = QString::fromLatin1(kindName);
                    for (int count = 0; count < cropsOfEach; ++count) {
                        const QString text = pool.line(kind, random);
                        const Look look = makeLook(fontFor(kind, family), size, isDark, random);
                        samples.push_back(
                            {crop(text, look, random), {text}, u"eng"_s, kind, family, isDark, size});
                    }
                }
            }
        }
    }
    return samples;
}

std::vector<Sample> Corpus::englishPanels() const {
    Random random(m_seed + 1);
    const TextPool pool{read(u"sentences"_s), read(u"labels"_s), read(u"code"_s), read(u"words"_s)};
    std::vector<Sample> samples;
    for (const int size : sizes) {
        for (const QString& family : m_fonts) {
            for (const bool isDark : {false, true}) {
                for (Panel& panel :
                     drawPanels(pool, family, fontFor(u"code"_s, family), size, isDark, random)) {
                    samples.push_back(
                        {panel.picture, panel.lines, u"eng"_s, panel.kind, family, isDark, size});
                }
            }
        }
    }
    return samples;
}

std::vector<Sample> Corpus::otherCrops(const QString& language) const {
    Random random(m_seed + 2);
    const QString region = language == u"chi_sim"_s   ? u"SC"_s
                           : language == u"chi_tra"_s ? u"TC"_s
                           : language == u"jpn"_s     ? u"JP"_s
                                                      : u"KR"_s;
    std::vector<Sample> samples;
    const QStringList texts = read(language);
    for (int index = 0; index < texts.size(); ++index) {
        for (const QString& family : {u"Noto Sans CJK "_s + region, u"WenQuanYi Micro Hei"_s}) {
            for (const bool isDark : {false, true}) {
                const int size = 13 + (index + (isDark ? 3 : 0)) % 6;
                const Look look = makeLook(family, size, isDark, random);
                samples.push_back({crop(texts[index], look, random),
                                   {texts[index]},
                                   language,
                                   u"line"_s,
                                   family,
                                   isDark,
                                   size});
            }
        }
    }
    return samples;
}

} // namespace orvane::bench
