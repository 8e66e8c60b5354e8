#pragma once

#include "OrvaneCore/platform/Displays.h"
#include "OrvanePlatform/x11/Properties.h"
#include "OrvanePlatform/x11/ScreenLayout.h"
#include "OrvanePlatform/x11/X11Session.h"

#include <optional>

#include <xcb/randr.h>

namespace orvane::x11 {

/// A layout of the monitors that was asked for and may not have arrived yet, so that other things can be
/// asked for in the same round trip. Read once, which throws PlatformError when the connection is lost.
class PendingScreenLayout {
public:
    explicit PendingScreenLayout(const X11Connection& connection);

    ScreenLayout read() const;

private:
    std::vector<Monitor> readMonitors() const;

    const X11Connection& m_connection;
    PendingProperty m_resources;
    /// Nothing from a server without monitors.
    std::optional<xcb_randr_get_monitors_cookie_t> m_monitors;
};

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
