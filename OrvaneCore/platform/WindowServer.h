#pragma once

#include <QRectF>
#include <QString>

#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

namespace orvane {

/// What a window is in its application's own account of its windows.
enum class WindowRole {
    window, ///< A normal window or a dialog.
    other,  ///< Part of the desktop: a panel, a dock, the desktop itself.
};

/// One window as its application describes it, on screen or not.
struct ApplicationWindow {
    /// Names the window in `WindowServer::activate`; means nothing else.
    qint64 handle = 0;
    WindowRole role = WindowRole::window;
    /// Palettes, tool bars, splash screens and windows kept above all others outside the task list.
    bool floating = false;
    /// Global points; nothing when the window did not tell.
    std::optional<QRectF> boundsPoints;
    QString title;
};

/// A regular application: one that shows in the task list.
struct RunningApplication {
    qint32 pid = 0;
    /// Nothing when the application has no name a human would know.
    std::optional<QString> localizedName;
    /// Front to back.
    std::vector<ApplicationWindow> windows;
};

/// One row of the window server's list of what is on screen.
struct WindowEntry {
    qint64 windowId = 0;
    qint32 pid = 0;
    std::optional<QString> ownerName;
    std::optional<QString> title;
    /// Global points, with decorations, without shadows: the window as the eye sees it.
    QRectF boundsPoints;
};

/// Everything about windows at one moment.
struct WindowSnapshot {
    /// The order is the one in which the applications appeared.
    std::vector<RunningApplication> applications;
    /// Front to back; mapped windows of the current desktop, without panels and desktop windows.
    std::vector<WindowEntry> onScreen;
};

/// Whether an application is wanted, by its localised name. Runs on the thread of the call it is given to.
using ApplicationFilter = std::function<bool(const QString& localizedName)>;

/// The snapshot without the applications that are not wanted or have no name, and without their rows.
WindowSnapshot onlyWanted(WindowSnapshot desktop, const ApplicationFilter& isWanted);

/// The desktop's windows: finding and raising them. Any thread; calls may run side by side.
/// Every call throws PlatformError when the desktop cannot be asked.
class WindowServer {
public:
    virtual ~WindowServer() = default;

    /// A stop request makes a call that waits for the desktop end soon, with a PlatformError.
    virtual WindowSnapshot snapshot(std::stop_token stop) = 0;

    /// What `onlyWanted` leaves of a snapshot, for less than a whole one costs.
    virtual WindowSnapshot snapshotOf(const ApplicationFilter& isWanted, std::stop_token stop) = 0;

    /// Current bounds of one window, global points; nothing when there is no such window on screen.
    virtual std::optional<QRectF> bounds(qint64 windowId) = 0;

    /// Brings the application forward and raises the given windows of it, which keep their order among each
    /// other. The first of them becomes the active one, from another virtual desktop, which is shown then, or
    /// minimised; the others stay where they are. Returns when that has happened or half a second later. A
    /// window that is gone is passed over.
    virtual void activate(const RunningApplication& application, const std::vector<qint64>& handles) = 0;

    /// Why no window can be listed at all, as a sentence that says what to do; nothing when windows can be
    /// listed.
    virtual std::optional<QString> unavailableReason() = 0;

protected:
    WindowServer() = default;
    WindowServer(const WindowServer&) = default;
    WindowServer& operator=(const WindowServer&) = default;
};

} // namespace orvane
