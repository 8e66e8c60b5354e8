#include "OrvaneCore/base/Clock.h"

#include <condition_variable>
#include <mutex>

namespace orvane {

using Steady = std::chrono::steady_clock;

QDateTime SystemClock::now() {
    return QDateTime::currentDateTimeUtc();
}

Clock::Monotonic SystemClock::monotonic() {
    return std::chrono::duration_cast<Monotonic>(Steady::now().time_since_epoch());
}

bool SystemClock::sleepUntil(Monotonic moment, const std::stop_token& stop) {
    std::mutex mutex;
    std::condition_variable_any nobodyNotifies;
    std::unique_lock lock(mutex);
    nobodyNotifies.wait_until(lock, stop, Steady::time_point(moment), [] { return false; });
    return !stop.stop_requested();
}

} // namespace orvane
