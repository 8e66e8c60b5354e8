#include "OrvaneCore/settings/KeyboardShortcuts.h"
#include "tests/support/FakeHotkeys.h"
#include "tests/support/InMemorySettings.h"
#include "tests/support/MacWords.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;
using State = GlobalHotkeys::State;

namespace {

constexpr Shortcut overlayDefault{35, 4352};
constexpr Shortcut recordingDefault{15, 4352};
constexpr Shortcut other{40, Shortcut::option | Shortcut::shift};
const QString overlayKey = u"KeyboardShortcuts_toggleOverlay"_s;
const QString overlayStored = uR"({"carbonKeyCode":35,"carbonModifiers":4352})"_s;

class KeyboardShortcutsTest : public testing::Test {
protected:
    /// An action that counts its calls.
    std::function<void()> counting(int& count) {
        return [&count] { ++count; };
    }

    InMemorySettings settings;
    FakeHotkeys hotkeys;
    PlatformWords words = macWords();
    KeyboardShortcuts shortcuts{settings, hotkeys, words};
};

} // namespace

TEST_F(KeyboardShortcutsTest, HasFiveNamesInTheirOrder) {
    QStringList rows;
    for (const HotkeyDefinition& row : KeyboardShortcuts::definitions) {
        rows << u"%1 %2 %3 %4"_s.arg(row.storedName, row.label)
                    .arg(row.defaultShortcut.carbonKeyCode)
                    .arg(row.defaultShortcut.carbonModifiers);
        EXPECT_EQ(&KeyboardShortcuts::definition(row.name), &row);
    }
    EXPECT_EQ(rows,
              (QStringList{u"toggleOverlay Annotate Screen: 35 4352"_s,
                           u"togglePresentDraw Present / Draw: 2 4352"_s,
                           u"togglePresentMode Draw ⇄ Click-through: 0 4352"_s,
                           u"toggleRecording Record Screen: 15 4352"_s, u"toggleHistory History: 4 4352"_s}));
}

TEST_F(KeyboardShortcutsTest, TouchesNothingBeforeItIsAsked) {
    EXPECT_TRUE(settings.writes().empty());
    EXPECT_EQ(hotkeys.additions, 0);
}

TEST_F(KeyboardShortcutsTest, WritesTheDefaultAtTheFirstTouch) {
    EXPECT_EQ(shortcuts.getShortcut(HotkeyName::toggleOverlay), overlayDefault);
    EXPECT_EQ(settings.values(), (QJsonObject{{overlayKey, overlayStored}}));
    EXPECT_EQ(shortcuts.getShortcut(HotkeyName::toggleOverlay), overlayDefault);
    EXPECT_EQ(settings.writes().size(), 1U);
}

TEST_F(KeyboardShortcutsTest, WritesTheDefaultWhenAnActionIsGiven) {
    shortcuts.onKeyUp(HotkeyName::toggleHistory, [] {});
    EXPECT_EQ(settings.values(), (QJsonObject{{u"KeyboardShortcuts_toggleHistory"_s,
                                               uR"({"carbonKeyCode":4,"carbonModifiers":4352})"_s}}));
}

TEST_F(KeyboardShortcutsTest, ReadsWhatIsStoredAtTheMomentOfUse) {
    settings.setValue(overlayKey, other.toJson());
    EXPECT_EQ(shortcuts.getShortcut(HotkeyName::toggleOverlay), other);
    settings.setValue(overlayKey, overlayStored);
    EXPECT_EQ(shortcuts.getShortcut(HotkeyName::toggleOverlay), overlayDefault);
}

TEST_F(KeyboardShortcutsTest, FiresTheActionOfTheNameAlone) {
    int overlay = 0;
    int recording = 0;
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, counting(overlay));
    shortcuts.onKeyUp(HotkeyName::toggleRecording, counting(recording));
    EXPECT_EQ(hotkeys.press(overlayDefault), 1);
    EXPECT_EQ(overlay, 1);
    EXPECT_EQ(recording, 0);
    EXPECT_EQ(hotkeys.press(recordingDefault), 1);
    EXPECT_EQ(recording, 1);
}

