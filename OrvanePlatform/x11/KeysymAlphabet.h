#pragma once

#include <xcb/xproto.h>

namespace orvane::x11 {

/// Which letters a keysym is one of.
enum class KeysymAlphabet {
    /// A letter of the Latin alphabet, with or without marks.
    latin,
    /// A letter, or a mark on letters, of any other script.
    other,
    /// No letter, or one that every script has: digits, punctuation, function keys.
    none,
};

/// By the blocks of keysyms in appendix A of the X Window System Protocol and, for keysyms that stand for a
/// character of Unicode, by the script of that. Pure.
KeysymAlphabet alphabetOf(xcb_keysym_t keysym);

} // namespace orvane::x11
