#pragma once

#include "OrvanePlatform/x11/WindowOwners.h"
#include "OrvanePlatform/x11/WindowPlacement.h"

#include <QString>

#include <optional>
#include <vector>

namespace orvane::x11 {

/// What the window manager tells of its windows on the whole (EWMH 1.5). Empty without one.
struct ClientLists {
    /// _NET_CLIENT_LIST: in the order in which they were first mapped. Override-redirect windows are not
    /// among them.
    std::vector<xcb_window_t> clients;
    /// _NET_CLIENT_LIST_STACKING, the other way round.
    std::vector<xcb_window_t> frontToBack;
    uint32_t currentDesktop = 0;
};

/// One window the window manager manages (EWMH 1.5).
struct ManagedWindow {
    WindowOwner owner;
    WindowPlacement placement;
    QString title;
    /// A panel, a dock or the desktop itself.
    bool desktopPart = false;
    bool floating = false;
    bool inTaskList = false;
    /// Mapped, not minimised, on the current desktop or on all.
    bool onScreen = false;
};

/// One round trip. Any thread; throws PlatformError when the connection is lost.
ClientLists readClientLists(const X11Connection& connection);

/// Everything about the given managed windows, in their order, without those that are gone. A few round trips
/// for all. Any thread; throws PlatformError when the connection is lost.
std::vector<ManagedWindow> readManagedWindows(const X11Connection& connection,
                                              const std::vector<WindowOwner>& owners,
                                              uint32_t currentDesktop);

/// Where the given windows are, in their order, without anything else about them; nothing for one that is not
/// managed or not on screen as `ManagedWindow` means it. A few round trips for all. Any thread; throws
/// PlatformError when the connection is lost.
std::vector<std::optional<WindowPlacement>> readOnScreen(const X11Connection& connection,
                                                         const std::vector<xcb_window_t>& clients);

} // namespace orvane::x11
