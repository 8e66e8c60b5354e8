#pragma once

#include <QDeadlineTimer>
#include <QThread>

namespace orvane::test {

/// Polls until the condition holds; false when it does not within the time.
template <typename Condition>
bool eventually(Condition condition, int deadlineMs = 5000) {
    const QDeadlineTimer deadline(deadlineMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(5);
    }
    return true;
}

} // namespace orvane::test
