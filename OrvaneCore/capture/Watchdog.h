#pragma once

#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <stop_token>
#include <thread>

namespace orvane {

/// Asks calls that last too long to stop. A call runs on its caller's own thread; one thread for all of them
/// begins with the first call, lives as long as the watchdog, and sleeps while nothing is late. Any thread;
/// calls may run side by side.
class Watchdog {
    struct Watched {
        std::chrono::steady_clock::time_point deadline;
        std::stop_source stop;
        /// No longer to be looked at: the call was asked to stop.
        bool late = false;
    };

public:
    Watchdog() = default;
    /// No call is being watched any more.
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// One call, watched from the making of this object to its end.
    class Watch {
    public:
        /// The watchdog outlives the watch.
        Watch(Watchdog& watchdog, std::chrono::duration<double> limit);
        ~Watch();
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;

        /// Stop is requested once the limit has passed, by the watchdog's thread.
        std::stop_token token() const { return m_watched->stop.get_token(); }
        bool isLate() const { return m_watched->stop.stop_requested(); }

    private:
        Watchdog& m_watchdog;
        std::list<Watched>::iterator m_watched;
    };

private:
    void run();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::list<Watched> m_watched;
    /// When the thread looks again by itself; it is woken for what must be sooner.
    std::chrono::steady_clock::time_point m_nextLook = std::chrono::steady_clock::time_point::max();
    bool m_ending = false;
    std::thread m_thread;
};

} // namespace orvane
