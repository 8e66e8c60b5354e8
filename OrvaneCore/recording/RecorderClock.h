#pragma once

#include <QDateTime>

#include <chrono>
#include <stop_token>

namespace orvane {

/// What time it is to a recorder, and waiting. Any thread.
class RecorderClock {
public:
    /// Since some moment; never goes back, whatever is done to the wall clock.
    using Monotonic = std::chrono::microseconds;

    virtual ~RecorderClock() = default;

    /// The wall clock.
    virtual QDateTime now() = 0;
    virtual Monotonic monotonic() = 0;
    /// Sleeps until that moment, or not at all when it has passed. False, and at once, when a stop is
    /// requested before or meanwhile.
    virtual bool sleepUntil(Monotonic moment, const std::stop_token& stop) = 0;

protected:
    RecorderClock() = default;
    RecorderClock(const RecorderClock&) = default;
    RecorderClock& operator=(const RecorderClock&) = default;
};

/// The machine's clocks.
class SystemClock final : public RecorderClock {
public:
    QDateTime now() override;
    Monotonic monotonic() override;
    bool sleepUntil(Monotonic moment, const std::stop_token& stop) override;
};

} // namespace orvane
