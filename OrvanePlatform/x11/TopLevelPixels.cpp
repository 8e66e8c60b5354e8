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

std::optional<QImage> readNamed(const X11Connection& connection, PixelReader& reader, xcb_window_t topLevel,
                                const QRect& area, Alpha alpha) {
    const NamedPixmap pixmap(connection, topLevel);
    const auto windowCookie = xcb_get_geometry(connection.raw(), topLevel);
    const auto attributesCookie = xcb_get_window_attributes(connection.raw(), topLevel);
    const auto pixmapCookie = xcb_get_geometry(connection.raw(), pixmap.id());
    const auto window = connection.reply<xcb_get_geometry_reply>(windowCookie);
    const auto attributes = connection.reply<xcb_get_window_attributes_reply>(attributesCookie);
    const auto pixels = connection.reply<xcb_get_geometry_reply>(pixmapCookie);
    if (!window || !attributes || !pixels)
        return std::nullopt;
    // The pixmap starts at the outer corner of the window's border, as the window's position does.
    const QRect inPixmap =
        area.translated(-window->x, -window->y) & QRect(0, 0, pixels->width, pixels->height);
    if (inPixmap.isEmpty())
        return std::nullopt;
    return reader.read(pixmap.id(), inPixmap, pixels->depth, attributes->visual, alpha);
}

} // namespace

std::optional<QImage> readTopLevel(const X11Connection& connection, PixelReader& reader,
                                   Redirection& redirection, xcb_window_t topLevel, const QRect& area) {
    const bool composited = redirection.prepare(topLevel);
    const Alpha alpha = composited ? Alpha::counts : Alpha::ignored;
    if (auto pixels = readNamed(connection, reader, topLevel, area, alpha))
        return pixels;
    redirection.prepareFreed(topLevel);
    return readNamed(connection, reader, topLevel, area, alpha);
}

} // namespace orvane::x11
