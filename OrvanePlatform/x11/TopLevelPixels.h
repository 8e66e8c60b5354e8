#pragma once

#include "OrvanePlatform/x11/PixelReader.h"
#include "OrvanePlatform/x11/Redirection.h"

#include <QImage>
#include <QRect>

#include <optional>

namespace orvane::x11 {

/// Pixels of one child of the root window.
struct TopLevelPixels {
    QImage image;
    /// Where the whole child was then, with its X border, in root-window pixels.
    QRect topLevelRect;
};

/// The pixels of one child of the root window, from its own pixmap: whole, whatever covers it. Sees to it
/// that there is such a pixmap, see Redirection. `area` is in pixels relative to the outer corner of the
/// child's border and is cut to the child. Nothing when the child is gone or not mapped. Any thread; throws
/// PlatformError as PixelReader and Redirection do.
std::optional<TopLevelPixels> readTopLevel(const X11Connection& connection, PixelReader& reader,
                                           Redirection& redirection, xcb_window_t topLevel,
                                           const QRect& area);

/// The same of the frame around a client window, for a caller that can look for the client anew: nothing,
/// too, when the client is gone, whose frame may stay for a moment with nothing in it, and when the
/// compositor has set the frame free.
std::optional<TopLevelPixels> readFrame(const X11Connection& connection, PixelReader& reader,
                                        Redirection& redirection, xcb_window_t frame, xcb_window_t client,
                                        const QRect& area);

} // namespace orvane::x11
