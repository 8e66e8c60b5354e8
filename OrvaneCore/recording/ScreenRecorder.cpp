#include "OrvaneCore/recording/ScreenRecorder.h"

#include "OrvaneCore/base/AtomicFile.h"
#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/recording/CapturePace.h"
#include "OrvaneCore/recording/ChangeSentence.h"
#include "OrvaneCore/recording/DiffSummaryFrame.h"
#include "OrvaneCore/recording/FrameDiff.h"
#include "OrvaneCore/storage/ThumbnailCache.h"

#include <QDir>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

// Analyses that may wait; each holds two pictures.
constexpr std::size_t waitingAnalyses = 2;
// How long the end of a recording waits for a look that is under way.
constexpr std::chrono::milliseconds lookGrace{500};

const QString startFrameName = u"frame-000-start.png"_s;

QString sourceText(RecordingSource source) {
    return source == RecordingSource::mcp ? u"mcp"_s : u"human"_s;
}

QString numbered(const QString& prefix, int number, const QString& suffix) {
    return prefix + u"%1"_s.arg(number, 3, 10, QChar(u'0')) + suffix;
}

QString appNameOf(const RecordingTarget& target) {
    if (const auto* window = std::get_if<WindowTarget>(&target))
        return window->appName;
    return std::holds_alternative<DisplayTarget>(target) ? u"Full Screen"_s : u"Region"_s;
}

qint64 windowIdOf(const RecordingTarget& target) {
    const auto* window = std::get_if<WindowTarget>(&target);
    return window != nullptr ? window->windowId : 0;
}

QString sizeText(qint64 width, qint64 height) {
    return QString::number(width) + u'x' + QString::number(height);
}

QString windowDescription(const WindowTarget& target, const std::vector<WindowInfo>& windows) {
    const auto window = std::find_if(windows.begin(), windows.end(), [&target](const WindowInfo& candidate) {
        return candidate.windowId == target.windowId;
    });
    const bool found = window != windows.end();
    return target.appName + u" — "_s + (found ? window->windowTitle : u"Unknown"_s) + u" ("_s +
           (found ? sizeText(window->width, window->height) : sizeText(0, 0)) + u')';
}

/// A coordinate as an integer, the fraction cut off; what no integer can say becomes the nearest.
qint64 truncated(qreal value) {
    constexpr qreal limit = 1e15;
    return static_cast<qint64>(std::clamp(std::isnan(value) ? 0.0 : value, -limit, limit));
}

void writeFile(const QString& folder, const QString& name, const QByteArray& bytes) {
    // A picture that cannot be kept does not end a recording.
    static_cast<void>(writeFileAtomically(QDir(folder).filePath(name), bytes));
}

} // namespace

struct ScreenRecorder::Recording {
    enum class Loop { none, asleep, looking, left };

    // Told once, before anybody else sees it.
    RecordingTarget target;
    qint64 intervalMs = 0;
    RecordingSource source = RecordingSource::mcp;
    QString appName;
    qint64 windowId = 0;
    /// Of the target, for the timeline; that of a display is told by its first picture.
    QString description;
    bool showsCursor = false;
    QString sessionId;
    QString folder;
    QDateTime startTime;

    // Guarded by the recorder's mutex.
    bool active = true;
    /// False once the report is written.
    bool folderIsOpen = true;
    bool paused = false;
    qint64 pausedMs = 0;
    QDateTime pauseStart;
    int frameIndex = 0;
    Timeline timeline;
    std::size_t pollCursor = 0;
    std::shared_ptr<RecordingVideo> video;
    Loop loop = Loop::none;
};

ScreenRecorder::ScreenRecorder(WindowDiscovery& discovery, ScreenCapture& screenCapture,
                               StorageManager& storage, const PngWriter& pngWriter, MediaBackend& media,
                               Clock& clock)
    : m_discovery(discovery)
    , m_screenCapture(screenCapture)
    , m_storage(storage)
    , m_pngWriter(pngWriter)
    , m_media(media)
    , m_clock(clock)
    , m_work(waitingAnalyses) {}

