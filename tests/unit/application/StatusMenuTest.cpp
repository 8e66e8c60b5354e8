#include "Orvane/StatusMenu.h"
#include "OrvanePlatform/freedesktop/DesktopWords.h"
#include "tests/support/MacWords.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

const QString line = u"---"_s;

std::vector<StatusMenuRow> menu(const StatusMenuState& state) {
    return statusMenuRows(state, macWords());
}

QStringList titles(const std::vector<StatusMenuRow>& rows) {
    QStringList found;
    for (const StatusMenuRow& row : rows)
        found << (row.isSeparator ? line : row.title);
    return found;
}

/// The first row of that title; a row of no title where there is none.
StatusMenuRow rowNamed(const std::vector<StatusMenuRow>& rows, const QString& title) {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&title](const StatusMenuRow& row) { return row.title == title; });
    return found == rows.end() ? StatusMenuRow{} : *found;
}

QStringList checked(const StatusMenuRow& menu) {
    QStringList found;
    for (const StatusMenuRow& row : menu.submenu) {
        if (row.isChecked)
            found << row.title;
    }
    return found;
}

DeviceChoice twoDevices() {
    return {.devices = {{u"id-2"_s, u"Second"_s}, {u"id-1"_s, u"First"_s}}};
}

} // namespace

TEST(StatusMenu, HasTheseRowsWhenNothingIsGoingOn) {
    EXPECT_EQ(
        titles(menu({})),
        (QStringList{u"Record Screen (⌘ Ctrl R)"_s, u"Annotate Screen (⌘ Ctrl P)"_s,
                     u"Present / Draw (⌘ Ctrl D)"_s, u"Screenshot History (⌘ Ctrl H)"_s, line, u"Camera"_s,
                     u"Mic"_s, line, u"Settings..."_s, u"Replay Setup…"_s, line, u"Quit Orvane"_s}));
}

TEST(StatusMenu, OffersToStopARecordingByName) {
    const auto rows = menu({.isRecording = true, .recordingAppName = u"Text Editor"_s});
    EXPECT_EQ(
        titles(rows),
        (QStringList{u"Stop Recording Text Editor (⌘ Ctrl R)"_s, line, u"Annotate Screen (⌘ Ctrl P)"_s,
                     u"Present / Draw (⌘ Ctrl D)"_s, u"Screenshot History (⌘ Ctrl H)"_s, line, u"Camera"_s,
                     u"Mic"_s, line, u"Settings..."_s, u"Replay Setup…"_s, line, u"Quit Orvane"_s}));
    EXPECT_EQ(rows.front().action, StatusAction::toggleRecording);
}

TEST(StatusMenu, NamesHotkeysAsTheDesktopDoes) {
    const PlatformWords words = freedesktop::desktopWords();
    EXPECT_EQ(titles(statusMenuRows({.markerCount = 2}, words)),
              (QStringList{u"Record Screen (Super Ctrl R)"_s, u"Annotate Screen (Super Ctrl P)"_s,
                           u"Present / Draw (Super Ctrl D)"_s, u"Screenshot History (Super Ctrl H)"_s, line,
                           u"Camera"_s, u"Mic"_s, line, u"Settings..."_s, u"Replay Setup…"_s, line,
                           u"2 marker(s) active"_s, u"Clear Markers"_s, line, u"Quit Orvane"_s}));
    EXPECT_EQ(
        statusMenuRows({.isRecording = true, .recordingAppName = u"Text Editor"_s}, words).front().title,
        u"Stop Recording Text Editor (Super Ctrl R)"_s);
}

TEST(StatusMenu, RecordingNameIsOfNoAccountWhenNotRecording) {
    EXPECT_EQ(menu({.recordingAppName = u"Left over"_s}), menu({}));
}

TEST(StatusMenu, TellsOfMarkersAndClearsThem) {
    const auto rows = menu({.markerCount = 3});
    EXPECT_EQ(titles(rows).mid(11),
              (QStringList{u"3 marker(s) active"_s, u"Clear Markers"_s, line, u"Quit Orvane"_s}));
    EXPECT_EQ(titles(rows).at(10), line);
    const StatusMenuRow count = rowNamed(rows, u"3 marker(s) active"_s);
    EXPECT_FALSE(count.isEnabled);
    EXPECT_FALSE(count.action.has_value());
    const StatusMenuRow clear = rowNamed(rows, u"Clear Markers"_s);
    EXPECT_TRUE(clear.isEnabled);
    EXPECT_EQ(clear.action, StatusAction::clearMarkers);
}

TEST(StatusMenu, CountsOneMarkerWithTheSameWords) {
    EXPECT_TRUE(titles(menu({.markerCount = 1})).contains(u"1 marker(s) active"_s));
}

