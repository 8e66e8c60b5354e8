#include "Orvane/BackgroundTasks.h"

#include "OrvaneCore/PostedCall.h"

#include <utility>

namespace orvane {

void BackgroundTasks::Receiver::customEvent(QEvent* event) {
    PostedCall::run(*event);
}

BackgroundTasks::~BackgroundTasks() {
    m_threads.waitForDone();
}

void BackgroundTasks::run(std::function<Continuation()> work) {
    m_threads.start([this, work = std::move(work)] {
        if (Continuation next = work())
            PostedCall::post(m_mainThread, std::move(next));
    });
}

} // namespace orvane
