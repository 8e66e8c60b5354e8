#include "OrvaneCore/capture/ScreenCapture.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/capture/RegionSize.h"
#include "OrvaneCore/capture/Timeout.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

constexpr int scaleWithoutDisplay = 2;
// A window below this many pixels is thought to be too small to see, or its frame to be stale.
constexpr int smallestSide = 100;
constexpr QSize magnifiedSize(2560, 1440);

/// The display's rectangle holds its left and top edges and not its right and bottom ones.
bool holds(const QRectF& bounds, const QPointF& point) {
    return point.x() >= bounds.left() && point.x() < bounds.right() && point.y() >= bounds.top() &&
           point.y() < bounds.bottom();
}

QSize truncated(const QSizeF& size) {
    return {static_cast<int>(size.width()), static_cast<int>(size.height())};
}

} // namespace

WindowCapture ScreenCapture::captureWindow(qint64 windowId, bool showsCursor) {
    const ShareableContent content = listContent({windowId});
    if (content.windows.empty())
        throw OrvaneError::windowNotFound(windowId);
    const ShareableWindow& window = content.windows.front();

    const QSizeF frame = window.framePoints.size();
    const int scale = scaleFactorAt(content.displays, window.framePoints);
    const QSize target = truncated(frame * scale);
    QImage image = m_source.captureWindow(window, showsCursor);
    if (target.width() < smallestSide || target.height() < smallestSide) {
        const QSizeF contentSize = QSizeF(image.size()) / scale;
        const bool contentIsLarger =
            contentSize.width() > smallestSide && contentSize.height() > smallestSide;
        if (!contentIsLarger)
            image = image.scaled(magnifiedSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        logLine(QStringLiteral("window frame too small (%1x%2), using %3x%4")
                    .arg(frame.width())
                    .arg(frame.height())
                    .arg(image.width())
                    .arg(image.height()));
    }
    const QSize points = truncated(frame);
    return {.image = image, .width = points.width(), .height = points.height()};
}

QImage ScreenCapture::captureRegion(qint64 x, qint64 y, qint64 width, qint64 height, bool showsCursor) {
    const ShareableContent content = listContent({});
    if (content.displays.empty())
        throw OrvaneError::displayNotFound();
    const QPointF corner(static_cast<qreal>(x), static_cast<qreal>(y));
    const QSizeF size(static_cast<qreal>(width), static_cast<qreal>(height));
    auto display = std::find_if(content.displays.begin(), content.displays.end(),
                                [&corner](const Display& d) { return holds(d.boundsPoints, corner); });
    if (display == content.displays.end())
        display = content.displays.begin();
    checkRegionSize(size * display->scale, size);
    return m_source.captureRegion(*display, {corner - display->boundsPoints.topLeft(), size}, showsCursor);
}

QImage ScreenCapture::captureDisplay(quint32 displayId, bool showsCursor) {
    return m_source.captureDisplay(displayWithId(displayId), showsCursor);
}

QImage ScreenCapture::captureDisplayExcludingOwnApp(quint32 displayId) {
    return m_source.captureWithoutOwnWindows(displayWithId(displayId));
}

int ScreenCapture::displayScaleFactor(const QRectF& rect) {
    return scaleFactorAt(m_displays.list(), rect);
}

QImage ScreenCapture::resizeForLLM(const QImage& image, int maxDimension) {
    const int longer = std::max(image.width(), image.height());
    if (longer <= maxDimension)
        return image;
    const qreal scale = qreal(maxDimension) / longer;
    const QSize size(std::max(1, qRound(image.width() * scale)), std::max(1, qRound(image.height() * scale)));
    return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QByteArray ScreenCapture::resizeForLLM(const QByteArray& png, int maxDimension) const {
    const QImage image = QImage::fromData(png);
    if (image.width() <= maxDimension && image.height() <= maxDimension)
        return png;
    const QByteArray resized = m_pngWriter.encode(resizeForLLM(image, maxDimension));
    return resized.isEmpty() ? png : resized;
}

ShareableContent ScreenCapture::listContent(const std::vector<qint64>& windowIds) {
    return withThrowingTimeout(m_watchdog, listingLimitSeconds, [&](std::stop_token stop) {
        return m_source.listContent(windowIds, std::move(stop));
    });
}

Display ScreenCapture::displayWithId(quint32 displayId) {
    const ShareableContent content = listContent({});
    const auto display = std::find_if(content.displays.begin(), content.displays.end(),
                                      [displayId](const Display& d) { return d.id == displayId; });
    if (display == content.displays.end())
        throw OrvaneError::displayNotFound();
    return *display;
}

int scaleFactorAt(const std::vector<Display>& displays, const QRectF& rect) {
    const auto display = std::find_if(displays.begin(), displays.end(), [&rect](const Display& d) {
        return holds(d.boundsPoints, rect.topLeft());
    });
    return display == displays.end() ? scaleWithoutDisplay : static_cast<int>(display->scale);
}

} // namespace orvane
