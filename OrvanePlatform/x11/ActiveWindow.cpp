#include "OrvanePlatform/x11/ActiveWindow.h"

#include "OrvanePlatform/x11/Properties.h"

namespace orvane::x11 {

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

void requestActivation(const X11Connection& connection, xcb_window_t client) {
    // The one client message of EWMH 1.5 that asks for attention, as a pager sends it (source indication 2).
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = client;
    event.type = connection.atoms().netActiveWindow;
    event.data.data32[0] = 2;
    event.data.data32[1] = XCB_CURRENT_TIME;
    event.data.data32[2] = activeWindow(connection);
    xcb_send_event(connection.raw(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection.raw());
}

} // namespace orvane::x11