ScreenRecorder::~ScreenRecorder() {
    if (const auto recording = activeRecording()) {
        m_loop = std::jthread();
        if (recording->video)
            recording->video->stop();
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
    const std::shared_ptr<Recording> recording = claim(target, intervalMs, source);
    logLine(u"capturing start frame for "_s + recording->appName + u"..."_s);
    const QImage firstFrame = capture(target, recording->showsCursor);
    const QByteArray png = encode(firstFrame);
    logLine(u"start frame captured ("_s + QString::number(png.size()) + u" bytes)"_s);
    writeFile(recording->folder, startFrameName, png);
    beginCapturing(recording, firstFrame);
    logLine(u"recording started for "_s + recording->appName + u" (session "_s + recording->sessionId + u')');
    return recording->sessionId;
}

std::shared_ptr<ScreenRecorder::Recording> ScreenRecorder::claim(const RecordingTarget& target,
                                                                 qint64 intervalMs, RecordingSource source) {
    const std::scoped_lock startLock(m_startMutex);
    if (activeRecording())
        throw OrvaneError::invalidArguments(u"Already recording. Call stop_recording first."_s);
    // The loop of the recording before may still be in its last capture.
    m_loop = std::jthread();

    auto recording = std::make_shared<Recording>();
    recording->target = target;
    recording->intervalMs = intervalMs;
    recording->source = source;
    recording->appName = appNameOf(target);
    recording->windowId = windowIdOf(target);
    if (const auto* window = std::get_if<WindowTarget>(&target))
        recording->description = windowDescription(*window, m_discovery.findWindows(window->appName));
    else if (const auto* region = std::get_if<RegionTarget>(&target))
        recording->description =
            u"Region ("_s +
            sizeText(truncated(region->rectPoints.width()), truncated(region->rectPoints.height())) + u')';
    recording->startTime = m_clock.now();
    const StorageManager::SessionFolder session = m_storage.createSessionDir();
    recording->folder = session.dir;
    recording->sessionId = session.id;
    recording->showsCursor = source == RecordingSource::human && m_storage.showCursorInRecording();

    const std::scoped_lock lock(m_mutex);
    m_recording = recording;
    return recording;
}

void ScreenRecorder::beginCapturing(const std::shared_ptr<Recording>& recording, const QImage& firstFrame) {
    QString description = recording->description;
    if (std::holds_alternative<DisplayTarget>(recording->target))
        description = u"Full Screen ("_s + sizeText(firstFrame.width(), firstFrame.height()) + u')';
    append(*recording, {.timestamp = recording->startTime,
                        .event = u"recording_start"_s,
                        .details = u"Started monitoring "_s + description,
                        .keyframe = startFrameName});

    const bool wantsVideo = m_storage.saveRawVideo() && activeRecording() == recording;
    std::shared_ptr<RecordingVideo> video;
    if (wantsVideo)
        video = RecordingVideo::start(m_media, m_clock, recording->folder, firstFrame.size(),
                                      m_storage.videoFps());
    if (video)
        video->append(firstFrame);

    std::unique_lock lock(m_mutex);
    if (!recording->active) {
        // Somebody stopped it meanwhile, and does not know of the movie.
        lock.unlock();
        if (video)
            video->stop();
        return;
    }
    recording->video = video;
    m_loop = std::jthread([this, recording, firstFrame](const std::stop_token& stop) {
        captureLoop(stop, recording, firstFrame);
    });
}

void ScreenRecorder::captureLoop(const std::stop_token& stop, const std::shared_ptr<Recording>& recording,
                                 QImage previous) {
    std::shared_ptr<RecordingVideo> video;
    {
        const std::scoped_lock lock(m_mutex);
        video = recording->video;
    }
    const CapturePace pace =
        capturePace(video ? std::optional(video->framesPerSecond()) : std::nullopt, recording->intervalMs);
    qint64 tick = 0;
    Clock::Monotonic due = m_clock.monotonic();
    while (true) {
        const Clock::Monotonic now = m_clock.monotonic();
        due = nextDue(due, now, pace.period);
        if (!rest(stop, *recording, lookTime(due, now, pace.period)))
            break;
        if (isPaused(*recording))
            continue;
        ++tick;
        const std::optional<QImage> current = look(*recording);
        if (stop.stop_requested())
            break;
        if (!current)
            continue;
        if (video)
            video->append(*current);
        if (tick % pace.stride == 0) {
            int frameIndex = 0;
            {
                const std::scoped_lock lock(m_mutex);
                frameIndex = ++recording->frameIndex;
            }
            m_work.post([this, recording, previous, current, frameIndex, time = m_clock.now()] {
                analyse(*recording, previous, *current, frameIndex, time);
            });
        }
        previous = *current;
    }
    leaveLoop(recording);
}

/// Sleeps; false when the loop is to end.
bool ScreenRecorder::rest(const std::stop_token& stop, Recording& recording, Clock::Monotonic until) {
    {
        const std::scoped_lock lock(m_mutex);
        recording.loop = Recording::Loop::asleep;
    }
    const bool woke = m_clock.sleepUntil(until, stop);
    const std::scoped_lock lock(m_mutex);
    if (!woke || !recording.active)
        return false;
    recording.loop = Recording::Loop::looking;
    m_loopChanged.notify_all();
    return true;
}

std::optional<QImage> ScreenRecorder::look(const Recording& recording) {
    try {
        const QImage picture = capture(recording.target, recording.showsCursor);
        if (!picture.isNull())
            return picture;
    } catch (const std::exception& error) {
        logLine(u"capture error in loop: "_s + QString::fromUtf8(error.what()));
    }
    return std::nullopt;
}

void ScreenRecorder::analyse(Recording& recording, const QImage& previous, const QImage& current,
                             int frameIndex, const QDateTime& time) {
    const std::optional<Change> change = m_tracker.analyse(diffFrames(previous, current));
    if (!change)
        return;
    const QString fileName = numbered(u"change-"_s, frameIndex, u".png"_s);
    writeFile(recording.folder, fileName, m_pngWriter.encode(markChanges(current, change->regions)));
    const int cellCount = int(change->regions.size());
    const QString sentence = describeChange(change->regions, cellCount, change->averageDiff, change->isMajor);
    if (change->minorChangesBefore > 0)
        append(recording, {.timestamp = time,
                           .event = u"minor_changes"_s,
                           .details = QString::number(change->minorChangesBefore) +
                                      u" minor update(s) (continuous activity in active regions)"_s});
    append(recording, {.timestamp = time,
                       .event = change->isMajor ? u"major_change"_s : u"visual_change"_s,
                       .details = sentence,
                       .keyframe = fileName,
                       .changedCells = cellCount,
                       .totalDiffPercent = change->averageDiff});
    logLine(u"T+"_s + secondsText(recording.startTime, time) + u"s "_s +
            (change->isMajor ? u"MAJOR"_s : u"change"_s) + u": "_s + sentence);
}

void ScreenRecorder::leaveLoop(const std::shared_ptr<Recording>& recording) {
    m_work.post([this, recording, time = m_clock.now()] {
        const int pending = m_tracker.takePendingMinorChanges();
        if (pending > 0)
            append(*recording,
                   {.timestamp = time,
                    .event = u"minor_changes"_s,
                    .details = QString::number(pending) + u" minor update(s) in active regions"_s});
    });
    const std::scoped_lock lock(m_mutex);
    recording->loop = Recording::Loop::left;
    m_loopChanged.notify_all();
}

QString ScreenRecorder::stopRecording() {
    std::shared_ptr<Recording> recording;
    {
        std::unique_lock lock(m_mutex);
        if (!m_recording || !m_recording->active)
            throw OrvaneError::invalidArguments(u"Not recording."_s);
        recording = m_recording;
        recording->active = false;
        m_loop.request_stop();
        // One that slept leaves at once.
        m_loopChanged.wait(lock, [&] { return recording->loop != Recording::Loop::asleep; });
    }
    const EndFrame endFrame = captureEndFrame(*recording);
    std::shared_ptr<RecordingVideo> video;
    {
        // What was seen before belongs before the end, unless a capture hangs.
        std::unique_lock lock(m_mutex);
        m_loopChanged.wait_for(lock, lookGrace, [&] { return recording->loop != Recording::Loop::looking; });
        video = recording->video;
    }
    m_work.drain();
    appendEnd(*recording, endFrame);
    if (video)
        video->stop();
    writeReport(*recording);
    m_storage.updateLatestLink(recording->folder);
    m_work.post([this, folder = recording->folder] {
        ThumbnailCache(m_pngWriter).generate(QDir(folder).filePath(startFrameName), folder);
    });
    logLine(u"recording stopped (session "_s + recording->sessionId + u')');
    const std::scoped_lock lock(m_mutex);
    recording->folderIsOpen = false;
    return recording->sessionId;
}

/// Always a window: a recording of anything else has none, and its end says so.
ScreenRecorder::EndFrame ScreenRecorder::captureEndFrame(const Recording& recording) {
    try {
        return {.png = encode(m_screenCapture.captureWindow(recording.windowId, recording.showsCursor).image),
                .failure = std::nullopt};
    } catch (const std::exception& error) {
        return {.png = {}, .failure = QString::fromUtf8(error.what())};
    }
}

void ScreenRecorder::appendEnd(Recording& recording, const EndFrame& endFrame) {
    TimelineEntry entry{.timestamp = m_clock.now(), .event = u"recording_end"_s, .details = {}};
    if (endFrame.failure) {
        entry.details = u"Recording stopped (end frame capture failed: "_s + *endFrame.failure + u')';
    } else {
        int framesAnalyzed = 0;
        {
            const std::scoped_lock lock(m_mutex);
            framesAnalyzed = recording.frameIndex;
        }
        entry.keyframe = numbered(u"frame-"_s, framesAnalyzed + 1, u"-end.png"_s);
        writeFile(recording.folder, *entry.keyframe, endFrame.png);
        entry.details = u"Recording stopped. Duration: "_s +
                        secondsText(recording.startTime, entry.timestamp) + u"s, "_s +
                        QString::number(framesAnalyzed) + u" frames analyzed."_s;
    }
    append(recording, entry);
}

void ScreenRecorder::writeReport(const Recording& recording) {
    RecordingReport report{.sessionId = recording.sessionId,
                           .startTime = recording.startTime,
                           .endTime = m_clock.now(),
                           .source = sourceText(recording.source),
                           .appName = recording.appName,
                           .framesCaptured = 0,
                           .timeline = {}};
    {
        const std::scoped_lock lock(m_mutex);
        report.framesCaptured = recording.frameIndex;
        report.timeline = recording.timeline;
    }
    writeFile(recording.folder, u"SESSION.md"_s, recordingMarkdown(report).toUtf8());
}

void ScreenRecorder::pauseRecording() {
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_recording || !m_recording->active || m_recording->paused)
            return;
        m_recording->paused = true;
        m_recording->pauseStart = m_clock.now();
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
    }
    logLine(u"recording resumed");
}

