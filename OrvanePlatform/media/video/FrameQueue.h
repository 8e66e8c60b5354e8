#pragma once

#include <QImage>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace orvane::media {

/// A picture, and when after the movie's begin it is to be shown.
struct TimedFrame {
    QImage picture;
    std::chrono::microseconds time{};
};

/// The frames that wait for the encoder. One thread puts in, another takes out.
class FrameQueue {
public:
    /// `capacity`: the most frames that wait.
    explicit FrameQueue(std::size_t capacity);

    /// False when it is full, and the frame is not taken.
    bool push(TimedFrame frame);
    /// No more will be put in.
    void close();
    /// Lets go of the frames that wait.
    void clear();

    /// The next frame; nothing when none has come within `patience` or none will come.
    std::optional<TimedFrame> take(std::chrono::milliseconds patience);
    /// Whether it is closed and all has been taken.
    bool isOver() const;

private:
    const std::size_t m_capacity;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<TimedFrame> m_frames;
    bool m_isClosed = false;
};

} // namespace orvane::media
