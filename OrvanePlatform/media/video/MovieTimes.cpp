#include "OrvanePlatform/media/video/MovieTimes.h"

#include <algorithm>

namespace orvane::media {

namespace {

// Longer than any movie, and far from where the arithmetic ends.
constexpr std::chrono::microseconds latest = std::chrono::days(366);

} // namespace

MovieTimes::MovieTimes(int framesPerSecond, int keyFrameInterval)
    : m_framesPerSecond(framesPerSecond)
    , m_keyFrameTicks(qint64{keyFrameInterval} * ticksPerSecond / framesPerSecond) {}

qint64 MovieTimes::tickOf(std::chrono::microseconds time) {
    const std::chrono::microseconds possible = std::clamp(time, std::chrono::microseconds(0), latest);
    const qint64 tick = (possible.count() * ticksPerSecond + 500'000) / 1'000'000;
    m_lastTick = m_lastTick ? std::max(tick, *m_lastTick + 1) : 0;
    return *m_lastTick;
}

bool MovieTimes::isKeyFrameDue(qint64 tick) const {
    return !m_lastKeyTick || tick - *m_lastKeyTick >= m_keyFrameTicks;
}

void MovieTimes::noteKeyFrame(qint64 tick) {
    m_lastKeyTick = std::max(tick, m_lastKeyTick.value_or(tick));
}

qint64 MovieTimes::lastFrameTicks() const {
    return std::max(1, ticksPerSecond / m_framesPerSecond);
}

} // namespace orvane::media
