// Movies of real windows: what they show and when, as FFmpeg's own tools read them.
#include "tests/desktop/RecordingFixture.h"
#include "tests/unit/media/MovieProbe.h"

#include <gmock/gmock.h>

#include <QJsonObject>

#include <algorithm>
#include <csignal>

namespace orvane::test {

namespace {

using testing::HasSubstr;

constexpr int framesPerSecond = 10;
constexpr double period = 1.0 / framesPerSecond;

/// A colour of the movies' windows with about the values that it has in a movie.
struct MovieColor {
    char letter;
    QColor color;
    int y;
    int u;
    int v;
};

const MovieColor palette[] = {{'r', Qt::red, 72, 96, 240},    {'g', Qt::green, 159, 48, 30},
                              {'b', Qt::blue, 36, 240, 114},  {'w', Qt::white, 235, 128, 128},
                              {'k', Qt::black, 16, 128, 128}, {'y', Qt::yellow, 214, 16, 142}};

QColor colorOf(char letter) {
    const auto* found = std::find_if(std::begin(palette), std::end(palette),
                                     [letter](const MovieColor& color) { return color.letter == letter; });
    return found->color;
}

/// Which colour the picture shows there; '?' for none of the palette.
char shownAt(const Planes& picture, int column, int row) {
    constexpr int tolerance = 30;
    const auto* found = std::find_if(std::begin(palette), std::end(palette), [&](const MovieColor& color) {
        return std::abs(picture.y(column, row) - color.y) < tolerance &&
               std::abs(picture.u(column, row) - color.u) < tolerance &&
               std::abs(picture.v(column, row) - color.v) < tolerance;
    });
    return found == std::end(palette) ? '?' : found->letter;
}

/// When the frames are shown, in seconds after the movie's begin, in their order.
std::vector<double> timesOf(const std::vector<Packet>& packets, bool keyFramesOnly) {
    std::vector<double> times;
    times.reserve(packets.size());
    for (const Packet& packet : packets) {
        if (packet.isKeyFrame || !keyFramesOnly)
            times.push_back(double(packet.tick) / 90000);
    }
    std::sort(times.begin(), times.end());
    return times;
}

/// The longest time from one to the next.
double longestGap(const std::vector<double>& times) {
    double longest = 0;
    for (std::size_t i = 1; i < times.size(); ++i)
        longest = std::max(longest, times[i] - times[i - 1]);
    return longest;
}

class RecordingMovie : public RecordingFixture {
protected:
    RecordingMovie() {
        storage.setSaveRawVideo(true);
        storage.setVideoFps(framesPerSecond);
    }

    QString start(const TestWindow& window, qint64 intervalMs = 1000) {
        m_beforeStart = seconds();
        QString id = recorder.startRecording(WindowTarget{u"TestWindow"_s, window.id()}, intervalMs,
                                             RecordingSource::mcp);
        m_afterStart = seconds();
        return id;
    }

    void awaitLooks(int count) {
        const int last = clock.nextLook() + count - 1;
        ASSERT_TRUE(eventually([&] { return clock.sleeps() > last; }, lookDeadlineMs));
    }

    /// On the clock of which the movie's times are.
    double seconds() { return std::chrono::duration<double>(clock.monotonic()).count(); }

    QString movie(const QString& id) const { return file(id, u"recording.mp4"_s); }

    static void expectFormat(const QString& path, const QSize& size) {
        const QJsonObject stream = streamOf(path);
        EXPECT_EQ(stream.value(u"codec_name").toString(), u"h264");
        EXPECT_EQ(stream.value(u"pix_fmt").toString(), u"yuv420p");
        EXPECT_EQ(QSize(stream.value(u"width").toInt(), stream.value(u"height").toInt()), size);
    }

    /// Shows another colour while the recorder sleeps before a look at which it searches for changes. False
    /// when the machine is so slow that this does not succeed.
    bool fillBeforeSearch(TestWindow& window) {
        for (const char color : std::string("rgbwk")) {
            if (!eventually([this] { return clock.sleeps() % framesPerSecond == 0; }))
                return false;
            const int look = clock.sleeps();
            news();
            window.fill({0, 0, 400, 300}, colorOf(color));
            if (clock.nextLook() == look)
                return true;
        }
        return false;
    }

