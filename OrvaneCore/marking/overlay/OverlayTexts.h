#pragma once

#include "OrvaneCore/marking/submit/SubmitRequest.h"

#include <QPointF>
#include <QSizeF>
#include <QString>

namespace orvane {

// What the overlay says. Numbers are rounded to whole ones.

/// What the human can do next.
QString overlayInstructions(const MarkupModes& modes, int markerCount);

/// Below a region without a label.
QString labelHintText();

/// The size of a region, in points.
QString sizeTagText(const QSizeF& size);

/// The size of the region that is being dragged open, in points.
QString dimensionText(const QSizeF& size);

/// A global point.
QString coordinateText(const QPointF& point);

} // namespace orvane
