#pragma once

#include "OrvanePlatform/x11/X11Connection.h"

namespace orvane::x11 {

// What a window manager is asked and told about windows. Any thread; all of it throws PlatformError when the
// connection is lost, and nothing waits for the window manager.

/// The number of the desktop of a window that is on all of them (EWMH 1.5, _NET_WM_DESKTOP).
constexpr uint32_t allDesktops = 0xffffffffU;

/// True when a window manager that follows EWMH runs.
bool hasWindowManager(const X11Connection& connection);

/// The window that the window manager calls active; XCB_WINDOW_NONE for none.
xcb_window_t activeWindow(const X11Connection& connection);

/// Asks the window manager to show the virtual desktop that a window is on; nothing where that is shown,
/// where the window is on all desktops, and where there is only one.
void requestDesktopOf(const X11Connection& connection, xcb_window_t client);

/// Asks the window manager to activate a window that it manages, on behalf of the human, whom it does not
/// refuse it.
void requestActivation(const X11Connection& connection, xcb_window_t client);

} // namespace orvane::x11
