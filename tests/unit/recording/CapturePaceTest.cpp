#include "OrvaneCore/recording/CapturePace.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {

using namespace std::chrono_literals;

TEST(CapturePaceTest, IsTheIntervalWithoutAMovie) {
    EXPECT_EQ(capturePace(std::nullopt, 1000), (CapturePace{.period = 1000ms, .stride = 1}));
    EXPECT_EQ(capturePace(std::nullopt, 250), (CapturePace{.period = 250ms, .stride = 1}));
}

TEST(CapturePaceTest, IsTheMoviesRateWhateverTheInterval) {
    EXPECT_EQ(capturePace(30, 250), (CapturePace{.period = 33ms, .stride = 30}));
    EXPECT_EQ(capturePace(60, 250), (CapturePace{.period = 16ms, .stride = 60}));
    EXPECT_EQ(capturePace(1, 250), (CapturePace{.period = 1000ms, .stride = 1}));
}

TEST(CapturePaceTest, NeverSpinsAndNeverOverflows) {
    for (const qint64 tooShort : {0LL, -5LL, 1LL, 15LL, std::numeric_limits<qint64>::min()})
        EXPECT_EQ(capturePace(std::nullopt, tooShort).period, 16ms) << tooShort;
    EXPECT_EQ(capturePace(std::nullopt, 17).period, 17ms);
    for (const qint64 tooLong : {1'000'000'000'000LL, std::numeric_limits<qint64>::max()})
        EXPECT_EQ(capturePace(std::nullopt, tooLong).period, std::chrono::hours(24 * 365)) << tooLong;
    for (const int noRate : {0, -30})
        EXPECT_EQ(capturePace(noRate, 250), (CapturePace{.period = 1000ms, .stride = 1})) << noRate;
}

TEST(CapturePaceTest, ALookIsDueOnePeriodAfterTheLastHoweverLongThatTook) {
    EXPECT_EQ(nextDue(0ms, 0ms, 100ms), 100ms);
    EXPECT_EQ(nextDue(100ms, 130ms, 100ms), 200ms);
    EXPECT_EQ(nextDue(100ms, 190ms, 100ms), 200ms);
    EXPECT_EQ(nextDue(100ms, 290ms, 100ms), 200ms);
}

TEST(CapturePaceTest, MakesUpForAShortDelayOnly) {
    EXPECT_EQ(nextDue(100ms, 350ms, 100ms), 200ms);
    EXPECT_EQ(nextDue(100ms, 351ms, 100ms), 201ms);
    EXPECT_EQ(nextDue(100ms, 5000ms, 100ms), 4850ms);
}

TEST(CapturePaceTest, LooksWhenItIsDueButRestsForAMoment) {
    EXPECT_EQ(lookTime(200ms, 130ms, 100ms), 200ms);
    EXPECT_EQ(lookTime(200ms, 175ms, 100ms), 200ms);
    EXPECT_EQ(lookTime(200ms, 190ms, 100ms), 215ms);
    EXPECT_EQ(lookTime(200ms, 350ms, 100ms), 375ms);
}

} // namespace orvane
