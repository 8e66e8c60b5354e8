#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>

namespace orvane::test {

/// Lets the application handle its events until the condition holds; false when it does not within the time.
template <typename Condition>
bool eventuallyInLoop(Condition condition, int deadlineMs = 8000) {
    const QDeadlineTimer deadline(deadlineMs);
    for (;;) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        // What is to be deleted later is not dealt with otherwise outside an event loop.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (condition())
            return true;
        if (deadline.hasExpired())
            return false;
        QThread::msleep(5);
    }
}

} // namespace orvane::test
