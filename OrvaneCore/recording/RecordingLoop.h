#pragma once

#include "OrvaneCore/base/Clock.h"
#include "OrvaneCore/recording/RecordingJournal.h"
#include "OrvaneCore/recording/RecordingVideo.h"

#include <QImage>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace orvane {

/// Looks at what is recorded at its pace, on a thread of its own, and hands each picture to the movie and
/// each pair that is to be compared to the journal. A look that fails ends in the log. Begins and ends once.
/// Any thread.
class RecordingLoop {
public:
    /// Takes a picture, or throws.
    using Look = std::function<QImage()>;

    /// The clock outlives the loop.
    RecordingLoop(Clock& clock, Look look, std::shared_ptr<RecordingJournal> journal);
    /// As join().
    ~RecordingLoop();
    RecordingLoop(const RecordingLoop&) = delete;
    RecordingLoop& operator=(const RecordingLoop&) = delete;

    /// Takes the movie over, null where none is written, and looks from now on. With a movie its rate counts,
    /// without one the interval. After end() the movie is stopped and nothing begins.
    void begin(const QImage& firstFrame, std::unique_ptr<RecordingVideo> video, qint64 intervalMs);

    /// While paused nothing is looked at; a look that is under way is finished.
    void setPaused(bool paused) { m_paused = paused; }

    /// No look begins from now on. Waits for nothing but a sleeping loop's leaving, which is at once.
    void end();

    /// After end(): waits until the look that was under way is told, but no longer than `limit`.
    void awaitLastLook(std::chrono::milliseconds limit);

    /// Ends, and waits until the thread is gone, however long a look takes.
    void join();

    /// Waits until the movie is on the disk, where there is one.
    void stopVideo();

private:
    enum class State { none, asleep, looking, left };

    void run(const std::stop_token& stop, RecordingVideo* video, qint64 intervalMs, QImage previous);
    bool rest(const std::stop_token& stop, Clock::Monotonic until);
    std::optional<QImage> look() const;
    void leave();

    Clock& m_clock;
    const Look m_look;
    const std::shared_ptr<RecordingJournal> m_journal;
    std::atomic<bool> m_paused = false;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_ended = false;
    State m_state = State::none;
    /// Set once.
    std::unique_ptr<RecordingVideo> m_video;
    std::jthread m_thread;
};

} // namespace orvane
