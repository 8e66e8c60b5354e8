// Recordings of real windows and displays: what is told of them, and the pictures that are left.
#include "tests/desktop/RecordingFixture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <set>
#include <thread>

namespace orvane::test {

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

const Lines nothing;
const QSize windowSize(400, 300);

/// What is recorded, and the window in it whose cells change.
struct Scene {
    const char* name;
    qint64 intervalMs;
    const char* window;
    /// Null for a recording of the window itself.
    QRect region;
    bool wholeDisplay;
    const char* description;
};

std::ostream& operator<<(std::ostream& out, const Scene& scene) {
    return out << scene.name;
}

constexpr const char* windowDescription = "TestWindow — Test window (400x300)";

class Recording : public RecordingFixture {
protected:
    using RecordingFixture::RecordingFixture;

    void SetUp() override { testing::internal::CaptureStderr(); }
    void TearDown() override { endCapture(); }

    /// What was logged since the last call.
    std::string log() {
        std::string text = endCapture();
        testing::internal::CaptureStderr();
        return text;
    }

    WindowTarget targetOf(const TestWindow& window) { return {u"TestWindow"_s, window.id()}; }

    /// A quarter of a cell, away from its edges, where the outline is, and from its label.
    static QRect partOf(const QRect& cell) {
        return {cell.x() + 4, cell.y() + cell.height() * 2 / 3, cell.width() - 8, cell.height() / 4};
    }

    static QRect cellOf(const QSize& recorded, int column, int row) {
        const QSize size(recorded.width() / columns, recorded.height() / rows);
        return {QPoint(column * size.width(), row * size.height()), size};
    }

    /// Shows a part of a cell of the window in another colour than before and waits for the recorder's look.
    void change(TestWindow& window, int column, int row) {
        static const Qt::GlobalColor colors[] = {Qt::white, Qt::red, Qt::cyan, Qt::black};
        window.fill(partOf(cellOf(windowSize, column, row)), colors[m_changes++ % std::size(colors)]);
        ASSERT_GT(awaitLook(), 0);
    }

    static std::string visualChange(const std::string& area) {
        return "visual_change | New activity in " + area + " area (1 cells changed). | change-#.png";
    }

private:
    static std::string endCapture() {
        std::string text = testing::internal::GetCapturedStderr();
        std::fputs(text.c_str(), stderr);
        return text;
    }

    int m_changes = 0;
};

class RecordingEverywhere : public Recording, public testing::WithParamInterface<Scene> {
protected:
    /// The recorded area in pixels of the screen.
    QRect area() const {
        if (GetParam().wholeDisplay)
            return {0, 0, 1280, 780};
        return GetParam().region.isNull() ? windowRect() : GetParam().region;
    }

    QRect windowRect() const {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        EXPECT_EQ(std::sscanf(GetParam().window, "%dx%d+%d+%d", &width, &height, &x, &y), 4);
        return {x, y, width, height};
    }

    QString start(const TestWindow& window) {
        if (GetParam().wholeDisplay) {
            return recorder.startRecording(DisplayTarget{displays.list().front().id}, GetParam().intervalMs,
                                           RecordingSource::mcp);
        }
        if (!GetParam().region.isNull()) {
            return recorder.startRecording(RegionTarget{GetParam().region, 0}, GetParam().intervalMs,
                                           RecordingSource::mcp);
        }
        EXPECT_EQ(discovery.findWindows(u"TestWindow"_s).front().windowId, window.id());
        return recorder.startRecording(u"TestWindow"_s, GetParam().intervalMs, RecordingSource::mcp);
    }

    /// Shows a part of the recorded area in that colour and waits until the recorder has looked at it. The
    /// look that was the first to see it lies between the two that are remembered.
    void show(TestWindow& window, const QRect& part, const QColor& color) {
        m_earliestLook = clock.sleeps();
        const QPoint onScreen = area().topLeft() + part.topLeft();
        window.fill(part.translated(area().topLeft() - windowRect().topLeft()), color);
        ASSERT_TRUE(screenShows(onScreen, color.rgb()));
        m_latestLook = awaitLook();
        ASSERT_GT(m_latestLook, 0);
    }

