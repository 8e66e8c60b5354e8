#include "OrvanePlatform/x11/KeyboardMap.h"

#include "OrvanePlatform/x11/CarbonKeys.h"
#include "OrvanePlatform/x11/KeysymAlphabet.h"

#include <algorithm>
#include <utility>

#include <X11/keysym.h>

namespace orvane::x11 {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t modifierCount = 8;
/// Two layouts with two levels each; what follows (AltGr, more layouts) has no fixed place in the core map.
constexpr std::size_t knownColumns = 4;
constexpr std::size_t columnsPerLayout = 2;
constexpr std::uint16_t everyModifier = 0xFF;

} // namespace

KeyboardMap::KeyboardMap(xcb_keycode_t firstKeycode, std::size_t keysymsPerKeycode,
                         std::vector<xcb_keysym_t> keysyms, std::vector<xcb_keycode_t> modifierKeycodes)
    : m_firstKeycode(firstKeycode)
    , m_keysymsPerKeycode(std::max<std::size_t>(keysymsPerKeycode, 1))
    , m_keysyms(std::move(keysyms))
    , m_modifierKeycodes(std::move(modifierKeycodes))
    , m_super(modifierOf({XK_Super_L, XK_Super_R}))
    , m_alt(modifierOf({XK_Alt_L, XK_Alt_R}))
    , m_locks(XCB_MOD_MASK_LOCK | modifierOf({XK_Num_Lock}) | modifierOf({XK_Scroll_Lock})) {
    // A modifier that a shortcut can ask for is none whose state does not matter.
    const auto asked = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | m_super | m_alt;
    m_locks = static_cast<std::uint16_t>(m_locks & ~asked);
}

KeyboardMap::Keys KeyboardMap::keysFor(const Shortcut& shortcut) const {
    const CarbonKey* const key = carbonKey(shortcut.carbonKeyCode);
    if (key == nullptr)
        return {{}, u"there is no such key"_s};
    const std::vector<xcb_keycode_t> keycodes = keycodesOf(key->keysym, key->usKeycode);
    if (keycodes.empty())
        return {{}, u"this keyboard has no such key"_s};

    const std::pair<int, std::uint16_t> known[] = {
        {Shortcut::command, m_super},
        {Shortcut::control, XCB_MOD_MASK_CONTROL},
        {Shortcut::option, m_alt},
        {Shortcut::shift, XCB_MOD_MASK_SHIFT},
    };
    int remaining = shortcut.carbonModifiers;
    std::uint16_t modifiers = 0;
    for (const auto& [carbon, mask] : known) {
        if ((remaining & carbon) == 0)
            continue;
        if (mask == 0)
            return {{}, u"this keyboard lacks one of its modifiers"_s};
        modifiers |= mask;
        remaining &= ~carbon;
    }
    if (remaining != 0)
        return {{}, u"there is no such modifier"_s};

    Keys keys;
    keys.combinations.reserve(keycodes.size());
    for (const xcb_keycode_t keycode : keycodes)
        keys.combinations.push_back({keycode, modifiers});
    return keys;
}

bool KeyboardMap::hasLatinLetters(std::size_t layout) const {
    const std::size_t column = layout * columnsPerLayout;
    if (column >= std::min(m_keysymsPerKeycode, knownColumns))
        return true;
    const auto count = [&](KeysymAlphabet alphabet) {
        std::size_t letters = 0;
        for (std::size_t index = 0; index < keycodeCount(); ++index)
            letters += alphabetOf(keysymAt(index, column)) == alphabet ? 1 : 0;
        return letters;
    };
    return count(KeysymAlphabet::latin) >= count(KeysymAlphabet::other);
}

std::set<KeyCombination> KeyboardMap::lockVariants(const KeyCombination& combination) const {
    std::set<KeyCombination> variants;
    // Every subset of the locks, from all of them down to none.
    for (std::uint16_t locks = m_locks;; locks = static_cast<std::uint16_t>((locks - 1) & m_locks)) {
        variants.insert({combination.keycode, static_cast<std::uint16_t>(combination.modifiers | locks)});
        if (locks == 0)
            return variants;
    }
}

std::uint16_t KeyboardMap::withoutLocks(std::uint16_t modifiers) const {
    return static_cast<std::uint16_t>(modifiers & everyModifier & ~m_locks);
}

xcb_keysym_t KeyboardMap::keysymAt(std::size_t index, std::size_t column) const {
    return m_keysyms[index * m_keysymsPerKeycode + column];
}

std::vector<xcb_keycode_t> KeyboardMap::keycodesOf(xcb_keysym_t keysym, xcb_keycode_t usKeycode) const {
    std::vector<xcb_keycode_t> keycodes;
    for (std::size_t column = 0; column < std::min(m_keysymsPerKeycode, knownColumns); ++column) {
        for (std::size_t index = 0; index < keycodeCount(); ++index) {
            if (keysymAt(index, column) == keysym)
                keycodes.push_back(static_cast<xcb_keycode_t>(m_firstKeycode + index));
        }
        if (!keycodes.empty())
            return keycodes;
    }
    if (usKeycode != 0 && usKeycode >= m_firstKeycode && usKeycode < m_firstKeycode + keycodeCount())
        keycodes.push_back(usKeycode);
    return keycodes;
}

std::uint16_t KeyboardMap::modifierOf(std::initializer_list<xcb_keysym_t> keysyms) const {
    const std::size_t keysPerModifier = m_modifierKeycodes.size() / modifierCount;
    for (std::size_t place = 0; place < keysPerModifier * modifierCount; ++place) {
        const xcb_keycode_t keycode = m_modifierKeycodes[place];
        if (keycode < m_firstKeycode || keycode >= m_firstKeycode + keycodeCount())
            continue;
        for (std::size_t column = 0; column < m_keysymsPerKeycode; ++column) {
            const xcb_keysym_t keysym = keysymAt(keycode - m_firstKeycode, column);
            if (std::find(keysyms.begin(), keysyms.end(), keysym) != keysyms.end())
                return static_cast<std::uint16_t>(1U << (place / keysPerModifier));
        }
    }
    return 0;
}

} // namespace orvane::x11
