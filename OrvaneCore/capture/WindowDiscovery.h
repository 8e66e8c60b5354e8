#pragma once

#include "OrvaneCore/capture/Watchdog.h"
#include "OrvaneCore/capture/WindowInfo.h"
#include "OrvaneCore/platform/Displays.h"
#include "OrvaneCore/platform/WindowServer.h"

#include <QRectF>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace orvane {

/// Which display a rectangle mostly lies on.
struct DisplayMatch {
    /// 0 when it touches none.
    quint32 displayId = 0;
    /// "x,y,width,height" in global points; "unknown" when it touches none.
    QString displayBounds;

    bool operator==(const DisplayMatch&) const = default;
};

struct ActivateResult {
    bool success = false;
    QString message;
};

/// Which windows exist, where they are, and raising them. All geometry in global points. Names and titles
/// have no control characters (PlainText.h). Any thread; no state of its own. Nothing here throws: a desktop
/// that cannot be asked (or does not answer for five seconds) has no windows, and one line in the log says
/// why.
class WindowDiscovery {
public:
    WindowDiscovery(WindowServer& windowServer, Displays& displays)
        : m_windowServer(windowServer)
        , m_displays(displays) {}

    /// The real, user-facing windows of regular applications; applications in the order they appeared, the
    /// windows of each front to back.
    std::vector<WindowInfo> listWindows();

    /// Those of `listWindows` whose application's name contains `appName`, letter case ignored.
    std::vector<WindowInfo> findWindows(const QString& appName);

    /// What is visually on top of what: on-screen windows of every kind, front to back, without our own.
    std::vector<WindowInfo> listWindowsByZOrder();

    std::optional<QRectF> bounds(qint64 windowId);

    /// Raises the windows of the first application whose name contains `appName`, letter case ignored.
    ActivateResult activate(const QString& appName);

    DisplayMatch findDisplay(const QRectF& rect);

    /// Why the desktop has no windows for us at all; nothing when it can be asked.
    std::optional<QString> unavailableReason();

private:
    WindowSnapshot snapshot();
    WindowSnapshot snapshotOf(const QString& appName);
    std::vector<WindowInfo> realWindows(const WindowSnapshot& desktop);
    std::vector<Display> displays();

    WindowServer& m_windowServer;
    Displays& m_displays;
    Watchdog m_watchdog;
};

/// The names, each once, sorted ascending and joined with ", ".
QString joinedNames(QStringList names);

/// The window-server number of a window that an application of that pid describes with these bounds: the
/// first row of the process whose four bounds each differ by less than 10 points, else its first row, else 0.
qint64 matchWindowId(const std::vector<WindowEntry>& rows, qint32 pid, const QRectF& bounds);

/// The display with the largest overlap, the earlier one of two equals.
DisplayMatch matchDisplay(const std::vector<Display>& displays, const QRectF& rect);

} // namespace orvane
