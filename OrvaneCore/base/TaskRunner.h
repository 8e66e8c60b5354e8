#pragma once

#include <functional>

namespace orvane {

/// Work that the main thread must not wait for. Main thread.
class TaskRunner {
public:
    virtual ~TaskRunner() = default;
    TaskRunner(const TaskRunner&) = delete;
    TaskRunner& operator=(const TaskRunner&) = delete;

    using Continuation = std::function<void()>;

    /// Runs `work`, which may block and must not throw, on another thread, and what it gives, unless that is
    /// empty, on the main thread afterwards. It begins at once, whatever other work does.
    virtual void run(std::function<Continuation()> work) = 0;

protected:
    TaskRunner() = default;
};

} // namespace orvane
