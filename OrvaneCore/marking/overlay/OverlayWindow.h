#pragma once

#include "OrvaneCore/marking/overlay/OverlayView.h"

#include <QColor>
#include <QImage>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QWidget>

namespace orvane {

/// What the screen is covered with.
inline constexpr QColor overlayDimming(0, 0, 0, 38);

/// The overlay's window over one display: above panels and full-screen windows, with the dimmed screen as its
/// ground. No window manager looks after it, so that it is there at once, on every desktop and over
/// everything; for that it takes the keyboard by itself. Main thread.
class OverlayWindow final : public QWidget {
public:
    /// `frozen` is what the display shows, dimmed, in pixels, for desktops that have no translucent windows;
    /// null where they have.
    OverlayWindow(const OverlayDocument& document, QScreen& screen, const QImage& frozen);

    OverlayView& view() { return *m_view; }
    /// Null once the display is gone.
    const QScreen* screenOfOverlay() const { return m_screen; }

    /// Follows the display to where it is now.
    void coverScreen();

    /// Asks for the keyboard as soon as the window is on the screen, and until it has it.
    void takeKeyboard();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    DesktopKeyboard& m_keyboard;
    QPointer<QScreen> m_screen;
    QImage m_frozen;
    OverlayView* m_view;
    QTimer m_keyboardTimer;
    int m_keyboardTries = 0;
};

} // namespace orvane
