#include "OrvanePlatform/media/video/FrameQueue.h"

#include <utility>

namespace orvane::media {

FrameQueue::FrameQueue(std::size_t capacity)
    : m_capacity(capacity) {}

bool FrameQueue::push(TimedFrame frame) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_frames.size() >= m_capacity)
            return false;
        m_frames.push_back(std::move(frame));
    }
    m_changed.notify_one();
    return true;
}

void FrameQueue::close() {
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
    }
    m_changed.notify_one();
}

void FrameQueue::clear() {
    const std::lock_guard lock(m_mutex);
    m_frames.clear();
}

std::optional<TimedFrame> FrameQueue::take(std::chrono::milliseconds patience) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, patience, [this] { return m_isClosed || !m_frames.empty(); });
    if (m_frames.empty())
        return {};
    std::optional<TimedFrame> frame = std::move(m_frames.front());
    m_frames.pop_front();
    return frame;
}

bool FrameQueue::isOver() const {
    const std::lock_guard lock(m_mutex);
    return m_isClosed && m_frames.empty();
}

} // namespace orvane::media
