#pragma once

#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvanePlatform/freedesktop/DesktopEntries.h"
#include "OrvanePlatform/png/IgzipWriter.h"
#include "OrvanePlatform/x11/ScreenLayout.h"
#include "OrvanePlatform/x11/WindowPlacement.h"
#include "OrvanePlatform/x11/X11Displays.h"
#include "OrvanePlatform/x11/X11ScreenSource.h"
#include "OrvanePlatform/x11/X11Session.h"
#include "OrvanePlatform/x11/X11WindowServer.h"
#include "tests/support/Eventually.h"
#include "tests/support/KnownPicture.h"
#include "tests/support/TestWindow.h"
#include "tests/support/VirtualDesktop.h"

#include <gtest/gtest.h>

#include <optional>

namespace orvane::test {

using namespace Qt::StringLiterals;

/// The program's own ports and services on a virtual desktop.
class DesktopFixture : public testing::Test {
protected:
    explicit DesktopFixture(const QStringList& desktopOptions = {u"--size"_s, u"1280x800"_s})
        : desktop(desktopOptions) {}

    /// The listed window with that X id.
    std::optional<WindowInfo> listed(const TestWindow& window) {
        for (const WindowInfo& info : discovery.listWindows()) {
            if (info.windowId == window.id())
                return info;
        }
        return std::nullopt;
    }

    /// Where the client's own area begins in a picture of the window, in pixels.
    QPoint clientOffset(const TestWindow& window) {
        const auto connection = session.connection();
        const auto client = static_cast<xcb_window_t>(window.id());
        const auto origin = connection->reply<xcb_translate_coordinates_reply>(
            xcb_translate_coordinates(connection->raw(), client, connection->root(), 0, 0));
        const auto placement = x11::readPlacements(*connection, {client}).front();
        if (!origin || !placement)
            throw std::runtime_error("the window is gone");
        return QPoint(origin->dst_x, origin->dst_y) - placement->visibleRect.topLeft();
    }

    /// The client's own area of a picture of the window.
    QImage clientPart(const QImage& picture, const TestWindow& window, const QSize& size) {
        return picture.copy(QRect(clientOffset(window), size));
    }

    /// What the whole root window shows, in pixels.
    QImage screen() {
        const auto connection = session.connection();
        const auto root = connection->reply<xcb_get_geometry_reply>(
            xcb_get_geometry(connection->raw(), connection->root()));
        x11::PixelReader reader(connection);
        return reader
            .read(connection->root(), QRect(0, 0, root->width, root->height), root->depth,
                  connection->screen().root_visual, x11::Alpha::ignored)
            ->copy();
    }

    /// Waits until the screen shows that colour there: a compositor draws a moment after its clients.
    testing::AssertionResult screenShows(const QPoint& pixel, QRgb color) {
        if (eventually([&] { return screen().pixel(pixel) == color; }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "the screen shows " << std::hex << screen().pixel(pixel)
                                           << " at " << std::dec << pixel.x() << "," << pixel.y();
    }

    VirtualDesktop desktop;
    x11::X11Session session;
    freedesktop::DesktopEntries entries{freedesktop::DesktopEntries::standardFolders(), u"C"_s};
    x11::X11Displays displays{session};
    x11::X11WindowServer windowServer{session, entries};
    x11::X11ScreenSource screenSource{session};
    png::IgzipWriter pngWriter;
    WindowDiscovery discovery{windowServer, displays};
    ScreenCapture capture{screenSource, displays, pngWriter};
};

} // namespace orvane::test
