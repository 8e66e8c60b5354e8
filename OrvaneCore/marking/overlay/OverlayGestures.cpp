#include "OrvaneCore/marking/overlay/OverlayGestures.h"

#include "OrvaneCore/drawing/DrawingLimits.h"
#include "OrvaneCore/drawing/RectEdges.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/overlay/MarkerManager.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

constexpr qreal handleTolerance = 12;
constexpr qreal outlineTolerance = 8;
/// What is no longer, or narrower, is a click that has slipped.
constexpr qreal clickSize = 10;
constexpr qreal clickLength = 5;

QPointF topCenter(const QRectF& rect) {
    return {rect.center().x(), rect.top()};
}

qreal length(const Annotation& annotation) {
    const QPointF extent = annotation.end - annotation.start;
    return std::hypot(extent.x(), extent.y());
}

bool isHit(const Annotation& annotation, const QPointF& point) {
    // To measure a text is to lay it out, so it is not done for shapes that have none.
    const QSizeF size =
        annotation.kind == Annotation::Kind::text ? AnnotationRenderer::textSize(annotation, 1) : QSizeF();
    return annotation.hitTest(point, outlineTolerance, size);
}

struct MarkerHit {
    QUuid id;
    QRectF rect;
    /// Nothing where the outline was hit.
    std::optional<Annotation::Handle> handle;
};

/// Corners come before outlines, newer markers before older ones. What is inside is not hit, so that a region
/// can be drawn within another.
std::optional<MarkerHit> markerAt(const std::vector<Marker>& markers, const QPointF& point) {
    const auto hit = [](const Marker& marker, std::optional<Annotation::Handle> handle) {
        return MarkerHit{.id = marker.id, .rect = marker.rect, .handle = handle};
    };
    const auto cornerAt = [&point](const Marker& marker) {
        return marker.cornerHandle(point, handleTolerance);
    };
    const auto withCorner = std::find_if(markers.rbegin(), markers.rend(), [&cornerAt](const Marker& marker) {
        return cornerAt(marker).has_value();
    });
    if (withCorner != markers.rend())
        return hit(*withCorner, cornerAt(*withCorner));
    const auto withBorder = std::find_if(markers.rbegin(), markers.rend(), [&point](const Marker& marker) {
        return marker.isOnBorder(point, outlineTolerance);
    });
    return withBorder == markers.rend() ? std::nullopt : std::optional(hit(*withBorder, std::nullopt));
}

} // namespace

OverlayGestures::OverlayGestures(MarkerManager& manager, View& view)
    : m_manager(manager)
    , m_view(view) {}

void OverlayGestures::setFrame(const QRectF& globalFrame, qreal primaryHeight) {
    m_coordinates = {.frame = globalFrame, .primaryHeight = primaryHeight};
}

void OverlayGestures::pointerPressed(const QPointF& viewPoint) {
    if (!isReachable(viewPoint))
        return;
    m_mousePosition = viewPoint;
    m_gesture = std::monostate();
    m_beganWithRegionTool = isRegionTool();
    if (m_beganWithRegionTool)
        pressWithRegionTool(viewPoint);
    else
        pressWithMarkupTool(viewPoint);
    m_view.gestureChanged();
}

void OverlayGestures::pointerDragged(const QPointF& viewPoint) {
    if (!isReachable(viewPoint))
        return;
    m_mousePosition = viewPoint;
    dropWithoutTool();
    std::visit([this, &viewPoint](auto& gesture) { drag(gesture, viewPoint); }, m_gesture);
    m_view.gestureChanged();
}

void OverlayGestures::pointerReleased(const QPointF& viewPoint) {
    // Where the button goes up drags nothing: a click beside a corner would bring the corner there.
    if (isReachable(viewPoint))
        m_mousePosition = viewPoint;
    dropWithoutTool();
    const Gesture ended = std::exchange(m_gesture, {});
    if (const auto* region = std::get_if<RegionDrag>(&ended); region && region->rect)
        addRegion(*region->rect);
    else if (const auto* drawn = std::get_if<AnnotationDraft>(&ended);
             drawn && length(drawn->annotation) > clickLength)
        m_manager.addAnnotation(drawn->annotation);
    m_view.gestureChanged();
}

