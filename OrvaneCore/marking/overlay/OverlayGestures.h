#pragma once

#include "OrvaneCore/marking/editing/AnnotationGestures.h"
#include "OrvaneCore/marking/overlay/RegionGestures.h"

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QUuid>

#include <optional>

namespace orvane {

class MarkerManager;

/// What the pointer does in one view of the overlay: regions are the work of one tool, annotations that of
/// the others, and a gesture that its tool has been taken from is dropped. Main thread.
///
/// Points are in view space and may lie outside the view: a drag can go on beyond it. Events at points that
/// no pointer can reach, such as those that are not finite, are ignored. What is kept here changes in the
/// calls of the view's events only, which show it when they are over.
class OverlayGestures {
public:
    /// The view that the gestures happen in.
    class View : public RegionGestures::View, public AnnotationGestures::View {
    public:
        void takeKeyboard() override = 0;
    };

    /// Both outlive this object.
    OverlayGestures(MarkerManager& manager, View& view);

    /// Where the view lies, in global space, the height of the primary display, and the side of a pixel of
    /// the view's display.
    void setFrame(const QRectF& globalFrame, qreal primaryHeight, qreal pixelSide = 1);

    /// The left button. A press while a gesture is going on drops that one and begins another.
    void pointerPressed(const QPointF& viewPoint);
    /// The second press of two quick ones at a place: a press like any other, but opens the editor of a text.
    void pointerDoublePressed(const QPointF& viewPoint);
    void pointerDragged(const QPointF& viewPoint);
    void pointerReleased(const QPointF& viewPoint);
    /// A move with no button down.
    void pointerMoved(const QPointF& viewPoint);
    void pointerLeft();
    /// The right button. It does nothing while a gesture of the left one is going on.
    void rightPressed(const QPointF& viewPoint);
    /// Drops the gesture that is going on, such as when the pointer was taken away. A mark that was being
    /// dragged stays where it is.
    void cancel();

    void labelSubmitted(const QUuid& marker, const QString& label);
    /// However the editor was closed. An annotation without text goes.
    void textClosed(const QUuid& annotation, const QString& text);

    /// The region that is being drawn, in view space.
    std::optional<QRectF> currentRect() const { return m_regions.currentRect(); }
    /// Where the pointer is, in view space; nothing when it is elsewhere.
    std::optional<QPointF> mousePosition() const { return m_mousePosition; }
    /// The annotation that is being drawn, in global space.
    std::optional<Annotation> draft() const { return m_annotations.draft(); }

private:
    bool isRegionTool() const;
    void dropWithoutTool();

    const MarkerManager& m_manager;
    ViewCoordinates m_coordinates;
    RegionGestures m_regions;
    AnnotationGestures m_annotations;
    /// The gesture has begun with the region tool.
    bool m_beganWithRegionTool = false;
    std::optional<QPointF> m_mousePosition;
};

} // namespace orvane
