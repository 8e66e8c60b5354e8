#pragma once

#include <QtGlobal>

#include <optional>

namespace orvane {

/// Who has the keyboard, for windows of ours that no window manager looks after. Main thread.
class DesktopKeyboard {
public:
    virtual ~DesktopKeyboard() = default;

    /// Asks for the keyboard for a window of this process, named as QWidget::winId does, and waits for
    /// nothing. Nothing happens where the window is not on the screen yet.
    virtual void give(quintptr window) = 0;

    /// Gives the keyboard to whoever had it before `give`, unless the user has given it to somebody else
    /// meanwhile.
    virtual void giveBack() = 0;

    /// The key at the place of the keyboard that an event names, as a virtual key code of the Carbon event
    /// API: the code of the key that a US keyboard has there. Nothing for a place without a letter.
    virtual std::optional<int> keyCode(quint32 nativeScanCode) const = 0;

protected:
    DesktopKeyboard() = default;
    DesktopKeyboard(const DesktopKeyboard&) = default;
    DesktopKeyboard& operator=(const DesktopKeyboard&) = default;
};

} // namespace orvane
