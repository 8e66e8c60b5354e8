#include "tests/unit/recording/RecorderFixture.h"

#include <atomic>
#include <future>

namespace orvane::test {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

class ScreenRecorderTest : public RecorderFixture {};

TEST_F(ScreenRecorderTest, IsIdleAtFirst) {
    EXPECT_EQ(recorder.recordingSessionId(), std::nullopt);
    EXPECT_EQ(recorder.currentSessionDir(), std::nullopt);
    EXPECT_EQ(recorder.framePath(u"a.png"_s), std::nullopt);
    EXPECT_EQ(recorder.currentAppName(), u"");
    EXPECT_FALSE(recorder.recordingIsPaused());
    EXPECT_EQ(recorder.activeElapsed(), 0);
    const auto poll = recorder.pollTimeline();
    EXPECT_EQ(poll.events, QStringList());
    EXPECT_EQ(poll.sessionId, u"");
    EXPECT_EQ(poll.sessionDir, u"");
    EXPECT_EQ(thrownBy([&] { recorder.stopRecording(); }), u"Invalid arguments: Not recording.");
}

TEST_F(ScreenRecorderTest, TellsWhatItRecords) {
    const QString id = start();
    EXPECT_EQ(id, clock.now().toLocalTime().toString(u"yyyyMMdd-HHmmss.zzz"_s));
    EXPECT_EQ(recorder.recordingSessionId(), id);
    EXPECT_EQ(recorder.currentSessionDir(), storage.sessionDir(id));
    EXPECT_EQ(recorder.framePath(u"a.png"_s), storage.sessionDir(id) + u"/a.png"_s);
    EXPECT_EQ(recorder.currentAppName(), u"Terminal");
    const auto poll = recorder.pollTimeline();
    EXPECT_EQ(
        poll.events,
        QStringList(u"T+0.0s | recording_start | Started monitoring Terminal — build | main (800x600) | "
                    "frame-000-start.png"_s));
    EXPECT_EQ(poll.sessionId, id);
    EXPECT_EQ(poll.sessionDir, storage.sessionDir(id));
}

TEST_F(ScreenRecorderTest, LeavesASessionThatWasBegunInTheSameMillisecondAlone) {
    const StorageManager::SessionFolder theirs = storage.createSessionDir();
    const QString id = start();
    EXPECT_NE(id, theirs.id);
    recorder.stopRecording();
    EXPECT_TRUE(QDir(theirs.dir).isEmpty());
    EXPECT_THAT(files(id), testing::Contains(u"SESSION.md"_s));
}

TEST_F(ScreenRecorderTest, TwoRecordingsHaveFoldersOfTheirOwnHoweverShortTheyAre) {
    const QString first = start();
    recorder.stopRecording();
    const QString second = start();
    recorder.stopRecording();
    EXPECT_NE(first, second);
    EXPECT_THAT(files(first), testing::Contains(u"SESSION.md"_s));
    EXPECT_THAT(files(second), testing::Contains(u"SESSION.md"_s));
    EXPECT_EQ(storage.latestSessionDir(), QFileInfo(storage.sessionDir(second)).canonicalFilePath());
}

TEST_F(ScreenRecorderTest, PollsEachEntryOnce) {
    start();
    EXPECT_EQ(recorder.pollTimeline().events.size(), 1);
    EXPECT_EQ(recorder.pollTimeline().events.size(), 0);
    show({{7, 0}});
    clock.advance(1s);
    EXPECT_EQ(recorder.pollTimeline().events,
              QStringList(u"T+1.0s | visual_change | New activity in top-right area (1 cells changed). | "
                          "change-001.png"_s));
    EXPECT_EQ(recorder.pollTimeline().events.size(), 0);
}

TEST_F(ScreenRecorderTest, StartFollowedByStopHasAStartAndAnEnd) {
    const QString id = start();
    EXPECT_EQ(recorder.stopRecording(), id);
    EXPECT_THAT(files(id), testing::Contains(u"frame-000-start.png"_s));
    EXPECT_THAT(files(id), testing::Contains(u"frame-001-end.png"_s));
    EXPECT_THAT(
        report(id).toStdString(),
        AllOf(HasSubstr("- **Frames captured:** 0\n"), HasSubstr("- **End frame:** frame-001-end.png\n"),
              HasSubstr("|------|-------|---------|------------|\n"
                        "| T+0.0s | recording_start | Started monitoring Terminal — build | main (800x600) | "
                        "frame-000-start.png |\n"
                        "| T+0.0s | recording_end | Recording stopped. Duration: 0.0s, 0 frames analyzed. | "
                        "frame-001-end.png |\n\n")));
}

TEST_F(ScreenRecorderTest, IsOverAfterStop) {
    const QString id = start();
    recorder.pollTimeline();
    recorder.stopRecording();
    EXPECT_EQ(recorder.recordingSessionId(), std::nullopt);
    EXPECT_EQ(recorder.currentSessionDir(), std::nullopt);
    const auto late = recorder.pollTimeline();
    EXPECT_EQ(late.events.size(), 1);
    EXPECT_EQ(late.sessionId, id);
    EXPECT_EQ(late.sessionDir, u"");
    EXPECT_EQ(thrownBy([&] { recorder.stopRecording(); }), u"Invalid arguments: Not recording.");
}

TEST_F(ScreenRecorderTest, LeavesALinkAndAThumbnail) {
    const QString id = start();
    EXPECT_EQ(storage.latestSessionDir(), std::nullopt);
    recorder.stopRecording();
    EXPECT_EQ(storage.latestSessionDir(), QFileInfo(storage.sessionDir(id)).canonicalFilePath());
    // A poll waits for what is being written.
    recorder.pollTimeline();
    EXPECT_EQ(picture(id, u"thumbnail.png"_s).size(), QSize(400, 300));
}

TEST_F(ScreenRecorderTest, RecordsTheFirstWindowOfAnApplication) {
    desktop.addApplication(8, u"Term"_s, 50, {0, 0, 800, 600});
    const QString id = recorder.startRecording(u"TERM"_s, 1000, RecordingSource::mcp);
    EXPECT_EQ(recorder.recordingSessionId(), id);
    EXPECT_EQ(recorder.currentAppName(), u"Terminal");
    EXPECT_THAT(desktop.capturedWindows, ElementsAre(windowId));
    EXPECT_EQ(thrownBy([&] { recorder.startRecording(u"Nope"_s, 1000, RecordingSource::mcp); }),
              u"Invalid arguments: No window found for 'Nope'");
}

TEST_F(ScreenRecorderTest, MakesNoFolderForAnUnknownApplication) {
    EXPECT_EQ(thrownBy([&] { recorder.startRecording(u"Nope"_s, 1000, RecordingSource::mcp); }),
              u"Invalid arguments: No window found for 'Nope'");
    EXPECT_TRUE(QDir(storage.sessionsDir()).isEmpty());
}

TEST_F(ScreenRecorderTest, RecordsOneThingAtATime) {
    const QString id = start();
    EXPECT_EQ(thrownBy([&] { start(); }),
              u"Invalid arguments: Already recording. Call stop_recording first.");
    EXPECT_EQ(recorder.recordingSessionId(), id);
    EXPECT_EQ(recorder.stopRecording(), id);
    clock.jump(5ms);
    EXPECT_NE(start(), id);
}

TEST_F(ScreenRecorderTest, BeginsOnlyOneOfManyThatStartAtOnce) {
    std::atomic<int> begun = 0;
    std::vector<std::future<void>> starts;
    starts.reserve(8);
    for (int i = 0; i < 8; ++i) {
        starts.push_back(std::async(std::launch::async, [&] {
            try {
                recorder.startRecording(WindowTarget{u"Terminal"_s, windowId}, 1000, RecordingSource::mcp);
                ++begun;
            } catch (const OrvaneError&) {
            }
        }));
    }
    for (auto& call : starts)
        call.wait();
    EXPECT_EQ(begun, 1);
    EXPECT_EQ(QDir(storage.sessionsDir()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
}

TEST_F(ScreenRecorderTest, ShowsTheCursorOnlyToHumansWhoWantIt) {
    const WindowTarget target{u"Terminal"_s, windowId};
    start(target, RecordingSource::mcp);
    recorder.stopRecording();
    EXPECT_THAT(desktop.cursors, ElementsAre(false, false));
    desktop.cursors.clear();
    start(target, RecordingSource::human);
    clock.advance(1s);
    recorder.stopRecording();
    EXPECT_THAT(desktop.cursors, ElementsAre(true, true, true));
    desktop.cursors.clear();
    storage.setShowCursorInRecording(false);
    const QString id = start(target, RecordingSource::human);
    recorder.stopRecording();
    EXPECT_THAT(desktop.cursors, ElementsAre(false, false));
    EXPECT_TRUE(report(id).contains(u"- **Source:** human\n"));
}

TEST_F(ScreenRecorderTest, RecordsADisplay) {
    const QString id = start(DisplayTarget{11});
    clock.advance(2s);
    recorder.stopRecording();
    EXPECT_THAT(desktop.capturedDisplays, ElementsAre(11U, 11U, 11U));
    EXPECT_THAT(
        report(id).toStdString(),
        AllOf(HasSubstr("- **App:** Full Screen\n"), testing::Not(HasSubstr("End frame")),
              HasSubstr("| T+0.0s | recording_start | Started monitoring Full Screen (800x600) | "),
              HasSubstr(
                  "| T+2.0s | recording_end | Recording stopped (end frame capture failed: Window with ID "
                  "0 not found. Use list_windows to see available windows.) | — |\n")));
    EXPECT_FALSE(files(id).contains(u"frame-003-end.png"_s));
}

TEST_F(ScreenRecorderTest, RecordsARegion) {
    const QString id = start(RegionTarget{{10.9, 20.5, 300.7, 200.2}, 11});
    recorder.stopRecording();
    ASSERT_EQ(desktop.capturedRegions.size(), 1U);
    EXPECT_EQ(desktop.capturedRegions.front().second, QRectF(10, 20, 300, 200));
    EXPECT_THAT(report(id).toStdString(),
                AllOf(HasSubstr("- **App:** Region\n"), testing::Not(HasSubstr("End frame")),
                      HasSubstr("Started monitoring Region (300x200) | ")));
}

TEST_F(ScreenRecorderTest, DescribesAWindowThatIsNotListed) {
    desktop.windows = {};
    start();
    EXPECT_EQ(
        recorder.pollTimeline().events.front(),
        u"T+0.0s | recording_start | Started monitoring Terminal — Unknown (0x0) | frame-000-start.png");
}

TEST_F(ScreenRecorderTest, GoesOnAsStartedWhenTheFirstCaptureFails) {
    desktop.shareable.clear();
    EXPECT_EQ(thrownBy([&] { start(); }),
              u"Window with ID 40 not found. Use list_windows to see available windows.");
    ASSERT_TRUE(recorder.recordingSessionId());
    EXPECT_EQ(thrownBy([&] { start(); }),
              u"Invalid arguments: Already recording. Call stop_recording first.");
    EXPECT_EQ(clock.sleeps(), 0);
    const QString id = recorder.stopRecording();
    EXPECT_EQ(files(id), QStringList(u"SESSION.md"_s));
    EXPECT_THAT(report(id).toStdString(),
                HasSubstr("|------|-------|---------|------------|\n"
                          "| T+0.0s | recording_end | Recording stopped (end frame capture failed: "));
    desktop.shareable = {{.windowId = windowId, .framePoints = {10, 20, 800, 600}}};
    start();
}

TEST_F(ScreenRecorderTest, GoesOnWhenACaptureFails) {
    start();
    recorder.pollTimeline();
    desktop.failure = u"The window closed."_s;
    testing::internal::CaptureStderr();
    clock.advance(2s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "orvane: capture error in loop: The window closed.\n"
                                                      "orvane: capture error in loop: The window closed.\n");
    EXPECT_EQ(recorder.pollTimeline().events.size(), 0);
    desktop.failure.reset();
    // Compared with the last picture that there was; failed looks are not counted.
    show({{0, 0}});
    clock.advance(1s);
    EXPECT_EQ(recorder.pollTimeline().events,
              QStringList(u"T+3.0s | visual_change | New activity in top-left area (1 cells changed). | "
                          "change-001.png"_s));
}

TEST_F(ScreenRecorderTest, SaysAtItsStartThatTheHumanHasNotAllowedIt) {
    desktop.duringCapture = [] { throw CaptureAwaitsHuman(); };
    EXPECT_THROW(start(), CaptureAwaitsHuman);
    ASSERT_TRUE(recorder.recordingSessionId());
    recorder.stopRecording();
    desktop.duringCapture = [] {};
    desktop.consent = FakeDesktop::Consent::refused;
    EXPECT_THROW(start(DisplayTarget{11}), CaptureRefused);
    EXPECT_EQ(clock.sleeps(), 0);
    const QString id = recorder.stopRecording();
    EXPECT_THAT(report(id).toStdString(),
                HasSubstr("| recording_end | Recording stopped (end frame capture failed: The human has "
                          "refused to let the screen be captured. Ask them before you try again.) | — |\n"));
    desktop.consent = FakeDesktop::Consent::given;
    start();
}

TEST_F(ScreenRecorderTest, GoesOnWhenTheHumanIsAskedInTheMiddle) {
    start();
    recorder.pollTimeline();
    testing::internal::CaptureStderr();
    show({{0, 0}});
    desktop.duringCapture = [] { throw CaptureAwaitsHuman(); };
    clock.advance(1s);
    desktop.duringCapture = [] {};
    desktop.consent = FakeDesktop::Consent::refused;
    clock.advance(1s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: capture error in loop: The desktop is asking the human whether the screen may be "
              "captured. Ask them to answer it, then try again.\n"
              "orvane: capture error in loop: The human has refused to let the screen be captured. Ask them "
              "before you try again.\n");
    EXPECT_EQ(recorder.pollTimeline().events.size(), 0);
    desktop.consent = FakeDesktop::Consent::given;
    clock.advance(1s);
    EXPECT_EQ(recorder.pollTimeline().events,
              QStringList(u"T+3.0s | visual_change | New activity in top-left area (1 cells changed). | "
                          "change-001.png"_s));
}

TEST_F(ScreenRecorderTest, ListsOnlyTheWindowItRecords) {
    desktop.addApplication(8, u"Other"_s, 50, {0, 0, 800, 600});
    start();
    clock.advance(2s);
    recorder.stopRecording();
    EXPECT_THAT(desktop.listedWindows, testing::Each(ElementsAre(windowId)));
    EXPECT_EQ(desktop.listings, 4);
    desktop.listedWindows.clear();
    clock.jump(5ms);
    start(DisplayTarget{11});
    clock.advance(2s);
    EXPECT_THAT(desktop.listedWindows, testing::Each(testing::IsEmpty()));
    EXPECT_EQ(desktop.listedWindows.size(), 3U);
}

TEST_F(ScreenRecorderTest, PassesOverAPictureThatIsNone) {
    start();
    const QImage black = desktop.picture;
    desktop.picture = QImage();
    clock.advance(1s);
    desktop.picture = black;
    clock.advance(1s);
    EXPECT_EQ(recorder.pollTimeline().events.size(), 1);
}

TEST_F(ScreenRecorderTest, TellsActivityThatGoesOnOnce) {
    const QString id = start();
    for (int i = 0; i < 4; ++i) {
        blink();
        clock.advance(1s);
    }
    show({{0, 0}, {7, 5}});
    clock.advance(1s);
    recorder.pollTimeline();
    for (int i = 0; i < 2; ++i) {
        show(i == 0 ? std::vector<QPoint>{{7, 5}} : std::vector<QPoint>{{0, 0}, {7, 5}});
        clock.advance(1s);
    }
    recorder.stopRecording();
    const QString text = report(id);
    EXPECT_THAT(
        text.toStdString(),
        AllOf(
            HasSubstr("| T+1.0s | visual_change | New activity in top-left area (1 cells changed). | "
                      "change-001.png |\n"
                      "| T+5.0s | minor_changes | 3 minor update(s) (continuous activity in active regions) "
                      "| — |\n"
                      "| T+5.0s | visual_change | "),
            HasSubstr(" | change-005.png |\n"
                      "| T+7.0s | minor_changes | 2 minor update(s) in active regions | — |\n"
                      "| T+7.0s | recording_end | Recording stopped. Duration: 7.0s, 7 frames analyzed. | "
                      "frame-008-end.png |\n"),
            HasSubstr("- **Major changes:** 0 (saved"),
            HasSubstr("- **Minor changes:** 2 visual + 5 coalesced minor updates\n")));
    EXPECT_TRUE(files(id).contains(u"change-005.png"_s));
    EXPECT_FALSE(files(id).contains(u"change-002.png"_s));
    // The picture is the frame with the changed cells marked.
    EXPECT_EQ(picture(id, u"change-001.png"_s).size(), QSize(800, 600));
    EXPECT_NE(picture(id, u"change-001.png"_s).pixel(1, 50), qRgb(0, 0, 0));
    EXPECT_EQ(picture(id, u"change-001.png"_s).pixel(50, 50), qRgb(0, 0, 0));
}

TEST_F(ScreenRecorderTest, RemembersActiveCellsFromOneRecordingToTheNext) {
    start();
    blink();
    clock.advance(1s);
    recorder.stopRecording();
    clock.jump(1s);
    const QString id = start();
    blink();
    clock.advance(1s);
    recorder.stopRecording();
    EXPECT_THAT(report(id).toStdString(), HasSubstr(" | 1 minor update(s) in active regions |"));
    EXPECT_THAT(report(id).toStdString(), testing::Not(HasSubstr("visual_change")));
}

TEST_F(ScreenRecorderTest, TellsMajorChanges) {
    std::vector<QPoint> cells;
    for (int row = 0; row < 6; ++row) {
        for (int col = 0; col < 8; ++col)
            cells.emplace_back(col, row);
    }
    start();
    recorder.pollTimeline();
    show(cells);
    testing::internal::CaptureStderr();
    clock.advance(1s);
    const QStringList events = recorder.pollTimeline().events;
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "orvane: T+1.0s MAJOR: Major visual update (100% of screen, avg 20% diff). Likely: full content "
        "refresh or navigation.\n");
    EXPECT_EQ(events, QStringList(u"T+1.0s | major_change | Major visual update (100% of screen, avg 20% "
                                  "diff). Likely: full content refresh or navigation. | change-001.png"_s));
}

TEST_F(ScreenRecorderTest, LogsTheStepsOfARecording) {
    testing::internal::CaptureStderr();
    const QString id = start();
    show({{3, 2}});
    clock.advance(1500ms);
    // The change is written when a poll has returned.
    recorder.pollTimeline();
    recorder.pauseRecording();
    recorder.pauseRecording();
    recorder.resumeRecording();
    recorder.resumeRecording();
    recorder.stopRecording();
    const QByteArray bytes =
        QByteArray::number(QFileInfo(storage.sessionDir(id) + u"/frame-000-start.png"_s).size());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: capturing start frame for Terminal...\norvane: start frame captured (" +
                  bytes.toStdString() + " bytes)\norvane: recording started for Terminal (session " +
                  id.toStdString() +
                  ")\norvane: T+1.0s change: New activity in middle-center area (1 cells changed).\n"
                  "orvane: recording paused\norvane: recording resumed\norvane: recording stopped (session " +
                  id.toStdString() + ")\n");
}

TEST_F(ScreenRecorderTest, CapturesNothingWhilePaused) {
    const QString id = start();
    clock.advance(5s);
    recorder.pauseRecording();
    EXPECT_TRUE(recorder.recordingIsPaused());
    const auto before = desktop.capturedWindows.size();
    show({{0, 0}});
    clock.advance(10s);
    EXPECT_EQ(desktop.capturedWindows.size(), before);
    EXPECT_EQ(recorder.activeElapsed(), 5);
    recorder.resumeRecording();
    EXPECT_FALSE(recorder.recordingIsPaused());
    clock.advance(15s);
    EXPECT_EQ(recorder.activeElapsed(), 20);
    recorder.stopRecording();
    EXPECT_EQ(recorder.activeElapsed(), 0);
    EXPECT_THAT(report(id).toStdString(),
                AllOf(HasSubstr("- **Duration:** 30.0s\n"), HasSubstr("- **Frames captured:** 20\n"),
                      HasSubstr("| T+16.0s | visual_change | "), HasSubstr(" | change-006.png |")));
}

TEST_F(ScreenRecorderTest, CountsNoneOfItsPauses) {
    start();
    for (const auto pause : {2s, 3s}) {
        clock.advance(1s);
        recorder.pauseRecording();
        clock.advance(pause);
        recorder.resumeRecording();
    }
    EXPECT_EQ(recorder.activeElapsed(), 2);
    recorder.stopRecording();
}

TEST_F(ScreenRecorderTest, StopsFromAPause) {
    const QString id = start();
    recorder.pauseRecording();
    clock.advance(3s);
    EXPECT_EQ(recorder.stopRecording(), id);
    EXPECT_TRUE(recorder.recordingIsPaused());
    clock.jump(5ms);
    start();
    EXPECT_FALSE(recorder.recordingIsPaused());
    EXPECT_EQ(recorder.activeElapsed(), 0);
    clock.advance(1s);
    EXPECT_EQ(recorder.activeElapsed(), 1);
}

TEST_F(ScreenRecorderTest, IgnoresPauseAndResumeWhenIdle) {
    testing::internal::CaptureStderr();
    recorder.pauseRecording();
    recorder.resumeRecording();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(recorder.recordingIsPaused());
}

TEST_F(ScreenRecorderTest, LooksAtItsInterval) {
    start(250);
    clock.advance(1s);
    recorder.stopRecording();
    // The first frame, four looks, the last frame.
    EXPECT_EQ(desktop.capturedWindows.size(), 6U);
}

TEST_F(ScreenRecorderTest, SurvivesEveryInterval) {
    // What is shorter than a sixtieth of a second becomes one; after 100 ms, six looks are over.
    for (const auto& [interval, looks] : std::vector<std::pair<qint64, int>>{
             {0, 6},
             {-5, 6},
             {1, 6},
             {16, 6},
             {17, 5},
             {std::numeric_limits<qint64>::min(), 6},
             {1'000'000'000'000, 0},
             {std::numeric_limits<qint64>::max(), 0},
         }) {
        clock.jump(5ms);
        desktop.capturedWindows.clear();
        const QString id = start(interval);
        clock.advance(100ms);
        EXPECT_EQ(desktop.capturedWindows.size(), 1U + looks) << interval;
        recorder.stopRecording();
        EXPECT_EQ(desktop.capturedWindows.size(), 2U + looks) << interval;
        EXPECT_THAT(report(id).toStdString(),
                    HasSubstr("- **Frames captured:** " + std::to_string(looks) + "\n"))
            << interval;
    }
}

TEST_F(ScreenRecorderTest, TellsTheLogWhatItCouldNotCompare) {
    ScreenRecorder hurried(discovery, screenCapture, storage, pngWriter, media, clock, 0);
    testing::internal::CaptureStderr();
    const QString id =
        hurried.startRecording(WindowTarget{u"Terminal"_s, windowId}, 1000, RecordingSource::mcp);
    clock.awaitSleeper();
    show({{0, 0}});
    clock.advance(3s);
    EXPECT_EQ(hurried.pollTimeline().events.size(), 1);
    hurried.stopRecording();
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("orvane: 3 frame(s) came faster than they could be searched for changes\n"
                          "orvane: recording stopped (session "));
    EXPECT_THAT(report(id).toStdString(), HasSubstr("- **Frames captured:** 0\n"));
    // A poll waits for what is being written.
    hurried.pollTimeline();
    EXPECT_EQ(files(id), (QStringList{u"SESSION.md"_s, u"frame-000-start.png"_s, u"frame-001-end.png"_s,
                                      u"thumbnail.png"_s}));
}

TEST_F(ScreenRecorderTest, KnowsWhoStartedIt) {
    EXPECT_EQ(recorder.recordingSource(), std::nullopt);
    start(DisplayTarget{11}, RecordingSource::human);
    EXPECT_EQ(recorder.recordingSource(), RecordingSource::human);
    recorder.stopRecording();
    EXPECT_EQ(recorder.recordingSource(), std::nullopt);
    clock.jump(5ms);
    start();
    EXPECT_EQ(recorder.recordingSource(), RecordingSource::mcp);
}

TEST_F(ScreenRecorderTest, CanBeStoppedDuringItsFirstCapture) {
    bool stopped = false;
    desktop.duringCapture = [&] {
        if (!std::exchange(stopped, true))
            recorder.stopRecording();
    };
    storage.setSaveRawVideo(true);
    recorder.startRecording(WindowTarget{u"Terminal"_s, windowId}, 1000, RecordingSource::mcp);
    EXPECT_EQ(recorder.recordingSessionId(), std::nullopt);
    EXPECT_EQ(clock.sleeps(), 0);
    EXPECT_TRUE(media.movies.empty());
}

TEST_F(ScreenRecorderTest, TellsALookThatIsUnderWayBeforeTheEnd) {
    const QString id = start();
    for (int i = 0; i < 2; ++i) {
        blink();
        clock.advance(1s);
    }
    std::promise<void> looking;
    std::promise<void> endFrameTaken;
    std::atomic<int> captures = 0;
    desktop.duringCapture = [&] {
        if (captures++ == 0) {
            looking.set_value();
            endFrameTaken.get_future().wait();
        } else {
            endFrameTaken.set_value();
        }
    };
    clock.jump(1s);
    looking.get_future().wait();
    recorder.stopRecording();
    EXPECT_THAT(report(id).toStdString(), HasSubstr("| 1 minor update(s) in active regions | — |\n"
                                                    "| T+3.0s | recording_end | "));
}

TEST_F(ScreenRecorderTest, GoesOnWhenNothingCanBeWritten) {
    start();
    const QString folder = *recorder.currentSessionDir();
    ASSERT_TRUE(QDir(folder).removeRecursively());
    show({{0, 0}});
    clock.advance(1s);
    EXPECT_EQ(recorder.pollTimeline().events.size(), 2);
    recorder.stopRecording();
    EXPECT_FALSE(QDir(folder).exists());
}

TEST_F(ScreenRecorderTest, EndsWithItsOwner) {
    testing::internal::CaptureStderr();
    QString id;
    {
        ScreenRecorder another(discovery, screenCapture, storage, pngWriter, media, clock);
        storage.setSaveRawVideo(true);
        id = another.startRecording(WindowTarget{u"Terminal"_s, windowId}, 1000, RecordingSource::mcp);
    }
    static_cast<void>(testing::internal::GetCapturedStderr());
    EXPECT_EQ(files(id), QStringList(u"frame-000-start.png"_s));
    EXPECT_EQ(media.movies.front().finishes, 1);
}

} // namespace orvane::test
