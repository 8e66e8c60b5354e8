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