TEST_F(KeyboardShortcutsTest, CallsSeveralActionsInTheirOrder) {
    QString calls;
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, [&] { calls += u'a'; });
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, [&] { calls += u'b'; });
    EXPECT_EQ(hotkeys.press(overlayDefault), 1);
    EXPECT_EQ(calls, u"ab"_s);
}

TEST_F(KeyboardShortcutsTest, AnActionMayAddOthersThatAreCalledFromTheNextTimeOn) {
    QString calls;
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, [&] {
        calls += u'a';
        // Enough to move the list elsewhere.
        for (int i = 0; i < 100; ++i)
            shortcuts.onKeyUp(HotkeyName::toggleOverlay, [&] { calls += u'+'; });
    });
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, [&] { calls += u'b'; });
    hotkeys.press(overlayDefault);
    EXPECT_EQ(calls, u"ab"_s);
    calls.clear();
    hotkeys.press(overlayDefault);
    EXPECT_EQ(calls, u"ab"_s + QString(100, u'+'));
}

TEST_F(KeyboardShortcutsTest, ChangesAtOnce) {
    int fired = 0;
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, counting(fired));
    shortcuts.setShortcut(other, HotkeyName::toggleOverlay);
    EXPECT_EQ(settings.values(),
              (QJsonObject{{overlayKey, uR"({"carbonKeyCode":40,"carbonModifiers":2560})"_s}}));
    EXPECT_EQ(hotkeys.press(overlayDefault), 0);
    EXPECT_EQ(hotkeys.press(other), 1);
    EXPECT_EQ(fired, 1);
}

TEST_F(KeyboardShortcutsTest, AsksForNoKeyWithoutAnAction) {
    shortcuts.setShortcut(other, HotkeyName::toggleOverlay);
    EXPECT_EQ(hotkeys.additions, 0);
    EXPECT_EQ(shortcuts.state(HotkeyName::toggleOverlay), std::nullopt);
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, [] {});
    EXPECT_EQ(hotkeys.press(other), 1);
}

TEST_F(KeyboardShortcutsTest, AClearedHotkeyFiresNoKey) {
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, [] {});
    shortcuts.setShortcut(std::nullopt, HotkeyName::toggleOverlay);
    EXPECT_EQ(settings.values(), (QJsonObject{{overlayKey, false}}));
    EXPECT_TRUE(hotkeys.hotkeys.empty());
    EXPECT_EQ(shortcuts.getShortcut(HotkeyName::toggleOverlay), std::nullopt);
    EXPECT_EQ(shortcuts.state(HotkeyName::toggleOverlay), std::nullopt);
}

TEST_F(KeyboardShortcutsTest, AClearedHotkeySurvivesARelaunch) {
    shortcuts.setShortcut(std::nullopt, HotkeyName::toggleOverlay);
    KeyboardShortcuts relaunched(settings, hotkeys, words);
    relaunched.onKeyUp(HotkeyName::toggleOverlay, [] {});
    EXPECT_EQ(relaunched.getShortcut(HotkeyName::toggleOverlay), std::nullopt);
    EXPECT_TRUE(hotkeys.hotkeys.empty());
    EXPECT_EQ(settings.values(), (QJsonObject{{overlayKey, false}}));
}

TEST_F(KeyboardShortcutsTest, AClearedHotkeyCanBeGivenAnew) {
    int fired = 0;
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, counting(fired));
    shortcuts.setShortcut(std::nullopt, HotkeyName::toggleOverlay);
    shortcuts.setShortcut(other, HotkeyName::toggleOverlay);
    EXPECT_EQ(hotkeys.press(other), 1);
    EXPECT_EQ(fired, 1);
}

TEST_F(KeyboardShortcutsTest, AnActionMayChangeItsOwnShortcut) {
    int fired = 0;
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, [&] {
        ++fired;
        shortcuts.setShortcut(other, HotkeyName::toggleOverlay);
        shortcuts.onKeyUp(HotkeyName::toggleOverlay, [&] { fired += 10; });
    });
    EXPECT_EQ(hotkeys.press(overlayDefault), 1);
    EXPECT_EQ(fired, 1);
    EXPECT_EQ(hotkeys.press(other), 1);
    EXPECT_EQ(fired, 12);
}

