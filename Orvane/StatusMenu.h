#pragma once

#include "OrvaneCore/platform/PlatformWords.h"

#include <QString>

#include <optional>
#include <set>
#include <vector>

namespace orvane {

/// What a row of the status item's menu asks for.
enum class StatusAction {
    toggleRecording,
    toggleOverlay,
    togglePresentDraw,
    toggleHistory,
    /// The payload is the device's id, or nothing for "None".
    selectCameraDevice,
    /// The payload is as for the camera.
    selectMicDevice,
    openSettings,
    replaySetup,
    clearMarkers,
    quit,
};

/// The cameras or the microphones to choose from, and the choice as it is.
struct DeviceChoice {
    struct Device {
        QString id;
        QString name;

        bool operator==(const Device&) const = default;
    };

    /// Off means that no device is used, whichever was chosen before.
    bool isOn = false;
    std::optional<QString> selectedId = {};
    std::vector<Device> devices = {};

    bool operator==(const DeviceChoice&) const = default;
};

/// All that the menu depends on.
struct StatusMenuState {
    bool isRecording = false;
    QString recordingAppName = {};
    DeviceChoice camera = {};
    DeviceChoice mic = {};
    int markerCount = 0;
    /// Rows that ask for one of these are shown disabled.
    std::set<StatusAction> unavailable = {};

    bool operator==(const StatusMenuState&) const = default;
};

/// One row: a separator, a row with a submenu, or one that asks for an action; without an action it only
/// tells something.
struct StatusMenuRow {
    QString title;
    bool isSeparator = false;
    bool isEnabled = true;
    bool isChecked = false;
    std::optional<StatusAction> action = std::nullopt;
    std::optional<QString> payload = std::nullopt;
    /// The key that chooses the row while the menu is open, together with the command key; may be empty.
    QString keyEquivalent = {};
    std::vector<StatusMenuRow> submenu = {};

    bool operator==(const StatusMenuRow&) const = default;
};

/// The rows from top to bottom. A pure function; any thread.
std::vector<StatusMenuRow> statusMenuRows(const StatusMenuState& state, const PlatformWords& words);

} // namespace orvane
