#include "OrvanePlatform/media/ffmpeg/GiveWay.h"

#include <future>

#include <sys/resource.h>
#include <unistd.h>

namespace orvane::media {

namespace {

// Of a processor that is wanted by others too, a tenth is left.
constexpr int niceValue = 10;

} // namespace

void giveWay() {
    // On Linux each thread has a nice value of its own and hands it on, see sched(7). Where it cannot be
    // raised, work goes on as before.
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), niceValue);
}

void runGivingWay(const std::function<void()>& work) {
    std::async(std::launch::async, [&work] {
        giveWay();
        work();
    }).get();
}

} // namespace orvane::media
