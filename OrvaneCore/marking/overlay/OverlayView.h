#pragma once

#include "OrvaneCore/base/Observers.h"
#include "OrvaneCore/marking/editing/AnnotationTextEditor.h"
#include "OrvaneCore/marking/editing/EventRefresh.h"
#include "OrvaneCore/marking/overlay/OverlayGestures.h"
#include "OrvaneCore/marking/overlay/OverlayScene.h"

#include <QIcon>
#include <QUuid>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace orvane {

class DesktopKeyboard;
class MarkerManager;
class MarkerPopover;
class MarkupPalette;
class OverlayBar;
class OverlayCommands;
struct SendTarget;

/// What every view of the overlay works on. All of it outlives the views.
struct OverlayDocument {
    MarkerManager& manager;
    OverlayCommands& commands;
    DesktopKeyboard& keyboard;
    std::function<QIcon(const SendTarget&)> targetIcon;
    /// All displays, in global points; may be empty where there is but the view's.
    std::function<std::vector<QRectF>()> displays = {};
};

/// The overlay on one display: hands events to the rules, shows what the marks look like, and holds the
/// editors, the bar and the palette. Main thread.
class OverlayView : public QWidget, private OverlayGestures::View {
public:
    OverlayView(const OverlayDocument& document, QWidget* parent);
    ~OverlayView() override;

    /// Where the view is, in global points, how high the primary display is, and how large a pixel of the
    /// view's display.
    void setFrame(const QRect& globalFrame, qreal primaryHeight, qreal pixelSide = 1);

    bool eventFilter(QObject* watched, QEvent* event) override;

    /// Ends what is being typed; it is kept.
    void closeEditors() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;

    /// All that is to be shown now.
    virtual OverlayScene scene() const;

private:
    struct DeleteLater {
        void operator()(QObject* object) const { object->deleteLater(); }
    };
    using LabelEditor = std::unique_ptr<MarkerPopover, DeleteLater>;

    void openLabelEditor(const QUuid& marker, const QPointF& viewPoint) override;
    void openTextEditor(const QUuid& annotation, const QPointF& viewPoint) override;
    void closeTextEditor() override;
    void takeKeyboard() override;

    /// Repaints what differs from what is shown.
    void refresh();
    void placeControls();
    /// Where the pointer is in the view.
    QPointF placeOf(const QMouseEvent& event) const;
    std::optional<int> keyCode(const QKeyEvent& event) const;

    OverlayDocument m_document;
    OverlayGestures m_gestures;
    QRect m_frame;
    OverlayScene m_shown;
    EventRefresh m_refresh;
    OverlayBar* m_bar;
    MarkupPalette* m_palette;
    LabelEditor m_labelEditor;
    QUuid m_labelledMarker;
    AnnotationTextEditor m_textEditor;
    Observers::Subscription m_subscription;
};

} // namespace orvane
