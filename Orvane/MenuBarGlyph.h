#pragma once

#include <QPainterPath>

class QPainter;
class QRectF;

namespace orvane {

/// The program's own sign.
namespace menu_bar_glyph {

inline constexpr qreal side = 18;

/// A pin as on a map, on a square of `side`.
QPainterPath pin();

/// Light with a dark rim, so that it can be seen on panels of any colour. The square is in the painter's
/// units.
void drawPin(QPainter& painter, const QRectF& square);

} // namespace menu_bar_glyph

} // namespace orvane
