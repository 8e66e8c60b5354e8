#include "OrvanePlatform/x11/KeysymAlphabet.h"

#include <QChar>

namespace orvane::x11 {

namespace {

/// What is added to a character of Unicode that has no keysym of its own.
constexpr xcb_keysym_t unicodeOffset = 0x01000000;

KeysymAlphabet alphabetOfCharacter(char32_t character) {
    switch (QChar::script(character)) {
    case QChar::Script_Latin:
        return KeysymAlphabet::latin;
    case QChar::Script_Unknown:
    case QChar::Script_Inherited:
    case QChar::Script_Common:
        return KeysymAlphabet::none;
    default:
        return KeysymAlphabet::other;
    }
}

} // namespace

KeysymAlphabet alphabetOf(xcb_keysym_t keysym) {
    if (keysym > unicodeOffset && keysym <= unicodeOffset + QChar::LastValidCodePoint)
        return alphabetOfCharacter(keysym - unicodeOffset);
    switch (keysym >> 8U) {
    case 0x00: // Latin-1, which Unicode has at the same places
        return alphabetOfCharacter(keysym);
    case 0x01: // Latin-2
    case 0x02: // Latin-3
    case 0x03: // Latin-4
    case 0x12: // Latin-8
    case 0x13: // Latin-9
    case 0x16: // Letters of Caucasian languages in Latin script
    case 0x1e: // Vietnamese
        return KeysymAlphabet::latin;
    case 0x04: // Kana
    case 0x05: // Arabic
    case 0x06: // Cyrillic
    case 0x07: // Greek
    case 0x0c: // Hebrew
    case 0x0d: // Thai
    case 0x0e: // Hangul
    case 0x14: // Armenian
    case 0x15: // Georgian
        return KeysymAlphabet::other;
    default:
        return KeysymAlphabet::none;
    }
}

} // namespace orvane::x11
