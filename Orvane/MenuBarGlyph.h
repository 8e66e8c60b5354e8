#pragma once

#include <QPainterPath>

class QPainter;
class QRectF;

namespace orvane {

/// The program's own sign.
class MenuBarGlyph {
public:
    static constexpr qreal side = 18;

    /// A pin as on a map, on a square of `side`.
    static QPainterPath pin();

    /// Light with a dark rim, so that it can be seen on panels of any colour. The square is in the painter's
    /// units.
    static void drawPin(QPainter& painter, const QRectF& square);
};

} // namespace orvane
