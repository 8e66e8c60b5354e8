#pragma once

#include "Orvane/TaskRunner.h"

#include <QObject>
#include <QThreadPool>

namespace orvane {

/// Tasks on a few threads of its own.
class BackgroundTasks final : public TaskRunner {
public:
    BackgroundTasks() = default;
    /// Waits for the work that has begun or waits its turn; what it gives is not called any more.
    ~BackgroundTasks() override;

    void run(std::function<Continuation()> work) override;

private:
    /// Calls what is sent to it on the thread that it was made on.
    class Receiver final : public QObject {
    protected:
        void customEvent(QEvent* event) override;
    };

    Receiver m_mainThread;
    QThreadPool m_threads;
};

} // namespace orvane
