#include "OrvaneCore/recording/RecordingLoop.h"

#include "OrvanePlatform/png/IgzipWriter.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeMedia.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <future>
#include <stdexcept>

namespace orvane::test {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class RecordingLoopTest : public testing::Test {
protected:
    RecordingLoopTest() { frame.fill(Qt::black); }

    void begin(qint64 intervalMs = 1000) {
        loop.begin(frame, nullptr, intervalMs);
        clock.awaitSleeper();
    }

    std::unique_ptr<RecordingVideo> video(int framesPerSecond) {
        return RecordingVideo::start(media, clock, folder.path(), frame.size(), framesPerSecond);
    }

    QTemporaryDir folder;
    FakeClock clock;
    FakeMedia media;
    QImage frame{80, 60, QImage::Format_RGB32};
    png::IgzipWriter pngWriter;
    ChangeTracker tracker;
    WorkQueue work{2};
    std::shared_ptr<RecordingJournal> journal = std::make_shared<RecordingJournal>(
        RecordingJournal::Head{
            .sessionId = u"1"_s, .folder = folder.path(), .startTime = clock.now(), .appName = {}},
        pngWriter, tracker, work);
    std::atomic<int> looks = 0;
    std::function<void()> duringLook = [] {};
    RecordingLoop loop{clock,
                       [this] {
                           ++looks;
                           duringLook();
                           return frame;
                       },
                       journal};
};

} // namespace

TEST_F(RecordingLoopTest, LooksAtItsInterval) {
    begin(250);
    clock.advance(1s);
    EXPECT_EQ(looks, 4);
}

TEST_F(RecordingLoopTest, LooksAtThePaceOfItsMovie) {
    loop.begin(frame, video(10), 250);
    clock.awaitSleeper();
    clock.advance(1s);
    EXPECT_EQ(looks, 10);
    EXPECT_EQ(media.movies.back().frames.size(), 11U);
    loop.end();
    loop.stopVideo();
    EXPECT_EQ(media.movies.back().finishes, 1);
}

TEST_F(RecordingLoopTest, FindsWhatChangedInAFrameThatWasLeftOut) {
    std::promise<void> gate;
    std::promise<void> begun;
    work.post([&] {
        begun.set_value();
        gate.get_future().wait();
    });
    begun.get_future().wait();
    for (int i = 0; i < 2; ++i)
        work.post([] {});
    begin();
    frame.fill(Qt::white);
    // Neither look waits for room, and neither is compared.
    clock.advance(2s);
    EXPECT_EQ(looks, 2);
    gate.set_value();
    work.drain();
    EXPECT_TRUE(journal->takeNews().isEmpty());
    clock.advance(1s);
    work.drain();
    const QStringList news = journal->takeNews();
    ASSERT_EQ(news.size(), 1);
    EXPECT_TRUE(news.front().startsWith(u"T+3.0s | major_change | "_s)) << qPrintable(news.front());
    EXPECT_TRUE(news.front().endsWith(u" | change-001.png"_s)) << qPrintable(news.front());
}

TEST_F(RecordingLoopTest, LooksAtNothingWhilePaused) {
    loop.setPaused(true);
    begin();
    clock.advance(3s);
    EXPECT_EQ(looks, 0);
    loop.setPaused(false);
    clock.advance(3s);
    EXPECT_EQ(looks, 3);
}

TEST_F(RecordingLoopTest, APauseDoesNotBringTheNextComparisonNearer) {
    loop.begin(frame, video(10), 250);
    clock.awaitSleeper();
    clock.advance(500ms);
    loop.setPaused(true);
    clock.advance(500ms);
    loop.setPaused(false);
    clock.advance(400ms);
    const auto end = [this] {
        journal->tellEnd({}, clock.now());
        return journal->takeNews().constLast();
    };
    EXPECT_TRUE(end().contains(u"s, 0 frames analyzed."_s));
    clock.advance(100ms);
    EXPECT_TRUE(end().contains(u"s, 1 frames analyzed."_s));
}

TEST_F(RecordingLoopTest, EndsFromItsSleep) {
    begin(1'000'000);
    loop.end();
    loop.awaitLastLook(0ms);
    loop.join();
    EXPECT_EQ(looks, 0);
    loop.end();
    loop.join();
}

TEST_F(RecordingLoopTest, DoesNotBeginOnceEnded) {
    loop.end();
    loop.begin(frame, video(10), 1000);
    EXPECT_EQ(media.movies.back().finishes, 1);
    EXPECT_EQ(clock.sleeps(), 0);
    // Somebody else's end; the movie is stopped once.
    loop.stopVideo();
    EXPECT_EQ(media.movies.back().finishes, 1);
}

TEST_F(RecordingLoopTest, WaitsForALookNoLongerThanItMay) {
    begin();
    std::promise<void> looking;
    std::promise<void> goOn;
    duringLook = [&] {
        looking.set_value();
        goOn.get_future().wait();
    };
    clock.jump(1s);
    looking.get_future().wait();
    // Neither waits for the look.
    loop.end();
    loop.awaitLastLook(1ms);
    EXPECT_EQ(looks, 1);
    goOn.set_value();
    loop.awaitLastLook(10s);
    loop.join();
    EXPECT_EQ(looks, 1);
}

TEST_F(RecordingLoopTest, KeepsNothingOfALookThatItsEndOvertook) {
    loop.begin(frame, video(1), 1000);
    clock.awaitSleeper();
    std::promise<void> looking;
    std::promise<void> goOn;
    duringLook = [&] {
        looking.set_value();
        goOn.get_future().wait();
    };
    frame.fill(Qt::white);
    clock.jump(1s);
    looking.get_future().wait();
    loop.end();
    goOn.set_value();
    loop.join();
    work.drain();
    EXPECT_EQ(looks, 1);
    EXPECT_EQ(media.movies.back().frames.size(), 1U);
    journal->tellEnd({}, clock.now());
    const QStringList news = journal->takeNews();
    ASSERT_EQ(news.size(), 1);
    EXPECT_TRUE(news.front().contains(u"s, 0 frames analyzed."_s)) << qPrintable(news.front());
}

TEST_F(RecordingLoopTest, GoesOnAfterALookThatFails) {
    begin();
    duringLook = [] { throw std::runtime_error("it closed"); };
    testing::internal::CaptureStderr();
    clock.advance(1s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "orvane: capture error in loop: it closed\n");
    duringLook = [] {};
    clock.advance(1s);
    EXPECT_EQ(looks, 2);
}

} // namespace orvane::test
