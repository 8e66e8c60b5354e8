#pragma once

#include "OrvanePlatform/x11/X11Session.h"

#include <memory>
#include <optional>
#include <set>

namespace orvane::x11 {

/// The input focus of an X display, for windows of this process that no window manager gives it to. Waits for
/// nothing that is not there yet; without an X server nothing happens. Main thread.
class InputFocus {
public:
    explicit InputFocus(X11Session& session)
        : m_session(session) {}
    ~InputFocus();
    InputFocus(const InputFocus&) = delete;
    InputFocus& operator=(const InputFocus&) = delete;

    /// Nothing happens where the window is not on the screen yet.
    void give(xcb_window_t window);

    /// Gives the focus to whoever had it before `give`, unless it is somebody else's by now.
    void giveBack();

private:
    /// The question who had the focus, which is asked with each change and read when it is needed.
    struct Question {
        std::shared_ptr<X11Connection> connection;
        xcb_get_input_focus_cookie_t cookie;
    };

    void readAnswer();

    X11Session& m_session;
    /// Windows that were given the focus since it was last given back.
    std::set<xcb_window_t> m_own;
    /// The focus to go back to; a window, none or the root under the pointer.
    std::optional<xcb_window_t> m_before;
    std::optional<Question> m_question;
};

} // namespace orvane::x11
