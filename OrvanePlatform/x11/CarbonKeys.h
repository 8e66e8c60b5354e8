#pragma once

#include <QtGlobal>

#include <optional>

#include <xcb/xproto.h>

namespace orvane::x11 {

/// What a virtual key code of the Carbon event API is on an X keyboard.
struct CarbonKey {
    int carbonKeyCode;
    /// What the key gives without modifiers; for the digits of the keypad, with NumLock.
    xcb_keysym_t keysym;
    /// Where the key sits on a US keyboard, for the keys that other alphabets do not have. Else 0.
    xcb_keycode_t usKeycode;
};

/// Null for a code that stands for no key of a PC keyboard.
const CarbonKey* carbonKey(int carbonKeyCode);

/// The code of the key that gives this character on a US keyboard, a capital letter with Shift; nothing for
/// what is not a character, such as Return or a key of the keypad.
std::optional<int> carbonKeyCodeOf(xcb_keysym_t keysym);

/// The code of the key that has this place on a US keyboard, as far as the table knows places.
std::optional<int> carbonKeyCodeAt(quint32 keycode);

} // namespace orvane::x11
