#pragma once

#include "OrvanePlatform/x11/WindowPlacement.h"

#include <QString>

#include <optional>
#include <vector>

namespace orvane::x11 {

/// One window the window manager manages (EWMH 1.5), as read in one pass.
struct ManagedWindow {
    xcb_window_t client = XCB_WINDOW_NONE;
    WindowPlacement placement;
    /// 0 when neither the server nor the window tells.
    qint32 pid = 0;
    QString title;
    /// The two parts of WM_CLASS (ICCCM 2.0).
    QString instanceName;
    QString className;
    /// A panel, a dock or the desktop itself.
    bool desktopPart = false;
    bool floating = false;
    bool inTaskList = false;
    /// Mapped, not minimised, on the current desktop or on all.
    bool onScreen = false;
};

/// The windows of _NET_CLIENT_LIST, in the order in which they were first mapped. Override-redirect windows
/// are not among them. Empty without a window manager. Any thread; throws PlatformError when the connection
/// is lost.
std::vector<ManagedWindow> readManagedWindows(const X11Connection& connection);

/// Where the given windows are, in their order, without anything else about them; nothing for one that is not
/// managed or not on screen as `ManagedWindow` means it. A few round trips for all. Any thread; throws
/// PlatformError when the connection is lost.
std::vector<std::optional<WindowPlacement>> readOnScreen(const X11Connection& connection,
                                                         const std::vector<xcb_window_t>& clients);

/// The clients of _NET_CLIENT_LIST_STACKING, front to back.
std::vector<xcb_window_t> readStackingOrder(const X11Connection& connection);

/// The processes that made the windows, in their order, as the server knows them (X-Resource 1.2); 0 where it
/// does not. One round trip for all.
std::vector<qint32> readProcesses(const X11Connection& connection, const std::vector<xcb_window_t>& windows);

} // namespace orvane::x11
