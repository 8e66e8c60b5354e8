#pragma once

#include <QColor>
#include <QPointF>
#include <QSizeF>
#include <QString>

class QPainter;

namespace orvane {

/// The kinds of the overlay's own texts, by what they are set in.
enum class OverlayFont { hint, instructions, sizeTag, plate };

/// How large a text is drawn, in points, with all of its spaces. Sizes are remembered, so that asking for
/// the same text again costs no layout. Needs a QGuiApplication; any thread.
QSizeF overlayTextSize(OverlayFont font, const QString& text);

/// Draws a text of just that size.
void drawOverlayText(QPainter& painter, OverlayFont font, const QString& text, const QPointF& topLeft,
                     const QColor& color);

} // namespace orvane