TEST(StatusMenu, EveryRowAsksForItsAction) {
    const auto rows = menu({.markerCount = 1});
    const std::vector<std::pair<QString, StatusAction>> expected = {
        {u"Record Screen (⌘ Ctrl R)"_s, StatusAction::toggleRecording},
        {u"Annotate Screen (⌘ Ctrl P)"_s, StatusAction::toggleOverlay},
        {u"Present / Draw (⌘ Ctrl D)"_s, StatusAction::togglePresentDraw},
        {u"Screenshot History (⌘ Ctrl H)"_s, StatusAction::toggleHistory},
        {u"Settings..."_s, StatusAction::openSettings},
        {u"Replay Setup…"_s, StatusAction::replaySetup},
        {u"Clear Markers"_s, StatusAction::clearMarkers},
        {u"Quit Orvane"_s, StatusAction::quit},
    };
    for (const auto& [title, action] : expected) {
        const StatusMenuRow row = rowNamed(rows, title);
        EXPECT_EQ(row.action, action) << title.toStdString();
        EXPECT_TRUE(row.isEnabled) << title.toStdString();
        EXPECT_FALSE(row.isChecked) << title.toStdString();
        EXPECT_FALSE(row.payload.has_value()) << title.toStdString();
        EXPECT_TRUE(row.submenu.empty()) << title.toStdString();
    }
}

TEST(StatusMenu, KeysAreThoseOfSettingsAndQuitAlone) {
    QStringList keys;
    for (const StatusMenuRow& row : menu({.isRecording = true, .markerCount = 2})) {
        if (!row.keyEquivalent.isEmpty())
            keys << row.title + u'|' + row.keyEquivalent;
    }
    EXPECT_EQ(keys, (QStringList{u"Settings...|,"_s, u"Quit Orvane|q"_s}));
}

TEST(StatusMenu, DevicesComeInTheirOrderAfterNone) {
    StatusMenuState state;
    state.camera = twoDevices();
    const StatusMenuRow camera = rowNamed(menu(state), u"Camera"_s);
    EXPECT_EQ(titles(camera.submenu), (QStringList{u"None"_s, line, u"Second"_s, u"First"_s}));
    EXPECT_FALSE(camera.action.has_value());
    EXPECT_EQ(camera.submenu[0].action, StatusAction::selectCameraDevice);
    EXPECT_FALSE(camera.submenu[0].payload.has_value());
    EXPECT_EQ(camera.submenu[2].action, StatusAction::selectCameraDevice);
    EXPECT_EQ(camera.submenu[2].payload, u"id-2"_s);
    EXPECT_EQ(camera.submenu[3].payload, u"id-1"_s);
}

TEST(StatusMenu, MicrophonesAskForTheirOwnAction) {
    StatusMenuState state;
    state.mic = twoDevices();
    const auto rows = menu(state);
    const StatusMenuRow mic = rowNamed(rows, u"Mic"_s);
    EXPECT_EQ(titles(mic.submenu), (QStringList{u"None"_s, line, u"Second"_s, u"First"_s}));
    EXPECT_EQ(mic.submenu[0].action, StatusAction::selectMicDevice);
    EXPECT_EQ(mic.submenu[3].action, StatusAction::selectMicDevice);
    EXPECT_EQ(mic.submenu[3].payload, u"id-1"_s);
    EXPECT_EQ(titles(rowNamed(rows, u"Camera"_s).submenu), (QStringList{u"None"_s, line}));
}

TEST(StatusMenu, NoneIsCheckedWhenTheDeviceIsOff) {
    StatusMenuState state;
    state.camera = twoDevices();
    state.camera.selectedId = u"id-1"_s;
    EXPECT_EQ(checked(rowNamed(menu(state), u"Camera"_s)), QStringList{u"None"_s});
}

TEST(StatusMenu, TheSelectedDeviceIsCheckedWhenOn) {
    StatusMenuState state;
    state.mic = twoDevices();
    state.mic.isOn = true;
    state.mic.selectedId = u"id-1"_s;
    EXPECT_EQ(checked(rowNamed(menu(state), u"Mic"_s)), QStringList{u"First"_s});
    EXPECT_EQ(checked(rowNamed(menu(state), u"Camera"_s)), QStringList{u"None"_s});
}

TEST(StatusMenu, NothingIsCheckedForADeviceThatIsGoneOrWasNeverChosen) {
    StatusMenuState state;
    state.camera = twoDevices();
    state.camera.isOn = true;
    EXPECT_EQ(checked(rowNamed(menu(state), u"Camera"_s)), QStringList{});
    state.camera.selectedId = u"unplugged"_s;
    EXPECT_EQ(checked(rowNamed(menu(state), u"Camera"_s)), QStringList{});
}

TEST(StatusMenu, UnavailableActionsAreShownDisabled) {
    StatusMenuState state;
    state.camera = twoDevices();
    state.unavailable = {StatusAction::togglePresentDraw, StatusAction::selectCameraDevice};
    const auto rows = menu(state);
    EXPECT_EQ(titles(rows), titles(menu({})));
    QStringList disabled;
    for (const StatusMenuRow& row : rows) {
        if (!row.isEnabled)
            disabled << row.title;
    }
    EXPECT_EQ(disabled, QStringList{u"Present / Draw (⌘ Ctrl D)"_s});
    const StatusMenuRow camera = rowNamed(rows, u"Camera"_s);
    EXPECT_FALSE(camera.submenu[0].isEnabled);
    EXPECT_FALSE(camera.submenu[2].isEnabled);
    EXPECT_TRUE(rowNamed(rows, u"Mic"_s).submenu[0].isEnabled);
}

} // namespace orvane::test
