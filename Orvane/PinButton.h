#pragma once

#include <QPoint>
#include <QRect>
#include <QWidget>

#include <functional>
#include <optional>

namespace orvane {

class Surfaces;

/// What stands in for the status item on a desktop without a tray: a small button above the other windows,
/// near the top right corner of the primary display, that can be dragged elsewhere. It never takes the focus
/// and is in no task list. Main thread.
class PinButton : public QWidget {
public:
    static constexpr int side = 32;

    /// `pressed` is given the place, in global points, where a menu belongs.
    PinButton(Surfaces& surfaces, std::function<void(const QPoint& menuPlace)> pressed);

    void setRecording(bool isRecording);

    /// Where the button stands until it is dragged: for a display's bounds and what panels leave free of it,
    /// in global points. Pure.
    static QRect home(const QRect& bounds, const QRect& available);

    /// A place that somebody dragged the button to, moved by as little as it takes to be inside that area.
    static QRect inside(const QRect& place, const QRect& available);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void watchScreens();
    void place();

    std::function<void(const QPoint&)> m_pressed;
    bool m_isRecording = false;
    bool m_isDragging = false;
    /// Where the mouse went down, in global points, and the button's corner then.
    std::optional<QPoint> m_pressPlace;
    QPoint m_cornerAtPress;
    /// Where somebody dragged the button to.
    std::optional<QPoint> m_chosenCorner;
};

} // namespace orvane
