#include "OrvaneCore/base/IdleRelease.h"

#include <utility>

namespace orvane {

IdleRelease::IdleRelease(Clock& clock, std::chrono::microseconds time, std::function<void()> release)
    : m_clock(clock)
    , m_time(time)
    , m_release(std::move(release)) {}

void IdleRelease::begin() {
    const std::scoped_lock lock(m_mutex);
    ++m_uses;
}

void IdleRelease::end() {
    const std::scoped_lock lock(m_mutex);
    --m_uses;
    m_due = m_clock.monotonic() + m_time;
    if (std::exchange(m_isWatched, true))
        return;
    // The one before has said that it ends, so that this waits for a release at most.
    m_watcher = std::jthread([this](const std::stop_token& stop) { watch(stop); });
}

void IdleRelease::watch(const std::stop_token& stop) {
    for (;;) {
        Clock::Monotonic due{0};
        {
            const std::scoped_lock lock(m_mutex);
            due = m_due;
        }
        if (!m_clock.sleepUntil(due, stop))
            return;
        if (isOver())
            break;
    }
    m_release();
}

bool IdleRelease::isOver() {
    const std::scoped_lock lock(m_mutex);
    const Clock::Monotonic now = m_clock.monotonic();
    if (m_uses > 0)
        m_due = now + m_time;
    if (m_due > now)
        return false;
    m_isWatched = false;
    return true;
}

} // namespace orvane
