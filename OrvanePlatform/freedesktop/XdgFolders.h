#pragma once

#include <QString>

namespace orvane::freedesktop {

/// $XDG_CONFIG_HOME, or ~/.config where that is unset, empty or relative (XDG Base Directory Specification
/// 0.8).
QString configHome();

/// $XDG_DATA_HOME, or ~/.local/share in the same way.
QString dataHome();

} // namespace orvane::freedesktop
