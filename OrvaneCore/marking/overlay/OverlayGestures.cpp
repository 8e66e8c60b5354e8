#include "OrvaneCore/marking/overlay/OverlayGestures.h"

#include "OrvaneCore/marking/overlay/MarkerManager.h"

namespace orvane {

OverlayGestures::OverlayGestures(MarkerManager& manager, View& view)
    : m_manager(manager)
    , m_regions(manager, view)
    , m_annotations(manager, view) {}

void OverlayGestures::setFrame(const QRectF& globalFrame, qreal primaryHeight, qreal pixelSide) {
    m_coordinates = {.frame = globalFrame};
    m_regions.setCoordinates({.view = m_coordinates, .primaryHeight = primaryHeight, .pixelSide = pixelSide});
    m_annotations.setCoordinates(m_coordinates);
}

void OverlayGestures::pointerPressed(const QPointF& viewPoint) {
    if (!m_coordinates.isReachable(viewPoint))
        return;
    m_mousePosition = viewPoint;
    cancel();
    m_beganWithRegionTool = isRegionTool();
    if (m_beganWithRegionTool) {
        m_regions.pointerPressed(viewPoint);
    } else {
        m_annotations.pointerPressed(viewPoint);
    }
}

void OverlayGestures::pointerDoublePressed(const QPointF& viewPoint) {
    pointerPressed(viewPoint);
    // A region that was hit comes first.
    const bool hasHitRegion = m_beganWithRegionTool && m_manager.selectedMarkerId();
    if (m_coordinates.isReachable(viewPoint) && !hasHitRegion && m_annotations.editTextAt(viewPoint))
        cancel();
}

void OverlayGestures::pointerDragged(const QPointF& viewPoint) {
    if (!m_coordinates.isReachable(viewPoint))
        return;
    m_mousePosition = viewPoint;
    dropWithoutTool();
    if (m_beganWithRegionTool) {
        m_regions.pointerDragged(viewPoint);
    } else {
        m_annotations.pointerDragged(viewPoint);
    }
}

void OverlayGestures::pointerReleased(const QPointF& viewPoint) {
    if (m_coordinates.isReachable(viewPoint))
        m_mousePosition = viewPoint;
    dropWithoutTool();
    if (m_beganWithRegionTool) {
        m_regions.pointerReleased();
    } else {
        m_annotations.pointerReleased();
    }
}

void OverlayGestures::pointerMoved(const QPointF& viewPoint) {
    if (m_coordinates.isReachable(viewPoint))
        m_mousePosition = viewPoint;
}

void OverlayGestures::pointerLeft() {
    m_mousePosition.reset();
}

void OverlayGestures::rightPressed(const QPointF& viewPoint) {
    const bool isGoingOn = m_regions.isGoingOn() || m_annotations.isGoingOn();
    if (!isGoingOn && m_coordinates.isReachable(viewPoint))
        m_regions.rightPressed(viewPoint);
}

void OverlayGestures::cancel() {
    m_regions.cancel();
    m_annotations.cancel();
}

void OverlayGestures::labelSubmitted(const QUuid& marker, const QString& label) {
    m_regions.labelSubmitted(marker, label);
}

void OverlayGestures::textClosed(const QUuid& annotation, const QString& text) {
    m_annotations.textClosed(annotation, text);
}

bool OverlayGestures::isRegionTool() const {
    return m_manager.currentTool() == AnnotationTool::region;
}

void OverlayGestures::dropWithoutTool() {
    if (m_beganWithRegionTool != isRegionTool())
        cancel();
}

} // namespace orvane
