#include "OrvanePlatform/x11/TopLevelPixels.h"

#include <xcb/composite.h>

namespace orvane::x11 {

namespace {

/// The name of a window's pixmap. It keeps the pixels alive when the window is resized or closed meanwhile.
class NamedPixmap {
public:
    NamedPixmap(const X11Connection& connection, xcb_window_t window)
        : m_connection(connection)
        , m_pixmap(xcb_generate_id(connection.raw())) {
        xcb_composite_name_window_pixmap(connection.raw(), window, m_pixmap);
    }
    ~NamedPixmap() { xcb_free_pixmap(m_connection.raw(), m_pixmap); }
    NamedPixmap(const NamedPixmap&) = delete;
    NamedPixmap& operator=(const NamedPixmap&) = delete;

    xcb_pixmap_t id() const { return m_pixmap; }

private:
    const X11Connection& m_connection;
    xcb_pixmap_t m_pixmap;
};

std::optional<TopLevelPixels> readNamed(const X11Connection& connection, PixelReader& reader,
                                        xcb_window_t topLevel, xcb_window_t client, const QRect& area,
                                        Alpha alpha) {
    const NamedPixmap pixmap(connection, topLevel);
    const auto windowCookie = xcb_get_geometry(connection.raw(), topLevel);
    const auto attributesCookie = xcb_get_window_attributes(connection.raw(), topLevel);
    const auto pixmapCookie = xcb_get_geometry(connection.raw(), pixmap.id());
    const auto clientCookie = xcb_get_geometry(connection.raw(), client);
    const auto window = connection.reply<xcb_get_geometry_reply>(windowCookie);
    const auto attributes = connection.reply<xcb_get_window_attributes_reply>(attributesCookie);
    const auto pixels = connection.reply<xcb_get_geometry_reply>(pixmapCookie);
    const auto clientGeometry = connection.reply<xcb_get_geometry_reply>(clientCookie);
    if (!window || !attributes || !pixels || !clientGeometry)
        return std::nullopt;
    // The pixmap starts at the outer corner of the window's border, as the window's position does.
    const QRect whole(0, 0, pixels->width, pixels->height);
    const QRect inside = area & whole;
    if (inside.isEmpty())
        return std::nullopt;
    auto image = reader.read(pixmap.id(), inside, pixels->depth, attributes->visual, alpha);
    if (!image)
        return std::nullopt;
    return TopLevelPixels{.image = *std::move(image), .topLevelRect = whole.translated(window->x, window->y)};
}

} // namespace

std::optional<TopLevelPixels> readTopLevel(const X11Connection& connection, PixelReader& reader,
                                           Redirection& redirection, xcb_window_t topLevel,
                                           const QRect& area) {
    if (auto pixels = readFrame(connection, reader, redirection, topLevel, topLevel, area))
        return pixels;
    redirection.prepareFreed(topLevel);
    return readFrame(connection, reader, redirection, topLevel, topLevel, area);
}

std::optional<TopLevelPixels> readFrame(const X11Connection& connection, PixelReader& reader,
                                        Redirection& redirection, xcb_window_t frame, xcb_window_t client,
                                        const QRect& area) {
    const Alpha alpha = redirection.prepare(frame) ? Alpha::counts : Alpha::ignored;
    return readNamed(connection, reader, frame, client, area, alpha);
}

} // namespace orvane::x11
