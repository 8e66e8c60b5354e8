#include "OrvaneCore/marking/overlay/OverlayTexts.h"

#include "OrvaneCore/drawing/DrawingLimits.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

QString wholeNumber(qreal number) {
    if (!std::isfinite(number))
        return u"0"_s;
    return QString::number(qRound64(std::clamp(number, -2 * drawingLimit, 2 * drawingLimit)));
}

const QString separator = u"  •  "_s;
/// At both ends of a line.
const QString margin = u"  "_s;

/// What the pointer does with a tool for shapes; empty for that for regions.
QString shapeGesture(AnnotationTool tool) {
    switch (tool) {
    case AnnotationTool::select:
        return u"Drag a shape to move it"_s;
    case AnnotationTool::region:
        break;
    case AnnotationTool::arrow:
        return u"Drag to draw an arrow"_s;
    case AnnotationTool::box:
        return u"Drag to draw a box"_s;
    case AnnotationTool::ellipse:
        return u"Drag to draw an ellipse"_s;
    case AnnotationTool::highlight:
        return u"Drag to highlight"_s;
    case AnnotationTool::text:
        return u"Click to place a text"_s;
    case AnnotationTool::image:
        return u"Drag to place an image"_s;
    }
    return {};
}

QString shapeInstructions(const MarkupModes& modes, int markerCount, const QString& gesture, bool hasShapes) {
    QStringList parts;
    if (markerCount > 0)
        parts << (modes.ocr ? u"OCR · "_s : QString()) + QString::number(markerCount) + u" region(s)"_s;
    parts << gesture;
    if (markerCount > 0 || hasShapes)
        parts << u"Delete to undo"_s;
    if (markerCount > 0) {
        parts << u"Submit (enter)"_s;
    } else {
        if (hasShapes)
            parts << u"Mark a region to submit"_s;
        parts << u"Cancel (esc)"_s;
    }
    return margin + parts.join(separator) + margin;
}

struct Piece {
    QString text;
    qreal width;
};

/// Lines of these pieces with something between them, each as long as the width allows.
QStringList joinedUpTo(qreal width, const std::vector<Piece>& pieces, const Piece& between) {
    QStringList lines;
    qreal end = 0;
    for (const Piece& piece : pieces) {
        if (!lines.isEmpty() && end + between.width + piece.width <= width) {
            lines.back() += between.text + piece.text;
            end += between.width + piece.width;
        } else {
            lines << piece.text;
            end = piece.width;
        }
    }
    return lines;
}

} // namespace

QString overlayInstructions(const MarkupModes& modes, int markerCount, AnnotationTool tool, bool hasShapes) {
    if (const QString gesture = shapeGesture(tool); !gesture.isEmpty())
        return shapeInstructions(modes, markerCount, gesture, hasShapes);
    if (markerCount <= 0) {
        return modes.ocr ? u"  OCR: drag a region to extract text  •  Cancel (esc)  "_s
                         : u"  Drag to mark a region  •  Cancel (esc)  "_s;
    }
    const QString regions = QString::number(markerCount) + u" region(s)"_s;
    if (modes.ocr)
        return u"  OCR · "_s + regions + u"  •  Drag to add more  •  Delete to undo  •  Submit (enter)  "_s;
    return u"  "_s + regions +
           u"  •  Drag to add more  •  Edge moves · corner resizes  •  Right-click to label"
           u"  •  Delete to undo  •  Submit (enter)  "_s;
}

QStringList instructionsInLines(const QString& text, qreal width,
                                const std::function<qreal(const QString&)>& widthOf) {
    if (widthOf(text) <= width)
        return {text};
    const auto measured = [&widthOf](const QStringList& texts) {
        std::vector<Piece> pieces;
        pieces.reserve(static_cast<std::size_t>(texts.size()));
        for (const QString& piece : texts)
            pieces.push_back({piece, widthOf(piece)});
        return pieces;
    };
    const qreal room = width - 2 * widthOf(margin);
    std::vector<Piece> parts;
    for (const Piece& part : measured(text.trimmed().split(separator))) {
        const bool fits = part.width <= room;
        const Piece space{u" "_s, widthOf(u" "_s)};
        const auto lines =
            fits ? std::vector{part} : measured(joinedUpTo(room, measured(part.text.split(u' ')), space));
        parts.insert(parts.end(), lines.begin(), lines.end());
    }
    const Piece between{separator, widthOf(separator)};
    QStringList lines = joinedUpTo(room, parts, between);
    // As narrow as that number of lines can be.
    for (int narrower = static_cast<int>(std::clamp(room, 0.0, drawingLimit)); narrower > 0; --narrower) {
        const QStringList balanced = joinedUpTo(narrower, parts, between);
        if (balanced.size() > lines.size())
            break;
        lines = balanced;
    }
    for (QString& line : lines)
        line = margin + line + margin;
    return lines;
}

QString labelHintText() {
    return u" right-click to label "_s;
}

QString sizeTagText(const QSizeF& size) {
    return u' ' + wholeNumber(size.width()) + u'x' + wholeNumber(size.height()) + u' ';
}

QString dimensionText(const QSizeF& size) {
    return wholeNumber(size.width()) + u" x "_s + wholeNumber(size.height());
}

QString coordinateText(const QPointF& point) {
    return wholeNumber(point.x()) + u", "_s + wholeNumber(point.y());
}

} // namespace orvane
