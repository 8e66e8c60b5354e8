#include "OrvanePlatform/x11/XWayland.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace orvane::x11 {

namespace {

using namespace std::string_view_literals;

// A Wayland compositor learns by messages of these names which surface of its own shows which X window: the
// older one is part of XWayland, the newer one of the protocol xwayland-shell-v1. Nobody else has a use for
// them, and the session's environment says less: a nested X server has a screen of its own.
constexpr std::array surfaceMessages{"WL_SURFACE_ID"sv, "WL_SURFACE_SERIAL"sv};

} // namespace

void requireOwnScreen(const X11Connection& connection) {
    std::array<xcb_intern_atom_cookie_t, surfaceMessages.size()> cookies;
    std::transform(surfaceMessages.begin(), surfaceMessages.end(), cookies.begin(),
                   [&connection](std::string_view name) {
                       return xcb_intern_atom(connection.raw(), 1, static_cast<uint16_t>(name.size()),
                                              name.data());
                   });
    const auto isKnown = [&connection](xcb_intern_atom_cookie_t cookie) {
        const auto reply = connection.reply<xcb_intern_atom_reply>(cookie);
        return reply && reply->atom != XCB_ATOM_NONE;
    };
    // All answers are taken, whatever the first one says.
    if (std::count_if(cookies.begin(), cookies.end(), isKnown) > 0) {
        throw PlatformError(QStringLiteral("A Wayland session shows X11 programs nothing but X11 windows. "
                                           "Log in to an X11 session to capture the screen."));
    }
}

} // namespace orvane::x11
