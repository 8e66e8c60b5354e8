#include "OrvanePlatform/x11/WindowPlacement.h"

#include "OrvanePlatform/x11/Properties.h"

namespace orvane::x11 {

namespace {

// Window managers nest frames one or two deep; a tree that is deeper is changing under us or hostile.
constexpr int deepestFrame = 8;

std::optional<QMargins> margins(const PendingProperty& property) {
    // Both properties are left, right, top, bottom.
    const std::vector<uint32_t> numbers = property.numbers();
    if (numbers.size() < 4)
        return std::nullopt;
    const auto side = [&numbers](size_t i) { return static_cast<int>(std::min(numbers[i], 0x7fffU)); };
    return QMargins(side(0), side(2), side(1), side(3));
}

std::vector<std::optional<xcb_window_t>> readFrames(const X11Connection& connection,
                                                    const std::vector<xcb_window_t>& clients) {
    std::vector<std::optional<xcb_window_t>> frames(clients.begin(), clients.end());
    std::vector<bool> found(clients.size(), false);
    for (int depth = 0; depth < deepestFrame; ++depth) {
        std::vector<std::pair<size_t, xcb_query_tree_cookie_t>> cookies;
        for (size_t i = 0; i < frames.size(); ++i) {
            if (frames[i] && !found[i])
                cookies.emplace_back(i, xcb_query_tree(connection.raw(), *frames[i]));
        }
        for (const auto& [i, cookie] : cookies) {
            const auto tree = connection.reply<xcb_query_tree_reply>(cookie);
            if (!tree || tree->parent == XCB_WINDOW_NONE) {
                frames[i].reset();
            } else if (tree->parent == connection.root()) {
                found[i] = true;
            } else {
                frames[i] = tree->parent;
            }
        }
    }
    for (size_t i = 0; i < frames.size(); ++i) {
        if (!found[i])
            frames[i].reset();
    }
    return frames;
}

struct PlacementRequests {
    xcb_get_geometry_cookie_t frameGeometry;
    xcb_get_window_attributes_cookie_t frameAttributes;
    xcb_get_geometry_cookie_t clientGeometry;
    xcb_translate_coordinates_cookie_t clientOrigin;
    PendingProperty decorations;
    PendingProperty shadows;
};

PlacementRequests requestPlacement(const X11Connection& connection, xcb_window_t frame, xcb_window_t client) {
    xcb_connection_t* raw = connection.raw();
    return {xcb_get_geometry(raw, frame),
            xcb_get_window_attributes(raw, frame),
            xcb_get_geometry(raw, client),
            xcb_translate_coordinates(raw, client, connection.root(), 0, 0),
            requestProperty(connection, client, connection.atoms().netFrameExtents),
            requestProperty(connection, client, connection.atoms().gtkFrameExtents)};
}

std::optional<WindowPlacement> readPlacement(const X11Connection& connection, xcb_window_t frame,
                                             const PlacementRequests& requests) {
    const auto frameGeometry = connection.reply<xcb_get_geometry_reply>(requests.frameGeometry);
    const auto attributes = connection.reply<xcb_get_window_attributes_reply>(requests.frameAttributes);
    const auto clientGeometry = connection.reply<xcb_get_geometry_reply>(requests.clientGeometry);
    const auto clientOrigin = connection.reply<xcb_translate_coordinates_reply>(requests.clientOrigin);
    const auto decorations = margins(requests.decorations);
    const auto shadows = margins(requests.shadows);
    if (!frameGeometry || !attributes || !clientGeometry || !clientOrigin)
        return std::nullopt;

    WindowPlacement placement;
    placement.frame = frame;
    const int borders = 2 * frameGeometry->border_width;
    placement.frameRect = QRect(frameGeometry->x, frameGeometry->y, frameGeometry->width + borders,
                                frameGeometry->height + borders);
    const QRect clientRect(clientOrigin->dst_x, clientOrigin->dst_y, clientGeometry->width,
                           clientGeometry->height);
    placement.visibleRect =
        visibleRect(placement.frameRect, clientRect, decorations, shadows.value_or(QMargins()));
    placement.viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    return placement;
}

} // namespace

QRect visibleRect(const QRect& frameRect, const QRect& clientRect, const std::optional<QMargins>& decorations,
                  const QMargins& shadows) {
    const QRect decorated = decorations ? clientRect.marginsAdded(*decorations) : frameRect;
    const QRect withoutShadows = decorated.marginsRemoved(shadows);
    const QRect visible = withoutShadows.isEmpty() ? QRect() : withoutShadows & frameRect;
    return visible.isEmpty() ? frameRect : visible;
}

std::vector<std::optional<WindowPlacement>> readPlacements(const X11Connection& connection,
                                                           const std::vector<xcb_window_t>& clients) {
    const auto frames = readFrames(connection, clients);
    std::vector<std::optional<PlacementRequests>> requests(clients.size());
    for (size_t i = 0; i < clients.size(); ++i) {
        if (frames[i])
            requests[i] = requestPlacement(connection, *frames[i], clients[i]);
    }
    std::vector<std::optional<WindowPlacement>> placements(clients.size());
    for (size_t i = 0; i < clients.size(); ++i) {
        if (requests[i])
            placements[i] = readPlacement(connection, *frames[i], *requests[i]);
    }
    return placements;
}

} // namespace orvane::x11