void OverlayGestures::pointerMoved(const QPointF& viewPoint) {
    if (!isReachable(viewPoint))
        return;
    m_mousePosition = viewPoint;
    m_view.gestureChanged();
}

void OverlayGestures::pointerLeft() {
    m_mousePosition.reset();
    m_view.gestureChanged();
}

void OverlayGestures::rightPressed(const QPointF& viewPoint) {
    if (isGoingOn() || !isReachable(viewPoint))
        return;
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    const std::vector<Marker>& markers = m_manager.markers();
    const auto found = std::find_if(markers.rbegin(), markers.rend(), [&point](const Marker& marker) {
        return RectEdges::between(marker.rect.topLeft(), marker.rect.bottomRight()).contains(point, 0);
    });
    if (found == markers.rend())
        return;
    const QUuid id = found->id;
    const QPointF place = topCenter(m_coordinates.convertFromScreen(found->rect));
    m_view.closeEditors();
    m_view.openLabelEditor(id, place);
}

void OverlayGestures::cancel() {
    m_gesture = std::monostate();
    m_view.gestureChanged();
}

void OverlayGestures::labelSubmitted(const QUuid& marker, const QString& label) {
    m_manager.updateLabel(marker, label);
}

void OverlayGestures::textClosed(const QUuid& id, const QString& text) {
    if (text.isEmpty()) {
        m_manager.removeAnnotation(id);
        return;
    }
    const Annotation* found = annotation(id);
    if (!found)
        return;
    Annotation written = *found;
    written.text = text;
    m_manager.updateAnnotation(written);
}

std::optional<QRectF> OverlayGestures::currentRect() const {
    const auto* region = std::get_if<RegionDrag>(&m_gesture);
    return region ? region->rect : std::nullopt;
}

std::optional<Annotation> OverlayGestures::draft() const {
    const auto* drawn = std::get_if<AnnotationDraft>(&m_gesture);
    return drawn ? std::optional(drawn->annotation) : std::nullopt;
}

bool OverlayGestures::isReachable(const QPointF& viewPoint) const {
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    return std::abs(point.x()) <= drawingLimit && std::abs(point.y()) <= drawingLimit;
}

bool OverlayGestures::isRegionTool() const {
    return m_manager.currentTool() == AnnotationTool::region;
}

void OverlayGestures::dropWithoutTool() {
    if (m_beganWithRegionTool != isRegionTool())
        m_gesture = std::monostate();
}

void OverlayGestures::pressWithRegionTool(const QPointF& viewPoint) {
    m_view.closeEditors();
    m_view.takeKeyboard();
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    const std::optional<MarkerHit> hit = markerAt(m_manager.markers(), point);
    if (!hit) {
        m_gesture = RegionDrag{.start = viewPoint, .rect = std::nullopt};
        m_manager.setSelectedMarkerId(std::nullopt);
        return;
    }
    if (hit->handle)
        m_gesture = MarkerReshape{.id = hit->id, .handle = *hit->handle, .rect = hit->rect};
    else
        m_gesture = MarkerMove{.id = hit->id, .anchor = point};
    m_manager.setSelectedMarkerId(hit->id);
}

