#pragma once

#include "OrvaneCore/marking/Annotation.h"

#include <QPointF>
#include <QSizeF>
#include <QUuid>

#include <optional>
#include <vector>

namespace orvane {

/// The shapes that a view shows, at one moment. Shapes are in global points, y down. Any number is allowed;
/// what is not finite is not shown.
struct AnnotationScene {
    /// The view's, in points.
    QSizeF size;
    /// The global point at the view's top-left corner.
    QPointF origin;
    std::vector<Annotation> annotations;
    std::optional<QUuid> selectedId;
    /// The shape that is being drawn.
    std::optional<Annotation> draft;
};

/// The first shape with the selected id; null for none.
const Annotation* selectedAnnotation(const AnnotationScene& scene);

} // namespace orvane