    /// The movie begins between these moments.
    double m_beforeStart = 0;
    double m_afterStart = 0;
};

} // namespace

TEST_F(RecordingMovie, ShowsWhatWasShownThenAndInItsOrder) {
    struct Shown {
        char color;
        // When it was asked for, and when the recorder had certainly looked at it.
        double asked;
        double seen;
    };
    const auto window = colorWindow(u"320x240+100+100"_s, u"red"_s, {u"--undecorated"_s});
    const QString id = start(*window);
    awaitLooks(8);
    std::vector<Shown> shown{{'r', 0, 0}};
    for (const char color : std::string("gbwk")) {
        const double asked = seconds();
        window->fill({0, 0, 320, 240}, colorOf(color));
        awaitLooks(1);
        shown.push_back({color, asked, seconds()});
        awaitLooks(9);
    }
    const double beforeStop = seconds();
    recorder.stopRecording();
    const double afterStop = seconds();
    news();
    expectWholeSession(id);

    expectFormat(movie(id), {320, 240});
    const std::vector<Packet> packets = packetsOf(movie(id));
    const std::vector<double> times = timesOf(packets, false);
    const std::vector<Planes> pictures = picturesOf(movie(id));
    ASSERT_EQ(pictures.size(), times.size());
    std::string order;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        const char color = shownAt(pictures[i], 160, 120);
        EXPECT_EQ(shownAt(pictures[i], 2, 2), color);
        EXPECT_EQ(shownAt(pictures[i], 317, 237), color);
        if (order.empty() || order.back() != color)
            order += color;
        // No colour before it was asked for, and none after the next one had been looked at.
        const std::size_t now = order.size() - 1;
        ASSERT_LT(now, shown.size()) << order;
        EXPECT_GE(times[i] + m_afterStart, shown[now].asked) << order;
        if (now + 1 < shown.size()) {
            EXPECT_LE(times[i] + m_beforeStart, shown[now + 1].seen) << order;
        }
    }
    EXPECT_EQ(order, "rgbwk");

    // The last look was about a period before the end at the earliest, and its frame lasts for a period.
    constexpr double slack = 1.0;
    const double duration = secondsOf(movie(id));
    EXPECT_LE(duration, afterStop - m_beforeStart + period + 0.01);
    EXPECT_GE(duration, beforeStop - m_afterStart - period - slack);

    EXPECT_EQ(times.front(), 0);
    std::vector<double> keyTimes = timesOf(packets, true);
    ASSERT_FALSE(keyTimes.empty());
    EXPECT_EQ(keyTimes.front(), 0);
    keyTimes.push_back(times.back());
    // One that is due comes with the next frame.
    EXPECT_LE(longestGap(keyTimes), 2.0 + longestGap(times) + 0.001);
}

TEST_F(RecordingMovie, HasEvenSidesWhereTheWindowHasOddOnes) {
    const auto window = colorWindow(u"301x203+100+100"_s, u"blue"_s, {u"--undecorated"_s});
    window->fill({150, 0, 151, 203}, Qt::red);
    const QString id = start(*window);
    awaitLooks(3);
    recorder.stopRecording();
    expectFormat(movie(id), {302, 204});
    const std::vector<Planes> pictures = picturesOf(movie(id));
    ASSERT_GE(pictures.size(), 3U);
    for (const Planes& picture : pictures) {
        for (const int row : {0, 100, 202, 203}) {
            EXPECT_EQ(shownAt(picture, 0, row), 'b');
            EXPECT_EQ(shownAt(picture, 140, row), 'b');
            EXPECT_EQ(shownAt(picture, 160, row), 'r');
            EXPECT_EQ(shownAt(picture, 301, row), 'r');
        }
    }
}

