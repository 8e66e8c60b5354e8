#include "Orvane/HumanRecording.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/capture/CaptureFailure.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvaneCore/recording/ScreenRecorder.h"
#include "OrvaneCore/settings/KeyboardShortcuts.h"
#include "OrvaneCore/storage/StorageManager.h"

#include <exception>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 intervalMs = 1000;
constexpr double toastSeconds = 4.0;

QString clipboardText(const QString& appName, const QString& sessionId, const QString& folder) {
    return u"[Orvane] Recording of "_s + appName + u"\nSession: "_s + sessionId + u"\nTimeline: "_s + folder +
           u"/SESSION.md\nStart frame: "_s + folder + u"/frame-000-start.png\n"_s;
}

/// Why a recording did not begin, for the human.
QString failedStartText(const std::exception& error, const PlatformWords& words) {
    // While one of the human's own goes on, none is begun.
    if (dynamic_cast<const AlreadyRecording*>(&error) != nullptr)
        return u"An agent is recording: try again when it has stopped"_s;
    return captureFailureText(error, words);
}

} // namespace

QString recordingName(const RecordingTarget& target) {
    if (const auto* window = std::get_if<WindowTarget>(&target))
        return window->appName;
    if (const auto* region = std::get_if<RegionTarget>(&target)) {
        return u"Region (%1×%2)"_s.arg(static_cast<qint64>(region->rectPoints.width()))
            .arg(static_cast<qint64>(region->rectPoints.height()));
    }
    return u"Full Screen"_s;
}

HumanRecording::HumanRecording(ScreenRecorder& recorder, WindowDiscovery& discovery,
                               const StorageManager& storage, TaskRunner& tasks, View& view,
                               const PlatformWords& words, TargetChooser chooseTarget)
    : m_recorder(recorder)
    , m_discovery(discovery)
    , m_storage(storage)
    , m_tasks(tasks)
    , m_view(view)
    , m_words(words)
    , m_chooseTarget(std::move(chooseTarget)) {}

void HumanRecording::toggle() {
    if (m_isRecording) {
        stop();
        return;
    }
    if (m_isStarting) {
        logLine(u"recording start already in progress");
        return;
    }
    m_isStarting = true;
    m_chooseTarget([this](const std::optional<RecordingTarget>& target) { start(target); });
}

void HumanRecording::start(const std::optional<RecordingTarget>& target) {
    if (!target) {
        logLine(u"recording cancelled");
        m_isStarting = false;
        return;
    }
    m_tasks.run([this, target = *target]() -> TaskRunner::Continuation {
        const QString name = recordingName(target);
        // A window that cannot be raised is recorded where it is.
        if (std::holds_alternative<WindowTarget>(target))
            m_discovery.activate(name);
        try {
            m_recorder.startRecording(target, intervalMs, RecordingSource::human);
        } catch (const std::exception& error) {
            logLine(u"recording failed: "_s + QString::fromUtf8(error.what()));
            clearFailedStart();
            return [this, reason = failedStartText(error, m_words)] { failedToStart(reason); };
        }
        return [this, name] { started(name); };
    });
}

void HumanRecording::started(const QString& name) {
    m_isRecording = true;
    m_isStarting = false;
    m_appName = name;
    m_view.recordingChanged();
    logLine(u"human recording started for "_s + name);
}

void HumanRecording::failedToStart(const QString& reason) {
    m_isStarting = false;
    m_view.showToast(u"Nothing was recorded"_s, reason, u"exclamationmark.triangle.fill"_s, toastSeconds);
}

/// A recording whose first picture cannot be taken counts as going on until somebody stops it. Nobody but the
/// human starts recordings of the human's, so one that is there now is the one that has failed.
void HumanRecording::clearFailedStart() {
    if (m_recorder.recordingSource() != RecordingSource::human)
        return;
    try {
        m_recorder.stopRecording();
    } catch (const std::exception& error) {
        logLine(u"stop recording failed: "_s + QString::fromUtf8(error.what()));
    }
}

void HumanRecording::stop() {
    ++m_stops;
    m_tasks.run([this, name = m_appName]() -> TaskRunner::Continuation {
        try {
            return [this, sessionId = m_recorder.stopRecording(), name] {
                --m_stops;
                stopped(sessionId, name);
            };
        } catch (const NotRecording& error) {
            logLine(u"stop recording failed: "_s + error.description());
            return [this] {
                // The human may have asked twice, and then the other stop has the end to tell.
                if (--m_stops == 0)
                    takeBack();
            };
        } catch (const std::exception& error) {
            logLine(u"stop recording failed: "_s + QString::fromUtf8(error.what()));
            return [this] { --m_stops; };
        }
    });
}

void HumanRecording::takeBack() {
    m_isRecording = false;
    m_appName.clear();
    m_view.recordingChanged();
}

void HumanRecording::stopped(const QString& sessionId, const QString& appName) {
    takeBack();
    logLine(u"human recording stopped (session "_s + sessionId + u')');
    const QString folder = m_storage.displayPath(m_storage.sessionDir(sessionId));
    m_view.copyToClipboard(clipboardText(appName, sessionId, folder));
    const Shortcut& history = KeyboardShortcuts::definition(HotkeyName::toggleHistory).defaultShortcut;
    m_view.showToast(u"Recording saved"_s,
                     u"Copied to clipboard · "_s + m_words.hotkeyHint(history) + u" for GIF export"_s,
                     u"checkmark.circle.fill"_s, toastSeconds);
}

} // namespace orvane
