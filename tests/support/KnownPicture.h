#pragma once

#include <QImage>
#include <QRgb>

namespace orvane::test {

/// The picture test windows show: no two neighbouring pixels are alike, so a shift by one pixel or a swapped
/// channel cannot go unseen.
constexpr QRgb knownPixel(int x, int y) {
    return qRgb((x * 7 + y) & 0xff, (y * 13 + x * 3) & 0xff, ((x ^ y) * 5 + 17) & 0xff);
}

/// The picture of a window with transparency: the same, and half transparent where x is odd. Straight alpha.
constexpr QRgb knownTransparentPixel(int x, int y) {
    return (x % 2 == 0) ? knownPixel(x, y) : (knownPixel(x, y) & 0x00ffffffU) | 0x80000000U;
}

inline QImage knownPicture(int width, int height, bool transparent) {
    QImage picture(width, height, transparent ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < width; ++x)
            row[x] = transparent ? knownTransparentPixel(x, y) : knownPixel(x, y);
    }
    return picture;
}

} // namespace orvane::test
