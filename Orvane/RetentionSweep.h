#pragma once

#include <atomic>
#include <functional>
#include <stop_token>
#include <thread>

namespace orvane {

/// Has what has expired deleted on a thread of its own that gives way to all others: it may take minutes, and
/// nobody waits for it. Main thread.
class RetentionSweep {
public:
    /// Deletes and gives how many deletions it has tried; ends early when a stop is requested. Does not
    /// throw.
    using Sweep = std::function<int(const std::stop_token&)>;

    /// Both are called on the thread: `giveWay` makes the calling thread one that gives way.
    RetentionSweep(Sweep sweep, std::function<void()> giveWay);
    /// Asks a sweep that is under way to stop, and waits until it has.
    ~RetentionSweep() = default;
    RetentionSweep(const RetentionSweep&) = delete;
    RetentionSweep& operator=(const RetentionSweep&) = delete;

    /// Begins a sweep, unless one is under way.
    void begin();

private:
    void run(const std::stop_token& stop);

    const Sweep m_sweep;
    const std::function<void()> m_giveWay;
    std::atomic<bool> m_isUnderWay = false;
    /// Last, so that it ends first.
    std::jthread m_thread;
};

} // namespace orvane
