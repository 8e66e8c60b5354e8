#pragma once

#include "OrvaneCore/marking/Annotation.h"

#include <QPointF>
#include <QRectF>
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
    /// All displays, in global points; where there are none the view is the only one. Texts that belong to a
    /// mark are kept on the first that it is on, so that all views show the same.
    std::vector<QRectF> displays = {};
};

/// The first shape with the selected id; null for none.
const Annotation* selectedAnnotation(const AnnotationScene& scene);

/// The display that a global point is on, in points of the view; nothing where it is on none.
std::optional<QRectF> displayInView(const AnnotationScene& scene, const QPointF& point);

} // namespace orvane
