#pragma once

#include "OrvanePlatform/x11/PixelReader.h"
#include "OrvanePlatform/x11/Redirection.h"

#include <QImage>
#include <QRect>

#include <optional>

namespace orvane::x11 {

/// The pixels of one child of the root window, from its own pixmap: whole, whatever covers it.
/// `area` is in root-window pixels and is cut to the window. Nothing when the window is gone or not mapped.
/// `redirection` must have been prepared for the window. Any thread; throws PlatformError as PixelReader
/// does.
std::optional<QImage> readTopLevel(const X11Connection& connection, PixelReader& reader,
                                   xcb_window_t topLevel, const QRect& area, Alpha alpha);

} // namespace orvane::x11