    /// That the last picture of a change is the one of the look that saw it.
    void expectChangeOfThatLook() {
        EXPECT_GE(lastChange, m_earliestLook);
        EXPECT_LE(lastChange, m_latestLook);
    }

    int m_earliestLook = 0;
    int m_latestLook = 0;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(
    , RecordingEverywhere,
    testing::Values(Scene{"Window100", 100, "400x300+100+100", {}, false, windowDescription},
                    Scene{"Window250", 250, "400x300+100+100", {}, false, windowDescription},
                    Scene{"Window1000", 1000, "400x300+100+100", {}, false, windowDescription},
                    Scene{"Display250", 250, "1280x780+0+0", {}, true, "Full Screen (1280x780)"},
                    Scene{"Region100", 100, "700x600+80+60", {120, 90, 480, 420}, false, "Region (480x420)"}),
    [](const auto& scene) { return std::string(scene.param.name); });

TEST_P(RecordingEverywhere, TellsWhatHappensWhereInItsOrder) {
    const auto window = colorWindow(QLatin1String(GetParam().window), u"#204080"_s, {u"--undecorated"_s});
    ASSERT_TRUE(screenShows(area().center(), 0xff204080U));
    const QRect first = cellOf(area().size(), 3, 1);
    const QString id = start(*window);
    EXPECT_EQ(news(), Lines{std::string("recording_start | Started monitoring ") + GetParam().description +
                            " | frame-000-start.png"});
    EXPECT_EQ(news(), nothing);

    show(*window, partOf(first), Qt::white);
    EXPECT_EQ(news(), Lines{visualChange("top-center")});
    expectChangeOfThatLook();
    const QImage marked = lastChangePicture(id);
    EXPECT_EQ(difference(picture(id, u"frame-000-start.png"_s), marked), first);
    for (const QPoint& pixel : {first.topLeft(), first.topRight(), first.bottomLeft(), first.bottomRight()}) {
        const QColor outline = marked.pixelColor(pixel);
        EXPECT_GT(outline.red(), outline.green() + 50);
        EXPECT_GT(outline.red(), outline.blue() + 50);
    }
    EXPECT_EQ(marked.pixel(first.center()), 0xff204080U);
    EXPECT_EQ(marked.pixel(partOf(first).center()), 0xffffffffU);

    show(*window, partOf(first), Qt::red);
    EXPECT_EQ(news(), nothing);
    show(*window, partOf(cellOf(area().size(), 7, 5)), Qt::white);
    EXPECT_EQ(news(), Lines({"minor_changes | 1 minor update(s) (continuous activity in active regions)",
                             visualChange("bottom-right")}));
    expectChangeOfThatLook();
    show(*window, QRect(QPoint(0, 0), cellOf(area().size(), 3, 2).bottomRight()), Qt::yellow);
    EXPECT_EQ(news(), Lines{"major_change | Significant change in top-center area (12 cells, avg 100% "
                            "diff). | change-#.png"});
    expectChangeOfThatLook();

    const int looks = clock.sleeps();
    EXPECT_EQ(recorder.stopRecording(), id);
    const Lines last = news();
    ASSERT_EQ(last.size(), 1U);
    if (GetParam().wholeDisplay || !GetParam().region.isNull()) {
        EXPECT_EQ(last.front(), "recording_end | Recording stopped (end frame capture failed: Window with "
                                "ID 0 not found. Use list_windows to see available windows.)");
    } else {
        EXPECT_THAT(last.front(),
                    ContainsRegex("^recording_end \\| Recording stopped\\. Duration: [0-9]+\\.[0-9]s, "
                                  "[0-9]+ frames analyzed\\. \\| frame-[0-9]{3}-end\\.png$"));
        const int frames =
            QString::fromStdString(last.front()).section(u"s, "_s, -1).section(u' ', 0, 0).toInt();
        EXPECT_GE(frames, looks - 1);
        EXPECT_LE(frames, clock.sleeps());
        EXPECT_TRUE(events.last().endsWith(u"frame-%1-end.png"_s.arg(frames + 1, 3, 10, QChar(u'0'))));
    }
    expectWholeSession(id);
}

TEST_F(Recording, KeepsTheWindowsOwnPixels) {
    TestWindow window({u"--geometry"_s, u"400x300+100+100"_s, u"--undecorated"_s});
    const auto cover = colorWindow(u"200x200+150+150"_s, u"red"_s, {u"--override-redirect"_s});
    const QString id = recorder.startRecording(targetOf(window), 100, RecordingSource::mcp);
    const QImage before = knownPicture(400, 300, false);
    EXPECT_EQ(picture(id, u"frame-000-start.png"_s), before);

    const QRect part = partOf(cellOf(windowSize, 0, 2));
    QImage after = before;
    QPainter painter(&after);
    painter.fillRect(part, Qt::black);
    painter.end();
    window.fill(part, Qt::black);
    ASSERT_GT(awaitLook(), 0);
    recorder.stopRecording();
    ASSERT_EQ(news().size(), 3U);
    EXPECT_EQ(picture(id, events.last().section(u" | "_s, -1)), after);
    expectWholeSession(id);
}

TEST_F(Recording, EndsWithTheActivityThatWasGoingOn) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s, {u"--undecorated"_s});
    const QString id = recorder.startRecording(targetOf(*window), 100, RecordingSource::mcp);
    for (int blinks = 0; blinks < 5; ++blinks)
        change(*window, 0, 4);
    recorder.stopRecording();
    const Lines told = news();
    ASSERT_EQ(told.size(), 4U);
    EXPECT_EQ(told.at(1), visualChange("bottom-left"));
    EXPECT_EQ(told.at(2), "minor_changes | 4 minor update(s) in active regions");
    EXPECT_THAT(told.at(3), StartsWith("recording_end | Recording stopped. Duration: "));
    EXPECT_TRUE(report(id).contains(u"1 visual + 4 coalesced minor updates\n"_s));
    expectWholeSession(id);
}

