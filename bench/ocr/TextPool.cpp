#include "bench/ocr/TextPool.h"

#include <QFontInfo>

#include <array>
#include <stdexcept>

namespace orvane::bench {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array lightBackgrounds{0xffffffU, 0xf6f5f4U, 0xebebebU, 0xfdf6e3U};
constexpr std::array lightInks{0x000000U, 0x2e3436U, 0x1a4f9cU, 0x5c5c5cU};
constexpr std::array darkBackgrounds{0x1e1e1eU, 0x2d2d2dU, 0x000000U, 0x14283cU};
constexpr std::array darkInks{0xffffffU, 0xdededeU, 0x9cdcfeU, 0xb0b0b0U};

template <class Colours>
QColor pick(const Colours& colours, Random& random) {
    return QColor::fromRgb(
        colours[static_cast<size_t>(random.between(0, static_cast<int>(colours.size()) - 1))]);
}

} // namespace

QString TextPool::line(const QString& kind, Random& random) const {
    if (kind == u"sentence"_s)
        return random.of(sentences);
    if (kind == u"label"_s)
        return random.of(labels);
    if (kind == u"code"_s)
        return random.of(code).trimmed();
    if (kind == u"path"_s)
        return path(random);
    return cells(random).join(u"  "_s);
}

QString TextPool::path(Random& random) const {
    static const QStringList roots{u"/home/user"_s, u"/usr/share"_s, u"/var/log"_s, u"C:\\Users"_s,
                                   u"https://example.org"_s};
    static const QStringList endings{u".txt"_s, u".png"_s, u".cpp"_s, u".json"_s, u".tar.gz"_s, u".html"_s};
    const QString root = random.of(roots);
    const QChar separator = root.startsWith(u'C') ? u'\\' : u'/';
    return root + separator + random.of(words) + separator + random.of(words) + u'-' +
           QString::number(random.between(1, 2026)) + random.of(endings);
}

QStringList TextPool::cells(Random& random) const {
    static const QStringList endings{u".pdf"_s, u".docx"_s, u".csv"_s, u".svg"_s, u".zip"_s};
    const auto two = [](int number) { return QString::number(number).rightJustified(2, u'0'); };
    return {random.of(words) + u'_' + QString::number(random.between(1, 99)) + random.of(endings),
            u"%1-%2-%3"_s.arg(random.between(2015, 2026))
                .arg(two(random.between(1, 12)), two(random.between(1, 28))),
            u"%1.%2 %3"_s.arg(random.between(1, 999))
                .arg(random.between(0, 9))
                .arg(random.between(0, 1) == 0 ? u"KB"_s : u"MB"_s),
            u"$%1,%2"_s.arg(random.between(1, 98)).arg(random.between(100, 999))};
}

Look makeLook(const QString& family, int pixelSize, bool isDark, Random& random) {
    QFont font(family);
    font.setPixelSize(pixelSize);
    if (!QFontInfo(font).family().startsWith(family))
        throw std::runtime_error("the font " + family.toStdString() + " is not installed");
    if (isDark)
        return {font, pick(darkBackgrounds, random), pick(darkInks, random)};
    return {font, pick(lightBackgrounds, random), pick(lightInks, random)};
}

} // namespace orvane::bench
