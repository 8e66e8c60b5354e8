#pragma once

#include "OrvaneCore/base/Clock.h"

#include <chrono>

namespace orvane {

/// The time that there is for reading text, in however many pictures. Begins when it is made. Any thread.
class ReadingBudget {
public:
    /// The clock outlives the budget.
    ReadingBudget(Clock& clock, std::chrono::microseconds time)
        : m_clock(clock)
        , m_end(clock.monotonic() + time) {}

    bool isSpent() const { return m_clock.monotonic() >= m_end; }

private:
    Clock& m_clock;
    Clock::Monotonic m_end;
};

} // namespace orvane
