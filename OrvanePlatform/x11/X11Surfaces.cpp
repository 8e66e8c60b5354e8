#include "OrvanePlatform/x11/X11Surfaces.h"

#include "OrvanePlatform/x11/ActiveWindow.h"
#include "OrvanePlatform/x11/Redirection.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <xcb/xfixes.h>

namespace orvane::x11 {

namespace {

/// From the lowest up. A panel's place is the window manager's choice.
int levelOf(SurfaceRole role) {
    switch (role) {
    case SurfaceRole::panel:
        return 0;
    case SurfaceRole::chrome:
        return 1;
    case SurfaceRole::canvas:
        return 2;
    case SurfaceRole::palette:
        return 3;
    case SurfaceRole::filePanel:
        return 4;
    case SurfaceRole::overlay:
    case SurfaceRole::toast:
        return 5;
    }
    return 0;
}

Qt::WindowType typeOf(SurfaceRole role) {
    switch (role) {
    case SurfaceRole::overlay:
        return Qt::Window;
    case SurfaceRole::filePanel:
        return Qt::Dialog;
    default:
        return Qt::Tool;
    }
}

bool isManaged(SurfaceRole role) {
    return role == SurfaceRole::panel;
}

Qt::WindowFlags flagsOf(SurfaceRole role, SurfaceKeyboard keyboard) {
    Qt::WindowFlags flags =
        typeOf(role) | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint;
    flags.setFlag(Qt::X11BypassWindowManagerHint, !isManaged(role));
    flags.setFlag(Qt::WindowDoesNotAcceptFocus, keyboard == SurfaceKeyboard::never);
    flags.setFlag(Qt::WindowTransparentForInput, role == SurfaceRole::chrome || role == SurfaceRole::toast);
    return flags;
}

xcb_window_t idOf(const QWidget& window) {
    return static_cast<xcb_window_t>(window.internalWinId());
}

} // namespace

bool X11Surfaces::canBeTranslucent() {
    try {
        return Redirection(m_session.connection()).composited();
    } catch (const PlatformError&) {
        return false;
    }
}

void X11Surfaces::dress(QWidget& window, SurfaceRole role, SurfaceKeyboard keyboard, QScreen& screen) {
    window.setWindowFlags(flagsOf(role, keyboard));
    window.setAttribute(Qt::WA_ShowWithoutActivating, keyboard != SurfaceKeyboard::atOnce);
    window.winId();
    window.windowHandle()->setScreen(&screen);
    // To window managers it is a small panel: on every workspace, in no task list, never focused. Qt heeds
    // this only once the window has been made.
    if (isManaged(role) && keyboard == SurfaceKeyboard::never)
        window.setAttribute(Qt::WA_X11NetWmWindowTypeDock);
    if (!isManaged(role))
        m_stack.add(window, levelOf(role));
    if (keyboard == SurfaceKeyboard::never)
        return;
    m_seekers[&window] = std::make_unique<KeyboardSeeker>(
        window, keyboard, !isManaged(role), [this, &window] { endOtherSearches(window); },
        [this, &window] { askForKeyboard(window); });
    QObject::connect(&window, &QObject::destroyed, &m_watch,
                     [this](const QObject* gone) { m_seekers.erase(gone); });
}

void X11Surfaces::setClickThrough(QWidget& window, bool isClickThrough) {
    QWindow& native = *window.windowHandle();
    window.overrideWindowFlags(window.windowFlags().setFlag(Qt::WindowTransparentForInput, isClickThrough));
    native.setFlag(Qt::WindowTransparentForInput, isClickThrough);
    const auto* qt = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (isClickThrough || !qt)
        return;
    // Qt makes the window as large as it is now to the pointer, and leaves it at that when it grows.
    xcb_xfixes_set_window_shape_region(qt->connection(), idOf(window), XCB_SHAPE_SK_INPUT, 0, 0, XCB_NONE);
}

void X11Surfaces::takeKeyboard(QWidget& window) {
    const auto found = m_seekers.find(&window);
    if (found != m_seekers.end())
        found->second->seek();
}

void X11Surfaces::giveKeyboardBack() {
    for (const auto& [window, seeker] : m_seekers)
        seeker->giveUp();
    m_focus.giveBack();
}

/// Of two windows that want it the later one is meant; both would take it from each other.
void X11Surfaces::endOtherSearches(const QWidget& window) {
    for (const auto& [other, seeker] : m_seekers) {
        if (other != &window)
            seeker->giveUp();
    }
}

void X11Surfaces::askForKeyboard(const QWidget& window) {
    try {
        const auto connection = m_session.connection();
        if (window.windowFlags().testFlag(Qt::X11BypassWindowManagerHint) || !hasWindowManager(*connection)) {
            m_focus.give(idOf(window));
        } else {
            requestActivation(*connection, idOf(window));
        }
    } catch (const PlatformError&) {
        // Without an X server there is no keyboard.
    }
}

} // namespace orvane::x11
