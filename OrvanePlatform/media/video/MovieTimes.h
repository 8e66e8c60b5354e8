#pragma once

#include <QtGlobal>

#include <chrono>
#include <limits>
#include <optional>

namespace orvane::media {

/// The unit of a movie's times is the tick.
constexpr int ticksPerSecond = 90'000;

/// When the frames of a movie are shown, and which of them are to be key frames for the sake of time. (That
/// none is more than so many frames away from the last one, the encoder sees to.)
class MovieTimes {
public:
    /// `keyFrameInterval` frames at `framesPerSecond` are the longest time from a key frame to the next.
    MovieTimes(int framesPerSecond, int keyFrameInterval);

    /// The tick of the next frame, which is to be shown at `time`. The first is shown from the begin on, and
    /// each of the others after the one before it, whatever its time.
    qint64 tickOf(std::chrono::microseconds time);

    /// Whether the last key frame is so long ago that a frame at `tick` has to be one.
    bool isKeyFrameDue(qint64 tick) const;
    /// Says so of a frame that is one; the frames may come in any order.
    void noteKeyFrame(qint64 tick);

    /// How long a frame lasts that none comes after.
    qint64 lastFrameTicks() const;

private:
    int m_framesPerSecond;
    qint64 m_keyFrameTicks;
    std::optional<qint64> m_lastTick;
    std::optional<qint64> m_lastKeyTick;
};

} // namespace orvane::media
