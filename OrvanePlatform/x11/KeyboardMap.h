#pragma once

#include "OrvaneCore/platform/Shortcut.h"

#include <QString>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

#include <xcb/xproto.h>

namespace orvane::x11 {

/// A key that goes down while exactly these modifiers are.
struct KeyCombination {
    xcb_keycode_t keycode = 0;
    /// A mask of the X modifiers.
    std::uint16_t modifiers = 0;

    friend bool operator==(const KeyCombination&, const KeyCombination&) = default;
    friend bool operator<(const KeyCombination& a, const KeyCombination& b) {
        return std::tie(a.keycode, a.modifiers) < std::tie(b.keycode, b.modifiers);
    }
};

/// The keys of a keyboard and its modifiers, as the X server told them.
class KeyboardMap {
public:
    /// `keysyms` holds the same number for each keycode from `firstKeycode` on, `modifierKeycodes` the same
    /// number for each of the eight modifiers; 0 stands for none in both.
    KeyboardMap(xcb_keycode_t firstKeycode, std::size_t keysymsPerKeycode, std::vector<xcb_keysym_t> keysyms,
                std::vector<xcb_keycode_t> modifierKeycodes);

    /// What to press on this keyboard for a shortcut: one combination for each key that gives it.
    struct Keys {
        std::vector<KeyCombination> combinations;
        /// Why there are none.
        QString problem;
    };

    /// The keys that give the shortcut's letter in the first layout of the keyboard; else in the second one;
    /// else the key that gives it on a US keyboard, so that a hotkey keeps its place where the layout has
    /// another alphabet.
    Keys keysFor(const Shortcut& shortcut) const;

    /// Whether the keys of a layout give more Latin letters than others. Layouts are numbered from 0; from
    /// the third on nothing is known of them, and they count as Latin.
    bool hasLatinLetters(std::size_t layout) const;

    /// The combination as it reaches the X server in every state of CapsLock, NumLock and ScrollLock.
    std::set<KeyCombination> lockVariants(const KeyCombination& combination) const;

    /// Of modifiers as an event has them, those that a shortcut can ask for.
    std::uint16_t withoutLocks(std::uint16_t modifiers) const;

private:
    std::size_t keycodeCount() const { return m_keysyms.size() / m_keysymsPerKeycode; }
    xcb_keysym_t keysymAt(std::size_t index, std::size_t column) const;
    std::vector<xcb_keycode_t> keycodesOf(xcb_keysym_t keysym, xcb_keycode_t usKeycode) const;
    std::uint16_t modifierOf(std::initializer_list<xcb_keysym_t> keysyms) const;

    xcb_keycode_t m_firstKeycode;
    std::size_t m_keysymsPerKeycode;
    std::vector<xcb_keysym_t> m_keysyms;
    std::vector<xcb_keycode_t> m_modifierKeycodes;
    std::uint16_t m_super;
    std::uint16_t m_alt;
    std::uint16_t m_locks;
};

} // namespace orvane::x11