TEST_F(Recording, SeesDecorationsAsAPartOfTheWindow) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s);
    ASSERT_TRUE(screenShows({300, 250}, 0xff204080U));
    const QImage whole = capture.captureWindow(window->id(), false).image;
    ASSERT_GT(whole.height(), 305);
    const QString id = recorder.startRecording(targetOf(*window), 100, RecordingSource::mcp);
    EXPECT_EQ(picture(id, u"frame-000-start.png"_s), whole.convertToFormat(QImage::Format_RGB32));
    const QRect cell = cellOf(whole.size(), 4, 3);
    window->fill(partOf(cell).translated(-clientOffset(*window)), Qt::white);
    ASSERT_GT(awaitLook(), 0);
    recorder.stopRecording();
    const Lines told = news();
    ASSERT_EQ(told.size(), 3U);
    EXPECT_EQ(told.at(1), visualChange("middle-center"));
    // Cells are marked where they are to a fraction of a pixel.
    const QRect marked = difference(whole.convertToFormat(QImage::Format_RGB32), lastChangePicture(id));
    const QSizeF size(whole.width() / 8.0, whole.height() / 6.0);
    EXPECT_EQ(marked, QRectF(QPointF(4 * size.width(), 3 * size.height()), size).toAlignedRect());
}

TEST_F(Recording, GoesOnWithoutAWindowThatHasClosed) {
    auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s, {u"--undecorated"_s});
    const qint64 windowId = window->id();
    const QString id = recorder.startRecording(targetOf(*window), 100, RecordingSource::mcp);
    EXPECT_EQ(news().size(), 1U);
    window.reset();
    log();
    for (int look = 0; look < 3; ++look)
        ASSERT_GT(awaitLook(), 0);
    const QString lost =
        u"Window with ID %1 not found. Use list_windows to see available windows."_s.arg(windowId);
    const QString logged = QString::fromStdString(log());
    EXPECT_GE(logged.count(u"orvane: capture error in loop: "_s + lost + u'\n'), 2) << logged.toStdString();
    EXPECT_EQ(news(), nothing);
    EXPECT_EQ(recorder.recordingSessionId(), id);

    recorder.stopRecording();
    EXPECT_EQ(news(), Lines{"recording_end | Recording stopped (end frame capture failed: " +
                            lost.toStdString() + ')'});
    EXPECT_FALSE(report(id).contains(u"End frame"_s));
    expectWholeSession(id);
}

