#include "OrvanePlatform/posix/GiveWay.h"

#include <sys/resource.h>
#include <unistd.h>

namespace orvane::posix {

namespace {

// The most that a process may ask for, setpriority(2). What a thread reads and writes comes last with it,
// too: the priority for the disk follows from it, ioprio_set(2).
constexpr int highestNiceValue = 19;

} // namespace

void giveWay() {
    // On Linux each thread has a nice value of its own, see sched(7).
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), highestNiceValue);
}

} // namespace orvane::posix
