// Pictures of parts of the screen and of whole displays.
#include "tests/desktop/DesktopFixture.h"

#include <QPainter>

#include <functional>
#include <thread>
#include <vector>

namespace orvane::test {

namespace {

class RegionCapture : public DesktopFixture {
protected:
    using DesktopFixture::DesktopFixture;

    /// Waits until the screen shows the picture's first and last pixel there.
    void awaitPicture(const QPoint& at, const QSize& size) {
        ASSERT_TRUE(screenShows(at, knownPixel(0, 0)));
        ASSERT_TRUE(screenShows(at + QPoint(size.width() - 1, size.height() - 1),
                                knownPixel(size.width() - 1, size.height() - 1)));
    }
};

class RegionCaptureTwoMonitors : public RegionCapture {
protected:
    RegionCaptureTwoMonitors()
        : RegionCapture({u"--size"_s, u"2000x1000"_s, u"--monitors"_s,
                         u"A:1200x1000+0+0,B:800x600+1200+100"_s, u"--scale"_s, u"A=1;B=2"_s}) {}
};

} // namespace

// The X server of a Wayland session, which has no picture of what the human sees.
TEST_F(RegionCapture, IsRefusedWhereTheScreenIsNotTheXServers) {
    const auto refusal = [](const std::function<void()>& call) {
        try {
            call();
        } catch (const PlatformError& error) {
            return error.message();
        }
        return QString();
    };
    for (const QByteArray& message : {QByteArray("WL_SURFACE_ID"), QByteArray("WL_SURFACE_SERIAL")}) {
        const VirtualDesktop other({u"--size"_s, u"640x480"_s});
        x11::X11Session wayland;
        x11::X11Displays otherDisplays(wayland);
        x11::X11ScreenSource source(wayland);
        ScreenCapture otherCapture(source, otherDisplays, pngWriter);
        const TestWindow otherWindow({u"--undecorated"_s});
        const quint32 id = otherDisplays.list().front().id;
        ASSERT_EQ(otherCapture.captureRegion(0, 0, 20, 10, false).size(), QSize(20, 10));
        const auto raw = wayland.connection()->raw();
        wayland.connection()->reply<xcb_intern_atom_reply>(
            xcb_intern_atom(raw, 0, static_cast<uint16_t>(message.size()), message.constData()));
        const QString text =
            u"A Wayland session shows X11 programs nothing but X11 windows. Log in to an X11 "
            "session to capture the screen."_s;
        EXPECT_EQ(refusal([&] { otherCapture.captureRegion(0, 0, 20, 10, false); }), text);
        EXPECT_EQ(refusal([&] { otherCapture.captureDisplay(id, true); }), text);
        EXPECT_EQ(refusal([&] { otherCapture.captureDisplayExcludingOwnApp(id); }), text);
        EXPECT_EQ(otherCapture.captureWindow(otherWindow.id(), false).image, knownPicture(300, 200, false));
    }
}

TEST_F(RegionCapture, HoldsEveryPixel) {
    const TestWindow window({u"--undecorated"_s});
    awaitPicture({100, 100}, {300, 200});
    EXPECT_EQ(capture.captureRegion(100, 100, 300, 200, false), knownPicture(300, 200, false));
    EXPECT_EQ(capture.captureRegion(110, 120, 30, 40, false),
              knownPicture(300, 200, false).copy(10, 20, 30, 40));
    EXPECT_EQ(capture.captureRegion(100, 100, 1, 1, false).pixel(0, 0), knownPixel(0, 0));
}

TEST_F(RegionCapture, IsWhatTheEyeSees) {
    const TestWindow window({u"--undecorated"_s});
    const auto cover = colorWindow(u"100x100+150+150"_s, u"red"_s, {u"--override-redirect"_s});
    ASSERT_TRUE(screenShows({200, 200}, 0xffff0000U));
    const QImage picture = capture.captureRegion(100, 100, 300, 200, false);
    EXPECT_EQ(picture.pixel(100, 100), 0xffff0000U);
    EXPECT_EQ(picture.pixel(10, 10), knownPixel(10, 10));
}

TEST_F(RegionCapture, IsBlackBeyondTheScreen) {
    const auto window = colorWindow(u"200x200+0+0"_s, u"lime"_s, {u"--override-redirect"_s});
    ASSERT_TRUE(screenShows({0, 0}, 0xff00ff00U));
    const QImage picture = capture.captureRegion(-10, -20, 40, 50, false);
    EXPECT_EQ(picture.size(), QSize(40, 50));
    EXPECT_EQ(picture.pixel(9, 30), 0xff000000U);
    EXPECT_EQ(picture.pixel(30, 19), 0xff000000U);
    EXPECT_EQ(picture.pixel(10, 20), 0xff00ff00U);
    const QImage far = capture.captureRegion(100000, 100000, 4, 4, false);
    EXPECT_EQ(far.size(), QSize(4, 4));
    EXPECT_EQ(far.pixel(2, 2), 0xff000000U);
}

TEST_F(RegionCapture, DrawsThePointerWhenAsked) {
    const auto window = colorWindow(u"300x200+100+100"_s, u"red"_s, {u"--undecorated"_s});
    ASSERT_TRUE(screenShows({200, 200}, 0xffff0000U));
    runCommand(u"xdotool"_s, {u"mousemove"_s, u"200"_s, u"200"_s});
    QImage plain(300, 200, QImage::Format_RGB32);
    plain.fill(Qt::red);
    EXPECT_EQ(capture.captureRegion(100, 100, 300, 200, false), plain);
    EXPECT_NE(capture.captureRegion(100, 100, 300, 200, true), plain);
}

TEST_F(RegionCapture, PutsThePointersHotSpotWhereItPoints) {
    const auto window = colorWindow(u"300x200+100+100"_s, u"red"_s, {u"--undecorated"_s});
    ASSERT_TRUE(screenShows({200, 200}, 0xffff0000U));
    const auto connection = session.connection();
    xcb_connection_t* const raw = connection->raw();
    const xcb_pixmap_t square = xcb_generate_id(raw);
    xcb_create_pixmap(raw, 1, square, connection->root(), 16, 16);
    const xcb_gcontext_t graphics = xcb_generate_id(raw);
    const uint32_t set = 1;
    xcb_create_gc(raw, graphics, square, XCB_GC_FOREGROUND, &set);
    const xcb_rectangle_t all{0, 0, 16, 16};
    xcb_poly_fill_rectangle(raw, square, graphics, 1, &all);
    const xcb_cursor_t cursor = xcb_generate_id(raw);
    // Blue, its hot spot not in the middle.
    xcb_create_cursor(raw, cursor, square, square, 0, 0, 0xffff, 0, 0, 0xffff, 4, 10);
    xcb_change_window_attributes(raw, static_cast<xcb_window_t>(window->id()), XCB_CW_CURSOR, &cursor);
    connection->sync();
    runCommand(u"xdotool"_s, {u"mousemove"_s, u"210"_s, u"220"_s});
    QImage expected(300, 200, QImage::Format_RGB32);
    expected.fill(Qt::red);
    QPainter(&expected).fillRect(QRect(106, 110, 16, 16), Qt::blue);
    EXPECT_EQ(capture.captureRegion(100, 100, 300, 200, true), expected);
    EXPECT_EQ(capture.captureWindow(window->id(), true).image, expected);
}

TEST_F(RegionCapture, ManyAtOnceDoNotMix) {
    const TestWindow window({u"--undecorated"_s});
    awaitPicture({100, 100}, {300, 200});
    const QImage whole = knownPicture(300, 200, false);
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < 50; ++i) {
                const QRect part((i * 7 + thread) % 200, (i * 3) % 100, 50 + thread, 60);
                EXPECT_EQ(
                    capture.captureRegion(100 + part.x(), 100 + part.y(), part.width(), part.height(), false),
                    whole.copy(part));
            }
        });
    }
}

TEST_F(RegionCaptureTwoMonitors, CountsInThePointsOfTheDisplay) {
    const TestWindow window({u"--geometry"_s, u"300x200+1400+300"_s, u"--undecorated"_s});
    awaitPicture({1400, 300}, {300, 200});
    EXPECT_EQ(capture.captureRegion(1300, 200, 150, 100, false), knownPicture(300, 200, false));
    EXPECT_EQ(capture.captureRegion(1310, 210, 10, 5, false),
              knownPicture(300, 200, false).copy(20, 20, 20, 10));
}

TEST_F(RegionCaptureTwoMonitors, CapturesEachDisplayWhole) {
    const TestWindow window({u"--geometry"_s, u"300x200+1400+300"_s, u"--undecorated"_s});
    awaitPicture({1400, 300}, {300, 200});
    const QImage second = capture.captureDisplay(x11::ScreenLayout::displayId(u"B"_s), false);
    EXPECT_EQ(second.size(), QSize(800, 600));
    EXPECT_EQ(second.copy(200, 200, 300, 200), knownPicture(300, 200, false));
    EXPECT_EQ(capture.captureDisplay(x11::ScreenLayout::displayId(u"A"_s), false).size(), QSize(1200, 1000));
}

} // namespace orvane::test
