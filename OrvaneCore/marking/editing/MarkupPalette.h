#pragma once

#include "OrvaneCore/marking/MarkupStateStore.h"

#include <QPoint>
#include <QString>
#include <QWidget>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace orvane {

class FirstMouseButton;

/// A strip with a button for each drawing tool, colour and stroke width. It shows what the store says, which
/// it follows by itself, and changes the store. A colour or a width goes to the selected annotation as well,
/// where that may be changed. The mouse over it does not reach the widget below. Main thread.
class MarkupPalette : public QWidget {
public:
    /// The store outlives the palette. The tools stand in the given order; the texts name them to who points
    /// at them and to assistive technology.
    MarkupPalette(MarkupStateStore& store, const std::vector<std::pair<AnnotationTool, QString>>& tools,
                  QWidget* parent);

    /// Called after each click on a button, when the store has been changed.
    void setOnChange(std::function<void()> onChange);

    /// Whether the mouse moves the strip by its free places. A part of it always stays inside the parent.
    void setDraggable(bool draggable);

    /// Shows the state of the store on the buttons.
    void refresh();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    template <typename Value>
    using Buttons = std::vector<std::pair<Value, FirstMouseButton*>>;

    FirstMouseButton* addButton(const QString& title, const std::function<void()>& act);
    void applyToSelection(const std::function<void(Annotation&)>& change);
    void arrange();

    MarkupStateStore& m_store;
    std::function<void()> m_onChange;
    bool m_isDraggable = false;
    Buttons<AnnotationTool> m_toolButtons;
    Buttons<QRgb> m_colorButtons;
    Buttons<qreal> m_strokeButtons;
    /// Between the groups of buttons.
    std::vector<QRect> m_dividers;
    /// Where the mouse went down, in the window, and where the strip was then, in its parent.
    std::optional<QPointF> m_dragStartInWindow;
    QPoint m_originAtDragStart;
    Observers::Subscription m_subscription;
};

} // namespace orvane
