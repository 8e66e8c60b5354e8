#include "OrvanePlatform/x11/X11ScreenSource.h"

#include "OrvanePlatform/x11/DesktopComposer.h"
#include "OrvanePlatform/x11/ManagedWindows.h"
#include "OrvanePlatform/x11/TopLevelPixels.h"
#include "OrvanePlatform/x11/X11Displays.h"

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

ShareableContent X11ScreenSource::listContent(std::stop_token stop) {
    const auto connection = m_session.connection();
    const std::stop_callback abandon(stop, [&connection] { connection->abandon(); });
    const ScreenLayout layout = readScreenLayout(*connection);
    ShareableContent content;
    content.displays = layout.displays();
    for (const ManagedWindow& window : readManagedWindows(*connection)) {
        if (window.onScreen)
            content.windows.push_back(
                {.windowId = window.client, .framePoints = layout.toPoints(window.placement.visibleRect)});
    }
    return content;
}

QImage X11ScreenSource::captureWindow(qint64 windowId, bool showsCursor) {
    const auto own = tools();
    const auto gone = [] {
        return PlatformError(QStringLiteral("The window closed or was hidden during the capture. "
                                            "Use list_windows to see what is there now."));
    };
    const auto placement = readPlacements(*own->connection, {static_cast<xcb_window_t>(windowId)}).front();
    if (!placement || !placement->viewable)
        throw gone();
    auto picture = readTopLevel(*own->connection, own->reader, own->redirection, placement->frame,
                                placement->visibleRect);
    if (!picture)
        throw gone();
    if (showsCursor)
        paintCursor(*picture, *own->connection, placement->visibleRect);
    return *picture;
}

QImage X11ScreenSource::captureRegion(const Display& display, const QRectF& rectPoints, bool showsCursor) {
    return captureArea(ScreenLayout::toPixels(display, rectPoints), showsCursor);
}

QImage X11ScreenSource::captureDisplay(const Display& display, bool showsCursor) {
    return captureArea(ScreenLayout::pixelBounds(display), showsCursor);
}

QImage X11ScreenSource::captureArea(const QRect& area, bool showsCursor) {
    const auto own = tools();
    QImage picture = readScreen(*own->connection, own->reader, area);
    if (showsCursor)
        paintCursor(picture, *own->connection, area);
    return picture;
}

QImage X11ScreenSource::captureWithoutOwnWindows(const Display& display) {
    const auto own = tools();
    const QRect area = ScreenLayout::pixelBounds(display);
    if (auto picture = composeWithoutOwnWindows(*own->connection, own->reader, own->redirection, area))
        return *picture;
    return readScreen(*own->connection, own->reader, area);
}

} // namespace orvane::x11
