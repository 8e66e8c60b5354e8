#pragma once

#include "OrvanePlatform/x11/PixelReader.h"
#include "OrvanePlatform/x11/Redirection.h"

#include <QImage>
#include <QRect>

#include <optional>

namespace orvane::x11 {

/// The pixels of one child of the root window, from its own pixmap: whole, whatever covers it. Sees to it
/// that there is such a pixmap, see Redirection. `area` is in root-window pixels and is cut to the window.
/// Nothing when the window is gone or not mapped. Any thread; throws PlatformError as PixelReader and
/// Redirection do.
std::optional<QImage> readTopLevel(const X11Connection& connection, PixelReader& reader,
                                   Redirection& redirection, xcb_window_t topLevel, const QRect& area);

} // namespace orvane::x11
