#include "OrvanePlatform/x11/X11Displays.h"

#include "OrvanePlatform/x11/Properties.h"

#include <xcb/randr.h>

namespace orvane::x11 {

namespace {

std::vector<Monitor> readMonitors(const X11Connection& connection) {
    std::vector<Monitor> monitors;
    if (connection.extensions().randrMonitors) {
        const auto reply = connection.reply<xcb_randr_get_monitors_reply>(
            xcb_randr_get_monitors(connection.raw(), connection.root(), 1));
        if (reply) {
            for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
                 xcb_randr_monitor_info_next(&it)) {
                const xcb_randr_monitor_info_t& info = *it.data;
                monitors.push_back({.name = connection.atomName(info.name),
                                    .pixels = QRect(info.x, info.y, info.width, info.height),
                                    .primary = info.primary != 0});
            }
        }
    }
    if (monitors.empty()) {
        const auto root =
            connection.reply<xcb_get_geometry_reply>(xcb_get_geometry(connection.raw(), connection.root()));
        if (root)
            monitors.push_back({.name = QStringLiteral("default"),
                                .pixels = QRect(0, 0, root->width, root->height),
                                .primary = true});
    }
    return monitors;
}

} // namespace

ScreenLayout readScreenLayout(const X11Connection& connection) {
    const auto resources = requestProperty(connection, connection.root(), XCB_ATOM_RESOURCE_MANAGER);
    ScaleFactors::Inputs inputs = scaleInputsFromEnvironment();
    std::vector<Monitor> monitors = readMonitors(connection);
    inputs.xftDpi = xftDpi(resources.latin1());
    return {std::move(monitors), ScaleFactors(inputs)};
}

std::vector<Display> X11Displays::list() {
    return readScreenLayout(*m_session.connection()).displays();
}

} // namespace orvane::x11
