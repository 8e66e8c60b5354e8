#pragma once

#include "OrvaneCore/base/TaskRunner.h"
#include "OrvaneCore/platform/PlatformWords.h"
#include "OrvaneCore/recording/RecordingTarget.h"

#include <QString>

#include <functional>
#include <optional>

namespace orvane {

class ScreenRecorder;
class StorageManager;
class WindowDiscovery;

/// A recording that the human starts and stops: what is called when, and what follows from failures. An
/// agent's recordings do not come by here. Main thread; the recorder's calls, which may take long, are tasks.
class HumanRecording {
public:
    /// What the human sees and gets.
    class View {
    public:
        virtual ~View() = default;
        View(const View&) = delete;
        View& operator=(const View&) = delete;

        /// `isRecording` or `appName` has changed.
        virtual void recordingChanged() = 0;
        virtual void copyToClipboard(const QString& text) = 0;
        virtual void showToast(const QString& title, const QString& subtitle, const QString& icon,
                               double seconds) = 0;

    protected:
        View() = default;
    };

    /// Lets the human choose and calls back once, on the main thread; nothing: the human does not want to.
    using TargetChooser = std::function<void(std::function<void(std::optional<RecordingTarget>)>)>;

    /// All but the chooser outlive this object.
    HumanRecording(ScreenRecorder& recorder, WindowDiscovery& discovery, const StorageManager& storage,
                   TaskRunner& tasks, View& view, const PlatformWords& words, TargetChooser chooseTarget);

    /// Starts where nothing is going on, and stops what is. A start that fails is told by a toast.
    void toggle();

    /// Brings a recording to its end. Where that fails everything stays as it is, so that the human can try
    /// again; where there is nothing to end, because an agent has ended it, it counts as ended.
    void stop();

    bool isRecording() const { return m_isRecording; }
    /// What is being recorded, in words; empty when nothing is.
    QString appName() const { return m_appName; }

private:
    void start(const std::optional<RecordingTarget>& target);
    void started(const QString& name);
    void failedToStart(const QString& reason);
    void clearFailedStart();
    void stopped(const QString& sessionId, const QString& appName);
    void takeBack();

    ScreenRecorder& m_recorder;
    WindowDiscovery& m_discovery;
    const StorageManager& m_storage;
    TaskRunner& m_tasks;
    View& m_view;
    const PlatformWords& m_words;
    TargetChooser m_chooseTarget;
    bool m_isRecording = false;
    /// From the choice of a target until the recorder has answered.
    bool m_isStarting = false;
    /// Which the recorder has not answered yet.
    int m_stops = 0;
    QString m_appName;
};

/// What a recording of the target is called.
QString recordingName(const RecordingTarget& target);

} // namespace orvane
