#include "OrvanePlatform/x11/InputFocus.h"

#include <utility>

namespace orvane::x11 {

namespace {

/// With the server's own time: what the program has last heard of may be older than the last change, and then
/// the server would pass the request over. Nothing happens where there is no such window on the screen.
void setFocus(const X11Connection& connection, xcb_window_t window) {
    xcb_set_input_focus(connection.raw(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    xcb_flush(connection.raw());
}

} // namespace

InputFocus::~InputFocus() {
    if (m_question)
        xcb_discard_reply(m_question->connection->raw(), m_question->cookie.sequence);
}

void InputFocus::give(xcb_window_t window) {
    try {
        readAnswer();
        auto connection = m_session.connection();
        connection->dropEvents();
        // The server deals with a connection's requests in their order.
        const xcb_get_input_focus_cookie_t cookie = xcb_get_input_focus(connection->raw());
        setFocus(*connection, window);
        m_own.insert(window);
        m_question = Question{.connection = std::move(connection), .cookie = cookie};
    } catch (const PlatformError&) {
        // Without an X server there is no keyboard.
    }
}

void InputFocus::readAnswer() {
    if (!m_question)
        return;
    const Question question = *std::exchange(m_question, std::nullopt);
    const auto answer = question.connection->reply<xcb_get_input_focus_reply>(question.cookie);
    if (answer && !m_own.contains(answer->focus))
        m_before = answer->focus;
}

void InputFocus::giveBack() {
    try {
        readAnswer();
        const std::set<xcb_window_t> own = std::exchange(m_own, {});
        const std::optional<xcb_window_t> before = std::exchange(m_before, std::nullopt);
        if (!before)
            return;
        const auto connection = m_session.connection();
        const auto now = connection->reply<xcb_get_input_focus_reply>(xcb_get_input_focus(connection->raw()));
        // A window of ours that has gone from the screen leaves the keyboard to nobody.
        if (now && (own.contains(now->focus) || now->focus == XCB_NONE ||
                    now->focus == XCB_INPUT_FOCUS_POINTER_ROOT || now->focus == connection->root()))
            setFocus(*connection, *before);
    } catch (const PlatformError&) {
        // Without an X server there is no keyboard.
    }
}

} // namespace orvane::x11
