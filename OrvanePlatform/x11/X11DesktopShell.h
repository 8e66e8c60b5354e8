#pragma once

#include "OrvaneCore/platform/DesktopShell.h"
#include "OrvanePlatform/x11/X11Session.h"

namespace orvane::x11 {

/// An X desktop. Where the X server does not answer nothing is offered. Main thread.
class X11DesktopShell final : public DesktopShell {
public:
    explicit X11DesktopShell(X11Session& session)
        : m_session(session) {}

    bool hasTrayHost() override;
    /// Of an X server that is a part of a Wayland session.
    std::optional<QString> limits() override;

private:
    X11Session& m_session;
};

} // namespace orvane::x11