void OverlayGestures::pressWithMarkupTool(const QPointF& viewPoint) {
    m_view.closeTextEditor();
    m_view.takeKeyboard();
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    if (const Annotation* selected = selectedAnnotation()) {
        if (const std::optional<Annotation::Handle> handle = selected->handle(point, handleTolerance)) {
            m_gesture = AnnotationReshape{.handle = *handle, .annotation = *selected};
            return;
        }
    }
    const std::vector<Annotation>& annotations = m_manager.annotations();
    const auto found =
        std::find_if(annotations.rbegin(), annotations.rend(),
                     [&point](const Annotation& annotation) { return isHit(annotation, point); });
    if (found != annotations.rend()) {
        const QUuid id = found->id;
        m_gesture = AnnotationMove{.id = id, .anchor = point};
        m_manager.setSelectedAnnotationId(id);
        return;
    }
    beginAnnotation(viewPoint);
}

void OverlayGestures::beginAnnotation(const QPointF& viewPoint) {
    const std::optional<Annotation::Kind> kind = annotationKind(m_manager.currentTool());
    if (!kind) {
        m_manager.setSelectedAnnotationId(std::nullopt);
        return;
    }
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    const Annotation drawn{.kind = *kind,
                           .start = point,
                           .end = point,
                           .color = m_manager.markupColor(),
                           .strokeWidth = m_manager.markupStrokeWidth(),
                           .role = Annotation::Role::human};
    if (kind != Annotation::Kind::text) {
        m_gesture = AnnotationDraft{drawn};
        return;
    }
    m_manager.addAnnotation(drawn);
    m_view.openTextEditor(drawn.id, viewPoint);
}

void OverlayGestures::drag(std::monostate, const QPointF&) {}

void OverlayGestures::drag(RegionDrag& gesture, const QPointF& viewPoint) {
    gesture.rect = RectEdges::between(gesture.start, viewPoint).toRect();
}

// The document is changed last in each of these: those who observe it may end the gesture.

void OverlayGestures::drag(MarkerMove& gesture, const QPointF& viewPoint) {
    const std::vector<Marker>& markers = m_manager.markers();
    const auto found = std::find_if(markers.begin(), markers.end(),
                                    [&gesture](const Marker& marker) { return marker.id == gesture.id; });
    if (found == markers.end())
        return;
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    const QRectF moved = found->rect.translated(point - gesture.anchor);
    gesture.anchor = point;
    m_manager.updateRect(gesture.id, moved);
}

void OverlayGestures::drag(const MarkerReshape& gesture, const QPointF& viewPoint) {
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    m_manager.updateRect(gesture.id, Marker::reshapedRect(gesture.rect, gesture.handle, point));
}

void OverlayGestures::drag(AnnotationMove& gesture, const QPointF& viewPoint) {
    const Annotation* found = annotation(gesture.id);
    if (!found)
        return;
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    const Annotation moved = found->moved(point - gesture.anchor);
    gesture.anchor = point;
    m_manager.updateAnnotation(moved);
}

void OverlayGestures::drag(const AnnotationReshape& gesture, const QPointF& viewPoint) {
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    m_manager.updateAnnotation(gesture.annotation.reshaped(gesture.handle, point));
}

void OverlayGestures::drag(AnnotationDraft& gesture, const QPointF& viewPoint) {
    gesture.annotation.end = m_coordinates.convertPointToScreen(viewPoint);
}

void OverlayGestures::addRegion(const QRectF& viewRect) {
    if (!(viewRect.width() > clickSize && viewRect.height() > clickSize))
        return;
    const Marker added = m_manager.add(m_coordinates.convertToScreen(viewRect), QString());
    if (!m_manager.modes().ocr)
        m_view.openLabelEditor(added.id, topCenter(viewRect));
}

const Annotation* OverlayGestures::annotation(const QUuid& id) const {
    const std::vector<Annotation>& annotations = m_manager.annotations();
    const auto found = std::find_if(annotations.begin(), annotations.end(),
                                    [&id](const Annotation& candidate) { return candidate.id == id; });
    return found == annotations.end() ? nullptr : &*found;
}

const Annotation* OverlayGestures::selectedAnnotation() const {
    const std::optional<QUuid> id = m_manager.selectedAnnotationId();
    return id ? annotation(*id) : nullptr;
}

} // namespace orvane
