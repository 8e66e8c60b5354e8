#include "OrvanePlatform/DesktopSession.h"

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

DesktopSession::Type typeNamed(const QString& name) {
    if (name == u"x11")
        return DesktopSession::Type::x11;
    if (name == u"wayland")
        return DesktopSession::Type::wayland;
    return DesktopSession::Type::other;
}

} // namespace

DesktopSession desktopSession(const QProcessEnvironment& environment) {
    const auto isSet = [&environment](const QString& name) { return !environment.value(name).isEmpty(); };
    return {.type = typeNamed(environment.value(u"XDG_SESSION_TYPE"_s)),
            .hasX11 = isSet(u"DISPLAY"_s),
            .hasWayland = isSet(u"WAYLAND_DISPLAY"_s),
            .desktops = environment.value(u"XDG_CURRENT_DESKTOP"_s).split(u':', Qt::SkipEmptyParts)};
}

DesktopPorts desktopPorts(const DesktopSession& session) {
    return session.hasX11 ? DesktopPorts::x11 : DesktopPorts::headless;
}

} // namespace orvane
