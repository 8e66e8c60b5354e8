#include "OrvanePlatform/x11/X11DesktopKeyboard.h"

#include "OrvanePlatform/x11/CarbonKeys.h"

#include <utility>

namespace orvane::x11 {

namespace {

using FocusReply = Owned<xcb_get_input_focus_reply_t>;

FocusReply focus(const X11Connection& connection) {
    return connection.reply<xcb_get_input_focus_reply>(xcb_get_input_focus(connection.raw()));
}

/// With the server's own time: what the program has last heard of may be older than the last change, and then
/// the server would pass the request over. False when there is no such window on the screen.
bool setFocus(const X11Connection& connection, xcb_window_t window) {
    const Owned<xcb_generic_error_t> error(xcb_request_check(
        connection.raw(), xcb_set_input_focus_checked(connection.raw(), XCB_INPUT_FOCUS_POINTER_ROOT, window,
                                                      XCB_CURRENT_TIME)));
    return !error;
}

} // namespace

bool X11DesktopKeyboard::give(quintptr window) {
    try {
        const auto connection = m_session.connection();
        const FocusReply before = focus(*connection);
        const auto own = static_cast<xcb_window_t>(window);
        if (!setFocus(*connection, own))
            return false;
        if (before && !m_own.contains(before->focus))
            m_before = before->focus;
        m_own.insert(own);
        return true;
    } catch (const PlatformError&) {
        return false;
    }
}

void X11DesktopKeyboard::giveBack() {
    const std::set<xcb_window_t> own = std::exchange(m_own, {});
    const std::optional<xcb_window_t> before = std::exchange(m_before, std::nullopt);
    if (!before)
        return;
    try {
        const auto connection = m_session.connection();
        const FocusReply now = focus(*connection);
        // A window of ours that has gone from the screen leaves the keyboard to nobody.
        if (now && (own.contains(now->focus) || now->focus == XCB_NONE ||
                    now->focus == XCB_INPUT_FOCUS_POINTER_ROOT || now->focus == connection->root()))
            setFocus(*connection, *before);
    } catch (const PlatformError&) {
        // Without an X server there is no keyboard.
    }
}

std::optional<int> X11DesktopKeyboard::keyCode(quint32 nativeScanCode) const {
    return carbonKeyCodeAt(nativeScanCode);
}

} // namespace orvane::x11
