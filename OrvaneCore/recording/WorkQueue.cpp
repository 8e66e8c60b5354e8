#include "OrvaneCore/recording/WorkQueue.h"

#include <utility>

namespace orvane {

WorkQueue::WorkQueue(std::size_t limit)
    : m_limit(limit)
    , m_thread([this] { run(); }) {}

WorkQueue::~WorkQueue() {
    {
        const std::scoped_lock lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

bool WorkQueue::offer(std::function<void()> job) {
    const std::scoped_lock lock(m_mutex);
    if (m_waiting.size() >= m_limit)
        return false;
    take(std::move(job));
    return true;
}

void WorkQueue::post(std::function<void()> job) {
    const std::scoped_lock lock(m_mutex);
    take(std::move(job));
}

void WorkQueue::take(std::function<void()> job) {
    m_waiting.push_back(std::move(job));
    ++m_taken;
    m_changed.notify_all();
}

void WorkQueue::drain() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this, last = m_taken] { return m_done >= last; });
}

void WorkQueue::run() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || !m_waiting.empty(); });
        if (m_waiting.empty())
            return;
        // Gone, with the pictures it holds, before it counts as done.
        {
            const std::function<void()> job = std::move(m_waiting.front());
            m_waiting.pop_front();
            lock.unlock();
            job();
        }
        lock.lock();
        ++m_done;
        m_changed.notify_all();
    }
}

} // namespace orvane
