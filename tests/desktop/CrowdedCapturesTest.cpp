// Any number of captures at once: each has its picture, and where the connection is given up an error.
#include "OrvaneCore/platform/PlatformError.h"
#include "tests/desktop/DesktopFixture.h"

#include <QDir>
#include <QFile>

#include <array>
#include <csignal>
#include <functional>
#include <future>
#include <iostream>
#include <latch>
#include <vector>

namespace orvane::test {

namespace {

/// How many threads of this process do something, this one included.
int busyThreads() {
    int busy = 0;
    const QString tasks = u"/proc/self/task"_s;
    for (const QString& thread : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile stat(tasks + u'/' + thread + u"/stat"_s);
        if (!stat.open(QIODevice::ReadOnly))
            continue;
        // The state follows the name in brackets (proc(5)).
        const QByteArray text = stat.readAll();
        busy += text.mid(text.lastIndexOf(')') + 2).startsWith('S') ? 0 : 1;
    }
    return busy;
}

/// How many captures are made at once; xcb takes sixteen descriptors with one read.
constexpr std::array crowds{20, 24, 32, 48, 64};

class CrowdedCaptures : public DesktopFixture {
protected:
    using Call = std::function<void()>;

    // A server that is stopped could not end.
    void TearDown() override { signalServer(SIGCONT); }

    void signalServer(int signal) { ::kill(static_cast<pid_t>(desktop.xServerPid()), signal); }

    /// Makes all calls at once, in a thread each.
    static std::vector<std::future<void>> startAll(const std::vector<Call>& calls) {
        auto start = std::make_shared<std::latch>(std::ptrdiff_t(calls.size()));
        std::vector<std::future<void>> started;
        started.reserve(calls.size());
        for (const Call& call : calls) {
            started.push_back(std::async(std::launch::async, [start, call] {
                start->arrive_and_wait();
                call();
            }));
        }
        return started;
    }

