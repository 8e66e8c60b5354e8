#include "OrvaneCore/marking/overlay/OverlayFonts.h"

#include "OrvaneCore/marking/DrawnText.h"
#include "OrvaneCore/marking/MarkerPainter.h"
#include "OrvaneCore/marking/overlay/MonospacedText.h"

#include <QCache>

#include <memory>
#include <utility>

namespace orvane {

namespace {

struct Face {
    bool isMonospaced = false;
    int pixelSize = 0;
    QFont::Weight weight = QFont::Normal;
    /// The text is padded with spaces, which a layout would leave out at the end of a line.
    bool keepsSpaces = false;
};

Face faceOf(OverlayFont font) {
    switch (font) {
    case OverlayFont::label:
        return {.pixelSize = MarkerStyle::onOverlay.labelPixelSize,
                .weight = MarkerStyle::onOverlay.labelWeight};
    case OverlayFont::hint:
        return {.pixelSize = 11, .keepsSpaces = true};
    case OverlayFont::instructions:
        return {.pixelSize = 14, .weight = QFont::Medium, .keepsSpaces = true};
    case OverlayFont::shapeText:
        return {.pixelSize = 15, .weight = QFont::Bold};
    case OverlayFont::shapeLabel:
        return {.pixelSize = 12, .weight = QFont::DemiBold};
    case OverlayFont::sizeTag:
        return {.isMonospaced = true, .pixelSize = 10};
    case OverlayFont::plate:
        break;
    }
    return {.isMonospaced = true, .pixelSize = 11};
}

QString laidOut(const Face& face, const QString& text) {
    QString result = text;
    if (face.keepsSpaces)
        result.replace(u' ', QChar::Nbsp);
    return result;
}

QSizeF measured(OverlayFont font, const QString& text) {
    const Face face = faceOf(font);
    if (face.isMonospaced)
        return MonospacedText(text, face.pixelSize).size();
    return DrawnText(laidOut(face, text), face.pixelSize, face.weight, 1).size();
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
    const QSizeF size = measured(font, text);
    // The cache owns what it is given, and takes it at once out again when it is too large.
    auto kept = std::make_unique<QSizeF>(size);
    sizes.insert(key, kept.release(), perText + text.size());
    return size;
}

void drawOverlayText(QPainter& painter, OverlayFont font, const QString& text, const QPointF& topLeft,
                     const QColor& color) {
    const Face face = faceOf(font);
    if (face.isMonospaced)
        MonospacedText(text, face.pixelSize).draw(painter, topLeft, color);
    else
        DrawnText(laidOut(face, text), face.pixelSize, face.weight, 1).draw(painter, topLeft, color);
}

} // namespace orvane
