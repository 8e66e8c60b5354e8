#include "OrvanePlatform/x11/Redirection.h"

#include <chrono>
#include <thread>

#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/xfixes.h>

namespace orvane::x11 {

namespace {

using namespace std::chrono_literals;

// A window that has been quiet for this long after it was redirected has drawn what was covered.
constexpr auto quietTime = 60ms;
constexpr auto repaintLimit = 500ms;
constexpr auto repaintPoll = 5ms;

/// What has been drawn into a window, collected by the server.
class DamageWatch {
public:
    DamageWatch(const X11Connection& connection, xcb_window_t window)
        : m_connection(connection)
        , m_damage(xcb_generate_id(connection.raw()))
        , m_region(xcb_generate_id(connection.raw())) {
        xcb_damage_create(connection.raw(), m_damage, window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
        xcb_xfixes_create_region(connection.raw(), m_region, 0, nullptr);
    }
    ~DamageWatch() {
        xcb_damage_destroy(m_connection.raw(), m_damage);
        xcb_xfixes_destroy_region(m_connection.raw(), m_region);
    }
    DamageWatch(const DamageWatch&) = delete;
    DamageWatch& operator=(const DamageWatch&) = delete;

    /// True when something was drawn since the last question.
    bool takeDamage() {
        xcb_damage_subtract(m_connection.raw(), m_damage, XCB_NONE, m_region);
        const auto region = m_connection.reply<xcb_xfixes_fetch_region_reply>(
            xcb_xfixes_fetch_region(m_connection.raw(), m_region));
        return region && xcb_xfixes_fetch_region_rectangles_length(region.get()) > 0;
    }

private:
    const X11Connection& m_connection;
    xcb_damage_damage_t m_damage;
    xcb_xfixes_region_t m_region;
};

} // namespace

bool Redirection::composited() const {
    const auto owner = m_connection->reply<xcb_get_selection_owner_reply>(
        xcb_get_selection_owner(m_connection->raw(), m_connection->atoms().compositorSelection));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

bool Redirection::prepare(xcb_window_t topLevel) {
    if (!m_connection->extensions().composite) {
        throw PlatformError(QStringLiteral("The X server lacks the Composite extension, which capturing a "
                                           "window needs. Capture a region instead."));
    }
    const std::scoped_lock lock(m_mutex);
    const bool isComposited = composited();
    if (m_redirected || isComposited)
        return isComposited;
    redirectAndAwaitRepaint(topLevel, [this] {
        return xcb_composite_redirect_subwindows(m_connection->raw(), m_connection->root(),
                                                 XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    });
    m_redirected = true;
    return false;
}

void Redirection::prepareFreed(xcb_window_t topLevel) {
    const std::scoped_lock lock(m_mutex);
    redirectAndAwaitRepaint(topLevel, [this, topLevel] {
        return xcb_composite_redirect_window(m_connection->raw(), topLevel, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    });
}

template <typename Redirect>
void Redirection::redirectAndAwaitRepaint(xcb_window_t topLevel, Redirect redirect) {
    if (!m_connection->extensions().damage || !m_connection->extensions().xfixes) {
        redirect();
        m_connection->sync();
        std::this_thread::sleep_for(quietTime);
        return;
    }
    DamageWatch watch(*m_connection, topLevel);
    redirect();
    m_connection->sync();
    const auto limit = std::chrono::steady_clock::now() + repaintLimit;
    auto quietSince = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() < std::min(limit, quietSince + quietTime)) {
        std::this_thread::sleep_for(repaintPoll);
        if (watch.takeDamage())
            quietSince = std::chrono::steady_clock::now();
    }
}

} // namespace orvane::x11
