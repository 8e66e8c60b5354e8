#include "Orvane/BackgroundTasks.h"

#include <limits>
#include <utility>

namespace orvane {

BackgroundTasks::BackgroundTasks() {
    m_threads.setMaxThreadCount(std::numeric_limits<int>::max());
}

BackgroundTasks::~BackgroundTasks() {
    m_threads.waitForDone();
}

void BackgroundTasks::run(std::function<Continuation()> work) {
    m_threads.start([this, work = std::move(work)] {
        if (Continuation next = work())
            m_mainThread.post(std::move(next));
    });
}

} // namespace orvane
