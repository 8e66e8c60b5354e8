#include "OrvanePlatform/x11/X11ScreenSource.h"

#include "OrvanePlatform/x11/DesktopComposer.h"
#include "OrvanePlatform/x11/ManagedWindows.h"
#include "OrvanePlatform/x11/TopLevelPixels.h"
#include "OrvanePlatform/x11/X11Displays.h"
#include "OrvanePlatform/x11/XWayland.h"

#include <QPainter>

#include <xcb/xfixes.h>

namespace orvane::x11 {

namespace {

/// Draws the pointer as it looks now; `area` is where the picture lies, in root-window pixels.
void paintCursor(QImage& picture, const X11Connection& connection, const QRect& area) {
    if (!connection.extensions().xfixes)
        return;
    const auto cursor =
        connection.reply<xcb_xfixes_get_cursor_image_reply>(xcb_xfixes_get_cursor_image(connection.raw()));
    if (!cursor)
        return;
    const auto* pixels =
        reinterpret_cast<const uchar*>(xcb_xfixes_get_cursor_image_cursor_image(cursor.get()));
    const QImage image(pixels, cursor->width, cursor->height, QImage::Format_ARGB32_Premultiplied);
    const QPoint hotSpot(cursor->xhot, cursor->yhot);
    QPainter(&picture).drawImage(QPoint(cursor->x, cursor->y) - hotSpot - area.topLeft(), image);
}

/// Numbers that no X window can have become none.
xcb_window_t clientWindow(qint64 windowId) {
    constexpr qint64 mostBits = 0xffffffff;
    return windowId > 0 && windowId <= mostBits ? static_cast<xcb_window_t>(windowId)
                                                : xcb_window_t(XCB_WINDOW_NONE);
}

/// The part of a frame that the eye takes for the window, relative to the frame.
QRect inFrame(const WindowPlacement& placement) {
    return placement.visibleRect.translated(-placement.frameRect.topLeft());
}

/// The picture of a window with all that belongs on it. `area`: what was read, relative to the frame.
QImage finished(const X11Connection& connection, TopLevelPixels pixels, const QRect& area, bool showsCursor) {
    if (showsCursor)
        paintCursor(pixels.image, connection, area.translated(pixels.topLevelRect.topLeft()));
    return std::move(pixels.image);
}

/// What the eye sees in an area in root-window pixels, black where it lies outside the root window.
QImage readScreen(const X11Connection& connection, PixelReader& reader, const QRect& area) {
    const auto root =
        connection.reply<xcb_get_geometry_reply>(xcb_get_geometry(connection.raw(), connection.root()));
    if (!root)
        throw PlatformError(QStringLiteral("The X server does not tell the size of the screen."));
    const QRect inside = area & QRect(0, 0, root->width, root->height);
    const auto read = [&] {
        auto pixels = reader.read(connection.root(), inside, root->depth, connection.screen().root_visual,
                                  Alpha::ignored);
        if (!pixels)
            throw PlatformError(QStringLiteral("The X server refused to hand out the screen's pixels."));
        return *pixels;
    };
    if (inside == area)
        return read();
    QImage picture(area.size(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    if (!inside.isEmpty())
        QPainter(&picture).drawImage(inside.topLeft() - area.topLeft(), read());
    return picture;
}

} // namespace

std::shared_ptr<X11ScreenSource::Tools> X11ScreenSource::tools() {
    const auto connection = m_session.connection();
    const std::scoped_lock lock(m_mutex);
    if (!m_tools || m_tools->connection != connection)
        m_tools = std::make_shared<Tools>(connection);
    return m_tools;
}

ShareableContent X11ScreenSource::listContent(const std::vector<qint64>& windowIds, std::stop_token stop) {
    const auto connection = m_session.connection();
    const std::stop_callback abandon(stop, [&connection] { connection->abandon(); });
    // Asked for first and read last, so that it costs no round trip of its own.
    const PendingScreenLayout pendingLayout(*connection);
    std::vector<xcb_window_t> clients;
    clients.reserve(windowIds.size());
    for (const qint64 windowId : windowIds)
        clients.push_back(clientWindow(windowId));
    const auto placements =
        clients.empty() ? std::vector<std::optional<WindowPlacement>>() : readOnScreen(*connection, clients);
    const ScreenLayout layout = pendingLayout.read();
    ShareableContent content{.displays = layout.displays(), .windows = {}};
    for (size_t i = 0; i < placements.size(); ++i) {
        if (placements[i]) {
            content.windows.push_back({.windowId = windowIds[i],
                                       .framePoints = layout.toPoints(placements[i]->visibleRect),
                                       .listed = *placements[i]});
        }
    }
    return content;
}

QImage X11ScreenSource::captureWindow(const ShareableWindow& window, bool showsCursor) {
    const auto own = tools();
    if (const auto* listed = std::any_cast<WindowPlacement>(&window.listed)) {
        auto pixels = readFrame(*own->connection, own->reader, own->redirection, listed->frame,
                                clientWindow(window.windowId), inFrame(*listed));
        // One that has moved shows the same; in one of another size the visible part may lie elsewhere.
        if (pixels && pixels->topLevelRect.size() == listed->frameRect.size())
            return finished(*own->connection, *std::move(pixels), inFrame(*listed), showsCursor);
    }

    const auto gone = [] {
        return PlatformError(QStringLiteral("The window closed or was hidden during the capture. "
                                            "Use list_windows to see what is there now."));
    };
    const auto placement = readPlacements(*own->connection, {clientWindow(window.windowId)}).front();
    if (!placement || !placement->viewable)
        throw gone();
    auto pixels =
        readTopLevel(*own->connection, own->reader, own->redirection, placement->frame, inFrame(*placement));
    if (!pixels)
        throw gone();
    return finished(*own->connection, *std::move(pixels), inFrame(*placement), showsCursor);
}

QImage X11ScreenSource::captureRegion(const Display& display, const QRectF& rectPoints, bool showsCursor) {
    return captureArea(ScreenLayout::toPixels(display, rectPoints), showsCursor);
}

QImage X11ScreenSource::captureDisplay(const Display& display, bool showsCursor) {
    return captureArea(ScreenLayout::pixelBounds(display), showsCursor);
}

QImage X11ScreenSource::captureArea(const QRect& area, bool showsCursor) {
    const auto own = tools();
    requireOwnScreen(*own->connection);
    QImage picture = readScreen(*own->connection, own->reader, area);
    if (showsCursor)
        paintCursor(picture, *own->connection, area);
    return picture;
}

QImage X11ScreenSource::captureWithoutOwnWindows(const Display& display) {
    const auto own = tools();
    requireOwnScreen(*own->connection);
    const QRect area = ScreenLayout::pixelBounds(display);
    if (auto picture = composeWithoutOwnWindows(*own->connection, own->reader, own->redirection, area))
        return *picture;
    return readScreen(*own->connection, own->reader, area);
}

} // namespace orvane::x11
