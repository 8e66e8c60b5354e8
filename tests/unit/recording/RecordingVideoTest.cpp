#include "OrvaneCore/recording/RecordingVideo.h"

#include "tests/support/FakeClock.h"
#include "tests/support/FakeMedia.h"

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class RecordingVideoTest : public testing::Test {
protected:
    std::unique_ptr<RecordingVideo> start(int framesPerSecond = 20) {
        return RecordingVideo::start(media, clock, u"/somewhere"_s, {640, 480}, framesPerSecond);
    }
    std::string said() { return testing::internal::GetCapturedStderr(); }

    FakeMedia media;
    FakeClock clock;
    QImage picture{640, 480, QImage::Format_RGB32};
};

TEST_F(RecordingVideoTest, BeginsAMovieOfTheWantedFormat) {
    testing::internal::CaptureStderr();
    const auto video = start();
    EXPECT_EQ(said(), "orvane: video writer started (640x480 @ 20fps)\n");
    EXPECT_EQ(video->framesPerSecond(), 20);
    ASSERT_EQ(media.movies.size(), 1U);
    const FakeMovie& movie = media.movies.front();
    EXPECT_EQ(movie.path, u"/somewhere/recording.mp4");
    EXPECT_EQ(movie.format.sizePixels, QSize(640, 480));
    EXPECT_EQ(movie.format.framesPerSecond, 20);
    EXPECT_EQ(movie.format.bitsPerSecond, 640 * 480 * 2);
    EXPECT_EQ(movie.format.keyFrameInterval, 40);
}

TEST_F(RecordingVideoTest, AsksForManyBitsWithoutOverflow) {
    const auto video = RecordingVideo::start(media, clock, u"/"_s, {65535, 65535}, 60);
    EXPECT_EQ(media.movies.front().format.bitsPerSecond, 2LL * 65535 * 65535);
}

TEST_F(RecordingVideoTest, IsNothingWhenItCannotBegin) {
    media.refusal = u"No disk."_s;
    testing::internal::CaptureStderr();
    EXPECT_EQ(start(), nullptr);
    EXPECT_EQ(said(), "orvane: failed to start video writer: No disk.\n");
}

TEST_F(RecordingVideoTest, ShowsFramesAtTheirTimes) {
    clock.advance(1h);
    const auto video = start();
    video->append(picture);
    clock.advance(1500ms);
    video->append(picture);
    const auto& frames = media.movies.front().frames;
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_EQ(frames.at(0).time, 0ms);
    EXPECT_EQ(frames.at(1).time, 1500ms);
}

TEST_F(RecordingVideoTest, TellsItsLengthByTheNumberOfFrames) {
    const auto video = start(20);
    for (int i = 0; i < 100; ++i)
        video->append(picture);
    media.ready = false;
    video->append(picture);
    testing::internal::CaptureStderr();
    video->stop();
    EXPECT_EQ(said(), "orvane: video saved (100 frames, 5.0s)\n");
    EXPECT_EQ(media.movies.front().finishes, 1);
    EXPECT_TRUE(media.movies.front().closed);
}

TEST_F(RecordingVideoTest, StopsOnce) {
    const auto video = start();
    video->stop();
    testing::internal::CaptureStderr();
    video->stop();
    video->append(picture);
    EXPECT_EQ(said(), "");
    EXPECT_EQ(media.movies.front().finishes, 1);
    EXPECT_TRUE(media.movies.front().frames.empty());
}

TEST_F(RecordingVideoTest, TellsWhatWentWrongAndIsSavedAsFarAsItGoes) {
    const auto video = start(30);
    video->append(picture);
    media.finishFailure = u"The disk is full."_s;
    testing::internal::CaptureStderr();
    video->stop();
    EXPECT_EQ(said(),
              "orvane: video writer error: The disk is full.\norvane: video saved (1 frames, 0.0s)\n");
}

} // namespace orvane::test
