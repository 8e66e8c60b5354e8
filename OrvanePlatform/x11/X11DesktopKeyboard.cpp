#include "OrvanePlatform/x11/X11DesktopKeyboard.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/x11/CarbonKeys.h"
#include "OrvanePlatform/x11/KeyboardMap.h"
#include "OrvanePlatform/x11/KeysymAlphabet.h"
#include "OrvanePlatform/x11/X11Session.h"

namespace orvane::x11 {

namespace {

/// Where the state of a key event has the number of the layout (X Keyboard Extension, "Computing a State
/// Field from an XKB State").
constexpr unsigned layoutShift = 13;
constexpr unsigned layoutMask = 3;

} // namespace

X11DesktopKeyboard::X11DesktopKeyboard(X11Session& session)
    : m_session(session) {}

std::optional<int> X11DesktopKeyboard::keyCode(const NativeKey& key) {
    const KeysymAlphabet alphabet = alphabetOf(key.virtualKey);
    const bool goesByCharacter =
        alphabet == KeysymAlphabet::latin ||
        (alphabet == KeysymAlphabet::none && isLatin((key.modifiers >> layoutShift) & layoutMask));
    return goesByCharacter ? carbonKeyCodeOf(key.virtualKey) : carbonKeyCodeAt(key.scanCode);
}

bool X11DesktopKeyboard::isLatin(std::size_t layout) const {
    try {
        const auto connection = m_session.connection();
        const xcb_setup_t& setup = connection->setup();
        const auto count = static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
        const auto reply = connection->reply<xcb_get_keyboard_mapping_reply>(
            xcb_get_keyboard_mapping(connection->raw(), setup.min_keycode, count));
        if (!reply)
            return true;
        const xcb_keysym_t* const keysyms = xcb_get_keyboard_mapping_keysyms(reply.get());
        return KeyboardMap(setup.min_keycode, reply->keysyms_per_keycode,
                           {keysyms, keysyms + xcb_get_keyboard_mapping_keysyms_length(reply.get())}, {})
            .hasLatinLetters(layout);
    } catch (const PlatformError&) {
        return true;
    }
}

} // namespace orvane::x11
