#include "OrvaneCore/base/Clock.h"

#include <gtest/gtest.h>

#include <future>

namespace orvane {

using namespace std::chrono_literals;

TEST(SystemClockTest, SleepsUntilTheMoment) {
    SystemClock clock;
    const auto moment = clock.monotonic() + 20ms;
    EXPECT_TRUE(clock.sleepUntil(moment, std::stop_token()));
    EXPECT_GE(clock.monotonic(), moment);
}

TEST(SystemClockTest, DoesNotSleepForAMomentThatHasPassed) {
    SystemClock clock;
    EXPECT_TRUE(clock.sleepUntil(clock.monotonic() - 1h, std::stop_token()));
}

TEST(SystemClockTest, WakesWhenAStopIsRequested) {
    SystemClock clock;
    std::stop_source source;
    auto sleeper = std::async(std::launch::async,
                              [&] { return clock.sleepUntil(clock.monotonic() + 24h, source.get_token()); });
    EXPECT_EQ(sleeper.wait_for(20ms), std::future_status::timeout);
    source.request_stop();
    EXPECT_FALSE(sleeper.get());
    EXPECT_FALSE(clock.sleepUntil(clock.monotonic() + 24h, source.get_token()));
    EXPECT_FALSE(clock.sleepUntil(clock.monotonic(), source.get_token()));
}

TEST(SystemClockTest, TellsTheTime) {
    SystemClock clock;
    EXPECT_LT(std::abs(clock.now().msecsTo(QDateTime::currentDateTimeUtc())), 5000);
}

} // namespace orvane
