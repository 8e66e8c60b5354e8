#pragma once

#include "OrvaneCore/platform/Surfaces.h"

#include <QObject>
#include <QTimer>

#include <functional>

class QWidget;

namespace orvane::x11 {

/// Asks for the keyboard for one window until the window has it: a request can be lost, and others may take
/// the keyboard in the same moment. Main thread; the window is native already and outlives this object's use.
class KeyboardSeeker final : public QObject {
public:
    /// `begin` is called when it begins to ask, and `ask` for each request. `asksOnPress`: also when a press
    /// lands in the window while it does not have the keyboard, which a window manager sees to where it
    /// manages the window.
    KeyboardSeeker(QWidget& window, SurfaceKeyboard keyboard, bool asksOnPress, std::function<void()> begin,
                   std::function<void()> ask);

    /// Asks as soon as the window is on the screen, and then again and again for two seconds.
    void seek();
    void giveUp() { m_timer.stop(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& m_window;
    SurfaceKeyboard m_keyboard;
    bool m_asksOnPress;
    std::function<void()> m_begin;
    std::function<void()> m_ask;
    QTimer m_timer;
    int m_tries = 0;
};

} // namespace orvane::x11
