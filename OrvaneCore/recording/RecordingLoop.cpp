#include "OrvaneCore/recording/RecordingLoop.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/recording/CapturePace.h"

#include <exception>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

RecordingLoop::RecordingLoop(Clock& clock, Look look, std::shared_ptr<RecordingJournal> journal)
    : m_clock(clock)
    , m_look(std::move(look))
    , m_journal(std::move(journal)) {}

RecordingLoop::~RecordingLoop() {
    join();
}

void RecordingLoop::begin(const QImage& firstFrame, std::unique_ptr<RecordingVideo> video,
                          qint64 intervalMs) {
    if (video)
        video->append(firstFrame);
    std::unique_lock lock(m_mutex);
    if (m_ended) {
        // Whoever ended it does not know of the movie.
        lock.unlock();
        if (video)
            video->stop();
        return;
    }
    m_video = std::move(video);
    m_state = State::asleep;
    m_thread = std::jthread([this, movie = m_video.get(), intervalMs,
                             previous = firstFrame](const std::stop_token& stop) mutable {
        run(stop, movie, intervalMs, std::move(previous));
    });
}

void RecordingLoop::end() {
    std::unique_lock lock(m_mutex);
    m_ended = true;
    m_thread.request_stop();
    m_changed.wait(lock, [this] { return m_state != State::asleep; });
}

void RecordingLoop::awaitLastLook(std::chrono::milliseconds limit) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, limit, [this] { return m_state != State::looking; });
}

void RecordingLoop::join() {
    // Stopped and joined at the end of this block, without the lock that the thread needs.
    std::jthread thread;
    const std::scoped_lock lock(m_mutex);
    m_ended = true;
    thread = std::move(m_thread);
}

void RecordingLoop::stopVideo() {
    RecordingVideo* video = nullptr;
    {
        const std::scoped_lock lock(m_mutex);
        video = m_video.get();
    }
    if (video != nullptr)
        video->stop();
}

void RecordingLoop::run(const std::stop_token& stop, RecordingVideo* video, qint64 intervalMs,
                        QImage previous) {
    const CapturePace pace =
        capturePace(video != nullptr ? std::optional(video->framesPerSecond()) : std::nullopt, intervalMs);
    qint64 tick = 0;
    Clock::Monotonic due = m_clock.monotonic();
    while (true) {
        const Clock::Monotonic now = m_clock.monotonic();
        due = nextDue(due, now, pace.period);
        if (!rest(stop, lookTime(due, now, pace.period)))
            break;
        if (m_paused)
            continue;
        ++tick;
        const std::optional<QImage> current = look();
        if (stop.stop_requested())
            break;
        if (!current)
            continue;
        if (video != nullptr)
            video->append(*current);
        // A frame that is left out counts as not seen, so that the next one is compared with what was.
        if (tick % pace.stride != 0 || m_journal->compare(previous, *current, m_clock.now()))
            previous = *current;
    }
    leave();
}

/// Sleeps; false when the loop is to end.
bool RecordingLoop::rest(const std::stop_token& stop, Clock::Monotonic until) {
    {
        const std::scoped_lock lock(m_mutex);
        m_state = State::asleep;
    }
    const bool woke = m_clock.sleepUntil(until, stop);
    const std::scoped_lock lock(m_mutex);
    if (!woke || m_ended)
        return false;
    m_state = State::looking;
    m_changed.notify_all();
    return true;
}

std::optional<QImage> RecordingLoop::look() const {
    try {
        const QImage picture = m_look();
        if (!picture.isNull())
            return picture;
    } catch (const std::exception& error) {
        logLine(u"capture error in loop: "_s + QString::fromUtf8(error.what()));
    }
    return std::nullopt;
}

void RecordingLoop::leave() {
    m_journal->tellPendingChanges(m_clock.now());
    const std::scoped_lock lock(m_mutex);
    m_state = State::left;
    m_changed.notify_all();
}

} // namespace orvane
