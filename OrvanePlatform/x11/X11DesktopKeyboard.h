#pragma once

#include "OrvaneCore/platform/DesktopKeyboard.h"
#include "OrvanePlatform/x11/X11Session.h"

#include <optional>
#include <set>

namespace orvane::x11 {

/// The input focus of an X display.
class X11DesktopKeyboard final : public DesktopKeyboard {
public:
    explicit X11DesktopKeyboard(X11Session& session)
        : m_session(session) {}

    bool give(quintptr window) override;
    void giveBack() override;
    std::optional<int> keyCode(quint32 nativeScanCode) const override;

private:
    X11Session& m_session;
    /// Windows that were given the keyboard since it was last given back.
    std::set<xcb_window_t> m_own;
    /// The focus to go back to; a window, none or the root under the pointer.
    std::optional<xcb_window_t> m_before;
};

} // namespace orvane::x11
