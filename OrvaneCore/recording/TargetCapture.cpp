#include "OrvaneCore/recording/TargetCapture.h"

#include <algorithm>
#include <cmath>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

QString sizeText(qint64 width, qint64 height) {
    return QString::number(width) + u'x' + QString::number(height);
}

QString describeWindow(const WindowTarget& target, const std::vector<WindowInfo>& windows) {
    const auto window = std::find_if(windows.begin(), windows.end(), [&target](const WindowInfo& candidate) {
        return candidate.windowId == target.windowId;
    });
    const bool found = window != windows.end();
    return target.appName + u" — "_s + (found ? window->windowTitle : u"Unknown"_s) + u" ("_s +
           (found ? sizeText(window->width, window->height) : sizeText(0, 0)) + u')';
}

/// A coordinate as an integer, the fraction cut off; what no integer can say becomes the nearest.
qint64 truncated(qreal value) {
    constexpr qreal limit = 1e15;
    return static_cast<qint64>(std::clamp(std::isnan(value) ? 0.0 : value, -limit, limit));
}

} // namespace

QString appNameOf(const RecordingTarget& target) {
    if (const auto* window = std::get_if<WindowTarget>(&target))
        return window->appName;
    return std::holds_alternative<DisplayTarget>(target) ? u"Full Screen"_s : u"Region"_s;
}

QString describeTarget(const RecordingTarget& target, const std::vector<WindowInfo>& windows,
                       const QSize& firstFrame) {
    if (const auto* window = std::get_if<WindowTarget>(&target))
        return describeWindow(*window, windows);
    if (std::holds_alternative<DisplayTarget>(target))
        return u"Full Screen ("_s + sizeText(firstFrame.width(), firstFrame.height()) + u')';
    const QRectF rect = std::get<RegionTarget>(target).rectPoints;
    return u"Region ("_s + sizeText(truncated(rect.width()), truncated(rect.height())) + u')';
}

QImage TargetCapture::frame() const {
    if (const auto* window = std::get_if<WindowTarget>(&m_target))
        return m_screenCapture.captureWindow(window->windowId, m_showsCursor).image;
    if (const auto* display = std::get_if<DisplayTarget>(&m_target))
        return m_screenCapture.captureDisplay(display->displayId, m_showsCursor);
    const QRectF rect = std::get<RegionTarget>(m_target).rectPoints;
    return m_screenCapture.captureRegion(truncated(rect.x()), truncated(rect.y()), truncated(rect.width()),
                                         truncated(rect.height()), m_showsCursor);
}

QImage TargetCapture::endFrame() const {
    const auto* window = std::get_if<WindowTarget>(&m_target);
    return m_screenCapture.captureWindow(window != nullptr ? window->windowId : 0, m_showsCursor).image;
}

} // namespace orvane
