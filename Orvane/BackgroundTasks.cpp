#include "Orvane/BackgroundTasks.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace orvane {

BackgroundTasks::BackgroundTasks() {
    m_threads.setMaxThreadCount(std::numeric_limits<int>::max());
}

BackgroundTasks::~BackgroundTasks() {
    m_threads.waitForDone();
}

bool BackgroundTasks::waitForDone(std::chrono::milliseconds patience) {
    return m_threads.waitForDone(static_cast<int>(std::max<qint64>(0, patience.count())));
}

void BackgroundTasks::run(std::function<Continuation()> work) {
    m_threads.start([this, work = std::move(work)] {
        if (Continuation next = work())
            m_mainThread.post(std::move(next));
    });
}

} // namespace orvane
