#pragma once

#include <QProcessEnvironment>
#include <QStringList>

namespace orvane {

/// What kind of session this process runs in, as far as its environment tells.
struct DesktopSession {
    enum class Type {
        /// A session that does not tell, or of a kind that has no screen.
        other,
        x11,
        wayland,
    };

    /// What the login says it is (XDG_SESSION_TYPE).
    Type type = Type::other;
    /// An X server is there for its programs (DISPLAY); in a Wayland session that is XWayland.
    bool hasX11 = false;
    /// A Wayland compositor is there for its programs (WAYLAND_DISPLAY).
    bool hasWayland = false;
    /// The desktop's names, the most specific first (XDG_CURRENT_DESKTOP).
    QStringList desktops;

    bool operator==(const DesktopSession&) const = default;
};

DesktopSession desktopSession(const QProcessEnvironment& environment);

/// The implementations of the ports that know a desktop.
enum class DesktopPorts { headless, x11 };

/// Those that a session is served best by. A Wayland session is served through XWayland; without that there
/// is nothing yet that knows it.
DesktopPorts desktopPorts(const DesktopSession& session);

} // namespace orvane
