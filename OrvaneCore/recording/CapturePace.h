#pragma once

#include "OrvaneCore/base/Clock.h"

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

/// When the look after the one that was due at `due` is due: one period later, so that the time a look takes
/// does not slow the pace. That may be past already; a delay of more than a few frames is not made up for.
Clock::Monotonic nextDue(Clock::Monotonic due, Clock::Monotonic now, std::chrono::milliseconds period);

/// When to take a look that is due at `due`: then, or as soon as others have had their turn.
Clock::Monotonic lookTime(Clock::Monotonic due, Clock::Monotonic now, std::chrono::milliseconds period);

} // namespace orvane
