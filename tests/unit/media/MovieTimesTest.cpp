#include "OrvanePlatform/media/video/MovieTimes.h"

#include <gtest/gtest.h>

namespace orvane::media {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

TEST(MovieTimesTest, ATickIsTheNearestToTheTime) {
    MovieTimes times(30, 60);
    EXPECT_EQ(times.tickOf(0us), 0);
    EXPECT_EQ(times.tickOf(33'333us), 3000);
    EXPECT_EQ(times.tickOf(66'667us), 6000);
    EXPECT_EQ(times.tickOf(1s), 90'000);
    EXPECT_EQ(times.tickOf(10h), 36'000 * qint64{90'000});
}

TEST(MovieTimesTest, TheFirstFrameIsShownFromTheBegin) {
    MovieTimes times(30, 60);
    EXPECT_EQ(times.tickOf(250ms), 0);
    EXPECT_EQ(times.tickOf(500ms), 45'000);
}

TEST(MovieTimesTest, TicksAscendWhateverTheTimes) {
    MovieTimes times(30, 60);
    EXPECT_EQ(times.tickOf(-5s), 0);
    EXPECT_EQ(times.tickOf(-4s), 1);
    EXPECT_EQ(times.tickOf(100us), 9);
    EXPECT_EQ(times.tickOf(101us), 10);
    EXPECT_EQ(times.tickOf(101us), 11);
    EXPECT_EQ(times.tickOf(1s), 90'000);
    EXPECT_EQ(times.tickOf(500ms), 90'001);
    const qint64 last = times.tickOf(microseconds::max());
    EXPECT_GT(last, 90'001);
    EXPECT_EQ(times.tickOf(microseconds::max()), last + 1);
}

TEST(MovieTimesTest, AKeyFrameIsDueWhenTheTimeOfTheIntervalHasPassed) {
    MovieTimes times(30, 60);
    EXPECT_TRUE(times.isKeyFrameDue(0));
    times.noteKeyFrame(0);
    EXPECT_FALSE(times.isKeyFrameDue(179'999));
    EXPECT_TRUE(times.isKeyFrameDue(180'000));
    times.noteKeyFrame(90'000);
    EXPECT_FALSE(times.isKeyFrameDue(269'999));
    EXPECT_TRUE(times.isKeyFrameDue(270'000));
}

TEST(MovieTimesTest, AnEarlierKeyFrameThatIsToldLaterChangesNothing) {
    MovieTimes times(30, 60);
    times.noteKeyFrame(90'000);
    times.noteKeyFrame(45'000);
    EXPECT_FALSE(times.isKeyFrameDue(269'999));
}

TEST(MovieTimesTest, TheIntervalIsInFramesOfTheRate) {
    MovieTimes times(5, 10);
    times.noteKeyFrame(0);
    EXPECT_FALSE(times.isKeyFrameDue(179'999));
    EXPECT_TRUE(times.isKeyFrameDue(180'000));
}

TEST(MovieTimesTest, TheLastFrameLastsAsLongAsTheRateSays) {
    EXPECT_EQ(MovieTimes(30, 60).lastFrameTicks(), 3000);
    EXPECT_EQ(MovieTimes(5, 10).lastFrameTicks(), 18'000);
}

} // namespace
} // namespace orvane::media
