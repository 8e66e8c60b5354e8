#include "OrvaneCore/capture/WindowDiscovery.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/base/PlainText.h"
#include "OrvaneCore/capture/Timeout.h"
#include "OrvaneCore/platform/PlatformError.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

// Two snapshots of a moving window may differ by this much and still mean the same window.
constexpr qreal boundsTolerance = 10.0;

bool isKept(const ApplicationWindow& window) {
    return window.role == WindowRole::window && !window.floating;
}

bool closeTo(const QRectF& a, const QRectF& b) {
    return std::abs(a.x() - b.x()) < boundsTolerance && std::abs(a.y() - b.y()) < boundsTolerance &&
           std::abs(a.width() - b.width()) < boundsTolerance &&
           std::abs(a.height() - b.height()) < boundsTolerance;
}

bool containsName(const QString& name, const QString& part) {
    return name.toLower().contains(part.toLower());
}

WindowInfo makeInfo(const QString& appName, const QString& title, qint32 pid, qint64 windowId,
                    const QRectF& bounds, const DisplayMatch& display) {
    return {.appName = appName,
            .windowTitle = title,
            .pid = pid,
            .windowId = windowId,
            .x = static_cast<qint64>(bounds.x()),
            .y = static_cast<qint64>(bounds.y()),
            .width = static_cast<qint64>(bounds.width()),
            .height = static_cast<qint64>(bounds.height()),
            .displayId = display.displayId,
            .displayBounds = display.displayBounds};
}

/// A name or title without its control characters; nothing where nothing is left of it.
std::optional<QString> plain(const std::optional<QString>& text) {
    const QString kept = withoutControls(text.value_or(QString()));
    return kept.isEmpty() ? std::nullopt : std::optional(kept);
}

/// Every program names its windows as it likes, and the names go on to agents, files and terminals.
WindowSnapshot withPlainNames(WindowSnapshot desktop) {
    for (RunningApplication& application : desktop.applications) {
        application.localizedName = plain(application.localizedName);
        for (ApplicationWindow& window : application.windows)
            window.title = withoutControls(window.title);
    }
    for (WindowEntry& row : desktop.onScreen) {
        row.ownerName = plain(row.ownerName);
        row.title = plain(row.title);
    }
    return desktop;
}

/// Asks the desktop; where it does not answer, logs why and gives an empty answer.
template <typename Ask>
auto askDesktop(Ask ask) -> decltype(ask()) {
    try {
        return ask();
    } catch (const std::exception& error) {
        logLine(QString::fromUtf8(error.what()));
        return decltype(ask())();
    }
}

} // namespace

std::vector<WindowInfo> WindowDiscovery::listWindows() {
    return realWindows(snapshot());
}

std::vector<WindowInfo> WindowDiscovery::findWindows(const QString& appName) {
    return realWindows(snapshotOf(appName));
}

std::vector<WindowInfo> WindowDiscovery::realWindows(const WindowSnapshot& desktop) {
    // A desktop that has not answered is not asked again, which might take as long once more.
    if (desktop.applications.empty())
        return {};
    const std::vector<Display> screens = displays();
    std::vector<WindowInfo> windows;
    for (const RunningApplication& application : desktop.applications) {
        if (!application.localizedName)
            continue;
        for (const ApplicationWindow& window : application.windows) {
            if (!isKept(window) || !window.boundsPoints)
                continue;
            const QRectF& rect = *window.boundsPoints;
            windows.push_back(makeInfo(*application.localizedName, window.title, application.pid,
                                       matchWindowId(desktop.onScreen, application.pid, rect), rect,
                                       matchDisplay(screens, rect)));
        }
    }
    return windows;
}

std::vector<WindowInfo> WindowDiscovery::listWindowsByZOrder() {
    const WindowSnapshot desktop = snapshot();
    if (desktop.onScreen.empty())
        return {};
    const std::vector<Display> screens = displays();
    std::vector<WindowInfo> windows;
    for (const WindowEntry& row : desktop.onScreen) {
        const bool own = row.ownerName == u"orvane" || row.ownerName == u"Orvane";
        if (own || row.boundsPoints.width() <= 1 || row.boundsPoints.height() <= 1)
            continue;
        windows.push_back(makeInfo(row.ownerName.value_or(u"Unknown"_s), row.title.value_or(QString()),
                                   row.pid, row.windowId, row.boundsPoints,
                                   matchDisplay(screens, row.boundsPoints)));
    }
    return windows;
}