TEST_F(KeyboardShortcutsTest, LetsGoOfItsKeysInTheEnd) {
    {
        KeyboardShortcuts brief(settings, hotkeys, words);
        brief.onKeyUp(HotkeyName::toggleOverlay, [] {});
        EXPECT_EQ(hotkeys.hotkeys.size(), 1U);
    }
    EXPECT_TRUE(hotkeys.hotkeys.empty());
}

TEST_F(KeyboardShortcutsTest, ReportsAConflictInOneLineThatSaysWhatToDo) {
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, [] {});
    shortcuts.onKeyUp(HotkeyName::toggleRecording, [] {});
    testing::internal::CaptureStderr();
    hotkeys.tell(overlayDefault, State::active);
    hotkeys.tell(recordingDefault, State::conflicting);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: the hotkey Cmd+Ctrl+R (Record Screen) is held by another program. Choose another one "
              "in Settings, or free it in that program and restart Orvane.\n");
    EXPECT_EQ(shortcuts.state(HotkeyName::toggleOverlay), State::active);
    EXPECT_EQ(shortcuts.state(HotkeyName::toggleRecording), State::conflicting);
}

TEST_F(KeyboardShortcutsTest, ReportsTheEndOfAConflict) {
    shortcuts.onKeyUp(HotkeyName::toggleRecording, [] {});
    testing::internal::CaptureStderr();
    hotkeys.tell(recordingDefault, State::conflicting);
    testing::internal::GetCapturedStderr();
    testing::internal::CaptureStderr();
    hotkeys.tell(recordingDefault, State::active);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: the hotkey Cmd+Ctrl+R (Record Screen) works now\n");
}

TEST_F(KeyboardShortcutsTest, TriesAConflictAgainWhenItIsSetAgain) {
    shortcuts.onKeyUp(HotkeyName::toggleRecording, [] {});
    testing::internal::CaptureStderr();
    hotkeys.tell(recordingDefault, State::conflicting);
    testing::internal::GetCapturedStderr();
    shortcuts.setShortcut(recordingDefault, HotkeyName::toggleRecording);
    EXPECT_EQ(hotkeys.additions, 2);
    EXPECT_EQ(hotkeys.hotkeys.size(), 1U);
    EXPECT_EQ(shortcuts.state(HotkeyName::toggleRecording), State::pending);
}

class DamagedHotkey : public testing::TestWithParam<QJsonValue> {};

TEST_P(DamagedHotkey, IsKeptWhileItsDefaultHolds) {
    InMemorySettings settings(QJsonObject{{overlayKey, GetParam()}});
    FakeHotkeys hotkeys;
    const PlatformWords words = macWords();
    KeyboardShortcuts shortcuts(settings, hotkeys, words);
    testing::internal::CaptureStderr();
    EXPECT_EQ(shortcuts.getShortcut(HotkeyName::toggleOverlay), overlayDefault);
    shortcuts.onKeyUp(HotkeyName::toggleOverlay, [] {});
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "orvane: the setting KeyboardShortcuts_toggleOverlay holds no hotkey that this version can read; "
        "Cmd+Ctrl+P is used until another one is chosen in Settings\n");
    EXPECT_EQ(hotkeys.press(overlayDefault), 1);
    EXPECT_TRUE(settings.writes().empty());
    shortcuts.setShortcut(other, HotkeyName::toggleOverlay);
    EXPECT_EQ(settings.value(overlayKey), QJsonValue(other.toJson()));
}

INSTANTIATE_TEST_SUITE_P(Values, DamagedHotkey,
                         testing::Values(QJsonValue(u"Super+P"_s), QJsonValue(u""_s), QJsonValue(true),
                                         QJsonValue(35), QJsonValue(QJsonValue::Null),
                                         QJsonValue(QJsonObject{{u"carbonKeyCode"_s, 35},
                                                                {u"carbonModifiers"_s, 4352}})));

} // namespace orvane::test
