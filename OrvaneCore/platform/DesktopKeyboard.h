#pragma once

#include <QtGlobal>

#include <optional>

namespace orvane {

/// A key as an event names it in the window system's own numbers (QKeyEvent has them).
struct NativeKey {
    quint32 scanCode = 0;
    quint32 virtualKey = 0;
    quint32 modifiers = 0;
};

/// The keyboard that the human types on. Main thread.
class DesktopKeyboard {
public:
    virtual ~DesktopKeyboard() = default;

    /// The key that an event tells of, as a virtual key code of the Carbon event API. On a layout of Latin
    /// letters it is the key that gives that letter, or other character, on a US keyboard: what stands on the
    /// key counts. On a layout of another alphabet it is the key that a US keyboard has at that place.
    /// Nothing for what a US keyboard has no key for.
    virtual std::optional<int> keyCode(const NativeKey& key) = 0;

protected:
    DesktopKeyboard() = default;
    DesktopKeyboard(const DesktopKeyboard&) = default;
    DesktopKeyboard& operator=(const DesktopKeyboard&) = default;
};

} // namespace orvane
