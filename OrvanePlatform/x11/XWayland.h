#pragma once

#include "OrvanePlatform/x11/X11Connection.h"

namespace orvane::x11 {

/// Throws PlatformError where the X server only serves the X11 programs of a Wayland session: its root window
/// is black there, whatever the human sees. Any thread; one round trip.
void requireOwnScreen(const X11Connection& connection);

} // namespace orvane::x11
