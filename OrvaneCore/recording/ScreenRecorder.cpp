#include "OrvaneCore/recording/ScreenRecorder.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/recording/RecordingJournal.h"
#include "OrvaneCore/recording/RecordingLoop.h"
#include "OrvaneCore/recording/TargetCapture.h"

#include <QDir>

#include <exception>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

// How long the end of a recording waits for a look that is under way.
constexpr std::chrono::milliseconds lookGrace{500};

} // namespace

AlreadyRecording::AlreadyRecording()
    : OrvaneError(OrvaneError::invalidArguments(u"Already recording. Call stop_recording first."_s)) {}

NotRecording::NotRecording()
    : OrvaneError(OrvaneError::invalidArguments(u"Not recording."_s)) {}

struct ScreenRecorder::Recording {
    Recording(TargetCapture targetCapture, std::vector<WindowInfo> windowsOfTarget,
              const std::shared_ptr<RecordingJournal>& newJournal, Clock& clock)
        : capture(std::move(targetCapture))
        , windows(std::move(windowsOfTarget))
        , journal(newJournal)
        , loop(
              clock, [this] { return capture.frame(); }, newJournal) {}

    const RecordingJournal::Head& head() const { return journal->head(); }

    const TargetCapture capture;
    /// The target's application's, when the recording began.
    const std::vector<WindowInfo> windows;
    const std::shared_ptr<RecordingJournal> journal;

    // Guarded by the recorder's mutex.
    bool active = true;
    /// False once the report is written.
    bool folderIsOpen = true;
    bool paused = false;
    qint64 pausedMs = 0;
    QDateTime pauseStart;

    /// Last, so that it ends first.
    RecordingLoop loop;
};

ScreenRecorder::ScreenRecorder(WindowDiscovery& discovery, ScreenCapture& screenCapture,
                               StorageManager& storage, const PngWriter& pngWriter, MediaBackend& media,
                               Clock& clock, std::size_t waitingComparisons)
    : m_discovery(discovery)
    , m_screenCapture(screenCapture)
    , m_storage(storage)
    , m_pngWriter(pngWriter)
    , m_media(media)
    , m_clock(clock)
    , m_work(waitingComparisons) {}

ScreenRecorder::~ScreenRecorder() {
    if (const auto recording = activeRecording()) {
        recording->loop.join();
        recording->loop.stopVideo();
    }
}

QString ScreenRecorder::startRecording(const QString& appName, qint64 intervalMs, RecordingSource source) {
    const std::vector<WindowInfo> windows = m_discovery.findWindows(appName);
    if (windows.empty())
        throw OrvaneError::invalidArguments(u"No window found for '"_s + appName + u'\'');
    const WindowInfo& window = windows.front();
    return startRecording(WindowTarget{window.appName, window.windowId}, intervalMs, source);
}

QString ScreenRecorder::startRecording(const RecordingTarget& target, qint64 intervalMs,
                                       RecordingSource source) {
    const std::shared_ptr<Recording> recording = claim(target, source);
    const RecordingJournal::Head& head = recording->head();
    logLine(u"capturing start frame for "_s + head.appName + u"..."_s);
    const QImage firstFrame = recording->capture.frame();
    const QByteArray png = encode(firstFrame);
    logLine(u"start frame captured ("_s + QString::number(png.size()) + u" bytes)"_s);
    recording->journal->writeStartFrame(png);
    beginCapturing(recording, firstFrame, intervalMs);
    logLine(u"recording started for "_s + head.appName + u" (session "_s + head.sessionId + u')');
    return head.sessionId;
}

std::shared_ptr<ScreenRecorder::Recording> ScreenRecorder::claim(const RecordingTarget& target,
                                                                 RecordingSource source) {
    const std::scoped_lock startLock(m_startMutex);
    std::shared_ptr<Recording> last;
    {
        const std::scoped_lock lock(m_mutex);
        last = m_recording;
        if (last && last->active)
            throw AlreadyRecording();
    }
    // The loop of the recording before may still be in its last capture.
    if (last)
        last->loop.join();

    const auto* window = std::get_if<WindowTarget>(&target);
    auto windows = window != nullptr ? m_discovery.findWindows(window->appName) : std::vector<WindowInfo>();
    const QDateTime startTime = m_clock.now();
    const StorageManager::SessionFolder session = m_storage.createSessionDir();
    const bool showsCursor = source == RecordingSource::human && m_storage.showCursorInRecording();
    const auto journal =
        std::make_shared<RecordingJournal>(RecordingJournal::Head{.sessionId = session.id,
                                                                  .folder = session.dir,
                                                                  .startTime = startTime,
                                                                  .source = source,
                                                                  .appName = appNameOf(target)},
                                           m_pngWriter, m_tracker, m_work);
    auto recording = std::make_shared<Recording>(TargetCapture(m_screenCapture, target, showsCursor),
                                                 std::move(windows), journal, m_clock);
    const std::scoped_lock lock(m_mutex);
    m_recording = recording;
    return recording;
}

