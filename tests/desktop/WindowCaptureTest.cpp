// Pictures of windows: exactly what the window drew, whatever lies over it and wherever it is.
#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "tests/desktop/DesktopFixture.h"

#include <QElapsedTimer>

#include <algorithm>
#include <thread>

namespace orvane::test {

namespace {

const QSize clientSize(300, 200);

class WindowCapture : public DesktopFixture {
protected:
    using DesktopFixture::DesktopFixture;

    /// The client's own area as captured now.
    QImage captured(const TestWindow& window, const QSize& size = clientSize) {
        return clientPart(capture.captureWindow(window.id(), false).image, window, size);
    }

    ShareableWindow listedNow(const TestWindow& window) {
        return screenSource.listContent({window.id()}, {}).windows.at(0);
    }
};

class WindowCaptureUncomposited : public WindowCapture {
protected:
    WindowCaptureUncomposited()
        : WindowCapture({u"--size"_s, u"1280x800"_s, u"--no-compositor"_s}) {}
};

/// With and without a compositor.
class WindowCaptureEverywhere : public WindowCapture, public testing::WithParamInterface<QStringList> {
protected:
    WindowCaptureEverywhere()
        : WindowCapture(QStringList{u"--size"_s, u"1280x800"_s} + GetParam()) {}
};

class WindowCaptureTwoMonitors : public WindowCapture {
protected:
    WindowCaptureTwoMonitors()
        : WindowCapture({u"--size"_s, u"2000x1000"_s, u"--monitors"_s,
                         u"A:1200x1000+0+0,B:800x600+1200+100"_s, u"--scale"_s, u"A=1;B=2"_s}) {}
};

class WindowCaptureFraction : public WindowCapture {
protected:
    WindowCaptureFraction()
        : WindowCapture({u"--size"_s, u"1280x800"_s, u"--scale"_s, u"1.5"_s}) {}
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Composited, WindowCaptureEverywhere, testing::Values(QStringList()));
INSTANTIATE_TEST_SUITE_P(Uncomposited, WindowCaptureEverywhere,
                         testing::Values(QStringList{u"--no-compositor"_s}));

TEST_F(WindowCapture, ShowsEveryPixelWithDecorations) {
    const TestWindow window;
    const orvane::WindowCapture picture = capture.captureWindow(window.id(), false);
    EXPECT_EQ(clientPart(picture.image, window, clientSize), knownPicture(300, 200, false));
    EXPECT_GT(clientOffset(window).y(), 5) << "no title bar";
    EXPECT_GT(picture.image.height(), 205);
    EXPECT_EQ(picture.image.size(), QSize(picture.width, picture.height));
    EXPECT_EQ(listed(window)->width, picture.width);
}

TEST_P(WindowCaptureEverywhere, IsNotHiddenByAnotherWindow) {
    const TestWindow window;
    const auto cover = colorWindow(u"500x400+50+50"_s, u"red"_s);
    ASSERT_TRUE(screenShows({200, 200}, 0xffff0000U));
    EXPECT_EQ(captured(window), knownPicture(300, 200, false));
    EXPECT_TRUE(screenShows({200, 200}, 0xffff0000U)) << "the screen itself has changed";
}

TEST_P(WindowCaptureEverywhere, IsWholeWherePartlyOffTheScreen) {
    TestWindow window;
    window.command(u"move -120 700"_s);
    ASSERT_TRUE(eventually([&] { return listed(window)->x < -100; }));
    EXPECT_EQ(captured(window), knownPicture(300, 200, false));
}

TEST_F(WindowCapture, FollowsAResize) {
    TestWindow window;
    ASSERT_EQ(captured(window), knownPicture(300, 200, false));
    window.command(u"resize 411 277"_s);
    EXPECT_TRUE(eventually([&] { return captured(window, {411, 277}) == knownPicture(411, 277, false); }));
}

TEST_F(WindowCapture, ShowsWhatTheWindowShowsNow) {
    TestWindow window;
    for (const char* color : {"red", "lime", "blue"}) {
        window.command(u"color "_s + QLatin1String(color));
        EXPECT_EQ(captured(window).pixelColor(150, 100), QColor(QLatin1String(color)));
    }
}

TEST_F(WindowCapture, KeepsTransparency) {
    const TestWindow window({u"--depth"_s, u"32"_s, u"--undecorated"_s});
    const QImage picture = captured(window).convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(picture.pixel(10, 20), knownTransparentPixel(10, 20));
    EXPECT_EQ(qAlpha(picture.pixel(11, 20)), 0x80);
}

TEST_F(WindowCaptureUncomposited, IgnoresTransparencyNobodyComposes) {
    const TestWindow window({u"--depth"_s, u"32"_s, u"--undecorated"_s});
    EXPECT_EQ(qAlpha(captured(window).pixel(11, 20)), 0xff);
}

TEST_F(WindowCapture, LeavesOutClientSideShadows) {
    const TestWindow window({u"--shadow"_s, u"20"_s, u"--undecorated"_s});
    const orvane::WindowCapture picture = capture.captureWindow(window.id(), false);
    EXPECT_EQ(picture.image, knownPicture(300, 200, false).copy(20, 20, 260, 160));
    EXPECT_EQ(picture.width, 260);
    EXPECT_EQ(listed(window)->width, 260);
}

TEST_F(WindowCapture, ShowsAListedWindowThatHasMovedSince) {
    TestWindow window;
    const ShareableWindow before = listedNow(window);
    window.command(u"move 400 300"_s);
    ASSERT_TRUE(eventually([&] { return listed(window)->x >= 390; }));
    EXPECT_EQ(clientPart(screenSource.captureWindow(before, false), window, clientSize),
              knownPicture(300, 200, false));
}

TEST_F(WindowCapture, ShowsAListedWindowThatHasAnotherSizeSince) {
    TestWindow window;
    const ShareableWindow before = listedNow(window);
    window.command(u"resize 411 277"_s);
    EXPECT_TRUE(eventually([&] {
        return clientPart(screenSource.captureWindow(before, false), window, {411, 277}) ==
               knownPicture(411, 277, false);
    }));
}

TEST_F(WindowCapture, RefusesAListedWindowThatIsMinimisedSince) {
    TestWindow window;
    const ShareableWindow before = listedNow(window);
    window.command(u"iconify"_s);
    // The window manager leaves it mapped for as long as it shows how it goes away.
    EXPECT_TRUE(eventually([&] {
        try {
            screenSource.captureWindow(before, false);
            return false;
        } catch (const PlatformError& error) {
            return error.message().contains(u"hidden"_s);
        }
    }));
}

TEST_F(WindowCapture, RefusesAListedWindowThatHasClosedSince) {
    auto window = std::make_unique<TestWindow>();
    const ShareableWindow before = listedNow(*window);
    window.reset();
    EXPECT_THROW(screenSource.captureWindow(before, false), PlatformError);
}

TEST_F(WindowCapture, ListsWhatIsAskedForAndNothingElse) {
    const TestWindow window;
    TestWindow minimised;
    minimised.command(u"iconify"_s);
    ASSERT_TRUE(eventually([&] { return !listed(minimised); }));
    const TestWindow other;
    const qint64 noWindow = (qint64(1) << 32) + window.id();
    const ShareableContent content =
        screenSource.listContent({other.id(), 0, minimised.id(), noWindow, window.id(), -1}, {});
    ASSERT_EQ(content.windows.size(), 2U);
    EXPECT_EQ(content.windows[0].windowId, other.id());
    EXPECT_EQ(content.windows[1].windowId, window.id());
    EXPECT_EQ(content.displays, displays.list());
    EXPECT_TRUE(screenSource.listContent({}, {}).windows.empty());
    EXPECT_EQ(screenSource.listContent({}, {}).displays, displays.list());
}

TEST_F(WindowCapture, KnowsNoMinimisedWindow) {
    TestWindow window;
    window.command(u"iconify"_s);
    ASSERT_TRUE(eventually([&] { return !listed(window); }));
    EXPECT_THROW(capture.captureWindow(window.id(), false), OrvaneError);
}

TEST_F(WindowCapture, SurvivesAWindowThatCloses) {
    qint64 id = 0;
    {
        const TestWindow window;
        id = window.id();
    }
    EXPECT_THROW(screenSource.captureWindow({.windowId = id}, false), PlatformError);
    EXPECT_THROW(capture.captureWindow(id, false), std::exception);
    const TestWindow next;
    EXPECT_EQ(captured(next), knownPicture(300, 200, false));
}

TEST_F(WindowCapture, SurvivesWindowsThatCloseDuringCaptures) {
    for (int round = 0; round < 20; ++round) {
        auto window = std::make_unique<TestWindow>(QStringList{u"--undecorated"_s});
        const qint64 id = window->id();
        std::jthread closer([&window] { window.reset(); });
        try {
            for (;;)
                EXPECT_EQ(screenSource.captureWindow({.windowId = id}, false), knownPicture(300, 200, false));
        } catch (const PlatformError& error) {
            EXPECT_TRUE(error.message().contains(u"closed"_s));
        }
    }
}

TEST_F(WindowCapture, MagnifiesATinyWindow) {
    const TestWindow window({u"--geometry"_s, u"49x50+100+100"_s, u"--undecorated"_s});
    EXPECT_EQ(capture.captureWindow(window.id(), false).image.size(), QSize(2560, 1440));
}

TEST_F(WindowCapture, DrawsThePointerWhenAsked) {
    const TestWindow window({u"--color"_s, u"red"_s, u"--undecorated"_s});
    runCommand(u"xdotool"_s, {u"mousemove"_s, u"200"_s, u"200"_s});
    QImage plain(clientSize, QImage::Format_RGB32);
    plain.fill(Qt::red);
    EXPECT_EQ(capture.captureWindow(window.id(), false).image, plain);
    const QImage picture = capture.captureWindow(window.id(), true).image;
    EXPECT_NE(picture, plain);
    // The pointer's tip is at its place, and nothing far from it is touched.
    EXPECT_NE(picture.copy(85, 85, 40, 40), plain.copy(85, 85, 40, 40));
    EXPECT_EQ(picture.copy(160, 0, 140, 200), plain.copy(160, 0, 140, 200));
}

TEST_F(WindowCaptureUncomposited, SurvivesACompositorThatSetsAWindowFree) {
    // Whoever owns this selection counts as the compositor, and this one redirects nothing.
    const auto compositor = x11::X11Connection::open();
    const xcb_window_t owner = xcb_generate_id(compositor->raw());
    xcb_create_window(compositor->raw(), XCB_COPY_FROM_PARENT, owner, compositor->root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(compositor->raw(), owner, compositor->atoms().compositorSelection,
                            XCB_CURRENT_TIME);
    compositor->sync();

    const TestWindow window;
    const auto cover = colorWindow(u"500x400+50+50"_s, u"red"_s);
    EXPECT_EQ(captured(window), knownPicture(300, 200, false));
}

TEST_F(WindowCaptureUncomposited, WaitsOnlyOnceForWhatWasCoveredToBeDrawn) {
    const TestWindow window;
    const auto spent = [&] {
        QElapsedTimer timer;
        timer.start();
        screenSource.captureWindow(listedNow(window), false);
        return timer.elapsed();
    };
    // As long as a window has to be quiet to count as drawn.
    constexpr qint64 quietMs = 60;
    EXPECT_GE(spent(), quietMs);
    qint64 least = quietMs;
    for (int i = 0; i < 10; ++i)
        least = std::min(least, spent());
    EXPECT_LT(least, quietMs);
}

TEST_F(WindowCaptureTwoMonitors, KeepsEveryPixelOnTheScaledMonitor) {
    const TestWindow window({u"--geometry"_s, u"300x200+1400+300"_s, u"--undecorated"_s});
    const orvane::WindowCapture picture = capture.captureWindow(window.id(), false);
    EXPECT_EQ(picture.image, knownPicture(300, 200, false));
    EXPECT_EQ(QSize(picture.width, picture.height), QSize(150, 100));
    // 200 pixels right of the monitor's left edge and 200 below its top are 100 points each.
    EXPECT_EQ(listed(window)->x, 1300);
    EXPECT_EQ(listed(window)->y, 200);
    EXPECT_EQ(listed(window)->displayBounds, u"1200,100,400,300");
    EXPECT_EQ(listed(window)->displayId, x11::ScreenLayout::displayId(u"B"_s));
}

TEST_F(WindowCaptureTwoMonitors, SpansMonitors) {
    const TestWindow window({u"--geometry"_s, u"300x200+1100+300"_s, u"--undecorated"_s});
    EXPECT_EQ(capture.captureWindow(window.id(), false).image, knownPicture(300, 200, false));
    EXPECT_EQ(listed(window)->displayId, x11::ScreenLayout::displayId(u"B"_s));
}

TEST_F(WindowCaptureFraction, KeepsEveryPixel) {
    const TestWindow window({u"--geometry"_s, u"300x200+150+60"_s, u"--undecorated"_s});
    const orvane::WindowCapture picture = capture.captureWindow(window.id(), false);
    EXPECT_EQ(picture.image, knownPicture(300, 200, false));
    EXPECT_EQ(QSize(picture.width, picture.height), QSize(200, 133));
    EXPECT_EQ(listed(window)->x, 100);
    EXPECT_EQ(listed(window)->y, 40);
}

} // namespace orvane::test
