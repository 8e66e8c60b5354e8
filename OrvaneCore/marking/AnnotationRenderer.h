#pragma once

#include "OrvaneCore/drawing/Extent.h"
#include "OrvaneCore/drawing/PointMap.h"
#include "OrvaneCore/marking/Annotation.h"

#include <QColor>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>
#include <vector>

class QPainter;

namespace orvane {

/// How an annotation looks and how far it reaches, on every surface that shows one: views, annotated
/// pictures, crops, snapshots.
///
/// `mapPoint` takes the annotation's global points to the painter's space, y down. `scale` multiplies all
/// sizes that its two points do not give, such as widths of strokes and fonts: 1 where the painter counts in
/// points, the pixels of a point where it counts in pixels. Both are finite and positive. `display` is the
/// display that the shape belongs to, in the painter's space: the label is kept on it, and wrapped where it
/// is wider. Without one it is where the shape puts it.
///
/// Shapes whose points are not finite are not drawn and have no extent, and no other number harms: a stroke
/// is at least 1 wide, an angle that is not finite is upright. The painter is left as it was. Needs a
/// QGuiApplication; any thread.
namespace annotation_renderer {

/// The shape with its label, whether or not it is `removed`.
void draw(QPainter& painter, const Annotation& annotation, const PointMap& mapPoint, qreal scale,
          const std::optional<QRectF>& display = std::nullopt);

/// The marks of a selected annotation.
void drawSelectionHandles(QPainter& painter, const Annotation& annotation, const PointMap& mapPoint,
                          qreal scale);

/// Round dots at points that are in the painter's space already.
void drawHandleDots(QPainter& painter, const std::vector<QPointF>& points, qreal scale);

// Where each of these shows, in the painter's space. Their parts are the finer the less of the rectangle
// around a shape shows it.

/// Of an arrow only what is in `visible` or near it, which is finite. The plane is that of a highlight.
Extent extent(const Annotation& annotation, const PointMap& mapPoint, qreal scale, const QRectF& visible,
              const std::optional<QRectF>& display = std::nullopt);
Extent selectionExtent(const Annotation& annotation, const PointMap& mapPoint, qreal scale);
Extent handleDotsExtent(const std::vector<QPointF>& points, qreal scale);

/// True when both look the same wherever they are shown alike.
bool looksSame(const Annotation& left, const Annotation& right);

/// The size of a text annotation's text; that of a placeholder where it is empty.
QSizeF textSize(const Annotation& annotation, qreal scale);

/// The rectangle around all shapes that are not removed and have finite points, by their points. Nothing
/// when there are none.
std::optional<QRectF> strokesBounds(const std::vector<Annotation>& annotations);

/// The largest rectangle in the middle of `rect` with the proportions of an image. `rect` itself when
/// either has a side that is not positive.
QRectF aspectFit(const QSizeF& imageSize, const QRectF& rect);

/// True when black text is easier to read than white text on a ground of this colour.
bool prefersDarkText(const QColor& color);

} // namespace annotation_renderer

} // namespace orvane