void ScreenRecorder::beginCapturing(const std::shared_ptr<Recording>& recording, const QImage& firstFrame,
                                    qint64 intervalMs) {
    recording->journal->tellStart(
        describeTarget(recording->capture.target(), recording->windows, firstFrame.size()));
    const bool wantsVideo = m_storage.saveRawVideo() && activeRecording() == recording;
    std::unique_ptr<RecordingVideo> video;
    if (wantsVideo) {
        video = RecordingVideo::start(m_media, m_clock, recording->head().folder, firstFrame.size(),
                                      m_storage.videoFps());
    }
    recording->loop.begin(firstFrame, std::move(video), intervalMs);
}

QString ScreenRecorder::stopRecording() {
    std::shared_ptr<Recording> recording;
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_recording || !m_recording->active)
            throw NotRecording();
        recording = m_recording;
        recording->active = false;
    }
    recording->loop.end();

    QByteArray endFrame;
    std::optional<QString> failure;
    try {
        endFrame = encode(recording->capture.endFrame());
    } catch (const std::exception& error) {
        failure = QString::fromUtf8(error.what());
    }
    // What was seen before belongs before the end, unless a capture hangs.
    recording->loop.awaitLastLook(lookGrace);
    m_work.drain();

    RecordingJournal& journal = *recording->journal;
    if (failure) {
        journal.tellEndWithoutFrame(*failure, m_clock.now());
    } else {
        journal.tellEnd(endFrame, m_clock.now());
    }
    recording->loop.stopVideo();
    journal.writeReport(m_clock.now());
    m_storage.updateLatestLink(recording->head().folder);
    journal.makeThumbnail();
    journal.logFramesLeftOut();
    logLine(u"recording stopped (session "_s + recording->head().sessionId + u')');
    const std::scoped_lock lock(m_mutex);
    recording->folderIsOpen = false;
    return recording->head().sessionId;
}

void ScreenRecorder::pauseRecording() {
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_recording || !m_recording->active || m_recording->paused)
            return;
        m_recording->paused = true;
        m_recording->pauseStart = m_clock.now();
        m_recording->loop.setPaused(true);
    }
    logLine(u"recording paused");
}

void ScreenRecorder::resumeRecording() {
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_recording || !m_recording->active || !m_recording->paused)
            return;
        m_recording->paused = false;
        m_recording->pausedMs += m_recording->pauseStart.msecsTo(m_clock.now());
        m_recording->loop.setPaused(false);
    }
    logLine(u"recording resumed");
}

ScreenRecorder::Poll ScreenRecorder::pollTimeline() {
    m_work.drain();
    const std::scoped_lock lock(m_mutex);
    if (!m_recording)
        return {};
    const RecordingJournal::Head& head = m_recording->head();
    return {.events = m_recording->journal->takeNews(),
            .sessionId = head.sessionId,
            .sessionDir = m_recording->folderIsOpen ? head.folder : QString()};
}

std::optional<QString> ScreenRecorder::framePath(const QString& fileName) const {
    const auto folder = currentSessionDir();
    return folder ? std::optional(QDir(*folder).filePath(fileName)) : std::nullopt;
}

std::optional<QString> ScreenRecorder::recordingSessionId() const {
    const auto recording = activeRecording();
    return recording ? std::optional(recording->head().sessionId) : std::nullopt;
}

std::optional<RecordingSource> ScreenRecorder::recordingSource() const {
    const auto recording = activeRecording();
    return recording ? std::optional(recording->head().source) : std::nullopt;
}

std::optional<QString> ScreenRecorder::currentSessionDir() const {
    const std::scoped_lock lock(m_mutex);
    return m_recording && m_recording->folderIsOpen ? std::optional(m_recording->head().folder)
                                                    : std::nullopt;
}

QString ScreenRecorder::currentAppName() const {
    const std::scoped_lock lock(m_mutex);
    return m_recording ? m_recording->head().appName : QString();
}

bool ScreenRecorder::recordingIsPaused() const {
    const std::scoped_lock lock(m_mutex);
    return m_recording && m_recording->paused;
}

double ScreenRecorder::activeElapsed() const {
    const std::scoped_lock lock(m_mutex);
    if (!m_recording || !m_recording->active)
        return 0;
    const Recording& recording = *m_recording;
    const QDateTime now = m_clock.now();
    const qint64 currentPauseMs = recording.paused ? recording.pauseStart.msecsTo(now) : 0;
    return double(recording.head().startTime.msecsTo(now) - recording.pausedMs - currentPauseMs) / 1000.0;
}

QByteArray ScreenRecorder::encode(const QImage& picture) const {
    QByteArray png = m_pngWriter.encode(picture);
    if (png.isEmpty())
        throw OrvaneError::captureEncodingFailed();
    return png;
}

std::shared_ptr<ScreenRecorder::Recording> ScreenRecorder::activeRecording() const {
    const std::scoped_lock lock(m_mutex);
    return m_recording && m_recording->active ? m_recording : nullptr;
}

} // namespace orvane
