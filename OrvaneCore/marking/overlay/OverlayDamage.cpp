#include "OrvaneCore/marking/overlay/OverlayDamage.h"

#include "OrvaneCore/marking/overlay/OverlayBounds.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace orvane {

namespace {

// Qt's own comparisons let small differences pass, which show nevertheless, and take what is no number for
// different from itself.

bool same(qreal left, qreal right) {
    return left == right || (std::isnan(left) && std::isnan(right));
}

bool same(const QPointF& left, const QPointF& right) {
    return same(left.x(), right.x()) && same(left.y(), right.y());
}

bool same(const QSizeF& left, const QSizeF& right) {
    return same(left.width(), right.width()) && same(left.height(), right.height());
}

bool same(const QRectF& left, const QRectF& right) {
    return same(left.topLeft(), right.topLeft()) && same(left.size(), right.size());
}

bool same(const Marker& left, const Marker& right) {
    return same(left.rect, right.rect) && left.label == right.label && left.color == right.color &&
           left.index == right.index;
}

bool same(const Annotation& left, const Annotation& right) {
    return left.kind == right.kind && same(left.start, right.start) && same(left.end, right.end) &&
           left.text == right.text && left.label == right.label &&
           same(left.strokeWidth, right.strokeWidth) && same(left.rotation, right.rotation) &&
           left.color == right.color && left.image == right.image;
}

template <typename Value>
bool same(const std::optional<Value>& left, const std::optional<Value>& right) {
    return left && right ? same(*left, *right) : left.has_value() == right.has_value();
}

bool bothSame(const Marker* left, const Marker* right) {
    return left != nullptr && right != nullptr ? same(left->rect, right->rect) : left == right;
}

bool bothSame(const Annotation* left, const Annotation* right) {
    return left != nullptr && right != nullptr ? same(*left, *right) : left == right;
}

/// What two lists of items that lie on each other in their order differ by.
template <typename Item, typename BoundsBefore, typename BoundsAfter>
QRegion listDamage(const std::vector<Item>& before, const std::vector<Item>& after, BoundsBefore boundsBefore,
                   BoundsAfter boundsAfter) {
    const auto isSame = [](const Item& left, const Item& right) { return same(left, right); };
    const auto [firstBefore, firstAfter] =
        std::mismatch(before.begin(), before.end(), after.begin(), after.end(), isSame);
    // Where one was taken out or put in, those after it are the same again.
    const auto [endBefore, endAfter] =
        std::mismatch(before.rbegin(), std::make_reverse_iterator(firstBefore), after.rbegin(),
                      std::make_reverse_iterator(firstAfter), isSame);
    QRegion region;
    auto left = firstBefore;
    auto right = firstAfter;
    while (left != endBefore.base() && right != endAfter.base()) {
        if (!same(*left, *right))
            region += VisualBounds::difference(boundsBefore(*left), boundsAfter(*right));
        ++left;
        ++right;
    }
    for (; left != endBefore.base(); ++left)
        region += VisualBounds::difference(boundsBefore(*left), {});
    for (; right != endAfter.base(); ++right)
        region += VisualBounds::difference({}, boundsAfter(*right));
    return region;
}

VisualBounds draftBounds(const OverlayBounds& bounds, const OverlayScene& scene) {
    return scene.draft ? bounds.annotation(*scene.draft) : VisualBounds();
}

} // namespace

QRegion damage(const OverlayScene& before, const OverlayScene& after) {
    const OverlayBounds old(before);
    const OverlayBounds now(after);
    if (!same(before.size, after.size) || !same(before.origin, after.origin) || before.modes != after.modes)
        return now.view();

    QRegion region = listDamage(
        before.markers, after.markers, [&old](const Marker& marker) { return old.marker(marker); },
        [&now](const Marker& marker) { return now.marker(marker); });
    region += listDamage(
        before.annotations, after.annotations,
        [&old](const Annotation& annotation) { return old.annotation(annotation); },
        [&now](const Annotation& annotation) { return now.annotation(annotation); });
    if (!same(before.currentRect, after.currentRect))
        region += VisualBounds::difference(old.currentRect(), now.currentRect());
    if (!same(before.draft, after.draft))
        region += VisualBounds::difference(draftBounds(old, before), draftBounds(now, after));
    if (!bothSame(selectedMarker(before), selectedMarker(after)))
        region += VisualBounds::difference(old.selectedMarker(), now.selectedMarker());
    if (!bothSame(selectedAnnotation(before), selectedAnnotation(after)))
        region += VisualBounds::difference(old.selectedAnnotation(), now.selectedAnnotation());
    if (!same(before.mousePosition, after.mousePosition))
        region += VisualBounds::difference(old.crosshair(), now.crosshair());
    if (before.markers.size() != after.markers.size())
        region += VisualBounds::difference(old.instructions(), now.instructions());
    return region;
}

} // namespace orvane
