#include "OrvaneCore/marking/overlay/OverlayFonts.h"

#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/marking/MarkerPainter.h"

#include <QCache>

#include <memory>
#include <utility>

namespace orvane {

namespace {

struct Face {
    QFont font;
    /// The text is padded with spaces, which a layout would leave out at the end of a line.
    bool keepsSpaces = false;
};

Face faceOf(OverlayFont font) {
    switch (font) {
    case OverlayFont::label:
        return {.font =
                    systemFont(MarkerStyle::onOverlay.labelPixelSize, MarkerStyle::onOverlay.labelWeight)};
    case OverlayFont::hint:
        return {.font = systemFont(11), .keepsSpaces = true};
    case OverlayFont::instructions:
        return {.font = systemFont(14, QFont::Medium), .keepsSpaces = true};
    case OverlayFont::shapeText:
        return {.font = systemFont(15, QFont::Bold)};
    case OverlayFont::shapeLabel:
        return {.font = systemFont(12, QFont::DemiBold)};
    case OverlayFont::sizeTag:
        return {.font = monospacedFont(10), .keepsSpaces = true};
    case OverlayFont::plate:
        break;
    }
    return {.font = monospacedFont(11), .keepsSpaces = true};
}

/// The text as it is laid out, once for measuring it and once for drawing it.
DrawnText laidOut(OverlayFont font, QString text) {
    const Face face = faceOf(font);
    if (face.keepsSpaces)
        text.replace(u' ', QChar::Nbsp);
    return {text, face.font, 1};
}

} // namespace

QSizeF overlayTextSize(OverlayFont font, const QString& text) {
    // Every move of the pointer asks where all labels are. Counted in characters, with something for a text.
    constexpr int mostCharacters = 4'000'000;
    constexpr qsizetype perText = 64;
    using Key = std::pair<int, QString>;
    thread_local QCache<Key, QSizeF> sizes(mostCharacters);

    const Key key(static_cast<int>(font), text);
    if (const QSizeF* known = sizes.object(key))
        return *known;
    const QSizeF size = laidOut(font, text).size();
    // The cache owns what it is given, and takes it at once out again when it is too large.
    auto kept = std::make_unique<QSizeF>(size);
    sizes.insert(key, kept.release(), perText + text.size());
    return size;
}

void drawOverlayText(QPainter& painter, OverlayFont font, const QString& text, const QPointF& topLeft,
                     const QColor& color) {
    laidOut(font, text).draw(painter, topLeft, color);
}

} // namespace orvane
