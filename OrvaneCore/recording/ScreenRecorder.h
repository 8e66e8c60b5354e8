#pragma once

#include "OrvaneCore/base/Clock.h"
#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvaneCore/platform/MediaBackend.h"
#include "OrvaneCore/recording/ChangeTracker.h"
#include "OrvaneCore/recording/RecordingTarget.h"
#include "OrvaneCore/recording/WorkQueue.h"
#include "OrvaneCore/storage/StorageManager.h"

#include <QStringList>

#include <memory>
#include <mutex>
#include <optional>

namespace orvane {

/// What a start throws while a recording is going on: an OrvaneError::invalidArguments that a caller can tell
/// from others.
class AlreadyRecording final : public OrvaneError {
public:
    AlreadyRecording();
};

/// What a stop throws when no recording is going on: an OrvaneError::invalidArguments that a caller can tell
/// from others.
class NotRecording final : public OrvaneError {
public:
    NotRecording();
};

/// The one recorder of a process: pictures and a timeline of what visibly happens to a window, a display or a
/// region, in a session folder, and a movie beside it where the settings want one.
///
///     frame-000-start.png   the first picture
///     change-NNN.png        one for each change, the changed cells marked; NNN is the analysed frame
///     frame-NNN-end.png     the last picture
///     recording.mp4         the movie
///     SESSION.md            the report, written at the end
///
/// A process that dies in the middle leaves the pictures and what there is of the movie, and no report.
///
/// A monitor: every call from any thread, and calls may run side by side; what is shared is locked, and never
/// during a capture, a sleep or a file's writing. Pictures are taken by a RecordingLoop on a thread of its
/// own, a RecordingJournal has changes sought and written on another, so that neither waits for the other;
/// what is here says which recording there is and what state it is in.
class ScreenRecorder {
public:
    /// What a poller gets.
    struct Poll {
        /// One line for each entry of the timeline since the last poll, whoever that was.
        QStringList events;
        /// The last recording's, also after its end; empty before the first.
        QString sessionId;
        /// Empty when no recording is going on.
        QString sessionDir;
    };

    /// Each comparison holds two frames, and one more is under way: with the frame whose changes are being
    /// marked and the last two of the loop, a recording keeps nine frames in memory at most.
    static constexpr std::size_t mostWaitingComparisons = 2;

    /// Everything handed in outlives the recorder. `waitingComparisons`: how many may wait; a frame that
    /// comes when so many do is left out.
    ScreenRecorder(WindowDiscovery& discovery, ScreenCapture& screenCapture, StorageManager& storage,
                   const PngWriter& pngWriter, MediaBackend& media, Clock& clock,
                   std::size_t waitingComparisons = mostWaitingComparisons);
    /// A recording that is going on ends without a report.
    ~ScreenRecorder();
    ScreenRecorder(const ScreenRecorder&) = delete;
    ScreenRecorder& operator=(const ScreenRecorder&) = delete;

    /// Records the first window of the application and gives the session id. Throws
    /// OrvaneError::invalidArguments when there is no such window, else as below.
    QString startRecording(const QString& appName, qint64 intervalMs, RecordingSource source);

    /// Takes the first picture, begins to record and gives the session id. `intervalMs` is the time from one
    /// look to the next where no movie is written; with a movie its rate counts. Throws
    /// AlreadyRecording while a recording is going on. What the first capture throws passes unchanged, and
    /// then the recording counts as going on, with nothing captured, until it is stopped. What a later one
    /// throws ends in the log: that look is left out, and the next one is taken when it is due.
    QString startRecording(const RecordingTarget& target, qint64 intervalMs, RecordingSource source);

    /// Takes the last picture, writes the report and gives the session id. Throws NotRecording when no
    /// recording is going on.
    QString stopRecording();

    /// While paused nothing is captured; all times go on as wall-clock time. Ignored where it makes no sense.
    void pauseRecording();
    void resumeRecording();

    /// Waits until the changes seen up to the call are written, so that every picture it names is there, and
    /// never for those seen later.
    Poll pollTimeline();

    /// Where a picture of the recording lies; nothing when no recording is going on.
    std::optional<QString> framePath(const QString& fileName) const;
    std::optional<QString> recordingSessionId() const;
    /// Who started the recording that is going on.
    std::optional<RecordingSource> recordingSource() const;
    std::optional<QString> currentSessionDir() const;
    QString currentAppName() const;
    bool recordingIsPaused() const;
    /// Seconds of the recording without its pauses; 0 when none is going on.
    double activeElapsed() const;

private:
    struct Recording;

    std::shared_ptr<Recording> claim(const RecordingTarget& target, RecordingSource source);
    void beginCapturing(const std::shared_ptr<Recording>& recording, const QImage& firstFrame,
                        qint64 intervalMs);
    QByteArray encode(const QImage& picture) const;
    std::shared_ptr<Recording> activeRecording() const;

    WindowDiscovery& m_discovery;
    ScreenCapture& m_screenCapture;
    StorageManager& m_storage;
    const PngWriter& m_pngWriter;
    MediaBackend& m_media;
    Clock& m_clock;

    /// Held by a start until the recording is the recorder's, so that of two only one begins.
    std::mutex m_startMutex;
    mutable std::mutex m_mutex;
    /// Remembers from one recording to the next which cells were active. Used by the queue's jobs only.
    ChangeTracker m_tracker;
    WorkQueue m_work;
    /// The recording that is going on, or the last one; null before the first. The loop of one that was told
    /// to end is joined when the next recording begins. Last, so that it ends first.
    std::shared_ptr<Recording> m_recording;
};

} // namespace orvane
