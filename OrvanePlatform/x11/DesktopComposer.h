#pragma once

#include "OrvanePlatform/x11/PixelReader.h"
#include "OrvanePlatform/x11/Redirection.h"

#include <QImage>
#include <QRect>

#include <optional>

namespace orvane::x11 {

/// What the area (root-window pixels) would look like without this process's windows: the wallpaper and each
/// foreign window's own pixmap in stacking order. Nothing on the screen changes meanwhile. Shadows and other
/// effects that a compositor adds are not part of it. RGB32. Nothing where no window of this process lies on
/// the area: then the screen shows just that. Any thread; throws PlatformError when the connection is lost or
/// the server cannot redirect windows.
std::optional<QImage> composeWithoutOwnWindows(const X11Connection& connection, PixelReader& reader,
                                               Redirection& redirection, const QRect& area);

} // namespace orvane::x11
