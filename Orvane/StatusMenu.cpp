#include "Orvane/StatusMenu.h"

#include "OrvaneCore/settings/KeyboardShortcuts.h"

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

StatusMenuRow separator() {
    return {.title = {}, .isSeparator = true};
}

class Builder {
public:
    Builder(const StatusMenuState& state, const PlatformWords& words)
        : m_state(state)
        , m_words(words) {}

    std::vector<StatusMenuRow> build() const {
        std::vector<StatusMenuRow> rows;
        rows.reserve(20);
        if (m_state.isRecording) {
            rows.push_back(
                row(withHotkey(u"Stop Recording "_s + m_state.recordingAppName, HotkeyName::toggleRecording),
                    StatusAction::toggleRecording));
            rows.push_back(separator());
        } else {
            rows.push_back(row(withHotkey(u"Record Screen"_s, HotkeyName::toggleRecording),
                               StatusAction::toggleRecording));
        }
        rows.push_back(
            row(withHotkey(u"Annotate Screen"_s, HotkeyName::toggleOverlay), StatusAction::toggleOverlay));
        rows.push_back(row(withHotkey(u"Present / Draw"_s, HotkeyName::togglePresentDraw),
                           StatusAction::togglePresentDraw));
        rows.push_back(
            row(withHotkey(u"Screenshot History"_s, HotkeyName::toggleHistory), StatusAction::toggleHistory));
        rows.push_back(separator());
        rows.push_back(devices(u"Camera"_s, m_state.camera, StatusAction::selectCameraDevice));
        rows.push_back(devices(u"Mic"_s, m_state.mic, StatusAction::selectMicDevice));
        rows.push_back(separator());
        rows.push_back(row(u"Settings..."_s, StatusAction::openSettings, u","_s));
        rows.push_back(row(u"Replay Setup…"_s, StatusAction::replaySetup));
        rows.push_back(separator());
        if (m_state.markerCount > 0) {
            rows.push_back(
                {.title = QString::number(m_state.markerCount) + u" marker(s) active"_s, .isEnabled = false});
            rows.push_back(row(u"Clear Markers"_s, StatusAction::clearMarkers));
            rows.push_back(separator());
        }
        rows.push_back(row(u"Quit Orvane"_s, StatusAction::quit, u"q"_s));
        return rows;
    }

private:
    /// The hotkey that the command has to begin with: a user's own is not followed.
    QString withHotkey(const QString& title, HotkeyName name) const {
        const Shortcut& shortcut = KeyboardShortcuts::definition(name).defaultShortcut;
        return title + u" ("_s + m_words.hotkeyHint(shortcut) + u')';
    }

    StatusMenuRow row(const QString& title, StatusAction action, const QString& keyEquivalent = {}) const {
        return {.title = title,
                .isEnabled = !m_state.unavailable.contains(action),
                .action = action,
                .keyEquivalent = keyEquivalent};
    }

    StatusMenuRow devices(const QString& title, const DeviceChoice& choice, StatusAction action) const {
        std::vector<StatusMenuRow> rows;
        rows.reserve(choice.devices.size() + 2);
        StatusMenuRow none = row(u"None"_s, action);
        none.isChecked = !choice.isOn;
        rows.push_back(none);
        rows.push_back(separator());
        for (const DeviceChoice::Device& device : choice.devices) {
            StatusMenuRow entry = row(device.name, action);
            entry.payload = device.id;
            entry.isChecked = choice.isOn && choice.selectedId == device.id;
            rows.push_back(entry);
        }
        return {.title = title, .submenu = std::move(rows)};
    }

    const StatusMenuState& m_state;
    const PlatformWords& m_words;
};

} // namespace

std::vector<StatusMenuRow> statusMenuRows(const StatusMenuState& state, const PlatformWords& words) {
    return Builder(state, words).build();
}

} // namespace orvane
