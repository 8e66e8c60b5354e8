#include "OrvaneCore/marking/editing/AnnotationBounds.h"

#include "OrvaneCore/drawing/PointMap.h"
#include "OrvaneCore/drawing/RectEdges.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"

namespace orvane {

AnnotationBounds::AnnotationBounds(const AnnotationScene& scene)
    : m_scene(scene)
    , m_view(pointsOfView(scene.size)) {}

VisualBounds AnnotationBounds::annotation(const Annotation& annotation) const {
    if (!isFinite(m_scene.origin))
        return {};
    const PointMap toView{.origin = m_scene.origin};
    const std::optional<QRectF> display = displayInView(m_scene, annotation.anchorForRegion());
    return VisualBounds::of(annotation_renderer::extent(annotation, toView, 1, m_view, display), m_view);
}

VisualBounds AnnotationBounds::draft() const {
    return m_scene.draft ? annotation(*m_scene.draft) : VisualBounds();
}

VisualBounds AnnotationBounds::selection() const {
    const Annotation* annotation = selectedAnnotation(m_scene);
    if (annotation == nullptr || !isFinite(m_scene.origin))
        return {};
    const PointMap toView{.origin = m_scene.origin};
    return VisualBounds::of(annotation_renderer::selectionExtent(*annotation, toView, 1), m_view);
}

} // namespace orvane