ScreenRecorder::Poll ScreenRecorder::pollTimeline() {
    m_work.drain();
    const std::scoped_lock lock(m_mutex);
    if (!m_recording)
        return {};
    Recording& recording = *m_recording;
    Poll poll{.events = {},
              .sessionId = recording.sessionId,
              .sessionDir = recording.folderIsOpen ? recording.folder : QString()};
    for (; recording.pollCursor < recording.timeline.size(); ++recording.pollCursor)
        poll.events.append(timelineLine(recording.timeline.at(recording.pollCursor), recording.startTime));
    return poll;
}

std::optional<QString> ScreenRecorder::framePath(const QString& fileName) const {
    const auto folder = currentSessionDir();
    return folder ? std::optional(QDir(*folder).filePath(fileName)) : std::nullopt;
}

std::optional<QString> ScreenRecorder::recordingSessionId() const {
    const auto recording = activeRecording();
    return recording ? std::optional(recording->sessionId) : std::nullopt;
}

std::optional<QString> ScreenRecorder::currentSessionDir() const {
    const std::scoped_lock lock(m_mutex);
    return m_recording && m_recording->folderIsOpen ? std::optional(m_recording->folder) : std::nullopt;
}

QString ScreenRecorder::currentAppName() const {
    const std::scoped_lock lock(m_mutex);
    return m_recording ? m_recording->appName : QString();
}