std::optional<QRectF> WindowDiscovery::bounds(qint64 windowId) {
    return askDesktop([&] { return m_windowServer.bounds(windowId); });
}

ActivateResult WindowDiscovery::activate(const QString& appName) {
    const WindowSnapshot desktop = snapshot();
    const auto application =
        std::find_if(desktop.applications.begin(), desktop.applications.end(), [&](const auto& candidate) {
            return candidate.localizedName && containsName(*candidate.localizedName, appName);
        });
    if (application == desktop.applications.end()) {
        QStringList names;
        for (const RunningApplication& candidate : desktop.applications) {
            if (candidate.localizedName)
                names.append(*candidate.localizedName);
        }
        return {.success = false,
                .message = u"App '"_s + appName + u"' not found. Available: "_s + joinedNames(names)};
    }

    std::vector<qint64> handles;
    for (const ApplicationWindow& window : application->windows) {
        if (isKept(window))
            handles.push_back(window.handle);
    }
    askDesktop([&] { m_windowServer.activate(*application, handles); });
    return {.success = true,
            .message = u"Activated "_s + *application->localizedName + u" ("_s +
                       QString::number(handles.size()) + u" window(s) raised)"_s};
}

DisplayMatch WindowDiscovery::findDisplay(const QRectF& rect) {
    return matchDisplay(displays(), rect);
}

std::optional<QString> WindowDiscovery::unavailableReason() {
    return m_windowServer.unavailableReason();
}

WindowSnapshot WindowDiscovery::snapshot() {
    return askDesktop([this] {
        return withThrowingTimeout(m_watchdog, listingLimitSeconds, [this](std::stop_token stop) {
            return withPlainNames(m_windowServer.snapshot(std::move(stop)));
        });
    });
}

WindowSnapshot WindowDiscovery::snapshotOf(const QString& appName) {
    const ApplicationFilter isWanted = [&appName](const QString& name) {
        const auto told = plain(name);
        return told && containsName(*told, appName);
    };
    return askDesktop([&] {
        return withThrowingTimeout(m_watchdog, listingLimitSeconds, [&](std::stop_token stop) {
            return withPlainNames(m_windowServer.snapshotOf(isWanted, std::move(stop)));
        });
    });
}

std::vector<Display> WindowDiscovery::displays() {
    return askDesktop([this] { return m_displays.list(); });
}

QString joinedNames(QStringList names) {
    names.removeDuplicates();
    names.sort();
    return names.join(u", "_s);
}

qint64 matchWindowId(const std::vector<WindowEntry>& rows, qint32 pid, const QRectF& bounds) {
    const auto ofProcess = [pid](const WindowEntry& row) { return row.pid == pid; };
    auto row = std::find_if(rows.begin(), rows.end(), [&](const WindowEntry& candidate) {
        return ofProcess(candidate) && closeTo(candidate.boundsPoints, bounds);
    });
    if (row == rows.end())
        row = std::find_if(rows.begin(), rows.end(), ofProcess);
    return row == rows.end() ? 0 : row->windowId;
}

DisplayMatch matchDisplay(const std::vector<Display>& displays, const QRectF& rect) {
    const Display* best = nullptr;
    qreal bestArea = 0;
    for (const Display& display : displays) {
        const QRectF overlap = display.boundsPoints & rect;
        const qreal area = overlap.width() * overlap.height();
        if (area > bestArea) {
            best = &display;
            bestArea = area;
        }
    }
    if (best == nullptr)
        return {.displayId = 0, .displayBounds = u"unknown"_s};
    const QRectF& bounds = best->boundsPoints;
    return {.displayId = best->id,
            .displayBounds = u"%1,%2,%3,%4"_s.arg(static_cast<qint64>(bounds.x()))
                                 .arg(static_cast<qint64>(bounds.y()))
                                 .arg(static_cast<qint64>(bounds.width()))
                                 .arg(static_cast<qint64>(bounds.height()))};
}

} // namespace orvane
