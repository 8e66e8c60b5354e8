#pragma once

#include <QFileDevice>
#include <QString>

namespace orvane::freedesktop {

/// $XDG_CONFIG_HOME, or ~/.config where that is unset, empty or relative (XDG Base Directory Specification
/// 0.8).
QString configHome();

/// $XDG_DATA_HOME, or ~/.local/share in the same way.
QString dataHome();

/// What files for the user alone are made with.
inline constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

/// Makes the folder of a file where there is none: for the user alone, as the same rules ask.
void makeFolderOf(const QString& path);

} // namespace orvane::freedesktop
