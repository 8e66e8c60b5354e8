#include "Orvane/BackgroundTasks.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace orvane {

namespace {

class ContinuationEvent final : public QEvent {
public:
    explicit ContinuationEvent(TaskRunner::Continuation next)
        : QEvent(QEvent::User)
        , m_next(std::move(next)) {}

    void run() const { m_next(); }

private:
    TaskRunner::Continuation m_next;
};

} // namespace

void BackgroundTasks::Receiver::customEvent(QEvent* event) {
    if (event->type() == QEvent::User)
        static_cast<const ContinuationEvent*>(event)->run();
}

BackgroundTasks::~BackgroundTasks() {
    m_threads.waitForDone();
}

void BackgroundTasks::run(std::function<Continuation()> work) {
    m_threads.start([this, work = std::move(work)] {
        if (Continuation next = work())
            QCoreApplication::postEvent(&m_mainThread, new ContinuationEvent(std::move(next)));
    });
}

} // namespace orvane
