#pragma once

#include "OrvaneCore/platform/Displays.h"
#include "OrvanePlatform/x11/ScreenLayout.h"
#include "OrvanePlatform/x11/X11Session.h"

namespace orvane::x11 {

/// The layout of the monitors as it is now. Any thread; throws PlatformError when the connection is lost.
ScreenLayout readScreenLayout(const X11Connection& connection);

/// Displays from RandR 1.5 monitors; a server without them has one display, the whole root window.
class X11Displays final : public Displays {
public:
    explicit X11Displays(X11Session& session)
        : m_session(session) {}

    std::vector<Display> list() override;

private:
    X11Session& m_session;
};

} // namespace orvane::x11
