#pragma once

#include "OrvaneCore/marking/editing/AnnotationScene.h"

class QPainter;
class QRegion;

namespace orvane {

/// Paints the shapes of a scene: the annotations in their order, the draft, the marks of the selected one.
/// The painter counts in points of the view, of any number of pixels, and shows nothing outside `exposed`, in
/// points as well: what does not touch it may be left out. The painter is left as it was. Needs a
/// QGuiApplication; any thread.
void paintAnnotations(QPainter& painter, const AnnotationScene& scene, const QRegion& exposed);

} // namespace orvane
