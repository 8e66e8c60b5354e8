#include "Orvane/Commands.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/storage/StorageManager.h"

#include <algorithm>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

bool always() {
    return true;
}

bool notInThisBuild() {
    return false;
}

/// For what no payload belongs to.
auto simply(std::function<void()> run) {
    return [run = std::move(run)](const std::optional<QString>&) { run(); };
}

/// The row for which a field has that value; null where there is none.
template <typename Value>
const Command* findRow(const std::vector<Command>& table, std::optional<Value> Command::*field, Value value) {
    const auto row = std::find_if(table.begin(), table.end(),
                                  [&](const Command& command) { return command.*field == value; });
    return row == table.end() ? nullptr : &*row;
}

} // namespace

std::vector<Command> commandTable(const CommandTargets& targets) {
    StorageManager& storage = targets.storage;
    return {
        {.id = CommandId::toggleRecording,
         .hotkey = HotkeyName::toggleRecording,
         .menuAction = StatusAction::toggleRecording,
         .isAvailable = always,
         .run = simply(targets.toggleRecording)},
        {.id = CommandId::toggleOverlay,
         .hotkey = HotkeyName::toggleOverlay,
         .menuAction = StatusAction::toggleOverlay,
         .isAvailable = always,
         .run = simply(targets.toggleOverlay)},
        {.id = CommandId::togglePresentDraw,
         .hotkey = HotkeyName::togglePresentDraw,
         .menuAction = StatusAction::togglePresentDraw,
         .isAvailable = notInThisBuild},
        {.id = CommandId::togglePresentMode,
         .hotkey = HotkeyName::togglePresentMode,
         .isAvailable = notInThisBuild},
        {.id = CommandId::toggleHistory,
         .hotkey = HotkeyName::toggleHistory,
         .menuAction = StatusAction::toggleHistory,
         .isAvailable = notInThisBuild},
        {.id = CommandId::selectCameraDevice,
         .menuAction = StatusAction::selectCameraDevice,
         .isAvailable = always,
         .run =
             [&storage](const std::optional<QString>& device) {
                 storage.setCameraDeviceId(device);
                 storage.setEnableCamera(device.has_value());
             }},
        {.id = CommandId::selectMicDevice,
         .menuAction = StatusAction::selectMicDevice,
         .isAvailable = always,
         .run =
             [&storage](const std::optional<QString>& device) {
                 storage.setMicDeviceId(device);
                 storage.setEnableMic(device.has_value());
             }},
        {.id = CommandId::openSettings,
         .menuAction = StatusAction::openSettings,
         .isAvailable = notInThisBuild},
        {.id = CommandId::replaySetup,
         .menuAction = StatusAction::replaySetup,
         .isAvailable = notInThisBuild},
        {.id = CommandId::clearMarkers,
         .menuAction = StatusAction::clearMarkers,
         .isAvailable = always,
         .run = simply(targets.clearMarkers)},
        {.id = CommandId::quit,
         .menuAction = StatusAction::quit,
         .isAvailable = always,
         .run = simply(targets.quit)},
    };
}

Commands::Commands(std::vector<Command> table)
    : m_table(std::move(table)) {}

void Commands::bindHotkeys(KeyboardShortcuts& shortcuts) const {
    for (const HotkeyDefinition& hotkey : KeyboardShortcuts::definitions)
        shortcuts.onKeyUp(hotkey.name, [this, &hotkey] { press(hotkey); });
}

void Commands::press(const HotkeyDefinition& hotkey) const {
    const Command* command = findRow(m_table, &Command::hotkey, hotkey.name);
    if (command != nullptr && command->isAvailable()) {
        command->run(std::nullopt);
    } else {
        logUnavailable(hotkey.storedName);
    }
}

void Commands::perform(StatusAction action, const std::optional<QString>& payload) const {
    const Command* command = findRow(m_table, &Command::menuAction, action);
    if (command != nullptr && command->isAvailable())
        command->run(payload);
}

std::set<StatusAction> Commands::unavailable() const {
    std::set<StatusAction> found;
    for (const Command& command : m_table) {
        if (command.menuAction && !command.isAvailable())
            found.insert(*command.menuAction);
    }
    return found;
}

void logUnavailable(QStringView what) {
    logLine(u"Not available in this build: "_s + what.toString());
}

} // namespace orvane
