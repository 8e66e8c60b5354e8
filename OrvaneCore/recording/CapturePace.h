#pragma once

#include "OrvaneCore/recording/RecorderClock.h"

#include <optional>

namespace orvane {

/// How often a recording looks at its target, and at which of these looks it searches for changes.
struct CapturePace {
    std::chrono::milliseconds period{0};
    /// Every how many looks.
    int stride = 1;

    bool operator==(const CapturePace&) const = default;
};

/// `videoFps`: the movie's rate, which then rules; nothing where no movie is written. An interval that no
/// machine could keep, and one of no sense, becomes the nearest that makes sense.
CapturePace capturePace(std::optional<int> videoFps, qint64 intervalMs);

/// When to look again: one period after the look that was due at `due`, so that the time a look takes does
/// not slow the pace; a recording that has fallen behind does not catch up, and always rests for a moment.
RecorderClock::Monotonic nextDue(RecorderClock::Monotonic due, RecorderClock::Monotonic now,
                                 std::chrono::milliseconds period);

} // namespace orvane
