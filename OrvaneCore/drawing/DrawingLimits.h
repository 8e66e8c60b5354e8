#pragma once

#include "OrvaneCore/drawing/RectEdges.h"

#include <QLineF>
#include <QPointF>
#include <QRectF>

#include <algorithm>
#include <optional>

namespace orvane {

// Coordinates come from callers who may be wrong. What is not finite cannot be drawn; what is far outside
// every picture is brought nearer, because Qt's rasteriser loses its precision there, takes the longer the
// longer a line is, and nobody can see the difference.

inline constexpr qreal drawingLimit = 1e6;

/// The nearest point that is no farther than `limit` from the origin along either axis.
QPointF drawable(const QPointF& point, qreal limit = drawingLimit);

/// The same for both corners, and normalised.
QRectF drawable(const QRectF& rect);

/// The part of a line that lies in an area, in its direction. Both are finite.
std::optional<QLineF> clipped(const QLineF& line, const QRectF& area);

} // namespace orvane
