#pragma once

#include <QPainterPath>
#include <QString>

class QColor;
class QPainter;
class QRectF;

namespace orvane {

/// The small pictures that the program names by symbols such as "checkmark.circle.fill": each is one path to
/// fill with one colour, on a square of `symbolSide`. Empty for a name that is not known. Pure; any thread.
QPainterPath symbolPath(const QString& name);

inline constexpr qreal symbolSide = 28;

/// Fills the symbol into a square, in the painter's units. Draws nothing for a name that is not known.
void drawSymbol(QPainter& painter, const QString& name, const QRectF& square, const QColor& color);

} // namespace orvane
