#include "OrvaneCore/recording/DiffSummaryFrame.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/recording/ChangeSentence.h"

#include <QPainter>

#include <algorithm>

namespace orvane {

namespace {

// Sizes in pixels.
constexpr qreal outlineWidth = 2;
/// Keeps the outline inside its cell.
constexpr qreal outlineInset = 1;
constexpr qreal labelInset = 2;
constexpr int labelPixelSize = 11;

void drawRegion(QPainter& painter, const RegionDiff& region, const QSizeF& cellSize) {
    const PainterState state(painter);
    const QColor red(system_colors::red);
    const QRectF cell(QPointF(cellSize.width() * region.col, cellSize.height() * region.row), cellSize);
    const double intensity = std::min(region.diffPercent / 100, 1.0);
    painter.setPen(QPen(withAlpha(red, static_cast<float>(intensity * 0.5 + 0.4)), outlineWidth,
                        Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawRect(cell.adjusted(outlineInset, outlineInset, -outlineInset, -outlineInset));

    const DrawnText label(u' ' + percentText(region.diffPercent) + u' ', labelPixelSize, QFont::Bold, 1);
    const QPointF corner = cell.topLeft() + QPointF(labelInset, labelInset);
    painter.fillRect(QRectF(corner, label.size()), withAlpha(red, 0.75F));
    label.draw(painter, corner, Qt::white);
}

} // namespace

QImage markChanges(const QImage& frame, const std::vector<RegionDiff>& changedRegions) {
    if (frame.isNull())
        return {};
    QImage picture = frame.convertToFormat(frame.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                   : QImage::Format_RGB32);
    picture.setDevicePixelRatio(1);
    const QSizeF cellSize(picture.width() * 0.125, picture.height() / 6.0);
    QPainter painter(&picture);
    for (const RegionDiff& region : changedRegions)
        drawRegion(painter, region, cellSize);
    painter.end();
    return picture;
}

} // namespace orvane
