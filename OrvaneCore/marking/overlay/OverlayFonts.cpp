#include "OrvaneCore/marking/overlay/OverlayFonts.h"

#include "OrvaneCore/drawing/DrawnText.h"

namespace orvane {

namespace {

QFont faceOf(OverlayFont font) {
    switch (font) {
    case OverlayFont::hint:
        return systemFont(11);
    case OverlayFont::instructions:
        return systemFont(14, QFont::Medium);
    case OverlayFont::sizeTag:
        return monospacedFont(10);
    case OverlayFont::plate:
        break;
    }
    return monospacedFont(11);
}

/// All texts are padded with spaces, which a layout would leave out at the end of a line.
QString keepingSpaces(QString text) {
    return text.replace(u' ', QChar::Nbsp);
}

} // namespace

QSizeF overlayTextSize(OverlayFont font, const QString& text) {
    return drawnTextSize(keepingSpaces(text), faceOf(font));
}

void drawOverlayText(QPainter& painter, OverlayFont font, const QString& text, const QPointF& topLeft,
                     const QColor& color) {
    DrawnText(keepingSpaces(text), faceOf(font), 1).draw(painter, topLeft, color);
}

} // namespace orvane