bool ScreenRecorder::isPaused(const Recording& recording) const {
    const std::scoped_lock lock(m_mutex);
    return recording.paused;
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
    return double(recording.startTime.msecsTo(now) - recording.pausedMs - currentPauseMs) / 1000.0;
}

QImage ScreenRecorder::capture(const RecordingTarget& target, bool showsCursor) {
    if (const auto* window = std::get_if<WindowTarget>(&target))
        return m_screenCapture.captureWindow(window->windowId, showsCursor).image;
    if (const auto* display = std::get_if<DisplayTarget>(&target))
        return m_screenCapture.captureDisplay(display->displayId, showsCursor);
    const QRectF rect = std::get<RegionTarget>(target).rectPoints;
    return m_screenCapture.captureRegion(truncated(rect.x()), truncated(rect.y()), truncated(rect.width()),
                                         truncated(rect.height()), showsCursor);
}

QByteArray ScreenRecorder::encode(const QImage& picture) const {
    QByteArray png = m_pngWriter.encode(picture);
    if (png.isEmpty())
        throw OrvaneError::captureEncodingFailed();
    return png;
}

void ScreenRecorder::append(Recording& recording, const TimelineEntry& entry) {
    const std::scoped_lock lock(m_mutex);
    recording.timeline.push_back(entry);
}

std::shared_ptr<ScreenRecorder::Recording> ScreenRecorder::activeRecording() const {
    const std::scoped_lock lock(m_mutex);
    return m_recording && m_recording->active ? m_recording : nullptr;
}

} // namespace orvane
