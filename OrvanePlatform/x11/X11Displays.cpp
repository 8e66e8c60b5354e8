#include "OrvanePlatform/x11/X11Displays.h"

namespace orvane::x11 {

PendingScreenLayout::PendingScreenLayout(const X11Connection& connection)
    : m_connection(connection)
    , m_resources(requestProperty(connection, connection.root(), XCB_ATOM_RESOURCE_MANAGER)) {
    if (connection.extensions().randrMonitors)
        m_monitors = xcb_randr_get_monitors(connection.raw(), connection.root(), 1);
}

std::vector<Monitor> PendingScreenLayout::readMonitors() const {
    std::vector<Monitor> monitors;
    if (m_monitors) {
        const auto reply = m_connection.reply<xcb_randr_get_monitors_reply>(*m_monitors);
        if (reply) {
            for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
                 xcb_randr_monitor_info_next(&it)) {
                const xcb_randr_monitor_info_t& info = *it.data;
                monitors.push_back({.name = m_connection.atomName(info.name),
                                    .pixels = QRect(info.x, info.y, info.width, info.height),
                                    .primary = info.primary != 0});
            }
        }
    }
    if (monitors.empty()) {
        const auto root = m_connection.reply<xcb_get_geometry_reply>(
            xcb_get_geometry(m_connection.raw(), m_connection.root()));
        if (root) {
            monitors.push_back({.name = QStringLiteral("default"),
                                .pixels = QRect(0, 0, root->width, root->height),
                                .primary = true});
        }
    }
    return monitors;
}

ScreenLayout PendingScreenLayout::read() const {
    ScaleFactors::Inputs inputs = scaleInputsFromEnvironment();
    std::vector<Monitor> monitors = readMonitors();
    inputs.xftDpi = xftDpi(m_resources.latin1());
    return {std::move(monitors), ScaleFactors(inputs)};
}

ScreenLayout readScreenLayout(const X11Connection& connection) {
    return PendingScreenLayout(connection).read();
}

std::vector<Display> X11Displays::list() {
    return readScreenLayout(*m_session.connection()).displays();
}

} // namespace orvane::x11
