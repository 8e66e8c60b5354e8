#include "OrvaneCore/marking/overlay/OverlayLayout.h"

#include "OrvaneCore/drawing/RectEdges.h"
#include "OrvaneCore/marking/overlay/OverlayFonts.h"
#include "OrvaneCore/marking/overlay/OverlayTexts.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane {

namespace {

constexpr QSizeF hintPadding(2, 6);
constexpr QSizeF tagPadding(0, 2);
constexpr qreal tagGap = 4;
constexpr QSizeF platePadding(12, 6);
constexpr qreal plateGap = 6;
constexpr qreal viewMargin = 4;
constexpr QPointF fromPointer(14, 14);
constexpr qreal instructionsBottom = 56;
constexpr QSizeF pillPadding(12, 6);

/// A text with its padding, in whole points.
QSizeF plateSize(OverlayFont font, const QString& text, const QSizeF& padding) {
    const QSizeF size = overlayTextSize(font, text) + padding;
    return {std::ceil(size.width()), std::ceil(size.height())};
}

/// Beside a pointer along one axis: after it, before it, or as near as the view allows.
qreal beside(qreal pointer, qreal distance, qreal length, qreal viewLength) {
    const qreal last = std::max(0.0, viewLength - viewMargin - length);
    const qreal after = pointer + distance;
    const qreal before = pointer - distance - length;
    const qreal place = after > last && before >= viewMargin ? before : after;
    return std::floor(std::clamp(place, std::min(viewMargin, last), last));
}

/// Of the plate of a region's size, as if there were nothing but the region.
QPointF usualTagPlace(const MarkerLayout& marker, const QSizeF& size, const QRectF& display) {
    const QRectF& region = marker.region;
    const qreal beyondBadge = region.left() + (marker.badgeRing.outer().width() / 2 + tagGap);
    const qreal above = region.top() - tagGap - size.height();
    if (above >= display.top()) {
        const qreal right = std::min(region.right(), display.right() - viewMargin);
        return {std::max(right - size.width(), beyondBadge), above};
    }
    const qreal inside = std::max(region.top(), display.top()) + tagGap;
    const qreal right = std::min(region.right(), display.right()) - tagGap;
    const bool fits =
        inside + size.height() + tagGap <= region.bottom() && right - size.width() >= beyondBadge;
    if (fits)
        return {right - size.width(), inside};
    const qreal aboveLabel = marker.belowRegion.y() - tagPadding.height() - size.height();
    const qreal top = std::min(std::max(region.top(), display.top()), aboveLabel);
    return {std::max(region.right() + tagGap, beyondBadge), top};
}

} // namespace

QRectF overlay_layout::hint(const MarkerLayout& marker) {
    const QSizeF size = plateSize(OverlayFont::hint, labelHintText(), hintPadding);
    return {marker.labelPlace(size), size};
}

QRectF overlay_layout::sizeTag(const MarkerLayout& marker, const QSizeF& view) {
    const QSizeF size = plateSize(OverlayFont::sizeTag, sizeTagText(marker.region.size()), tagPadding);
    const QRectF usual(usualTagPlace(marker, size, marker.display.value_or(QRectF({0, 0}, view))), size);
    if (!marker.display)
        return usual;
    const QRectF ring = marker.badgeRing.outer();
    const QRectF label = marker.label ? marker.label->capsule : hint(marker);
    const std::array places{
        usual,
        movedInto(usual, *marker.display),
        // Beside the badge and beside the label, where these have been moved away from an edge.
        movedInto({{ring.right() + tagGap, ring.top()}, size}, *marker.display),
        movedInto({{ring.left() - tagGap - size.width(), ring.top()}, size}, *marker.display),
        movedInto({{label.left(), label.top() - tagGap - size.height()}, size}, *marker.display),
        movedInto({{label.left(), label.bottom() + tagGap}, size}, *marker.display),
        movedInto({{label.left(), ring.top() - tagGap - size.height()}, size}, *marker.display),
        movedInto({{label.left(), ring.bottom() + tagGap}, size}, *marker.display),
    };
    const auto* clear = std::find_if(places.begin(), places.end(), [&](const QRectF& place) {
        return marker.display->contains(place) && !place.intersects(ring) && !place.intersects(label);
    });
    return clear == places.end() ? movedInto(usual, *marker.display) : *clear;
}

QRectF overlay_layout::dimensionLabel(const QRectF& region, const QSizeF& view) {
    const QSizeF size = plateSize(OverlayFont::plate, dimensionText(region.size()), platePadding);
    const qreal above = region.top() - plateGap - size.height();
    const qreal top = above >= 0 ? above : std::max(region.top(), 0.0) + plateGap;
    const qreal left =
        std::max(above >= 0 ? 0 : plateGap, std::min(region.left(), view.width() - size.width()));
    const QRectF place({above >= 0 ? left : std::max(left, region.left() + plateGap), top}, size);
    return movedInto(place, QRectF({0, 0}, view));
}

QRectF overlay_layout::coordinatePlate(const QPointF& pointer, const QString& text, const QSizeF& view) {
    const QSizeF size = plateSize(OverlayFont::plate, text, platePadding);
    return {{beside(pointer.x(), fromPointer.x(), size.width(), view.width()),
             beside(pointer.y(), fromPointer.y(), size.height(), view.height())},
            size};
}

overlay_layout::Instructions overlay_layout::instructions(const QString& text, const QSizeF& view) {
    const auto widthOf = [](const QString& line) {
        return overlayTextSize(OverlayFont::instructions, line).width();
    };
    const qreal pillSides = 2 * pillPadding.width();
    const bool fits = widthOf(text) + pillSides <= view.width();
    const QStringList lines =
        fits ? QStringList{text}
             : instructionsInLines(text, view.width() - pillSides - 2 * viewMargin, widthOf);

    const qreal lineHeight = overlayTextSize(OverlayFont::instructions, text).height();
    const qreal height = static_cast<qreal>(lines.size()) * lineHeight;
    qreal top = instructionsBottom - height;
    if (lines.size() > 1)
        top = std::max(top, viewMargin + pillPadding.height());
    Instructions instructions;
    instructions.lines.reserve(static_cast<std::size_t>(lines.size()));
    QRectF around;
    for (const QString& line : lines) {
        const QSizeF size = overlayTextSize(OverlayFont::instructions, line);
        const QRectF place({std::round((view.width() - size.width()) / 2), top}, size);
        instructions.lines.push_back({line, place});
        around |= place;
        top += lineHeight;
    }
    instructions.pill = around.adjusted(-pillPadding.width(), -pillPadding.height(), pillPadding.width(),
                                        pillPadding.height());
    return instructions;
}

} // namespace orvane
