#pragma once

#include "OrvanePlatform/x11/X11Connection.h"

#include <QMargins>
#include <QRect>

#include <optional>
#include <vector>

namespace orvane::x11 {

/// Where a client window is drawn: the child of the root window that holds it, and the part of that which the
/// eye takes for the window. Root-window pixels.
struct WindowPlacement {
    xcb_window_t frame = XCB_WINDOW_NONE;
    /// The whole frame with its X border.
    QRect frameRect;
    /// The frame without shadows and invisible resize borders.
    QRect visibleRect;
    /// The frame and all above it are mapped.
    bool viewable = false;
};

/// The part of a frame that the eye takes for the window. `decorations` are _NET_FRAME_EXTENTS (EWMH 1.5),
/// `shadows` are _GTK_FRAME_EXTENTS; both as a client window tells them.
QRect visibleRect(const QRect& frameRect, const QRect& clientRect, const std::optional<QMargins>& decorations,
                  const QMargins& shadows);

/// The placements of client windows, in their order; nothing for a window that is gone. A few round trips for
/// all of them. Any thread; throws PlatformError when the connection is lost.
std::vector<std::optional<WindowPlacement>> readPlacements(const X11Connection& connection,
                                                           const std::vector<xcb_window_t>& clients);

} // namespace orvane::x11
