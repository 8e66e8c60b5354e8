#pragma once

#include "OrvaneCore/marking/overlay/OverlayView.h"
#include "OrvaneCore/platform/Surfaces.h"

#include <QColor>
#include <QImage>
#include <QPointer>
#include <QScreen>
#include <QWidget>

namespace orvane {

/// What the screen is covered with.
inline constexpr QColor overlayDimming(0, 0, 0, 38);

/// The overlay's window over one display, with the dimmed screen as its ground. Main thread.
class OverlayWindow final : public QWidget {
public:
    /// `frozen` is what the display shows, dimmed, in pixels, for desktops that have no translucent windows;
    /// null where they have.
    OverlayWindow(const OverlayDocument& document, Surfaces& surfaces, QScreen& screen, const QImage& frozen,
                  SurfaceKeyboard keyboard);

    OverlayView& view() { return *m_view; }
    /// Null once the display is gone.
    const QScreen* screenOfOverlay() const { return m_screen; }

    /// Follows the display to where it is now.
    void coverScreen();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QPointer<QScreen> m_screen;
    QImage m_frozen;
    OverlayView* m_view;
};

} // namespace orvane
