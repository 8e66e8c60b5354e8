#include "OrvaneCore/platform/PlatformWords.h"

#include "OrvanePlatform/freedesktop/DesktopWords.h"
#include "tests/support/MacWords.h"

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr Shortcut overlay{35, Shortcut::command | Shortcut::control};
constexpr Shortcut everyModifier{49,
                                 Shortcut::command | Shortcut::shift | Shortcut::option | Shortcut::control};

} // namespace

TEST(PlatformWords, NameModifiersBeforeTheKey) {
    const PlatformWords words = freedesktop::desktopWords();
    EXPECT_EQ(words.hotkeyName(overlay), u"Super+Ctrl+P"_s);
    EXPECT_EQ(words.hotkeyName(everyModifier), u"Super+Ctrl+Alt+Shift+Space"_s);
    EXPECT_EQ(words.hotkeyName({122, 0}), u"F1"_s);
    EXPECT_EQ(words.hotkeyName({69, Shortcut::option}), u"Alt+Keypad +"_s);
    EXPECT_EQ(words.hotkeyName({51, Shortcut::control}), u"Ctrl+Backspace"_s);
    EXPECT_EQ(words.hotkeyName({117, Shortcut::control}), u"Ctrl+Delete"_s);
}

TEST(PlatformWords, CallKeysByWhatIsPrintedOnThem) {
    const PlatformWords words = freedesktop::desktopWords();
    const auto names = [&words](const std::vector<int>& codes) {
        QStringList found;
        for (const int code : codes)
            found << words.hotkeyName({code, 0});
        return found.join(u' ');
    };
    // The rows of a keyboard, from left to right.
    EXPECT_EQ(names({50, 18, 19, 20, 21, 23, 22, 26, 28, 25, 29, 27, 24}), u"` 1 2 3 4 5 6 7 8 9 0 - ="_s);
    EXPECT_EQ(names({48, 12, 13, 14, 15, 17, 16, 32, 34, 31, 35, 33, 30, 42}),
              u"Tab Q W E R T Y U I O P [ ] \\"_s);
    EXPECT_EQ(names({0, 1, 2, 3, 5, 4, 38, 40, 37, 41, 39, 36}), u"A S D F G H J K L ; ' Return"_s);
    EXPECT_EQ(names({6, 7, 8, 9, 11, 45, 46, 43, 47, 44}), u"Z X C V B N M , . /"_s);
    EXPECT_EQ(names({53, 122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111}),
              u"Escape F1 F2 F3 F4 F5 F6 F7 F8 F9 F10 F11 F12"_s);
    EXPECT_EQ(names({105, 107, 113, 106, 64, 79, 80, 90}), u"F13 F14 F15 F16 F17 F18 F19 F20"_s);
    EXPECT_EQ(names({114, 115, 116, 119, 121}), u"Insert Home Page Up End Page Down"_s);
    EXPECT_EQ(names({123, 124, 125, 126}), u"Left Right Down Up"_s);
    EXPECT_EQ(names({82, 83, 84, 85, 86, 87, 88, 89, 91, 92}),
              u"Keypad 0 Keypad 1 Keypad 2 Keypad 3 Keypad 4 Keypad 5 Keypad 6 Keypad 7 Keypad 8 Keypad 9"_s);
    EXPECT_EQ(names({65, 67, 69, 75, 76, 78, 81}),
              u"Keypad . Keypad * Keypad + Keypad / Keypad Enter Keypad - Keypad ="_s);
}

TEST(PlatformWords, GiveTheNumberOfWhatHasNoName) {
    const PlatformWords words = freedesktop::desktopWords();
    EXPECT_EQ(words.hotkeyName({999, Shortcut::command | 65536}), u"Super+modifier 65536+key 999"_s);
    EXPECT_EQ(words.hotkeyHint({999, Shortcut::command | 65536}), u"Super modifier 65536 key 999"_s);
}

TEST(PlatformWords, AreThoseOfThisDesktop) {
    const PlatformWords words = freedesktop::desktopWords();
    EXPECT_EQ(words.hotkeyHint(overlay), u"Super Ctrl P"_s);
    EXPECT_EQ(words.keyInWindows(u"V"), u"Ctrl+V"_s);
    EXPECT_EQ(words.fileManager, u"file manager"_s);
    EXPECT_EQ(words.tray, u"tray"_s);
    EXPECT_EQ(words.remedies.screen, u"The desktop does not answer: try again"_s);
    EXPECT_EQ(words.remedies.camera, u"No camera can be opened: connect one, or join the group \"video\""_s);
    EXPECT_EQ(words.remedies.microphone,
              u"No microphone can be opened: connect one, or start the sound server"_s);
}

TEST(PlatformWords, AreReplacedByThoseOfAnotherPlatform) {
    const PlatformWords words = macWords();
    EXPECT_EQ(words.hotkeyHint(overlay), u"⌘ Ctrl P"_s);
    EXPECT_EQ(words.hotkeyName(overlay), u"Cmd+Ctrl+P"_s);
    EXPECT_EQ(words.hotkeyHint(everyModifier), u"⌘ Ctrl Option Shift Space"_s);
    EXPECT_EQ(words.hotkeyName({51, Shortcut::control}), u"Ctrl+Delete"_s);
    EXPECT_EQ(words.hotkeyName({117, Shortcut::control}), u"Ctrl+Forward Delete"_s);
    EXPECT_EQ(words.keyInWindows(u"V"), u"⌘V"_s);
}

} // namespace orvane::test
