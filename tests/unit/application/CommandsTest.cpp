#include "Orvane/Commands.h"

#include "OrvaneCore/storage/StorageManager.h"
#include "tests/support/FakeHotkeys.h"
#include "tests/support/InMemorySettings.h"
#include "tests/support/MacWords.h"

#include <gtest/gtest.h>

#include <QJsonObject>
#include <QStringList>

#include <algorithm>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

/// Every action there is: the last one follows all the others.
std::vector<StatusAction> allActions() {
    std::vector<StatusAction> actions;
    for (int i = 0; i <= static_cast<int>(StatusAction::quit); ++i)
        actions.push_back(static_cast<StatusAction>(i));
    return actions;
}

/// The actions that rows ask for, in submenus too.
std::set<StatusAction> actionsOf(const std::vector<StatusMenuRow>& rows) {
    std::set<StatusAction> actions;
    for (const StatusMenuRow& row : rows) {
        if (row.action)
            actions.insert(*row.action);
        actions.merge(actionsOf(row.submenu));
    }
    return actions;
}

} // namespace

class CommandsTest : public testing::Test {
protected:
    std::function<void()> note(const QString& what) {
        return [this, what] { ran.append(what); };
    }

    /// Lets the hotkey's key go up; says what is logged then.
    QString press(const HotkeyDefinition& hotkey) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(hotkeys.press(hotkey.defaultShortcut), 1);
        return QString::fromStdString(testing::internal::GetCapturedStderr());
    }

    QStringList ran;
    InMemorySettings settings;
    StorageManager storage{settings, u"/home/somebody"_s};
    std::vector<Command> table = commandTable({.toggleRecording = note(u"recording"_s),
                                               .toggleOverlay = note(u"overlay"_s),
                                               .clearMarkers = note(u"clear"_s),
                                               .quit = note(u"quit"_s),
                                               .storage = storage});
    Commands commands{table};
    FakeHotkeys hotkeys;
    // Apart from the settings of the storage, so that what commands write there stands alone.
    InMemorySettings stored;
    PlatformWords words = macWords();
    KeyboardShortcuts shortcuts{stored, hotkeys, words};
};

TEST_F(CommandsTest, EveryHotkeyIsServedByOneRow) {
    for (const HotkeyDefinition& hotkey : KeyboardShortcuts::definitions) {
        EXPECT_EQ(std::count_if(table.begin(), table.end(),
                                [&](const Command& command) { return command.hotkey == hotkey.name; }),
                  1)
            << hotkey.storedName.toString().toStdString();
    }
}

TEST_F(CommandsTest, EveryActionOfTheMenuIsServedByOneRow) {
    for (const StatusAction action : allActions()) {
        EXPECT_EQ(std::count_if(table.begin(), table.end(),
                                [&](const Command& command) { return command.menuAction == action; }),
                  1)
            << static_cast<int>(action);
    }
    const std::vector<StatusAction> all = allActions();
    EXPECT_EQ(actionsOf(statusMenuRows({.markerCount = 1}, words)),
              std::set<StatusAction>(all.begin(), all.end()));
}

TEST_F(CommandsTest, EveryRowHasAnIdOfItsOwnAndIsReachedSomehow) {
    std::set<CommandId> ids;
    for (const Command& command : table) {
        EXPECT_TRUE(ids.insert(command.id).second) << static_cast<int>(command.id);
        EXPECT_TRUE(command.hotkey || command.menuAction) << static_cast<int>(command.id);
        ASSERT_TRUE(command.isAvailable) << static_cast<int>(command.id);
        EXPECT_TRUE(command.run || !command.isAvailable()) << static_cast<int>(command.id);
    }
}

TEST_F(CommandsTest, HotkeysRunWhatTheyAreNamedAfter) {
    commands.bindHotkeys(shortcuts);
    EXPECT_EQ(press(KeyboardShortcuts::definition(HotkeyName::toggleRecording)), u""_s);
    EXPECT_EQ(press(KeyboardShortcuts::definition(HotkeyName::toggleOverlay)), u""_s);
    EXPECT_EQ(ran, QStringList({u"recording"_s, u"overlay"_s}));
}

