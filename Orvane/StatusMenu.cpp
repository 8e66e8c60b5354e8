#include "Orvane/StatusMenu.h"

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

StatusMenuRow separator() {
    return {.title = {}, .isSeparator = true};
}

class Builder {
public:
    explicit Builder(const StatusMenuState& state)
        : m_state(state) {}

    std::vector<StatusMenuRow> build() const {
        std::vector<StatusMenuRow> rows;
        rows.reserve(20);
        if (m_state.isRecording) {
            rows.push_back(row(u"Stop Recording "_s + m_state.recordingAppName + u" (⌘ Ctrl R)"_s,
                               StatusAction::toggleRecording));
            rows.push_back(separator());
        } else {
            rows.push_back(row(u"Record Screen (⌘ Ctrl R)"_s, StatusAction::toggleRecording));
        }
        rows.push_back(row(u"Annotate Screen (⌘ Ctrl P)"_s, StatusAction::toggleOverlay));
        rows.push_back(row(u"Present / Draw (⌘ Ctrl D)"_s, StatusAction::togglePresentDraw));
        rows.push_back(row(u"Screenshot History (⌘ Ctrl H)"_s, StatusAction::toggleHistory));
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
};

} // namespace

std::vector<StatusMenuRow> statusMenuRows(const StatusMenuState& state) {
    return Builder(state).build();
}

} // namespace orvane
