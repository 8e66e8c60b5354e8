#include "OrvanePlatform/posix/GiveWay.h"

#include <future>

#include <sys/resource.h>
#include <unistd.h>

namespace orvane::posix {

namespace {

// Of a processor that is wanted by others too, a tenth is left, and for the disk it comes after them, since
// that priority follows from this one, see ioprio_set(2). It is not the highest value: a thread that hardly
// gets a turn can have the lock of a folder meanwhile, for which others then wait.
constexpr int niceValue = 10;

} // namespace

void giveWay() {
    // On Linux each thread has a nice value of its own and hands it on, see sched(7).
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), niceValue);
}

void runGivingWay(const std::function<void()>& work) {
    std::async(std::launch::async, [&work] {
        giveWay();
        work();
    }).get();
}

} // namespace orvane::posix
