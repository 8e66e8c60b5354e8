#include "OrvanePlatform/x11/ScreenLayout.h"

#include <algorithm>

namespace orvane::x11 {

namespace {

// Far beyond any screen (the X protocol has 16 bits), and such that sums of two still fit an int.
constexpr qreal farthestPixel = 1 << 29;

} // namespace

ScreenLayout::ScreenLayout(std::vector<Monitor> monitors, const ScaleFactors& factors) {
    std::stable_partition(monitors.begin(), monitors.end(),
                          [](const Monitor& monitor) { return monitor.primary; });
    m_displays.reserve(monitors.size());
    for (const Monitor& monitor : monitors) {
        Display display;
        display.id = displayId(monitor.name);
        display.name = monitor.name;
        display.scale = factors.factor(monitor.name, static_cast<int>(m_displays.size()));
        display.sizePixels = monitor.pixels.size();
        const QSize points(qRound(monitor.pixels.width() / display.scale),
                           qRound(monitor.pixels.height() / display.scale));
        display.boundsPoints = QRectF(monitor.pixels.topLeft(), points);
        m_displays.push_back(display);
    }
}

const Display* ScreenLayout::displayAt(const QRect& pixels) const {
    const Display* best = m_displays.empty() ? nullptr : &m_displays.front();
    qint64 bestArea = 0;
    for (const Display& display : m_displays) {
        const QRect overlap = pixelBounds(display) & pixels;
        const qint64 area = overlap.isEmpty() ? 0 : qint64(overlap.width()) * overlap.height();
        if (area > bestArea) {
            best = &display;
            bestArea = area;
        }
    }
    return best;
}

QRectF ScreenLayout::toPoints(const QRect& pixels) const {
    const Display* display = displayAt(pixels);
    if (display == nullptr)
        return pixels;
    const QPointF origin = display->boundsPoints.topLeft();
    return {(QPointF(pixels.topLeft()) - origin) / display->scale + origin,
            QSizeF(pixels.size()) / display->scale};
}

QRect ScreenLayout::toPixels(const Display& display, const QRectF& pointsInDisplay) {
    const auto bounded = [](qreal pixels) { return std::clamp(pixels, -farthestPixel, farthestPixel); };
    const QPointF position = pointsInDisplay.topLeft() * display.scale + display.boundsPoints.topLeft();
    const QSize size(static_cast<int>(bounded(pointsInDisplay.width() * display.scale)),
                     static_cast<int>(bounded(pointsInDisplay.height() * display.scale)));
    return {QPointF(bounded(position.x()), bounded(position.y())).toPoint(), size};
}

QRect ScreenLayout::pixelBounds(const Display& display) {
    return {display.boundsPoints.topLeft().toPoint(), display.sizePixels};
}

quint32 ScreenLayout::displayId(const QString& name) {
    quint32 hash = 2166136261U;
    const QByteArray bytes = name.toUtf8();
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
    return hash == 0 ? 1 : hash;
}

} // namespace orvane::x11
