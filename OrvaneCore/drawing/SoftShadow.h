#pragma once

#include <QColor>
#include <QPainterPath>
#include <QPointF>

class QPainter;

namespace orvane {

/// Draws the shadow that a filled path casts. `blur` is twice the standard deviation of the Gaussian that
/// softens it; it and `offset` are in the painter's units. Draws nothing outside what the painter shows.
void drawSoftShadow(QPainter& painter, const QPainterPath& path, const QColor& color, qreal blur,
                    const QPointF& offset);

/// How far the shadow of a path shows around it, before it is offset: in the painter's units, none of which
/// is smaller than a pixel.
qreal softShadowReach(qreal blur);

} // namespace orvane
