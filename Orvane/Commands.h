#pragma once

#include "Orvane/StatusMenu.h"
#include "OrvaneCore/settings/KeyboardShortcuts.h"

#include <QString>
#include <QStringView>

#include <functional>
#include <optional>
#include <set>
#include <vector>

namespace orvane {

class StorageManager;

enum class CommandId {
    toggleRecording,
    toggleOverlay,
    togglePresentDraw,
    togglePresentMode,
    toggleHistory,
    selectCameraDevice,
    selectMicDevice,
    openSettings,
    replaySetup,
    clearMarkers,
    quit,
};

/// Something that the human can ask for by a hotkey, by a row of the status menu, or by both.
struct Command {
    CommandId id;
    std::optional<HotkeyName> hotkey = {};
    std::optional<StatusAction> menuAction = {};
    /// Asked each time; what is not available is not run.
    std::function<bool()> isAvailable = {};
    /// Of a menu's row with the row's payload, of a hotkey with none. May be empty where it is never
    /// available.
    std::function<void(const std::optional<QString>& payload)> run = {};
};

/// What the commands do. The storage outlives them.
struct CommandTargets {
    std::function<void()> toggleRecording;
    std::function<void()> toggleOverlay;
    std::function<void()> clearMarkers;
    std::function<void()> quit;
    StorageManager& storage;
};

/// All there are. Each hotkey and each action of the menu has one row.
std::vector<Command> commandTable(const CommandTargets& targets);

/// Serves hotkeys and menu by a table. Main thread.
class Commands {
public:
    explicit Commands(std::vector<Command> table);

    /// Asks for all the hotkeys; this object outlives their last use.
    void bindHotkeys(KeyboardShortcuts& shortcuts) const;

    /// What a row of the menu asks for; nothing while that is not available, which the menu shows.
    void perform(StatusAction action, const std::optional<QString>& payload) const;

    /// The actions whose rows are to be shown disabled now.
    std::set<StatusAction> unavailable() const;

private:
    void press(const HotkeyDefinition& hotkey) const;

    std::vector<Command> m_table;
};

/// One line in the log for what somebody asked for and this build does not have.
void logUnavailable(QStringView what);

} // namespace orvane
