#include "OrvaneCore/capture/Watchdog.h"

#include <algorithm>

namespace orvane {

Watchdog::~Watchdog() {
    {
        const std::scoped_lock lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

Watchdog::Watch::Watch(Watchdog& watchdog, std::chrono::duration<double> limit)
    : m_watchdog(watchdog) {
    const auto deadline = std::chrono::steady_clock::now() +
                          std::chrono::duration_cast<std::chrono::steady_clock::duration>(limit);
    const std::scoped_lock lock(m_watchdog.m_mutex);
    if (!m_watchdog.m_thread.joinable())
        m_watchdog.m_thread = std::thread([&watchdog] { watchdog.run(); });
    m_watched = m_watchdog.m_watched.insert(m_watchdog.m_watched.end(), {.deadline = deadline, .stop = {}});
    if (deadline < m_watchdog.m_nextLook)
        m_watchdog.m_changed.notify_all();
}

Watchdog::Watch::~Watch() {
    // The thread is not told: it finds nothing late at its next look, which comes once in a limit however
    // many calls there were.
    const std::scoped_lock lock(m_watchdog.m_mutex);
    m_watchdog.m_watched.erase(m_watched);
}

void Watchdog::run() {
    std::unique_lock lock(m_mutex);
    while (!m_ending) {
        const auto now = std::chrono::steady_clock::now();
        const auto late = std::find_if(m_watched.begin(), m_watched.end(), [now](const Watched& call) {
            return !call.late && call.deadline <= now;
        });
        if (late != m_watched.end()) {
            late->late = true;
            // A copy: the call may end meanwhile. What a stop sets off must not hold up other calls.
            std::stop_source stop = late->stop;
            lock.unlock();
            stop.request_stop();
            lock.lock();
            continue;
        }
        m_nextLook = std::chrono::steady_clock::time_point::max();
        for (const Watched& call : m_watched) {
            if (!call.late)
                m_nextLook = std::min(m_nextLook, call.deadline);
        }
        if (m_nextLook == std::chrono::steady_clock::time_point::max()) {
            m_changed.wait(lock);
        } else {
            m_changed.wait_until(lock, m_nextLook);
        }
    }
}

} // namespace orvane
