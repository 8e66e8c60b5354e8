#include "OrvanePlatform/x11/SurfaceStack.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWidget>

#include <algorithm>

#include <xcb/xcb.h>

namespace orvane::x11 {

namespace {

/// On Qt's own connection, so that the server gets it after what Qt has asked for before.
void raiseWindow(const QWidget& window) {
    const auto* qt = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!qt)
        return;
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(qt->connection(), static_cast<xcb_window_t>(window.internalWinId()),
                         XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

} // namespace

void SurfaceStack::add(QWidget& window, int level) {
    m_entries.insert(endOfLevel(level), {.window = &window, .level = level});
    window.installEventFilter(this);
    connect(&window, &QObject::destroyed, this, [this](const QObject* gone) {
        std::erase_if(m_entries, [gone](const Entry& entry) { return entry.window == gone; });
    });
}

bool SurfaceStack::eventFilter(QObject* watched, QEvent* event) {
    // The window is not on the screen yet when it is told that it is shown, so that nobody sees it in a wrong
    // place, and has been raised when it is told of that.
    if (event->type() == QEvent::Show || event->type() == QEvent::ZOrderChange)
        raise(watched);
    return QObject::eventFilter(watched, event);
}

std::vector<SurfaceStack::Entry>::iterator SurfaceStack::endOfLevel(int level) {
    return std::find_if(m_entries.begin(), m_entries.end(),
                        [level](const Entry& entry) { return entry.level > level; });
}

void SurfaceStack::raise(const QObject* window) {
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [window](const Entry& candidate) { return candidate.window == window; });
    if (entry == m_entries.end())
        return;
    const auto higher = endOfLevel(entry->level);
    std::rotate(entry, entry + 1, higher);
    raiseWindow(*(higher - 1)->window);
    // Hidden ones come up when they are shown.
    for (auto above = higher; above != m_entries.end(); ++above) {
        if (above->window->isVisible())
            raiseWindow(*above->window);
    }
}

} // namespace orvane::x11
