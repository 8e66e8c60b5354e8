#pragma once

#include "OrvaneCore/base/PostedCall.h"
#include "OrvaneCore/base/TaskRunner.h"

#include <QThreadPool>

#include <chrono>

namespace orvane {

/// Tasks on threads of its own, as many as there are tasks under way: most of them wait for something, and a
/// human does not begin many at once.
class BackgroundTasks final : public TaskRunner {
public:
    BackgroundTasks();
    /// Waits for the work that has begun or waits its turn; what it gives is not called any more.
    ~BackgroundTasks() override;

    void run(std::function<Continuation()> work) override;

    /// Waits for the work that has begun or waits its turn, at most that long. False when there is some left.
    bool waitForDone(std::chrono::milliseconds patience);

private:
    CallReceiver m_mainThread;
    QThreadPool m_threads;
};

} // namespace orvane
