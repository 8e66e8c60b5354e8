#pragma once

#include "OrvaneCore/base/Clock.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <thread>

namespace orvane {

/// Frees something some time after its last use. Any thread. Has a thread only while there is something to
/// free.
class IdleRelease {
public:
    /// While there is one, something is in use. Does not outlive the IdleRelease.
    class Use {
    public:
        explicit Use(IdleRelease& owner)
            : m_owner(owner) {
            m_owner.begin();
        }
        ~Use() { m_owner.end(); }
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

    private:
        IdleRelease& m_owner;
    };

    /// `release` is called, on a thread of this object's, once nothing was in use for `time`; not again
    /// before there was another use. A use may begin while it runs. The clock outlives this object.
    IdleRelease(Clock& clock, std::chrono::microseconds time, std::function<void()> release);
    /// Waits for a release that runs, and makes none any more.
    ~IdleRelease() = default;
    IdleRelease(const IdleRelease&) = delete;
    IdleRelease& operator=(const IdleRelease&) = delete;

private:
    void begin();
    void end();
    void watch(const std::stop_token& stop);
    /// Whether nothing is in use and its time is over; then the thread ends.
    bool isOver();

    Clock& m_clock;
    std::chrono::microseconds m_time;
    std::function<void()> m_release;
    std::mutex m_mutex;
    int m_uses = 0;
    Clock::Monotonic m_due{0};
    bool m_isWatched = false;
    /// Last, so that it ends before what it looks at goes.
    std::jthread m_watcher;
};

} // namespace orvane
