#pragma once

#include "OrvaneCore/marking/Annotation.h"
#include "OrvaneCore/marking/overlay/OverlayCoordinates.h"

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QUuid>

#include <optional>
#include <variant>

namespace orvane {

class MarkerManager;

/// What the pointer does to regions in one view of the overlay: the left button draws, selects, moves and
/// reshapes them, the right one asks for their labels. It keeps what a gesture needs while it lasts; all else
/// goes straight to the document. Main thread.
///
/// Points are in view space, such as a pointer can reach, and may lie outside the view. A region that goes
/// away while it is dragged is not dragged any more.
class RegionGestures {
public:
    /// The view that the gestures happen in.
    class View {
    public:
        virtual ~View() = default;

        /// Lets the user write a marker's label; `labelSubmitted` takes it.
        virtual void openLabelEditor(const QUuid& marker, const QPointF& viewPoint) = 0;
        /// Closes whatever is being written, if anything.
        virtual void closeEditors() = 0;
        /// The keys belong to the view again.
        virtual void takeKeyboard() = 0;
    };

    /// Both outlive this object.
    RegionGestures(MarkerManager& manager, View& view);

    void setCoordinates(const OverlayCoordinates& coordinates);

    /// A press while a gesture is going on drops that one and begins another.
    void pointerPressed(const QPointF& viewPoint);
    void pointerDragged(const QPointF& viewPoint);
    /// Where that is does not count: a click beside a corner would bring the corner there.
    void pointerReleased();
    void rightPressed(const QPointF& viewPoint);
    /// Drops the gesture that is going on. A region that was being dragged stays where it is.
    void cancel();

    void labelSubmitted(const QUuid& marker, const QString& label);

    bool isGoingOn() const { return m_gesture.index() != 0; }
    /// The region that is being drawn, in view space.
    std::optional<QRectF> currentRect() const;

private:
    /// Places in view space.
    struct Draw {
        QPointF start;
        std::optional<QRectF> rect;
    };
    struct Move {
        QUuid id;
        QPointF anchor;
    };
    struct Reshape {
        QUuid id;
        Annotation::Handle handle;
        /// The region when the drag began: a corner may be dragged across the opposite one and back.
        QRectF rect;
    };
    using Gesture = std::variant<std::monostate, Draw, Move, Reshape>;

    static void drag(std::monostate, const QPointF&) {}
    void drag(Draw& gesture, const QPointF& viewPoint) const;
    void drag(Move& gesture, const QPointF& viewPoint);
    void drag(const Reshape& gesture, const QPointF& viewPoint);

    void addRegion(const QRectF& viewRect);

    MarkerManager& m_manager;
    View& m_view;
    OverlayCoordinates m_coordinates;
    Gesture m_gesture;
};

} // namespace orvane
