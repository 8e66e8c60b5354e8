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

void WorkQueue::post(std::function<void()> job) {
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_waiting.size() < m_limit; });
        m_waiting.push_back(std::move(job));
    }
    m_changed.notify_all();
}

void WorkQueue::drain() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting.empty() && !m_busy; });
}

void WorkQueue::run() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || !m_waiting.empty(); });
        if (m_waiting.empty())
            return;
        // Gone, with the pictures it holds, before the queue counts as drained.
        {
            const std::function<void()> job = std::move(m_waiting.front());
            m_waiting.pop_front();
            m_busy = true;
            lock.unlock();
            m_changed.notify_all();
            job();
        }
        lock.lock();
        m_busy = false;
        m_changed.notify_all();
    }
}

} // namespace orvane
