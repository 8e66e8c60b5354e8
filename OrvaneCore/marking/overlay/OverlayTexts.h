#pragma once

#include "OrvaneCore/marking/AnnotationTool.h"
#include "OrvaneCore/marking/submit/SubmitRequest.h"

#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <functional>

namespace orvane {

// What the overlay says. Numbers are rounded to whole ones.

/// What the human can do next, with that tool. Nothing is submitted without a region, whatever shapes there
/// are.
QString overlayInstructions(const MarkupModes& modes, int markerCount,
                            AnnotationTool tool = AnnotationTool::region, bool hasShapes = false);

/// The same in lines that are no wider than `width`, where that can be: broken between its parts, or between
/// words where a part is wider; none much shorter than the others. `widthOf` measures a line.
QStringList instructionsInLines(const QString& text, qreal width,
                                const std::function<qreal(const QString&)>& widthOf);

/// Below a region without a label.
QString labelHintText();

/// The size of a region, in points.
QString sizeTagText(const QSizeF& size);

/// The size of the region that is being dragged open, in points.
QString dimensionText(const QSizeF& size);

/// A global point.
QString coordinateText(const QPointF& point);

} // namespace orvane
