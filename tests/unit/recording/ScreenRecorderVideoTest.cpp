#include "tests/unit/recording/RecorderFixture.h"

namespace orvane::test {

using testing::HasSubstr;

class ScreenRecorderVideoTest : public RecorderFixture {
protected:
    ScreenRecorderVideoTest() {
        storage.setSaveRawVideo(true);
        storage.setVideoFps(10);
    }

    const FakeMovie& movie() const { return media.movies.back(); }
};

TEST_F(ScreenRecorderVideoTest, IsWrittenOnlyWhereItIsWanted) {
    storage.setSaveRawVideo(false);
    start();
    EXPECT_TRUE(media.movies.empty());
}

TEST_F(ScreenRecorderVideoTest, LiesInTheSessionFolderInTheSizeOfTheFirstFrame) {
    const QString id = start();
    ASSERT_EQ(media.movies.size(), 1U);
    EXPECT_EQ(movie().path, storage.sessionDir(id) + u"/recording.mp4"_s);
    EXPECT_EQ(movie().format.sizePixels, QSize(800, 600));
    EXPECT_EQ(movie().format.framesPerSecond, 10);
    EXPECT_EQ(movie().frames.size(), 1U);
}

TEST_F(ScreenRecorderVideoTest, RulesThePaceWhateverTheInterval) {
    start(250);
    clock.advance(1s);
    ASSERT_EQ(movie().frames.size(), 11U);
    for (std::size_t i = 0; i < movie().frames.size(); ++i)
        EXPECT_EQ(movie().frames.at(i).time, i * 100ms);
    recorder.stopRecording();
    EXPECT_EQ(movie().finishes, 1);
}

TEST_F(ScreenRecorderVideoTest, HasTheRateOfTheSettings) {
    for (const auto& [setting, rate] :
         std::vector<std::pair<int, int>>{{0, 30}, {-4, 30}, {75, 60}, {60, 60}, {1, 1}}) {
        settings.setValue(u"VideoFps"_s, setting);
        clock.jump(5ms);
        start();
        EXPECT_EQ(movie().format.framesPerSecond, rate) << setting;
        EXPECT_EQ(movie().format.keyFrameInterval, 2 * rate);
        recorder.stopRecording();
    }
}

TEST_F(ScreenRecorderVideoTest, IsSearchedForChangesOnceASecondBetweenNeighbours) {
    const QString id = start();
    recorder.pollTimeline();
    // Long before the frame that is analysed: not seen.
    show({{0, 0}});
    clock.advance(900ms);
    clock.advance(100ms);
    EXPECT_EQ(recorder.pollTimeline().events.size(), 0);
    // In the very period before it: seen.
    clock.advance(900ms);
    show({{0, 0}, {7, 5}});
    clock.advance(100ms);
    EXPECT_EQ(recorder.pollTimeline().events.size(), 1);
    recorder.stopRecording();
    EXPECT_THAT(report(id).toStdString(), HasSubstr("- **Frames captured:** 2\n"));
    EXPECT_TRUE(files(id).contains(u"change-002.png"_s));
}

TEST_F(ScreenRecorderVideoTest, HoldsAFrameThroughAPause) {
    start();
    clock.advance(200ms);
    recorder.pauseRecording();
    clock.advance(5s);
    recorder.resumeRecording();
    clock.advance(100ms);
    ASSERT_EQ(movie().frames.size(), 4U);
    EXPECT_EQ(movie().frames.at(2).time, 200ms);
    EXPECT_EQ(movie().frames.at(3).time, 5300ms);
}

TEST_F(ScreenRecorderVideoTest, TakesFramesOfAnotherSize) {
    start();
    desktop.picture = desktop.picture.scaled(300, 200);
    clock.advance(100ms);
    EXPECT_EQ(movie().frames.back().picture.size(), QSize(300, 200));
}

TEST_F(ScreenRecorderVideoTest, DoesNotStopARecordingByFailing) {
    media.refusal = u"no encoder"_s;
    testing::internal::CaptureStderr();
    const QString id = start(500);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("orvane: failed to start video writer: no encoder\n"));
    show({{0, 0}});
    clock.advance(500ms);
    recorder.stopRecording();
    EXPECT_THAT(report(id).toStdString(), HasSubstr("| T+0.5s | visual_change | "));
}

TEST_F(ScreenRecorderVideoTest, EndsAfterTheEndFrameAndBeforeTheReport) {
    const QString id = start();
    media.finishFailure = u"The disk is full."_s;
    testing::internal::CaptureStderr();
    recorder.stopRecording();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: video writer error: The disk is full.\norvane: video saved (1 frames, 0.1s)\n"
              "orvane: recording stopped (session " +
                  id.toStdString() + ")\n");
    EXPECT_FALSE(report(id).isEmpty());
}

} // namespace orvane::test
