#include "OrvanePlatform/x11/X11DesktopShell.h"

#include "OrvanePlatform/x11/TrayHost.h"

namespace orvane::x11 {

using namespace Qt::StringLiterals;

bool X11DesktopShell::hasTrayHost() {
    return x11::hasTrayHost(m_session);
}

std::optional<QString> X11DesktopShell::limits() {
    if (!m_isPartOfWayland)
        return std::nullopt;
    return u"this is a Wayland session: only the windows of X11 programs can be seen and recorded. Log in to "
           u"an "
           "X11 session to have all of them"_s;
}

} // namespace orvane::x11
