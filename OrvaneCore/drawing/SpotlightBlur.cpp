#include "OrvaneCore/drawing/SpotlightBlur.h"

#include "OrvaneCore/drawing/GaussianBlur.h"
#include "OrvaneCore/drawing/RectEdges.h"

#include <QPixelFormat>
#include <QRect>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace orvane {

namespace {

// What the arithmetic of scaled coordinates leaves beside a whole number is no part of a pixel.
constexpr double roundingPixels = 1e-6;

int firstPixel(double edge, int length) {
    return static_cast<int>(std::clamp<double>(std::floor(edge + roundingPixels), 0, length));
}

int endPixel(double edge, int length) {
    return static_cast<int>(std::clamp<double>(std::ceil(edge - roundingPixels), 0, length));
}

/// The pixels that a rectangle in points touches; empty when there are none.
QRect touchedPixels(const QRectF& rectPoints, const QImage& image) {
    if (!isFinite(rectPoints))
        return {};
    const QRectF rect = rectPoints.normalized();
    if (rect.isEmpty())
        return {};
    const double scale = image.devicePixelRatio();
    const int left = firstPixel(rect.left() * scale, image.width());
    const int top = firstPixel(rect.top() * scale, image.height());
    const int right = endPixel(rect.right() * scale, image.width());
    const int bottom = endPixel(rect.bottom() * scale, image.height());
    return {left, top, right - left, bottom - top};
}

QImage::Format formatHolding(const QImage& image) {
    constexpr int bitsOfFourChannels = 32;
    const bool isMask = image.format() == QImage::Format_Alpha8;
    if (isMask || image.format() == QImage::Format_Grayscale16 || image.depth() >= bitsOfFourChannels)
        return image.format();
    if (!image.hasAlphaChannel())
        return QImage::Format_RGB32;
    return image.pixelFormat().premultiplied() == QPixelFormat::Premultiplied
               ? QImage::Format_ARGB32_Premultiplied
               : QImage::Format_ARGB32;
}

void copyPixels(const QImage& from, QImage& to, const QRect& area) {
    if (area.isEmpty())
        return;
    const size_t pixelBytes = static_cast<size_t>(from.depth()) / 8;
    const size_t offset = static_cast<size_t>(area.left()) * pixelBytes;
    const size_t length = static_cast<size_t>(area.width()) * pixelBytes;
    for (int y = area.top(); y <= area.bottom(); ++y)
        std::memcpy(to.scanLine(y) + offset, from.constScanLine(y) + offset, length);
}

} // namespace

QImage blurOutside(const QImage& image, const std::vector<QRectF>& clearRects, double sigma) {
    if (image.isNull() || !(sigma > 0))
        return image;
    const QImage sharp = image.convertToFormat(formatHolding(image));
    QImage result = gaussianBlur(image, sigma).convertToFormat(sharp.format());
    if (sharp.isNull() || result.isNull())
        return image;
    for (const QRectF& rect : clearRects)
        copyPixels(sharp, result, touchedPixels(rect, image));
    return result;
}

} // namespace orvane
