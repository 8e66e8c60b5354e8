#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace orvane {

/// Runs jobs one after the other on a thread of its own, in the order in which they were posted.
/// Any thread may call, a job of the queue itself excepted. Jobs do not throw.
class WorkQueue {
public:
    /// `limit`: how many jobs may wait, so that jobs that come faster than they are done cannot fill the
    /// memory.
    explicit WorkQueue(std::size_t limit);
    /// Runs what waits, then ends.
    ~WorkQueue();
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;

    /// Blocks while `limit` jobs wait.
    void post(std::function<void()> job);

    /// Returns when every job that was posted before has run.
    void drain();

private:
    void run();

    const std::size_t m_limit;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_waiting;
    bool m_busy = false;
    bool m_ending = false;
    /// Last, so that it starts when all else is there.
    std::thread m_thread;
};

} // namespace orvane
