#include "tests/support/FakeClock.h"

#include <gtest/gtest.h>

#include <future>
#include <vector>

namespace orvane::test {

using namespace std::chrono_literals;

TEST(FakeClockTest, StandsStillUntilItIsMoved) {
    FakeClock clock;
    const QDateTime begin = clock.now();
    EXPECT_EQ(clock.monotonic(), 0ms);
    clock.advance(1500ms);
    EXPECT_EQ(begin.msecsTo(clock.now()), 1500);
    EXPECT_EQ(clock.monotonic(), 1500ms);
}

TEST(FakeClockTest, WakesASleeperAtEachOfItsMoments) {
    FakeClock clock;
    std::stop_source stop;
    std::vector<Clock::Monotonic> woken;
    auto sleeper = std::async(std::launch::async, [&] {
        for (int i = 1; clock.sleepUntil(i * 100ms, stop.get_token()); ++i)
            woken.push_back(clock.monotonic());
    });
    clock.awaitSleeper();
    clock.advance(350ms);
    EXPECT_EQ(woken, (std::vector<Clock::Monotonic>{100ms, 200ms, 300ms}));
    EXPECT_EQ(clock.monotonic(), 350ms);
    EXPECT_EQ(clock.sleeps(), 4);
    stop.request_stop();
    sleeper.wait();
    EXPECT_EQ(woken.size(), 3U);
}

TEST(FakeClockTest, DoesNotSleepOnceAStopIsRequested) {
    FakeClock clock;
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(clock.sleepUntil(1h, stop.get_token()));
    EXPECT_FALSE(clock.sleepUntil(0ms, stop.get_token()));
}

} // namespace orvane::test
