#include "OrvanePlatform/x11/DesktopComposer.h"

#include "OrvanePlatform/x11/ManagedWindows.h"
#include "OrvanePlatform/x11/Properties.h"
#include "OrvanePlatform/x11/TopLevelPixels.h"

#include <QBrush>
#include <QPainter>
#include <QRegion>
#include <QSet>

#include <algorithm>

#include <unistd.h>

#include <xcb/composite.h>
#include <xcb/xfixes.h>

namespace orvane::x11 {

namespace {

constexpr double fullyOpaque = 0xffffffff;

struct TopLevel {
    xcb_window_t window;
    /// With its border, in root-window pixels.
    QRect rect;
    int border;
};

/// The window a compositor draws the screen on belongs to the server itself, whose resources carry no
/// client's number, and it shows everything: it is part of no picture made of the windows themselves. To ask
/// for it by request would make one where the compositor has none.
bool belongsToServer(const X11Connection& connection, xcb_window_t window) {
    constexpr uint32_t idBits = 0x1fffffffU;
    return (window & idBits & ~connection.setup().resource_id_mask) == 0;
}

/// The visible children of the root window, bottom to top.
std::vector<TopLevel> visibleTopLevels(const X11Connection& connection) {
    const auto tree =
        connection.reply<xcb_query_tree_reply>(xcb_query_tree(connection.raw(), connection.root()));
    if (!tree)
        return {};
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    const auto count = static_cast<size_t>(xcb_query_tree_children_length(tree.get()));
    std::vector<xcb_get_window_attributes_cookie_t> attributeCookies;
    std::vector<xcb_get_geometry_cookie_t> geometryCookies;
    for (size_t i = 0; i < count; ++i) {
        attributeCookies.push_back(xcb_get_window_attributes(connection.raw(), children[i]));
        geometryCookies.push_back(xcb_get_geometry(connection.raw(), children[i]));
    }
    std::vector<TopLevel> topLevels;
    for (size_t i = 0; i < count; ++i) {
        const auto attributes = connection.reply<xcb_get_window_attributes_reply>(attributeCookies[i]);
        const auto geometry = connection.reply<xcb_get_geometry_reply>(geometryCookies[i]);
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
            continue;
        const int borders = 2 * geometry->border_width;
        topLevels.push_back(
            {.window = children[i],
             .rect = QRect(geometry->x, geometry->y, geometry->width + borders, geometry->height + borders),
             .border = geometry->border_width});
    }
    return topLevels;
}

/// The top-level windows of this process: those it made itself and the frames around its managed ones.
QSet<xcb_window_t> ownTopLevels(const X11Connection& connection, const std::vector<TopLevel>& topLevels) {
    const qint32 self = ::getpid();
    std::vector<xcb_window_t> windows;
    windows.reserve(topLevels.size());
    for (const TopLevel& topLevel : topLevels)
        windows.push_back(topLevel.window);
    const std::vector<qint32> processes = readProcesses(connection, windows);
    QSet<xcb_window_t> own;
    for (size_t i = 0; i < windows.size(); ++i) {
        if (processes[i] == self)
            own.insert(windows[i]);
    }
    const ClientLists lists = readClientLists(connection);
    std::vector<WindowOwner> owners = readOwners(connection, lists.clients);
    std::erase_if(owners, [self](const WindowOwner& owner) { return owner.pid != self; });
    for (const ManagedWindow& window : readManagedWindows(connection, owners, lists.currentDesktop))
        own.insert(window.placement.frame);
    return own;
}

/// The visible shape of a window (SHAPE extension), in root-window pixels.
QRegion shapeOf(const X11Connection& connection, const TopLevel& topLevel) {
    if (!connection.extensions().xfixes)
        return topLevel.rect;
    const xcb_xfixes_region_t id = xcb_generate_id(connection.raw());
    xcb_xfixes_create_region_from_window(connection.raw(), id, topLevel.window, XCB_SHAPE_SK_BOUNDING);
    const auto reply =
        connection.reply<xcb_xfixes_fetch_region_reply>(xcb_xfixes_fetch_region(connection.raw(), id));
    xcb_xfixes_destroy_region(connection.raw(), id);
    if (!reply)
        return topLevel.rect;
    QRegion region;
    const xcb_rectangle_t* rectangles = xcb_xfixes_fetch_region_rectangles(reply.get());
    for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++i)
        region += QRect(rectangles[i].x, rectangles[i].y, rectangles[i].width, rectangles[i].height);
    // Shapes are told from the corner inside the border.
    return region.translated(topLevel.rect.topLeft() + QPoint(topLevel.border, topLevel.border));
}

/// The wallpaper where a property names it, as a tile that repeats from the root window's corner on.
std::optional<QImage> namedWallpaper(const X11Connection& connection, PixelReader& reader) {
    std::optional<uint32_t> pixmap;
    for (const xcb_atom_t property : {connection.atoms().rootPixmapId, connection.atoms().esetrootPixmapId}) {
        if (!pixmap)
            pixmap = requestProperty(connection, connection.root(), property).number();
    }
    if (!pixmap)
        return std::nullopt;
    const auto geometry =
        connection.reply<xcb_get_geometry_reply>(xcb_get_geometry(connection.raw(), *pixmap));
    if (!geometry)
        return std::nullopt;
    return reader.read(*pixmap, QRect(0, 0, geometry->width, geometry->height), geometry->depth,
                       connection.screen().root_visual, Alpha::ignored);
}

/// The root window's own background, which the protocol cannot tell: a window that takes its background from
/// the root window is shown to nobody (redirected, at the very bottom) and read.
std::optional<QImage> rootBackground(const X11Connection& connection, PixelReader& reader,
                                     Redirection& redirection, const QRect& area) {
    const xcb_window_t probe = xcb_generate_id(connection.raw());
    const uint32_t values[] = {XCB_BACK_PIXMAP_PARENT_RELATIVE, 1};
    xcb_create_window(connection.raw(), XCB_COPY_FROM_PARENT, probe, connection.root(),
                      static_cast<int16_t>(area.x()), static_cast<int16_t>(area.y()),
                      static_cast<uint16_t>(area.width()), static_cast<uint16_t>(area.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_composite_redirect_window(connection.raw(), probe, XCB_COMPOSITE_REDIRECT_MANUAL);
    const uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(connection.raw(), probe, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    xcb_map_window(connection.raw(), probe);
    auto background = readTopLevel(connection, reader, redirection, probe, {QPoint(), area.size()});
    xcb_destroy_window(connection.raw(), probe);
    return background ? std::optional(std::move(background->image)) : std::nullopt;
}

void paintWallpaper(QPainter& painter, const X11Connection& connection, PixelReader& reader,
                    Redirection& redirection, const QRect& area) {
    if (const auto tile = namedWallpaper(connection, reader)) {
        painter.fillRect(area, QBrush(*tile));
    } else if (const auto background = rootBackground(connection, reader, redirection, area)) {
        painter.drawImage(area.topLeft(), *background);
    }
}

} // namespace

std::optional<QImage> composeWithoutOwnWindows(const X11Connection& connection, PixelReader& reader,
                                               Redirection& redirection, const QRect& area) {
    const std::vector<TopLevel> topLevels = visibleTopLevels(connection);
    const QSet<xcb_window_t> own = ownTopLevels(connection, topLevels);
    const bool inTheWay = std::any_of(topLevels.begin(), topLevels.end(), [&](const TopLevel& topLevel) {
        return own.contains(topLevel.window) && topLevel.rect.intersects(area);
    });
    if (!inTheWay)
        return std::nullopt;

    const bool composited = redirection.composited();
    QImage picture(area.size(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.translate(-area.topLeft());
    paintWallpaper(painter, connection, reader, redirection, area);
    for (const TopLevel& topLevel : topLevels) {
        if (belongsToServer(connection, topLevel.window) || own.contains(topLevel.window) ||
            !topLevel.rect.intersects(area))
            continue;
        const auto opacity =
            requestProperty(connection, topLevel.window, connection.atoms().netWmWindowOpacity).number();
        const QRect visible = topLevel.rect & area;
        const auto pixels = readTopLevel(connection, reader, redirection, topLevel.window,
                                         visible.translated(-topLevel.rect.topLeft()));
        if (!pixels)
            continue;
        painter.setClipRegion(shapeOf(connection, topLevel));
        painter.setOpacity(opacity && composited ? *opacity / fullyOpaque : 1.0);
        painter.drawImage(visible.topLeft(), pixels->image);
    }
    return picture;
}

} // namespace orvane::x11
