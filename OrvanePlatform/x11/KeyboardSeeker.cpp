#include "OrvanePlatform/x11/KeyboardSeeker.h"

#include <QEvent>
#include <QWidget>
#include <QWindow>

#include <chrono>
#include <utility>

namespace orvane::x11 {

using namespace std::chrono_literals;

namespace {

constexpr auto retryPeriod = 20ms;
constexpr int retryLimit = 100;

} // namespace

KeyboardSeeker::KeyboardSeeker(QWidget& window, SurfaceKeyboard keyboard, bool asksOnPress,
                               std::function<void()> begin, std::function<void()> ask)
    : m_window(window)
    , m_keyboard(keyboard)
    , m_asksOnPress(asksOnPress)
    , m_begin(std::move(begin))
    , m_ask(std::move(ask)) {
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_window.isActiveWindow() || ++m_tries > retryLimit) {
            giveUp();
        } else {
            m_ask();
        }
    });
    m_window.installEventFilter(this);
    m_window.windowHandle()->installEventFilter(this);
}

void KeyboardSeeker::seek() {
    m_begin();
    m_tries = 0;
    m_timer.start(retryPeriod);
}

bool KeyboardSeeker::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &m_window) {
        if (event->type() == QEvent::Show && m_keyboard == SurfaceKeyboard::atOnce) {
            seek();
        } else if (event->type() == QEvent::Hide) {
            giveUp();
        }
        return false;
    }
    // Before it is painted for the first time, so that the first key finds it there. Later, wherever in the
    // window a press lands, it brings back a keyboard that was lost.
    const bool isShowing = event->type() == QEvent::Expose && m_timer.isActive();
    const bool isPressed = event->type() == QEvent::MouseButtonPress && m_asksOnPress;
    if (isPressed)
        m_begin();
    if ((isShowing || isPressed) && !m_window.isActiveWindow())
        m_ask();
    return false;
}

} // namespace orvane::x11
