#pragma once

#include "OrvaneCore/drawing/ViewCoordinates.h"
#include "OrvaneCore/marking/Annotation.h"

#include <QPointF>
#include <QString>
#include <QUuid>

#include <optional>
#include <variant>

namespace orvane {

class AnnotationDocument;

/// What the left button does to shapes in one view: draws, selects, moves and reshapes them, as far as the
/// document lets them be hit and changed. It keeps what a gesture needs while it lasts; all else goes
/// straight to the document. Main thread.
///
/// Points are in view space and may lie outside the view: a drag can go on beyond it. Events at points that
/// no pointer can reach, such as those that are not finite, are ignored. A shape that goes away while it is
/// dragged is not dragged any more. What is kept here changes in the calls of the view's events only, which
/// show it when they are over.
class AnnotationGestures {
public:
    /// The view that the gestures happen in.
    class View {
    public:
        virtual ~View() = default;

        /// Lets the user write an annotation's text, or change what it says; `textClosed` takes it.
        virtual void openTextEditor(const QUuid& annotation, const QPointF& viewPoint) = 0;
        /// Closes what that has opened, if anything.
        virtual void closeTextEditor() = 0;
        /// The keys belong to the view again.
        virtual void takeKeyboard() = 0;
    };

    /// Both outlive this object.
    AnnotationGestures(AnnotationDocument& document, View& view);

    void setCoordinates(const ViewCoordinates& coordinates);

    /// A press while a gesture is going on drops that one and begins another, with the tool that is chosen
    /// then. A tool that draws nothing selects.
    void pointerPressed(const QPointF& viewPoint);
    /// Lets the user change the text that is at that place, as far as it is the topmost shape there and may
    /// be changed; false where there is none. For the second of two quick presses, which has been made.
    bool editTextAt(const QPointF& viewPoint);
    void pointerDragged(const QPointF& viewPoint);
    /// Where that is does not count: a click beside a handle would bring the handle there.
    void pointerReleased();
    /// Drops the gesture that is going on. A shape that was being dragged stays where it is.
    void cancel();

    /// However the editor was closed. An annotation without text goes.
    void textClosed(const QUuid& annotation, const QString& text);

    bool isGoingOn() const { return m_gesture.index() != 0; }
    /// The annotation that is being drawn, in global space.
    std::optional<Annotation> draft() const;

private:
    struct Move {
        QUuid id;
        QPointF anchor;
    };
    struct Reshape {
        Annotation::Handle handle;
        /// The shape when the drag began: a corner may be dragged across the opposite one and back.
        Annotation annotation;
    };
    struct Draft {
        Annotation annotation;
    };
    using Gesture = std::variant<std::monostate, Move, Reshape, Draft>;

    std::optional<Annotation::Handle> selectedHandleAt(const QPointF& point) const;
    const Annotation* annotationAt(const QPointF& point) const;
    /// The annotation where it is still there and may still be changed.
    const Annotation* changeable(const QUuid& id) const;
    void begin(const QPointF& viewPoint);

    static void drag(std::monostate, const QPointF&) {}
    void drag(Move& gesture, const QPointF& point);
    void drag(const Reshape& gesture, const QPointF& point);
    static void drag(Draft& gesture, const QPointF& point);

    AnnotationDocument& m_document;
    View& m_view;
    ViewCoordinates m_coordinates;
    Gesture m_gesture;
};

} // namespace orvane
