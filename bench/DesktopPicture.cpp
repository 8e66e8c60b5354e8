#include "bench/DesktopPicture.h"

#include <QRect>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace orvane::bench {

namespace {

constexpr int glyphWidth = 8;
constexpr int glyphHeight = 15;
constexpr int lineHeight = 18;
constexpr int glyphCount = 64;
constexpr int titleHeight = 24;
constexpr int windowCount = 14;

/// How much of a pixel the ink covers, 0 to 255. Strokes are one or two pixels wide with soft edges, as a
/// font renderer leaves them.
using Glyph = std::array<int, size_t{glyphWidth} * glyphHeight>;

/// std::uniform_int_distribution gives other numbers with another standard library.
int below(std::mt19937& random, int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

std::array<Glyph, glyphCount> makeGlyphs(std::mt19937& random) {
    std::array<Glyph, glyphCount> glyphs{};
    for (Glyph& glyph : glyphs) {
        for (int stroke = 0; stroke < 3; ++stroke) {
            const bool upright = below(random, 2) == 0;
            const int at = upright ? 1 + below(random, glyphWidth - 3) : 3 + below(random, glyphHeight - 6);
            const int soft = 40 + below(random, 150);
            for (int along = 2; along < (upright ? glyphHeight - 3 : glyphWidth - 1); ++along) {
                const int x = upright ? at : along;
                const int y = upright ? along : at;
                const size_t cell = static_cast<size_t>(y) * glyphWidth + static_cast<size_t>(x);
                const size_t beside = cell + (upright ? 1 : glyphWidth);
                glyph.at(cell) = 255;
                glyph.at(beside) = std::max(glyph.at(beside), soft);
            }
        }
    }
    return glyphs;
}

QRgb mixed(QRgb ground, QRgb ink, int coverage) {
    const auto channel = [coverage](int from, int to) { return from + (to - from) * coverage / 255; };
    return qRgb(channel(qRed(ground), qRed(ink)), channel(qGreen(ground), qGreen(ink)),
                channel(qBlue(ground), qBlue(ink)));
}

void fill(QImage& picture, const QRect& area, QRgb colour) {
    const QRect inside = area & picture.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        std::fill(row + inside.left(), row + inside.right() + 1, colour);
    }
}

void drawText(QImage& picture, const QRect& area, QRgb ground, QRgb ink,
              const std::array<Glyph, glyphCount>& glyphs, std::mt19937& random) {
    for (int top = area.top(); top + lineHeight <= area.bottom(); top += lineHeight) {
        const int columns = below(random, area.width() / glyphWidth);
        for (int column = below(random, 4) * 4; column < columns; ++column) {
            if (below(random, 6) == 0)
                continue;
            // Squaring makes some letters common and others rare.
            const int draw = below(random, glyphCount);
            const Glyph& glyph = glyphs.at(static_cast<size_t>(draw * draw / glyphCount));
            const int left = area.left() + column * glyphWidth;
            for (int y = 0; y < glyphHeight; ++y) {
                auto* row = reinterpret_cast<QRgb*>(picture.scanLine(top + y)) + left;
                for (int x = 0; x < glyphWidth; ++x) {
                    row[x] = mixed(ground, ink,
                                   glyph.at(static_cast<size_t>(y) * glyphWidth + static_cast<size_t>(x)));
                }
            }
        }
    }
}

} // namespace

QImage desktopPicture(const QSize& size) {
    std::mt19937 random(1);
    const std::array<Glyph, glyphCount> glyphs = makeGlyphs(random);
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const int slope = 255 * (x + y) / (size.width() + size.height());
            row[x] = mixed(qRgb(22, 44, 72), qRgb(120, 160, 190), slope);
        }
    }
    constexpr std::array<std::array<QRgb, 2>, 3> themes{{{qRgb(255, 255, 255), qRgb(20, 20, 20)},
                                                         {qRgb(30, 30, 36), qRgb(210, 214, 220)},
                                                         {qRgb(16, 42, 67), qRgb(160, 230, 170)}}};
    for (int i = 0; i < windowCount; ++i) {
        const auto [ground, ink] = themes.at(static_cast<size_t>(i) % themes.size());
        const int width = size.width() / 5 + below(random, size.width() / 6);
        const int height = size.height() / 4 + below(random, size.height() / 5);
        const QRect window(below(random, size.width() - width), below(random, size.height() - height), width,
                           height);
        fill(picture, window, qRgb(70, 74, 80));
        const QRect inside = window.adjusted(2, titleHeight, -2, -2);
        fill(picture, inside, ground);
        drawText(picture, inside.adjusted(4, 4, -4, -4), ground, ink, glyphs, random);
    }
    return picture;
}

QImage photoPicture(const QSize& size) {
    std::mt19937 random(2);
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        const double v = double(y) / size.height();
        for (int x = 0; x < size.width(); ++x) {
            const double u = double(x) / size.width();
            const auto noise = [&random] { return below(random, 9) - 4; };
            const int red = static_cast<int>(120 + 90 * std::sin(5 * u + 2 * v));
            const int green = static_cast<int>(120 + 90 * std::sin(3 * v + 4 * u * v));
            const int blue = static_cast<int>(120 + 90 * std::cos(4 * u - 3 * v));
            row[x] = qRgb(red + noise(), green + noise(), blue + noise());
        }
    }
    return picture;
}

} // namespace orvane::bench