TEST_F(Recording, FollowsAWindowThatIsResized) {
    TestWindow window({u"--geometry"_s, u"400x300+100+100"_s, u"--undecorated"_s});
    const QString id = recorder.startRecording(targetOf(window), 100, RecordingSource::mcp);
    EXPECT_EQ(news().size(), 1U);
    for (const QSize& size : {QSize(301, 203), QSize(640, 411), QSize(133, 500)}) {
        window.command(u"resize %1 %2"_s.arg(size.width()).arg(size.height()));
        const QImage resized = knownPicture(size.width(), size.height(), false);
        ASSERT_TRUE(eventually([&] { return capture.captureWindow(window.id(), false).image == resized; }));
        ASSERT_GT(awaitLook(), 0);
        EXPECT_THAT(news(), Contains(StartsWith("major_change | ")));
    }
    // The last two looks were at the same picture.
    ASSERT_GT(awaitLook(), 0);
    EXPECT_EQ(lastChangePicture(id).size(), QSize(133, 500));
    recorder.stopRecording();
    news();
    EXPECT_EQ(picture(id, events.last().section(u" | "_s, -1)), knownPicture(133, 500, false));
    expectWholeSession(id);
}

TEST_F(Recording, HoldsStillWhilePaused) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s, {u"--undecorated"_s});
    const QString id = recorder.startRecording(targetOf(*window), 100, RecordingSource::mcp);
    EXPECT_EQ(news().size(), 1U);
    ASSERT_GT(awaitLook(), 0);
    log();
    recorder.pauseRecording();
    ASSERT_GT(awaitLook(), 0);
    const double elapsed = recorder.activeElapsed();
    const QDateTime paused = clock.now();
    for (int changes = 0; changes < 5; ++changes)
        change(*window, changes, 0);
    EXPECT_EQ(news(), nothing);
    EXPECT_EQ(recorder.activeElapsed(), elapsed);
    const qint64 pauseMs = paused.msecsTo(clock.now());
    recorder.resumeRecording();

    // What was done meanwhile is seen now, at once.
    ASSERT_GT(awaitLook(), 0);
    const Lines told = news();
    EXPECT_EQ(told, Lines{"visual_change | New activity in top-center area (5 cells changed). | "
                          "change-#.png"});
    EXPECT_GE(lastTime, double(pauseMs) / 1000 - 0.05) << "the pause is missing from the times";
    EXPECT_EQ(log().find("paused\norvane: recording resumed\n"), std::string("orvane: recording ").size());
    recorder.stopRecording();
    news();
    expectWholeSession(id);
}

