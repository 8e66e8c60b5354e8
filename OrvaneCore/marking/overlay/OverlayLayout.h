#pragma once

#include "OrvaneCore/marking/MarkerPainter.h"

#include <QPointF>
#include <QRectF>
#include <QRgb>
#include <QSizeF>
#include <QString>

#include <vector>

namespace orvane {

/// Where the overlay's texts lie. All rectangles are in points of the view, y down; regions are finite and
/// normalised. Plates begin and end at whole points where what they belong to does, so that they are crisp.
/// Needs a QGuiApplication; any thread.
namespace overlay_layout {

/// Of a region that is being dragged open.
inline constexpr QRgb currentRectColor = 0xFFFFCC00;
/// The width of the outline around it; half of it is outside.
inline constexpr qreal currentRectOutline = 2;
inline constexpr qreal crosshairWidth = 0.5;

/// The plate of the hint: in the label's place, which is empty then, and on the marker's display like a
/// label.
QRectF hint(const MarkerLayout& marker);

/// The plate of a region's size: above its top right corner. It never gets in the way of the badge, to
/// the right of which it stays, nor of the label, which is below the region. Where there is no room
/// above it is inside the region's top right corner, and right of regions that are too low for it. On the
/// marker's display it stays wherever that has room for it.
QRectF sizeTag(const MarkerLayout& marker, const QSizeF& view);

/// The plate of the size of a region that is being dragged open: above its top left corner, so that it is
/// not below the pointer's coordinates, or inside where there is no room above.
QRectF dimensionLabel(const QRectF& region, const QSizeF& view);

/// The plate of the pointer's coordinates: to the right of the pointer and below it, on the other side
/// where there is no room, and always inside the view.
QRectF coordinatePlate(const QPointF& pointer, const QString& text, const QSizeF& view);

struct Instructions {
    struct Line {
        QString text;
        QRectF place;
    };

    QRectF pill;
    std::vector<Line> lines;
};

/// The instructions and the pill around them: centred, the lower edge of the text 56 below the top of the
/// view. Where the view is too narrow for them they take several lines, and reach lower once there are too
/// many for the room above that edge.
Instructions instructions(const QString& text, const QSizeF& view);

} // namespace overlay_layout

} // namespace orvane
