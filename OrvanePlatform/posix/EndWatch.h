#pragma once

#include <functional>
#include <thread>

namespace orvane::posix {

/// A thread that waits for a descriptor to become readable (EndSignals::descriptor) and calls then, once.
class EndWatch {
public:
    /// The descriptor outlives this object. -1 is never readable.
    EndWatch(int descriptor, std::function<void()> handler);
    /// Waits for a call that is being made.
    ~EndWatch();
    EndWatch(const EndWatch&) = delete;
    EndWatch& operator=(const EndWatch&) = delete;

private:
    /// An eventfd(2), readable from the end on; -1 where none could be made, and then nothing is watched.
    int m_over;
    std::thread m_thread;
};

} // namespace orvane::posix
