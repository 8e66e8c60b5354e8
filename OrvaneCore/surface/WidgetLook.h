#pragma once

#include <QColor>

class QPainter;
class QPainterPath;
class QRectF;

/// What the bar, the palette and the bubbles of the overlay have in common, so that they look like one family
/// on every desktop, whatever its style and colours.
namespace orvane::look {

/// The height of a button, in points.
inline constexpr int buttonHeight = 28;
/// The height of the strips that hold buttons.
inline constexpr int stripHeight = 44;
/// Between the end of a strip and what it holds; the round ends of strip and buttons then have one centre.
inline constexpr int stripPadding = (stripHeight - buttonHeight) / 2;

/// A line between the parts of a strip.
inline constexpr int dividerWidth = 1;
inline constexpr int dividerHeight = 24;

inline constexpr int textPixelSize = 13;

/// The dark that everything stands on; the screen below shimmers through.
QColor ground();
/// What is switched on, or to be pressed next.
QColor accent();

// A dark plate with a light edge, which shows on dark windows as well. The painter is given back as it was.

void drawPlate(QPainter& painter, const QRectF& rect, qreal radius);
/// Of any shape.
void drawPlate(QPainter& painter, const QPainterPath& outline);

} // namespace orvane::look
