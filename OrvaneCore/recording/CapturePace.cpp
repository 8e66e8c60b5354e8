#include "OrvaneCore/recording/CapturePace.h"

#include <algorithm>

namespace orvane {

namespace {

// That of the fastest movie: nothing shows more often.
constexpr qint64 shortestPeriodMs = 1000 / 60;
// Far from where adding it to a clock overflows.
constexpr qint64 longestPeriodMs = 1000LL * 60 * 60 * 24 * 365;
// The part of a period that is left to others, however long a look takes.
constexpr int restPart = 4;
// A few frames of a movie. What is longer than this was seen by nobody.
constexpr Clock::Monotonic mostLag = std::chrono::milliseconds(150);

} // namespace

CapturePace capturePace(std::optional<int> videoFps, qint64 intervalMs) {
    if (videoFps) {
        const int rate = std::max(1, *videoFps);
        return {.period = std::chrono::milliseconds(1000 / rate), .stride = rate};
    }
    return {.period = std::chrono::milliseconds(std::clamp(intervalMs, shortestPeriodMs, longestPeriodMs)),
            .stride = 1};
}

Clock::Monotonic nextDue(Clock::Monotonic due, Clock::Monotonic now, std::chrono::milliseconds period) {
    return std::max(due + Clock::Monotonic(period), now - mostLag);
}

Clock::Monotonic lookTime(Clock::Monotonic due, Clock::Monotonic now, std::chrono::milliseconds period) {
    return std::max(due, now + Clock::Monotonic(period) / restPart);
}

} // namespace orvane
