#include "OrvaneCore/platform/PlatformWords.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int deleteBackwardCode = 51;
constexpr int deleteForwardCode = 117;

// Keys that are called the same everywhere.
struct NamedKey {
    int carbonKeyCode;
    QStringView name;
};

constexpr std::array namedKeys{
    NamedKey{0, u"A"},         NamedKey{1, u"S"},           NamedKey{2, u"D"},
    NamedKey{3, u"F"},         NamedKey{4, u"H"},           NamedKey{5, u"G"},
    NamedKey{6, u"Z"},         NamedKey{7, u"X"},           NamedKey{8, u"C"},
    NamedKey{9, u"V"},         NamedKey{11, u"B"},          NamedKey{12, u"Q"},
    NamedKey{13, u"W"},        NamedKey{14, u"E"},          NamedKey{15, u"R"},
    NamedKey{16, u"Y"},        NamedKey{17, u"T"},          NamedKey{18, u"1"},
    NamedKey{19, u"2"},        NamedKey{20, u"3"},          NamedKey{21, u"4"},
    NamedKey{22, u"6"},        NamedKey{23, u"5"},          NamedKey{24, u"="},
    NamedKey{25, u"9"},        NamedKey{26, u"7"},          NamedKey{27, u"-"},
    NamedKey{28, u"8"},        NamedKey{29, u"0"},          NamedKey{30, u"]"},
    NamedKey{31, u"O"},        NamedKey{32, u"U"},          NamedKey{33, u"["},
    NamedKey{34, u"I"},        NamedKey{35, u"P"},          NamedKey{36, u"Return"},
    NamedKey{37, u"L"},        NamedKey{38, u"J"},          NamedKey{39, u"'"},
    NamedKey{40, u"K"},        NamedKey{41, u";"},          NamedKey{42, u"\\"},
    NamedKey{43, u","},        NamedKey{44, u"/"},          NamedKey{45, u"N"},
    NamedKey{46, u"M"},        NamedKey{47, u"."},          NamedKey{48, u"Tab"},
    NamedKey{49, u"Space"},    NamedKey{50, u"`"},          NamedKey{53, u"Escape"},
    NamedKey{64, u"F17"},      NamedKey{65, u"Keypad ."},   NamedKey{67, u"Keypad *"},
    NamedKey{69, u"Keypad +"}, NamedKey{75, u"Keypad /"},   NamedKey{76, u"Keypad Enter"},
    NamedKey{78, u"Keypad -"}, NamedKey{79, u"F18"},        NamedKey{80, u"F19"},
    NamedKey{81, u"Keypad ="}, NamedKey{82, u"Keypad 0"},   NamedKey{83, u"Keypad 1"},
    NamedKey{84, u"Keypad 2"}, NamedKey{85, u"Keypad 3"},   NamedKey{86, u"Keypad 4"},
    NamedKey{87, u"Keypad 5"}, NamedKey{88, u"Keypad 6"},   NamedKey{89, u"Keypad 7"},
    NamedKey{90, u"F20"},      NamedKey{91, u"Keypad 8"},   NamedKey{92, u"Keypad 9"},
    NamedKey{96, u"F5"},       NamedKey{97, u"F6"},         NamedKey{98, u"F7"},
    NamedKey{99, u"F3"},       NamedKey{100, u"F8"},        NamedKey{101, u"F9"},
    NamedKey{103, u"F11"},     NamedKey{105, u"F13"},       NamedKey{106, u"F16"},
    NamedKey{107, u"F14"},     NamedKey{109, u"F10"},       NamedKey{111, u"F12"},
    NamedKey{113, u"F15"},     NamedKey{114, u"Insert"},    NamedKey{115, u"Home"},
    NamedKey{116, u"Page Up"}, NamedKey{118, u"F4"},        NamedKey{119, u"End"},
    NamedKey{120, u"F2"},      NamedKey{121, u"Page Down"}, NamedKey{122, u"F1"},
    NamedKey{123, u"Left"},    NamedKey{124, u"Right"},     NamedKey{125, u"Down"},
    NamedKey{126, u"Up"},
};

QString keyName(int carbonKeyCode, const PlatformWords& words) {
    if (carbonKeyCode == deleteBackwardCode)
        return words.deleteBackward;
    if (carbonKeyCode == deleteForwardCode)
        return words.deleteForward;
    const auto* const key =
        std::find_if(namedKeys.begin(), namedKeys.end(),
                     [carbonKeyCode](const NamedKey& named) { return named.carbonKeyCode == carbonKeyCode; });
    return key == namedKeys.end() ? u"key %1"_s.arg(carbonKeyCode) : key->name.toString();
}

QStringList wordsOf(const Shortcut& shortcut, const QString& command, const PlatformWords& words) {
    const std::array modifiers{
        std::pair{Shortcut::command, command},
        std::pair{Shortcut::control, words.modifiers.control},
        std::pair{Shortcut::option, words.modifiers.option},
        std::pair{Shortcut::shift, words.modifiers.shift},
    };
    QStringList found;
    int unknown = shortcut.carbonModifiers;
    for (const auto& [mask, name] : modifiers) {
        if ((shortcut.carbonModifiers & mask) != 0)
            found << name;
        unknown &= ~mask;
    }
    if (unknown != 0)
        found << u"modifier %1"_s.arg(unknown);
    return found << keyName(shortcut.carbonKeyCode, words);
}

} // namespace

QString PlatformWords::hotkeyHint(const Shortcut& shortcut) const {
    return wordsOf(shortcut, modifiers.commandSign, *this).join(u' ');
}

QString PlatformWords::hotkeyName(const Shortcut& shortcut) const {
    return wordsOf(shortcut, modifiers.command, *this).join(u'+');
}

QString PlatformWords::keyInWindows(QStringView key) const {
    return commandInWindows + key.toString();
}

} // namespace orvane
