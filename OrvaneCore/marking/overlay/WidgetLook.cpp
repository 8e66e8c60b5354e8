#include "OrvaneCore/marking/overlay/WidgetLook.h"

#include "OrvaneCore/marking/DrawingColors.h"
#include "OrvaneCore/marking/PainterState.h"

#include <QPainterPath>

namespace orvane::look {

using namespace Qt::StringLiterals;

QFont font(int pixelSize, QFont::Weight weight) {
    // With a family from the start: without one it would copy the application's font.
    QFont result(QStringList{u"sans-serif"_s});
    result.setStyleHint(QFont::SansSerif);
    result.setPixelSize(pixelSize);
    result.setWeight(weight);
    result.setHintingPreference(QFont::PreferNoHinting);
    return result;
}

QColor white(float alpha) {
    return withAlpha(Qt::white, alpha);
}

QColor ground() {
    return QColor::fromRgbF(0.12F, 0.12F, 0.12F, 0.92F);
}

QColor accent() {
    return QColor(0x2F, 0x7D, 0xF6);
}

void drawPlate(QPainter& painter, const QPainterPath& outline) {
    const PainterState state(painter);
    painter.fillPath(outline, ground());
}

} // namespace orvane::look