TEST_F(RecordingMovie, KeepsItsSizeWhenTheWindowIsResized) {
    const auto window = colorWindow(u"320x240+100+100"_s, u"lime"_s, {u"--undecorated"_s});
    const QString id = start(*window);
    awaitLooks(2);
    window->command(u"resize 501 133"_s);
    window->command(u"color #ffff00"_s);
    ASSERT_TRUE(eventually([&] {
        const QImage shown = capture.captureWindow(window->id(), false).image;
        return shown.size() == QSize(501, 133) && shown.pixelColor(500, 132) == Qt::yellow;
    }));
    awaitLooks(3);
    recorder.stopRecording();
    news();
    EXPECT_EQ(picture(id, events.last().section(u" | "_s, -1)).size(), QSize(501, 133));
    expectFormat(movie(id), {320, 240});
    const std::vector<Planes> pictures = picturesOf(movie(id));
    EXPECT_EQ(shownAt(pictures.front(), 160, 120), 'g');
    EXPECT_EQ(shownAt(pictures.back(), 160, 120), 'y');
    EXPECT_EQ(shownAt(pictures.back(), 2, 2), 'y');
    EXPECT_EQ(shownAt(pictures.back(), 317, 237), 'y');
}

TEST_F(RecordingMovie, HoldsAFrameThroughAPause) {
    const auto window = colorWindow(u"320x240+100+100"_s, u"red"_s, {u"--undecorated"_s});
    const QString id = start(*window);
    awaitLooks(3);
    recorder.pauseRecording();
    awaitLooks(1);
    const double paused = seconds();
    window->fill({0, 0, 320, 240}, Qt::white);
    awaitLooks(10);
    window->fill({0, 0, 320, 240}, Qt::blue);
    const double resumed = seconds();
    recorder.resumeRecording();
    awaitLooks(3);
    recorder.stopRecording();
    const std::vector<double> times = timesOf(packetsOf(movie(id)), false);
    EXPECT_GE(longestGap(times), resumed - paused);
    std::string order;
    for (const Planes& picture : picturesOf(movie(id))) {
        const char color = shownAt(picture, 160, 120);
        if (order.empty() || order.back() != color)
            order += color;
    }
    EXPECT_EQ(order, "rb");
}

TEST_F(RecordingMovie, IsSearchedForChangesOnceASecondBetweenNeighbours) {
    const auto window = colorWindow(u"400x300+100+100"_s, u"black"_s, {u"--undecorated"_s});
    start(*window, 100);
    EXPECT_EQ(news().size(), 1U);
    // A change between two searches is seen by none of them.
    ASSERT_TRUE(eventually([this] { return clock.sleeps() % framesPerSecond == 2; }));
    const int look = clock.sleeps();
    window->fill({0, 0, 400, 300}, Qt::white);
    awaitLooks(1);
    ASSERT_LT(clock.sleeps(), look + framesPerSecond - 2) << "this machine is too slow";
    awaitLooks(framesPerSecond);
    EXPECT_EQ(news(), Lines{});
    // One between a search and the look before it is seen.
    ASSERT_TRUE(fillBeforeSearch(*window));
    awaitLooks(1);
    EXPECT_EQ(news(), Lines{"major_change | Major visual update (100% of screen, avg 100% diff). Likely: "
                            "full content refresh or navigation. | change-#.png"});
    recorder.stopRecording();
}

TEST_F(RecordingMovie, IsWholeWhenTheXServerHasDied) {
    testing::internal::CaptureStderr();
    const auto window = colorWindow(u"320x240+100+100"_s, u"red"_s, {u"--undecorated"_s});
    const QString id = start(*window);
    awaitLooks(5);
    ::kill(static_cast<pid_t>(desktop.xServerPid()), SIGKILL);
    awaitLooks(3);
    recorder.stopRecording();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("orvane: video saved ("));
    news();
    expectWholeSession(id);
    expectFormat(movie(id), {320, 240});
    const std::vector<Planes> pictures = picturesOf(movie(id));
    EXPECT_GE(pictures.size(), 5U);
    EXPECT_EQ(shownAt(pictures.back(), 160, 120), 'r');
}

} // namespace orvane::test
