#pragma once

#include <QDateTime>

#include <chrono>
#include <stop_token>

namespace orvane {

/// What time it is to a recorder, and waiting. Any thread.
class Clock {
public:
    /// Since some moment; never goes back, whatever is done to the wall clock.
    using Monotonic = std::chrono::microseconds;

    virtual ~Clock() = default;

    /// The wall clock.
    virtual QDateTime now() = 0;
    virtual Monotonic monotonic() = 0;
    /// Sleeps until that moment, or not at all when it has passed. False, and at once, when a stop is
    /// requested before or meanwhile.
    virtual bool sleepUntil(Monotonic moment, const std::stop_token& stop) = 0;

protected:
    Clock() = default;
    Clock(const Clock&) = default;
    Clock& operator=(const Clock&) = default;
};

/// The machine's clocks.
class SystemClock final : public Clock {
public:
    QDateTime now() override;
    Monotonic monotonic() override;
    bool sleepUntil(Monotonic moment, const std::stop_token& stop) override;
};

} // namespace orvane
