#pragma once

#include "OrvaneCore/platform/DesktopKeyboard.h"
#include "OrvanePlatform/x11/X11Session.h"

#include <memory>
#include <optional>
#include <set>

namespace orvane::x11 {

/// The input focus of an X display.
class X11DesktopKeyboard final : public DesktopKeyboard {
public:
    explicit X11DesktopKeyboard(X11Session& session)
        : m_session(session) {}
    ~X11DesktopKeyboard() override;
    X11DesktopKeyboard(const X11DesktopKeyboard&) = delete;
    X11DesktopKeyboard& operator=(const X11DesktopKeyboard&) = delete;

    void give(quintptr window) override;
    void giveBack() override;
    std::optional<int> keyCode(quint32 nativeScanCode) const override;

private:
    /// The question who had the focus, which is asked with each change and read when it is needed.
    struct Question {
        std::shared_ptr<X11Connection> connection;
        xcb_get_input_focus_cookie_t cookie;
    };

    void readAnswer();

    X11Session& m_session;
    /// Windows that were given the keyboard since it was last given back.
    std::set<xcb_window_t> m_own;
    /// The focus to go back to; a window, none or the root under the pointer.
    std::optional<xcb_window_t> m_before;
    std::optional<Question> m_question;
};

} // namespace orvane::x11
