#include "OrvaneCore/marking/overlay/RegionGestures.h"

#include "OrvaneCore/drawing/RectEdges.h"
#include "OrvaneCore/marking/editing/GestureTolerances.h"
#include "OrvaneCore/marking/overlay/MarkerManager.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

/// What is no wider, or no higher, is a click that has slipped.
constexpr qreal clickSize = 10;

QPointF topCenter(const QRectF& rect) {
    return {rect.center().x(), rect.top()};
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

RegionGestures::RegionGestures(MarkerManager& manager, View& view)
    : m_manager(manager)
    , m_view(view) {}

void RegionGestures::setCoordinates(const OverlayCoordinates& coordinates) {
    m_coordinates = coordinates;
}

void RegionGestures::pointerPressed(const QPointF& viewPoint) {
    cancel();
    m_view.closeEditors();
    m_view.takeKeyboard();
    const QPointF point = m_coordinates.view.convertPointToScreen(viewPoint);
    const std::optional<MarkerHit> hit = markerAt(m_manager.markers(), point);
    if (!hit) {
        m_gesture = Draw{.start = m_coordinates.regionCorner(viewPoint), .rect = std::nullopt};
        m_manager.setSelectedMarkerId(std::nullopt);
        return;
    }
    if (hit->handle) {
        m_gesture = Reshape{.id = hit->id, .handle = *hit->handle, .rect = hit->rect};
    } else {
        m_gesture = Move{.id = hit->id, .anchor = point};
    }
    m_manager.setSelectedMarkerId(hit->id);
}

void RegionGestures::pointerDragged(const QPointF& viewPoint) {
    std::visit([this, &viewPoint](auto& gesture) { drag(gesture, viewPoint); }, m_gesture);
}

void RegionGestures::pointerReleased() {
    const Gesture ended = std::exchange(m_gesture, {});
    if (const auto* drawn = std::get_if<Draw>(&ended); drawn && drawn->rect)
        addRegion(*drawn->rect);
}

void RegionGestures::rightPressed(const QPointF& viewPoint) {
    const QPointF point = m_coordinates.view.convertPointToScreen(viewPoint);
    const std::vector<Marker>& markers = m_manager.markers();
    const auto found = std::find_if(markers.rbegin(), markers.rend(), [&point](const Marker& marker) {
        return RectEdges::between(marker.rect.topLeft(), marker.rect.bottomRight()).contains(point, 0);
    });
    if (found == markers.rend())
        return;
    const QUuid id = found->id;
    const QPointF place = topCenter(m_coordinates.view.convertFromScreen(found->rect));
    m_view.closeEditors();
    m_view.openLabelEditor(id, place);
}

void RegionGestures::cancel() {
    m_gesture = std::monostate();
}

void RegionGestures::labelSubmitted(const QUuid& marker, const QString& label) {
    m_manager.updateLabel(marker, label);
}

std::optional<QRectF> RegionGestures::currentRect() const {
    const auto* drawn = std::get_if<Draw>(&m_gesture);
    return drawn ? drawn->rect : std::nullopt;
}

void RegionGestures::drag(Draw& gesture, const QPointF& viewPoint) const {
    gesture.rect = RectEdges::between(gesture.start, m_coordinates.regionCorner(viewPoint)).toRect();
}

// The document is changed last in each of these: those who observe it may end the gesture.

void RegionGestures::drag(Move& gesture, const QPointF& viewPoint) {
    const std::vector<Marker>& markers = m_manager.markers();
    const auto found = std::find_if(markers.begin(), markers.end(),
                                    [&gesture](const Marker& marker) { return marker.id == gesture.id; });
    if (found == markers.end())
        return;
    const QPointF point = m_coordinates.view.convertPointToScreen(viewPoint);
    const QRectF moved = found->rect.translated(point - gesture.anchor);
    gesture.anchor = point;
    m_manager.updateRect(gesture.id, moved);
}

void RegionGestures::drag(const Reshape& gesture, const QPointF& viewPoint) {
    const QPointF point = m_coordinates.view.convertPointToScreen(m_coordinates.regionCorner(viewPoint));
    m_manager.updateRect(gesture.id, Marker::reshapedRect(gesture.rect, gesture.handle, point));
}

void RegionGestures::addRegion(const QRectF& viewRect) {
    if (!(viewRect.width() > clickSize && viewRect.height() > clickSize))
        return;
    const Marker added = m_manager.add(m_coordinates.convertToScreen(viewRect), QString());
    if (!m_manager.modes().ocr)
        m_view.openLabelEditor(added.id, topCenter(viewRect));
}

} // namespace orvane
