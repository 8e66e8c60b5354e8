#pragma once

#include <QtGlobal>

#include <optional>

namespace orvane {

/// The keyboard that the human types on. Main thread.
class DesktopKeyboard {
public:
    virtual ~DesktopKeyboard() = default;

    /// The key at the place of the keyboard that an event names, as a virtual key code of the Carbon event
    /// API: the code of the key that a US keyboard has there. Nothing for a place without a letter.
    virtual std::optional<int> keyCode(quint32 nativeScanCode) const = 0;

protected:
    DesktopKeyboard() = default;
    DesktopKeyboard(const DesktopKeyboard&) = default;
    DesktopKeyboard& operator=(const DesktopKeyboard&) = default;
};

} // namespace orvane
