#pragma once

#include "OrvaneCore/platform/DesktopShell.h"
#include "OrvanePlatform/x11/X11Session.h"

namespace orvane::x11 {

/// An X desktop. Where the X server does not answer nothing is offered. Main thread.
class X11DesktopShell final : public DesktopShell {
public:
    /// `isPartOfWayland`: the X server serves the X11 programs of a Wayland session.
    X11DesktopShell(X11Session& session, bool isPartOfWayland)
        : m_session(session)
        , m_isPartOfWayland(isPartOfWayland) {}

    bool hasTrayHost() override;
    std::optional<QString> limits() override;

private:
    X11Session& m_session;
    bool m_isPartOfWayland;
};

} // namespace orvane::x11
