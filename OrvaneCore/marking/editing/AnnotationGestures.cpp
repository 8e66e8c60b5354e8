#include "OrvaneCore/marking/editing/AnnotationGestures.h"

#include "OrvaneCore/marking/AnnotationDocument.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/editing/GestureTolerances.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

/// What is no longer is a click that has slipped.
constexpr qreal clickLength = 5;

qreal length(const Annotation& annotation) {
    const QPointF extent = annotation.end - annotation.start;
    return std::hypot(extent.x(), extent.y());
}

bool isAt(const Annotation& annotation, const QPointF& point) {
    // To measure a text is to lay it out, so it is not done for shapes that have none.
    const QSizeF size =
        annotation.kind == Annotation::Kind::text ? annotation_renderer::textSize(annotation, 1) : QSizeF();
    return annotation.hitTest(point, outlineTolerance, size);
}

} // namespace

AnnotationGestures::AnnotationGestures(AnnotationDocument& document, View& view)
    : m_document(document)
    , m_view(view) {}

void AnnotationGestures::setCoordinates(const ViewCoordinates& coordinates) {
    m_coordinates = coordinates;
}

void AnnotationGestures::pointerPressed(const QPointF& viewPoint) {
    if (!m_coordinates.isReachable(viewPoint))
        return;
    cancel();
    m_view.closeTextEditor();
    m_view.takeKeyboard();
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    if (const std::optional<Annotation::Handle> handle = selectedHandleAt(point)) {
        m_gesture = Reshape{.handle = *handle, .annotation = *selectedAnnotation(m_document)};
        return;
    }
    const Annotation* hit = annotationAt(point);
    if (!hit) {
        begin(viewPoint);
        return;
    }
    const QUuid id = hit->id;
    if (m_document.canChange(*hit))
        m_gesture = Move{.id = id, .anchor = point};
    m_document.setSelectedAnnotationId(id);
}

bool AnnotationGestures::editTextAt(const QPointF& viewPoint) {
    if (!m_coordinates.isReachable(viewPoint))
        return false;
    const Annotation* hit = annotationAt(m_coordinates.convertPointToScreen(viewPoint));
    // One without words is being written already.
    if (!hit || hit->kind != Annotation::Kind::text || hit->text.isEmpty() || !m_document.canChange(*hit))
        return false;
    cancel();
    // A text stands on its start.
    const QSizeF size = annotation_renderer::textSize(*hit, 1);
    const QPointF topCenter = hit->start + QPointF(size.width() / 2, -size.height());
    const QUuid id = hit->id;
    m_view.openTextEditor(id, m_coordinates.convertPointFromScreen(topCenter));
    return true;
}

void AnnotationGestures::pointerDragged(const QPointF& viewPoint) {
    if (!m_coordinates.isReachable(viewPoint))
        return;
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    std::visit([this, &point](auto& gesture) { drag(gesture, point); }, m_gesture);
}

void AnnotationGestures::pointerReleased() {
    const Gesture ended = std::exchange(m_gesture, {});
    if (const auto* drawn = std::get_if<Draft>(&ended); drawn && length(drawn->annotation) > clickLength)
        m_document.addAnnotation(drawn->annotation);
}

void AnnotationGestures::cancel() {
    m_gesture = std::monostate();
}

void AnnotationGestures::textClosed(const QUuid& id, const QString& text) {
    const Annotation* found = changeable(id);
    if (!found)
        return;
    if (text.isEmpty()) {
        m_document.removeAnnotation(id);
        return;
    }
    Annotation written = *found;
    written.text = text;
    m_document.updateAnnotation(written);
}

std::optional<Annotation> AnnotationGestures::draft() const {
    const auto* drawn = std::get_if<Draft>(&m_gesture);
    return drawn ? std::optional(drawn->annotation) : std::nullopt;
}

std::optional<Annotation::Handle> AnnotationGestures::selectedHandleAt(const QPointF& point) const {
    const Annotation* selected = selectedAnnotation(m_document);
    if (!selected || !m_document.canHit(*selected) || !m_document.canChange(*selected))
        return std::nullopt;
    return selected->handle(point, handleTolerance);
}

const Annotation* AnnotationGestures::annotationAt(const QPointF& point) const {
    const std::vector<Annotation>& annotations = m_document.annotations();
    const auto found =
        std::find_if(annotations.rbegin(), annotations.rend(), [this, &point](const Annotation& annotation) {
            return m_document.canHit(annotation) && isAt(annotation, point);
        });
    return found == annotations.rend() ? nullptr : &*found;
}

const Annotation* AnnotationGestures::changeable(const QUuid& id) const {
    const Annotation* found = findAnnotation(m_document, id);
    return found && m_document.canChange(*found) ? found : nullptr;
}

void AnnotationGestures::begin(const QPointF& viewPoint) {
    const std::optional<Annotation::Kind> kind = annotationKind(m_document.currentTool());
    if (!kind) {
        m_document.setSelectedAnnotationId(std::nullopt);
        return;
    }
    const QPointF point = m_coordinates.convertPointToScreen(viewPoint);
    const Annotation drawn{.kind = *kind,
                           .start = point,
                           .end = point,
                           .color = m_document.markupColor(),
                           .strokeWidth = m_document.markupStrokeWidth(),
                           .role = m_document.roleOfNew()};
    if (kind != Annotation::Kind::text) {
        m_gesture = Draft{drawn};
        return;
    }
    m_document.addAnnotation(drawn);
    m_view.openTextEditor(drawn.id, viewPoint);
}

// The document is changed last in each of these: those who observe it may end the gesture.

void AnnotationGestures::drag(Move& gesture, const QPointF& point) {
    const Annotation* found = changeable(gesture.id);
    if (!found)
        return;
    const Annotation moved = found->moved(point - gesture.anchor);
    gesture.anchor = point;
    m_document.updateAnnotation(moved);
}

void AnnotationGestures::drag(const Reshape& gesture, const QPointF& point) {
    if (changeable(gesture.annotation.id))
        m_document.updateAnnotation(gesture.annotation.reshaped(gesture.handle, point));
}

void AnnotationGestures::drag(Draft& gesture, const QPointF& point) {
    gesture.annotation.end = point;
}

} // namespace orvane
