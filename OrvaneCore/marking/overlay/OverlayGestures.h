#pragma once

#include "OrvaneCore/marking/Annotation.h"
#include "OrvaneCore/marking/Marker.h"
#include "OrvaneCore/marking/overlay/OverlayCoordinates.h"

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QUuid>

#include <optional>
#include <variant>

namespace orvane {

class MarkerManager;

/// What the pointer does in one view of the overlay. It keeps what a gesture needs while it lasts; all else
/// goes straight to the document. Main thread.
///
/// Points are in view space and may lie outside the view: a drag can go on beyond it. Events at points that
/// no pointer can reach, such as those that are not finite, are ignored. A mark that goes away while it is
/// dragged is not dragged any more. A gesture that the tool has been taken from is dropped: regions are the
/// work of one tool, annotations that of the others.
class OverlayGestures {
public:
    /// The view that the gestures happen in.
    class View {
    public:
        virtual ~View() = default;

        /// Lets the user write a marker's label; `labelSubmitted` takes it.
        virtual void openLabelEditor(const QUuid& marker, const QPointF& viewPoint) = 0;
        /// Lets the user write an annotation's text; `textClosed` takes it.
        virtual void openTextEditor(const QUuid& annotation, const QPointF& viewPoint) = 0;
        /// Closes what either of the two has opened, if any.
        virtual void closeEditors() = 0;
        virtual void closeTextEditor() = 0;
        /// The keys belong to the view again.
        virtual void takeKeyboard() = 0;
        /// What is kept here has changed, and may have to be drawn anew.
        virtual void gestureChanged() = 0;
    };

    /// Both outlive this object.
    OverlayGestures(MarkerManager& manager, View& view);

    /// Where the view lies, in global space, and the height of the primary display.
    void setFrame(const QRectF& globalFrame, qreal primaryHeight);

    /// The left button. A press while a gesture is going on drops that one and begins another.
    void pointerPressed(const QPointF& viewPoint);
    void pointerDragged(const QPointF& viewPoint);
    void pointerReleased(const QPointF& viewPoint);
    /// With no button down.
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
    std::optional<QRectF> currentRect() const;
    /// Where the pointer is, in view space; nothing when it is elsewhere.
    std::optional<QPointF> mousePosition() const { return m_mousePosition; }
    /// The annotation that is being drawn, in global space.
    std::optional<Annotation> draft() const;

private:
    /// In view space.
    struct RegionDrag {
        QPointF start;
        std::optional<QRectF> rect;
    };
    struct MarkerMove {
        QUuid id;
        QPointF anchor;
    };
    struct MarkerReshape {
        QUuid id;
        Annotation::Handle handle;
        /// As it was when the drag began: a corner may be dragged across the opposite one and back.
        QRectF rect;
    };
    struct AnnotationMove {
        QUuid id;
        QPointF anchor;
    };
    struct AnnotationReshape {
        Annotation::Handle handle;
        /// As it was when the drag began.
        Annotation annotation;
    };
    struct AnnotationDraft {
        Annotation annotation;
    };
    using Gesture = std::variant<std::monostate, RegionDrag, MarkerMove, MarkerReshape, AnnotationMove,
                                 AnnotationReshape, AnnotationDraft>;

    bool isReachable(const QPointF& viewPoint) const;
    bool isRegionTool() const;
    bool isGoingOn() const { return m_gesture.index() != 0; }
    void dropWithoutTool();

    void pressWithRegionTool(const QPointF& viewPoint);
    void pressWithMarkupTool(const QPointF& viewPoint);
    void beginAnnotation(const QPointF& viewPoint);
    const Annotation* annotation(const QUuid& id) const;
    const Annotation* selectedAnnotation() const;

    void drag(std::monostate, const QPointF& viewPoint);
    void drag(RegionDrag& gesture, const QPointF& viewPoint);
    void drag(MarkerMove& gesture, const QPointF& viewPoint);
    void drag(const MarkerReshape& gesture, const QPointF& viewPoint);
    void drag(AnnotationMove& gesture, const QPointF& viewPoint);
    void drag(const AnnotationReshape& gesture, const QPointF& viewPoint);
    void drag(AnnotationDraft& gesture, const QPointF& viewPoint);

    void addRegion(const QRectF& viewRect);

    MarkerManager& m_manager;
    View& m_view;
    OverlayCoordinates m_coordinates;
    Gesture m_gesture;
    /// The gesture has begun with the region tool.
    bool m_beganWithRegionTool = false;
    std::optional<QPointF> m_mousePosition;
};

} // namespace orvane
