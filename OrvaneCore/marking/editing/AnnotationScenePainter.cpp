#include "OrvaneCore/marking/editing/AnnotationScenePainter.h"

#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/drawing/PointMap.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/editing/AnnotationBounds.h"

#include <QRegion>

namespace orvane {

void paintAnnotations(QPainter& painter, const AnnotationScene& scene, const QRegion& exposed) {
    const AnnotationBounds bounds(scene);
    const QRegion shown = exposed & bounds.view();
    const PointMap toView{.origin = scene.origin};
    const auto paint = [&](const Annotation& annotation) {
        const VisualBounds place = bounds.annotation(annotation);
        if (!place.touches(shown))
            return;
        const PainterState state(painter);
        // Whatever is written on it, it does not leave marks where nobody wipes them off.
        painter.setClipRect(place.boundingRect(), Qt::IntersectClip);
        annotation_renderer::draw(painter, annotation, toView, 1,
                                  displayInView(scene, annotation.anchorForRegion()));
    };
    for (const Annotation& annotation : scene.annotations)
        paint(annotation);
    if (scene.draft)
        paint(*scene.draft);
    if (bounds.selection().touches(shown))
        annotation_renderer::drawSelectionHandles(painter, *selectedAnnotation(scene), toView, 1);
}

} // namespace orvane
