#include "OrvaneCore/marking/overlay/OverlayLayout.h"

#include "OrvaneCore/marking/overlay/OverlayFonts.h"
#include "OrvaneCore/marking/overlay/OverlayTexts.h"

#include <algorithm>
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

} // namespace

QRectF overlay_layout::hint(const MarkerLayout& marker) {
    return {marker.labelPlace, plateSize(OverlayFont::hint, labelHintText(), hintPadding)};
}

QRectF overlay_layout::sizeTag(const MarkerLayout& marker, const QSizeF& view) {
    const QRectF& region = marker.region;
    const QSizeF size = plateSize(OverlayFont::sizeTag, sizeTagText(region.size()), tagPadding);
    const qreal beyondBadge = region.left() + (marker.badgeRing.outer().width() / 2 + tagGap);
    const qreal above = region.top() - tagGap - size.height();
    if (above >= 0) {
        const qreal right = std::min(region.right(), view.width() - viewMargin);
        return {{std::max(right - size.width(), beyondBadge), above}, size};
    }
    const qreal inside = std::max(region.top(), 0.0) + tagGap;
    const qreal right = std::min(region.right(), view.width()) - tagGap;
    const bool fits =
        inside + size.height() + tagGap <= region.bottom() && right - size.width() >= beyondBadge;
    if (fits)
        return {{right - size.width(), inside}, size};
    const qreal aboveLabel = marker.labelPlace.y() - tagPadding.height() - size.height();
    const qreal top = std::min(std::max(region.top(), 0.0), aboveLabel);
    return {{std::max(region.right() + tagGap, beyondBadge), top}, size};
}

QRectF overlay_layout::dimensionLabel(const QRectF& region, const QSizeF& view) {
    const QSizeF size = plateSize(OverlayFont::plate, dimensionText(region.size()), platePadding);
    const qreal above = region.top() - plateGap - size.height();
    const qreal top = above >= 0 ? above : std::max(region.top(), 0.0) + plateGap;
    const qreal left =
        std::max(above >= 0 ? 0 : plateGap, std::min(region.left(), view.width() - size.width()));
    return {{above >= 0 ? left : std::max(left, region.left() + plateGap), top}, size};
}

QRectF overlay_layout::coordinatePlate(const QPointF& pointer, const QString& text, const QSizeF& view) {
    const QSizeF size = plateSize(OverlayFont::plate, text, platePadding);
    return {{beside(pointer.x(), fromPointer.x(), size.width(), view.width()),
             beside(pointer.y(), fromPointer.y(), size.height(), view.height())},
            size};
}

QRectF overlay_layout::instructionsText(const QString& text, const QSizeF& view) {
    const QSizeF size = overlayTextSize(OverlayFont::instructions, text);
    return {{std::round((view.width() - size.width()) / 2), instructionsBottom - size.height()}, size};
}

QRectF overlay_layout::instructionsPill(const QRectF& text) {
    return text.adjusted(-12, -6, 12, 6);
}

} // namespace orvane