TEST_F(Recording, ShowsTheCursorToHumansWhoWantIt) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s, {u"--undecorated"_s});
    ASSERT_TRUE(screenShows({300, 250}, 0xff204080U));
    runCommand(u"xdotool"_s, {u"mousemove"_s, u"300"_s, u"250"_s});
    QImage plain(windowSize, QImage::Format_RGB32);
    plain.fill(QColor(u"#204080"_s));
    const auto startFrame = [&](const RecordingTarget& target, RecordingSource source) {
        const QString id = recorder.startRecording(target, 1000, source);
        recorder.stopRecording();
        return picture(id, u"frame-000-start.png"_s);
    };
    const RegionTarget region{{100, 100, 400, 300}, 0};
    const RecordingTarget targets[] = {targetOf(*window), region};
    for (const RecordingTarget& target : targets) {
        storage.setShowCursorInRecording(true);
        const QRect pointer = difference(plain, startFrame(target, RecordingSource::human));
        EXPECT_TRUE(pointer.adjusted(-2, -2, 2, 2).contains(QPoint(200, 150)));
        EXPECT_LT(pointer.width(), 60);
        EXPECT_EQ(difference(plain, startFrame(target, RecordingSource::mcp)), QRect());
        storage.setShowCursorInRecording(false);
        EXPECT_EQ(difference(plain, startFrame(target, RecordingSource::human)), QRect());
    }
}

TEST_F(Recording, MovesNothingButTheCursorWhereItIsShown) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s, {u"--undecorated"_s});
    runCommand(u"xdotool"_s, {u"mousemove"_s, u"900"_s, u"700"_s});
    recorder.startRecording(targetOf(*window), 100, RecordingSource::human);
    EXPECT_EQ(news().size(), 1U);
    const QRect cell = cellOf(windowSize, 6, 4);
    const QPoint inside = QPoint(100, 100) + cell.topLeft() + QPoint(8, 8);
    runCommand(u"xdotool"_s, {u"mousemove"_s, QString::number(inside.x()), QString::number(inside.y())});
    ASSERT_GT(awaitLook(), 0);
    EXPECT_EQ(news(), Lines{visualChange("bottom-right")});
    recorder.stopRecording();
}

TEST_F(Recording, IsPolledFromManyThreadsAtOnce) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s, {u"--undecorated"_s});
    const QString id = recorder.startRecording(targetOf(*window), 100, RecordingSource::mcp);
    std::mutex mutex;
    QStringList polled;
    {
        std::vector<std::jthread> pollers;
        pollers.reserve(3);
        for (int poller = 0; poller < 3; ++poller) {
            pollers.emplace_back([&](const std::stop_token& stop) {
                while (!stop.stop_requested()) {
                    const ScreenRecorder::Poll poll = recorder.pollTimeline();
                    EXPECT_EQ(poll.sessionId, id);
                    for (const QString& line : poll.events) {
                        const QString frame = line.section(u" | "_s, 3);
                        EXPECT_TRUE(frame.isEmpty() || QFile::exists(file(id, frame)));
                    }
                    recorder.activeElapsed();
                    recorder.currentSessionDir();
                    const std::scoped_lock lock(mutex);
                    polled += poll.events;
                }
            });
        }
        for (int changes = 0; changes < 10; ++changes)
            change(*window, changes % 8, changes % 6);
        recorder.pauseRecording();
        recorder.resumeRecording();
        recorder.stopRecording();
    }
    polled += recorder.pollTimeline().events;
    EXPECT_EQ(polled.size(), 12);
    EXPECT_EQ(std::set<QString>(polled.begin(), polled.end()).size(), 12U) << "an entry was told twice";
    EXPECT_EQ(report(id).count(u"| visual_change |"_s), 10);
}

namespace {

class RecordingTwoMonitors : public Recording {
protected:
    RecordingTwoMonitors()
        : Recording({u"--size"_s, u"2000x1000"_s, u"--monitors"_s, u"A:1200x1000+0+0,B:800x600+1200+100"_s,
                     u"--scale"_s, u"A=1;B=2"_s}) {}
};

class RecordingLostDesktop : public Recording {
protected:
    void TearDown() override {
        // A server that is stopped could not end.
        signalServer(SIGCONT);
        Recording::TearDown();
    }

