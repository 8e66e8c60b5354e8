#pragma once

#include "OrvaneCore/marking/AnnotationTool.h"

#include <QPainterPath>

namespace orvane {

/// The pictures on the palette's buttons: paths to fill, in points, around the origin, within a square of 19.
/// Pure.
QPainterPath toolGlyph(AnnotationTool tool);

/// A piece of a stroke, as wide as the stroke is drawn.
QPainterPath strokeGlyph(qreal width);

} // namespace orvane
