#include "OrvaneCore/tools/WindowCrop.h"

#include "OrvaneCore/capture/RegionSize.h"

#include <QPainter>

#include <algorithm>

namespace orvane {

namespace {

// A crop that begins farther away than this holds nothing of any window.
constexpr qreal farthestPixel = 1 << 29;

int pixel(qreal position) {
    return qRound(std::clamp(position, -farthestPixel, farthestPixel));
}

} // namespace

QImage cropWindow(const WindowCapture& window, const QRectF& rectPoints) {
    const qreal scaleX = qreal(window.image.width()) / std::max(1, window.width);
    const qreal scaleY = qreal(window.image.height()) / std::max(1, window.height);
    const QSizeF size(rectPoints.width() * scaleX, rectPoints.height() * scaleY);
    checkRegionSize(size, rectPoints.size());

    const QPoint corner(pixel(rectPoints.x() * scaleX), pixel(rectPoints.y() * scaleY));
    const QRect area(corner, QSize(static_cast<int>(size.width()), static_cast<int>(size.height())));
    if (window.image.rect().contains(area))
        return window.image.copy(area);
    QImage crop(area.size(), QImage::Format_ARGB32_Premultiplied);
    crop.fill(Qt::transparent);
    QPainter(&crop).drawImage(-corner, window.image);
    return crop;
}

} // namespace orvane
