#include "OrvaneCore/capture/RegionSize.h"

#include <QString>

namespace orvane {

namespace {

constexpr qreal longestSide = 16384;
constexpr qreal mostPixels = 64.0 * 1024 * 1024;

} // namespace

void checkRegionSize(const QSizeF& pixels, const QSizeF& asked) {
    const QString size = QStringLiteral("%1x%2").arg(asked.width(), 0, 'f', 0).arg(asked.height(), 0, 'f', 0);
    if (!(pixels.width() >= 1 && pixels.height() >= 1)) {
        throw RegionSizeError(
            QStringLiteral("A region of %1 holds no pixels: width and height must be at least 1.")
                .arg(size)
                .toStdString());
    }
    if (pixels.width() > longestSide || pixels.height() > longestSide ||
        pixels.width() * pixels.height() > mostPixels) {
        throw RegionSizeError(
            QStringLiteral(
                "A region of %1 is too large: a side may have 16384 pixels and the whole 64 million.")
                .arg(size)
                .toStdString());
    }
}

} // namespace orvane