    void signalServer(int signal) { ::kill(static_cast<pid_t>(desktop.xServerPid()), signal); }
};

} // namespace

TEST_F(RecordingTwoMonitors, FollowsAWindowToAnotherMonitor) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s, {u"--undecorated"_s});
    const QString id = recorder.startRecording(targetOf(*window), 100, RecordingSource::mcp);
    EXPECT_EQ(news().size(), 1U);
    window->command(u"move 1400 300"_s);
    ASSERT_TRUE(
        eventually([&] { return listed(*window)->displayId == x11::ScreenLayout::displayId(u"B"_s); }));
    ASSERT_GT(awaitLook(), 0);
    EXPECT_EQ(news(), nothing) << "its pixels are the same there";
    change(*window, 1, 5);
    EXPECT_EQ(news(), Lines{visualChange("bottom-left")});
    EXPECT_EQ(difference(picture(id, u"frame-000-start.png"_s), lastChangePicture(id)),
              cellOf(windowSize, 1, 5));
    recorder.stopRecording();
    news();
    expectWholeSession(id);
}

TEST_F(RecordingTwoMonitors, GoesOnWithoutADisplayThatIsUnplugged) {
    const auto window = colorWindow(u"400x300+1250+150"_s, u"#204080"_s, {u"--undecorated"_s});
    ASSERT_TRUE(screenShows({1300, 200}, 0xff204080U));
    const QString id = recorder.startRecording(DisplayTarget{x11::ScreenLayout::displayId(u"B"_s)}, 100,
                                               RecordingSource::mcp);
    EXPECT_EQ(news(),
              Lines{"recording_start | Started monitoring Full Screen (800x600) | frame-000-start.png"});
    EXPECT_EQ(picture(id, u"frame-000-start.png"_s).pixel(50, 50), 0xff204080U);
    runCommand(u"xrandr"_s, {u"--delmonitor"_s, u"B"_s});
    log();
    for (int look = 0; look < 3; ++look)
        ASSERT_GT(awaitLook(), 0);
    EXPECT_THAT(log(),
                HasSubstr("orvane: capture error in loop: No display found for the specified region.\n"));
    EXPECT_EQ(news(), nothing);
    recorder.stopRecording();
    news();
    expectWholeSession(id);
}

TEST_F(RecordingLostDesktop, EndsWithItsReportWhenTheXServerHasDied) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s, {u"--undecorated"_s});
    const QString id = recorder.startRecording(targetOf(*window), 100, RecordingSource::mcp);
    change(*window, 3, 3);
    EXPECT_EQ(news().size(), 2U);
    log();
    signalServer(SIGKILL);
    for (int look = 0; look < 3; ++look)
        ASSERT_GT(awaitLook(), 0);
    EXPECT_THAT(log(), HasSubstr("orvane: capture error in loop: "));
    EXPECT_EQ(recorder.stopRecording(), id);
    const Lines told = news();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told.front(),
                AllOf(HasSubstr("recording_end | Recording stopped (end frame capture failed: "),
                      HasSubstr("display")));
    expectWholeSession(id);
    EXPECT_ANY_THROW(recorder.startRecording(targetOf(*window), 100, RecordingSource::mcp));
    EXPECT_NO_THROW(recorder.stopRecording());
}

TEST_F(RecordingLostDesktop, EndsWithItsReportWhenTheXServerDoesNotAnswer) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"#204080"_s, {u"--undecorated"_s});
    const QString id = recorder.startRecording(targetOf(*window), 100, RecordingSource::mcp);
    EXPECT_EQ(news().size(), 1U);
    signalServer(SIGSTOP);
    EXPECT_EQ(recorder.stopRecording(), id);
    const Lines told = news();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told.front(), HasSubstr("(end frame capture failed: Screen Recording permission"));
    expectWholeSession(id);
}

} // namespace orvane::test