TEST_F(CommandsTest, HotkeysOfWhatIsNotThereAreToldByTheirStoredName) {
    commands.bindHotkeys(shortcuts);
    QString log;
    for (const HotkeyName name :
         {HotkeyName::togglePresentDraw, HotkeyName::togglePresentMode, HotkeyName::toggleHistory})
        log += press(KeyboardShortcuts::definition(name));
    EXPECT_EQ(log, u"orvane: Not available in this build: togglePresentDraw\n"
                   "orvane: Not available in this build: togglePresentMode\n"
                   "orvane: Not available in this build: toggleHistory\n"_s);
    EXPECT_EQ(ran, QStringList());
}

TEST_F(CommandsTest, TheMenuRunsWhatIsThere) {
    for (const StatusAction action : {StatusAction::toggleRecording, StatusAction::toggleOverlay,
                                      StatusAction::clearMarkers, StatusAction::quit})
        commands.perform(action, std::nullopt);
    EXPECT_EQ(ran, QStringList({u"recording"_s, u"overlay"_s, u"clear"_s, u"quit"_s}));
    EXPECT_EQ(settings.values(), QJsonObject());
}

TEST_F(CommandsTest, TheMenuDoesNothingForWhatIsNotThere) {
    const std::set<StatusAction> missing{StatusAction::togglePresentDraw, StatusAction::toggleHistory,
                                         StatusAction::openSettings, StatusAction::replaySetup};
    EXPECT_EQ(commands.unavailable(), missing);
    testing::internal::CaptureStderr();
    for (const StatusAction action : missing)
        commands.perform(action, u"payload"_s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(ran, QStringList());
    EXPECT_EQ(settings.values(), QJsonObject());
}

TEST_F(CommandsTest, ChoosingADeviceStoresItAndTurnsItOn) {
    commands.perform(StatusAction::selectCameraDevice, u"camera-2"_s);
    EXPECT_EQ(settings.values(),
              (QJsonObject{{u"CameraDeviceId"_s, u"camera-2"_s}, {u"EnableCamera"_s, true}}));
    commands.perform(StatusAction::selectCameraDevice, std::nullopt);
    EXPECT_EQ(settings.values(), (QJsonObject{{u"EnableCamera"_s, false}}));
    commands.perform(StatusAction::selectMicDevice, u"mic-1"_s);
    EXPECT_EQ(
        settings.values(),
        (QJsonObject{{u"EnableCamera"_s, false}, {u"MicDeviceId"_s, u"mic-1"_s}, {u"EnableMic"_s, true}}));
    commands.perform(StatusAction::selectMicDevice, std::nullopt);
    EXPECT_EQ(settings.values(), (QJsonObject{{u"EnableCamera"_s, false}, {u"EnableMic"_s, false}}));
}

TEST_F(CommandsTest, WhetherACommandIsAvailableIsAskedEachTime) {
    bool isThere = false;
    std::vector<std::optional<QString>> payloads;
    const Commands one(
        {{.id = CommandId::toggleHistory,
          .hotkey = HotkeyName::toggleHistory,
          .menuAction = StatusAction::toggleHistory,
          .isAvailable = [&] { return isThere; },
          .run = [&](const std::optional<QString>& payload) { payloads.push_back(payload); }}});
    one.bindHotkeys(shortcuts);
    const HotkeyDefinition& hotkey = KeyboardShortcuts::definition(HotkeyName::toggleHistory);

    EXPECT_EQ(press(hotkey), u"orvane: Not available in this build: toggleHistory\n"_s);
    one.perform(StatusAction::toggleHistory, u"a"_s);
    EXPECT_EQ(one.unavailable(), std::set<StatusAction>{StatusAction::toggleHistory});
    EXPECT_TRUE(payloads.empty());

    isThere = true;
    EXPECT_EQ(press(hotkey), u""_s);
    one.perform(StatusAction::toggleHistory, u"b"_s);
    EXPECT_EQ(one.unavailable(), std::set<StatusAction>());
    EXPECT_EQ(payloads, (std::vector<std::optional<QString>>{std::nullopt, u"b"_s}));
}

} // namespace orvane::test
