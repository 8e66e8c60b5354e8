#pragma once

#include "OrvanePlatform/x11/X11Session.h"

namespace orvane::x11 {

/// True when the desktop has a tray now: one on D-Bus (StatusNotifier) with somebody who shows its icons, or
/// one that embeds windows. False where nobody can be asked. Takes well below a millisecond, or a third of a
/// second where a tray on D-Bus hangs. Main thread.
bool hasTrayHost(X11Session& session);

} // namespace orvane::x11
