#include "OrvaneCore/marking/overlay/OverlayTexts.h"

#include "OrvaneCore/drawing/DrawingLimits.h"

#include <algorithm>
#include <cmath>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

QString wholeNumber(qreal number) {
    if (!std::isfinite(number))
        return u"0"_s;
    return QString::number(qRound64(std::clamp(number, -2 * drawingLimit, 2 * drawingLimit)));
}

} // namespace

QString overlayInstructions(const MarkupModes& modes, int markerCount) {
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
