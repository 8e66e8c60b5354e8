#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace orvane {

/// Runs jobs one after the other on a thread of its own, in the order in which they came. Whoever brings one
/// waits for nothing. Any thread may call, a job of the queue itself excepted. Jobs do not throw.
class WorkQueue {
public:
    /// `limit`: how many jobs may wait for one more to be taken by `offer`.
    explicit WorkQueue(std::size_t limit);
    /// Runs what waits, then ends.
    ~WorkQueue();
    WorkQueue(const WorkQueue&) = delete;
    WorkQueue& operator=(const WorkQueue&) = delete;

    /// Takes the job unless `limit` jobs or more wait; whether it did. For jobs that hold much and come as
    /// fast as they like, so that they cannot fill the memory.
    [[nodiscard]] bool offer(std::function<void()> job);

    /// Takes the job however many wait. For those few that hold little and must not be lost.
    void post(std::function<void()> job);

    /// Returns when every job has run that was taken before the call, whatever comes meanwhile.
    void drain();

private:
    void take(std::function<void()> job);
    void run();

    const std::size_t m_limit;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_waiting;
    std::uint64_t m_taken = 0;
    std::uint64_t m_done = 0;
    bool m_ending = false;
    /// Last, so that it starts when all else is there.
    std::thread m_thread;
};

} // namespace orvane