    /// Waits until every other thread waits for something: the server, where that is stopped.
    static testing::AssertionResult allWait() {
        // Twice in a row, because who waits for another thread is about to go on.
        int quiet = 0;
        if (eventually([&quiet] { return (quiet = busyThreads() <= 1 ? quiet + 1 : 0) == 20; }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << busyThreads() << " threads are busy";
    }

    /// How many of the calls threw an error of the desktop; those that do not end in time are told and left
    /// behind, since nothing could end them.
    static int errorsOf(std::vector<std::future<void>>& calls) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        int hanging = 0;
        int errors = 0;
        for (std::future<void>& call : calls) {
            if (call.wait_until(deadline) != std::future_status::ready) {
                ++hanging;
                continue;
            }
            try {
                call.get();
            } catch (const PlatformError&) {
                ++errors;
            }
        }
        if (hanging > 0) {
            std::cerr << hanging << " of " << calls.size() << " calls never end\n";
            std::abort();
        }
        return errors;
    }
};

} // namespace

// The server is stopped while all ask, and a picture that is more than its socket holds stands before what it
// answers: that then comes in one piece.
TEST_F(CrowdedCaptures, HavePicturesHoweverManyAnswersComeAtOnce) {
    const TestWindow window({u"--undecorated"_s});
    ASSERT_TRUE(screenShows({105, 107}, knownPixel(5, 7)));
    for (const int crowd : crowds) {
        SCOPED_TRACE(crowd);
        const auto connection = session.connection();
        x11::PixelReader reader(connection);
        std::vector<QImage> pictures{static_cast<size_t>(crowd)};
        std::vector<Call> calls;
        calls.reserve(pictures.size());
        for (QImage& picture : pictures) {
            calls.emplace_back([&] {
                picture = reader
                              .read(connection->root(), QRect(100, 100, 300, 200), 24,
                                    connection->screen().root_visual, x11::Alpha::ignored)
                              .value();
            });
        }
        signalServer(SIGSTOP);
        const auto screen = xcb_get_image(connection->raw(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection->root(), 0,
                                          0, 1280, 800, 0xffffffffU);
        xcb_flush(connection->raw());
        auto started = startAll(calls);
        EXPECT_TRUE(allWait());
        signalServer(SIGCONT);
        EXPECT_EQ(errorsOf(started), 0);
        EXPECT_FALSE(connection->lost());
        xcb_discard_reply(connection->raw(), screen.sequence);
        for (const QImage& picture : pictures)
            EXPECT_EQ(picture, knownPicture(300, 200, false));
    }
}

TEST_F(CrowdedCaptures, OfEveryKindGoOnSideBySide) {
    const TestWindow first({u"--undecorated"_s});
    const TestWindow second({u"--geometry"_s, u"640x480+500+200"_s});
    ASSERT_NO_THROW(capture.captureWindow(first.id(), false));
    const auto connection = session.connection();
    const quint32 display = displays.list().front().id;
    const std::vector<Call> kinds{
        [&] { EXPECT_EQ(capture.captureWindow(first.id(), false).image.size(), QSize(300, 200)); },
        [&] { EXPECT_EQ(capture.captureRegion(10, 20, 320, 240, false).size(), QSize(320, 240)); },
        [&] { EXPECT_GE(capture.captureWindow(second.id(), true).image.width(), 640); },
        [&] { EXPECT_EQ(capture.captureDisplayExcludingOwnApp(display).size(), QSize(1280, 800)); },
        [&] { EXPECT_EQ(discovery.listWindows().size(), 2U); },
    };
    for (const int crowd : crowds) {
        SCOPED_TRACE(crowd);
        std::vector<Call> calls;
        calls.reserve(static_cast<size_t>(crowd));
        for (int i = 0; i < crowd; ++i) {
            calls.emplace_back([&kinds, i] {
                for (int round = 0; round < 5; ++round)
                    kinds[static_cast<size_t>(i + round) % kinds.size()]();
            });
        }
        auto started = startAll(calls);
        EXPECT_EQ(errorsOf(started), 0);
    }
    EXPECT_EQ(session.connection(), connection);
}

TEST_F(CrowdedCaptures, AreErrorsWhenTheConnectionIsGivenUpAndTheNextOnesHaveAnother) {
    const TestWindow window;
    for (const int crowd : crowds) {
        SCOPED_TRACE(crowd);
        EXPECT_NO_THROW(capture.captureWindow(window.id(), false));
        const auto connection = session.connection();
        x11::PixelReader reader(connection);
        const std::vector<Call> calls(static_cast<size_t>(crowd), [&] {
            reader.read(connection->root(), QRect(0, 0, 500, 400), 24, connection->screen().root_visual,
                        x11::Alpha::ignored);
        });
        signalServer(SIGSTOP);
        auto started = startAll(calls);
        EXPECT_TRUE(allWait());
        connection->abandon();
        EXPECT_EQ(errorsOf(started), crowd);
        signalServer(SIGCONT);
    }
    EXPECT_NO_THROW(capture.captureWindow(window.id(), false));
}

TEST_F(CrowdedCaptures, AreErrorsWhoeverBeganToWaitFirst) {
    const TestWindow window;
    const auto connection = session.connection();
    signalServer(SIGSTOP);
    const auto earlier = xcb_get_input_focus(connection->raw());
    const auto later = xcb_get_input_focus(connection->raw());
    xcb_flush(connection->raw());
    auto calls = startAll({[&] { connection->reply<xcb_get_input_focus_reply>(later); }});
    EXPECT_TRUE(allWait());
    auto others = startAll({[&] { connection->reply<xcb_get_input_focus_reply>(earlier); }});
    calls.push_back(std::move(others.front()));
    EXPECT_TRUE(allWait());
    connection->abandon();
    EXPECT_EQ(errorsOf(calls), 2);
    signalServer(SIGCONT);
    EXPECT_NO_THROW(capture.captureWindow(window.id(), false));
}

// A request longer than the server takes makes xcb give up without closing anything.
TEST_F(CrowdedCaptures, AreErrorsWhenXcbGivesTheConnectionUpByItself) {
    const TestWindow window;
    const std::vector<char> tooLong(20'000'000);
    for (const int crowd : crowds) {
        SCOPED_TRACE(crowd);
        EXPECT_NO_THROW(capture.captureWindow(window.id(), false));
        const auto connection = session.connection();
        const std::vector<Call> calls(static_cast<size_t>(crowd), [&] { connection->sync(); });
        // Asked now, because a server that is stopped could not tell.
        ASSERT_LT(xcb_get_maximum_request_length(connection->raw()), tooLong.size() / 4);
        signalServer(SIGSTOP);
        auto started = startAll(calls);
        EXPECT_TRUE(allWait());
        xcb_change_property(connection->raw(), XCB_PROP_MODE_REPLACE, connection->root(), XCB_ATOM_STRING,
                            XCB_ATOM_STRING, 8, static_cast<uint32_t>(tooLong.size()), tooLong.data());
        EXPECT_TRUE(connection->lost());
        EXPECT_EQ(errorsOf(started), crowd);
        signalServer(SIGCONT);
    }
    EXPECT_NO_THROW(capture.captureWindow(window.id(), false));
}

} // namespace orvane::test
