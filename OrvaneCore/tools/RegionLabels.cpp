#include "OrvaneCore/tools/RegionLabels.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawingLimits.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/PainterState.h"
#include "OrvaneCore/drawing/PointMap.h"

#include <array>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array colors{system_colors::red, system_colors::blue, system_colors::green,
                            system_colors::orange, system_colors::purple};

// Sizes in points.
constexpr qreal outlineWidth = 3;
constexpr qreal badgeDiameter = 28;
constexpr int numberPixelSize = 16;
constexpr int labelPixelSize = 14;
/// From the region's lower edge to the label's.
constexpr qreal labelDrop = 22;

void drawRegion(QPainter& painter, const QRectF& rect, const QColor& color, qsizetype number,
                const QString& label, qreal scale) {
    const PainterState state(painter);
    painter.fillRect(rect, withAlpha(color, 0.15F));
    painter.setPen(
        QPen(withAlpha(color, 0.8F), outlineWidth * scale, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect);

    // The badge straddles the corner, a third of it outside.
    const qreal diameter = badgeDiameter * scale;
    const QRectF badge(rect.topLeft() - QPointF(diameter / 3, diameter / 3), QSizeF(diameter, diameter));
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(badge);
    DrawnText(QString::number(number), numberPixelSize, QFont::Bold, scale)
        .drawCentered(painter, badge.center(), Qt::white);

    const DrawnText text(u"["_s + QString::number(number) + u"] "_s + label, labelPixelSize, QFont::Medium,
                         scale);
    const QPointF textCorner(rect.left(), rect.bottom() + labelDrop * scale - text.size().height());
    painter.fillRect(QRectF(textCorner, text.size()), withAlpha(Qt::white, 0.85F));
    text.draw(painter, textCorner, color);
}

} // namespace

QImage renderAnnotations(const QImage& window, const std::vector<LabelledRegion>& regions, int windowWidth,
                         int windowHeight) {
    QImage picture = window.convertToFormat(window.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                                     : QImage::Format_RGB32);
    const PointMap toPixels{.origin = {},
                            .scaleX = static_cast<qreal>(window.width()) / windowWidth,
                            .scaleY = static_cast<qreal>(window.height()) / windowHeight};
    const qreal scale = std::max(toPixels.scaleX, toPixels.scaleY);
    QPainter painter(&picture);
    for (std::size_t i = 0; i < regions.size(); ++i) {
        const LabelledRegion& region = regions[i];
        drawRegion(painter, drawable(toPixels(region.rect.toRectF())), QColor(colors[i % colors.size()]),
                   static_cast<qsizetype>(i) + 1, region.label, scale);
    }
    painter.end();
    return picture;
}

} // namespace orvane
