// An X server that dies or stops answering is an error, not the end of the program and not a hang.
#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "tests/desktop/DesktopFixture.h"

#include <QDir>
#include <QElapsedTimer>

#include <chrono>
#include <csignal>
#include <functional>
#include <future>
#include <stop_token>
#include <utility>

namespace orvane::test {

namespace {

class LostConnection : public DesktopFixture {
protected:
    // A server that is stopped could not end.
    void TearDown() override { signalServer(SIGCONT); }

    void signalServer(int signal) { ::kill(static_cast<pid_t>(desktop.xServerPid()), signal); }
};

} // namespace

TEST_F(LostConnection, IsAnErrorOfACapture) {
    const TestWindow window;
    ASSERT_NO_THROW(capture.captureWindow(window.id(), false));
    signalServer(SIGKILL);
    EXPECT_THROW(
        {
            for (int i = 0; i < 1000; ++i)
                capture.captureRegion(0, 0, 100, 100, false);
        },
        PlatformError);
    EXPECT_THROW(capture.captureWindow(window.id(), false), PlatformError);
    EXPECT_TRUE(eventually([this] { return windowServer.unavailableReason().has_value(); }));
    EXPECT_TRUE(windowServer.unavailableReason()->contains(u"display"_s));
    EXPECT_TRUE(discovery.listWindows().empty());
}

TEST_F(LostConnection, IsMadeAnewAtTheNextUse) {
    const TestWindow window;
    const auto first = session.connection();
    first->abandon();
    EXPECT_EQ(discovery.listWindows().size(), 1U);
    EXPECT_NO_THROW(capture.captureWindow(window.id(), false));
    EXPECT_NE(session.connection(), first);
    EXPECT_TRUE(first->lost());
}

TEST_F(LostConnection, EndsAStoppedServersListingAfterFiveSeconds) {
    const TestWindow window;
    ASSERT_NO_THROW(capture.captureWindow(window.id(), false));
    signalServer(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    try {
        capture.captureWindow(window.id(), false);
        FAIL() << "a stopped server answered";
    } catch (const OrvaneError& error) {
        EXPECT_EQ(error.errorCase(), OrvaneError::Case::permissionDenied);
    }
    EXPECT_GE(timer.elapsed(), 4900);
    EXPECT_LT(timer.elapsed(), 9000);
    signalServer(SIGCONT);
    EXPECT_NO_THROW(capture.captureWindow(window.id(), false));
}

TEST_F(LostConnection, HoldsUpASearchForWindowsForOneListing) {
    const TestWindow window;
    ASSERT_EQ(discovery.listWindows().size(), 1U);
    signalServer(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(discovery.listWindows().empty());
    EXPECT_GE(timer.elapsed(), 4900);
    EXPECT_LT(timer.elapsed(), 9000);
    signalServer(SIGCONT);
    EXPECT_EQ(discovery.listWindows().size(), 1U);
}

TEST_F(LostConnection, EndsListingsThatNobodyWantsAnyMore) {
    using Listing = std::function<void(std::stop_token)>;
    const TestWindow window;
    const Listing listings[] = {
        [&](std::stop_token stop) { windowServer.snapshot(std::move(stop)); },
        [&](std::stop_token stop) { screenSource.listContent({window.id()}, std::move(stop)); },
    };
    for (const Listing& listing : listings) {
        ASSERT_NO_THROW(listing({}));
        signalServer(SIGSTOP);
        std::stop_source stop;
        auto call = std::async(std::launch::async, [&] { listing(stop.get_token()); });
        EXPECT_EQ(call.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
        stop.request_stop();
        EXPECT_EQ(call.wait_for(std::chrono::seconds(5)), std::future_status::ready);
        signalServer(SIGCONT);
        EXPECT_THROW(call.get(), PlatformError);
    }
}

TEST_F(LostConnection, DoesNotWaitForeverToConnect) {
    signalServer(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(windowServer.unavailableReason());
    EXPECT_LT(timer.elapsed(), 9000);
}

TEST_F(LostConnection, HoldsUpEachOfManyCallersOnceAndKeepsOneThreadForAll) {
    const TestWindow window;
    ASSERT_NO_THROW(capture.captureWindow(window.id(), false));
    const auto threads = [] {
        return QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    };
    const auto before = threads();
    signalServer(SIGSTOP);
    // The first loses the connection, the others wait for another one.
    for (int round = 0; round < 3; ++round) {
        QElapsedTimer timer;
        timer.start();
        std::vector<std::future<void>> calls;
        calls.reserve(6);
        for (int i = 0; i < 6; ++i) {
            calls.push_back(
                std::async(std::launch::async, [&] { capture.captureWindow(window.id(), false); }));
        }
        for (auto& call : calls)
            EXPECT_THROW(call.get(), std::exception);
        EXPECT_LT(timer.elapsed(), 9000);
    }
    EXPECT_LE(threads(), before + 1);
    signalServer(SIGCONT);
    EXPECT_NO_THROW(capture.captureWindow(window.id(), false));
}

TEST(RefusedDisplay, IsAnErrorThatNamesIt) {
    qputenv("DISPLAY", ":7777");
    x11::X11Session session;
    try {
        session.connection();
        FAIL() << "there is no such display";
    } catch (const PlatformError& error) {
        EXPECT_TRUE(error.message().contains(u":7777"_s));
    }
    qunsetenv("DISPLAY");
    EXPECT_THROW(session.connection(), PlatformError);
}

} // namespace orvane::test
