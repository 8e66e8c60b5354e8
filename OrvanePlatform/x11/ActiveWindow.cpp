#include "OrvanePlatform/x11/ActiveWindow.h"

#include "OrvanePlatform/x11/Properties.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace orvane::x11 {

namespace {

/// Sends a client message about a window to whom EWMH 1.5 sends those to: the window manager.
void tellWindowManager(const X11Connection& connection, xcb_window_t about, xcb_atom_t type,
                       const std::array<uint32_t, 3>& data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = about;
    event.type = type;
    std::copy(data.begin(), data.end(), std::begin(event.data.data32));
    xcb_send_event(connection.raw(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection.raw());
}

} // namespace

bool hasWindowManager(const X11Connection& connection) {
    return requestProperty(connection, connection.root(), connection.atoms().netSupportingWmCheck)
        .number()
        .has_value();
}

xcb_window_t activeWindow(const X11Connection& connection) {
    return requestProperty(connection, connection.root(), connection.atoms().netActiveWindow)
        .number()
        .value_or(XCB_WINDOW_NONE);
}

void requestDesktopOf(const X11Connection& connection, xcb_window_t client) {
    const Atoms& atoms = connection.atoms();
    const auto pendingWanted = requestProperty(connection, client, atoms.netWmDesktop);
    const auto pendingShown = requestProperty(connection, connection.root(), atoms.netCurrentDesktop);
    const auto wanted = pendingWanted.number();
    const auto shown = pendingShown.number();
    if (wanted && shown && *wanted != allDesktops && *wanted != *shown) {
        tellWindowManager(connection, connection.root(), atoms.netCurrentDesktop,
                          {*wanted, XCB_CURRENT_TIME, 0});
    }
}

void requestActivation(const X11Connection& connection, xcb_window_t client) {
    // As a pager sends it (source indication 2), which asks on behalf of the human.
    tellWindowManager(connection, client, connection.atoms().netActiveWindow,
                      {2, XCB_CURRENT_TIME, activeWindow(connection)});
}

} // namespace orvane::x11
