#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <stop_token>

namespace orvane {

/// Has what has expired deleted on a thread of its own that gives way to all others: it may take minutes, and
/// nobody waits for it. Main thread.
class RetentionSweep {
public:
    /// Deletes and gives how many deletions it has tried; ends early when a stop is requested. Does not
    /// throw.
    using Sweep = std::function<int(const std::stop_token&)>;

    /// `prepare` is called when a sweep begins. What it gives and `giveWay`, which makes the calling thread
    /// one that gives way, are called on the thread, and may be there still when all else of the process has
    /// gone.
    RetentionSweep(std::function<Sweep()> prepare, std::function<void()> giveWay);
    /// Asks a sweep that is under way to stop, and does not wait for it: a thread that gives way may take
    /// seconds to get so far.
    ~RetentionSweep();
    RetentionSweep(const RetentionSweep&) = delete;
    RetentionSweep& operator=(const RetentionSweep&) = delete;

    /// Begins a sweep, unless one is under way.
    void begin();

private:
    const std::function<Sweep()> m_prepare;
    const std::function<void()> m_giveWay;
    std::stop_source m_stop;
    const std::shared_ptr<std::atomic<bool>> m_isUnderWay = std::make_shared<std::atomic<bool>>(false);
};

} // namespace orvane
