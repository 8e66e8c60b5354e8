#include "OrvaneCore/marking/editing/AnnotationScene.h"

#include "OrvaneCore/drawing/DrawingLimits.h"

#include <algorithm>

namespace orvane {

const Annotation* selectedAnnotation(const AnnotationScene& scene) {
    if (!scene.selectedId)
        return nullptr;
    const auto found =
        std::find_if(scene.annotations.begin(), scene.annotations.end(),
                     [&scene](const Annotation& annotation) { return annotation.id == *scene.selectedId; });
    return found == scene.annotations.end() ? nullptr : &*found;
}

std::optional<QRectF> displayInView(const AnnotationScene& scene, const QPointF& point) {
    const auto isOn = [&point](const QRectF& display) {
        return RectEdges::between(display.topLeft(), display.bottomRight()).contains(point, 0);
    };
    const QRectF view(scene.origin, scene.size);
    const auto found = std::find_if(scene.displays.begin(), scene.displays.end(), isOn);
    const QRectF display = found == scene.displays.end() ? view : *found;
    const bool isOnNone = scene.displays.empty() ? !isOn(view) : found == scene.displays.end();
    const QRectF inView = display.translated(-scene.origin);
    return isOnNone || !isFinite(inView) ? std::nullopt : std::optional(drawable(inView));
}

} // namespace orvane
