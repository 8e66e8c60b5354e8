#pragma once

#include "OrvanePlatform/x11/X11Surfaces.h"
#include "tests/desktop/DesktopFixture.h"
#include "tests/support/DrawnPixels.h"
#include "tests/support/EventLoop.h"

#include <QApplication>
#include <QScreen>

namespace orvane::test {

/// A virtual desktop with an application object on it, as the tray application has one.
class GuiFixture : public DesktopFixture {
protected:
    using DesktopFixture::DesktopFixture;

    void SetUp() override {
        QApplication::setQuitOnLastWindowClosed(false);
        ASSERT_EQ(QGuiApplication::platformName(), u"xcb"_s);
    }

    /// Waits until the screen shows that colour there; in pixels.
    testing::AssertionResult comesToShow(const QPoint& pixel, QRgb color, int tolerance = 2) {
        QRgb seen = 0;
        if (eventuallyInLoop([&] {
                seen = screen().pixel(pixel);
                return colorDistance(seen, color) <= tolerance;
            }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "the screen shows " << std::hex << seen << " at " << std::dec
                                           << pixel.x() << "," << pixel.y() << ", not " << std::hex << color;
    }

    /// The X id of the window that the window manager calls active; 0 for none.
    qint64 activeWindow() {
        const auto connection = session.connection();
        const auto reply = connection->reply<xcb_get_property_reply>(
            xcb_get_property(connection->raw(), 0, connection->root(), connection->atoms().netActiveWindow,
                             XCB_ATOM_WINDOW, 0, 1));
        if (!reply || xcb_get_property_value_length(reply.get()) != sizeof(xcb_window_t))
            return 0;
        return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
    }

    static void moveMouse(const QPoint& pixel) {
        runCommand(u"xdotool"_s, {u"mousemove"_s, QString::number(pixel.x()), QString::number(pixel.y())});
    }

    static void clickAt(const QPoint& pixel, int button = 1) {
        moveMouse(pixel);
        runCommand(u"xdotool"_s, {u"click"_s, QString::number(button)});
    }

private:
    int m_argc = 1;
    char m_name[7] = "orvane";
    char* m_argv[2] = {m_name, nullptr};

protected:
    QApplication application{m_argc, m_argv};
    x11::X11Surfaces surfaces{session};
};

} // namespace orvane::test
