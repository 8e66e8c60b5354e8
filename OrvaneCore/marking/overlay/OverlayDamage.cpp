#include "OrvaneCore/marking/overlay/OverlayDamage.h"

#include "OrvaneCore/drawing/Identical.h"
#include "OrvaneCore/marking/editing/AnnotationDamage.h"
#include "OrvaneCore/marking/overlay/OverlayBounds.h"
#include "OrvaneCore/surface/ListDamage.h"

namespace orvane {

namespace {

/// Null is none.
bool haveSamePlace(const Marker* left, const Marker* right) {
    return left != nullptr && right != nullptr ? identical(left->rect, right->rect) : left == right;
}

} // namespace

QRegion damage(const OverlayScene& before, const OverlayScene& after) {
    const OverlayBounds old(before);
    const OverlayBounds now(after);
    if (before.modes != after.modes)
        return now.view();

    QRegion region = damage(before.shapes, after.shapes);
    // The shapes say so when the view itself is another.
    if (region == now.view())
        return region;
    region += listDamage(
        before.markers, after.markers, marker_painter::looksSame,
        [&old](const Marker& marker) { return old.marker(marker); },
        [&now](const Marker& marker) { return now.marker(marker); });
    if (!identical(before.currentRect, after.currentRect))
        region += VisualBounds::difference(old.currentRect(), now.currentRect());
    if (!haveSamePlace(selectedMarker(before), selectedMarker(after)))
        region += VisualBounds::difference(old.selectedMarker(), now.selectedMarker());
    if (!identical(before.mousePosition, after.mousePosition))
        region += VisualBounds::difference(old.crosshair(), now.crosshair());
    if (overlayInstructions(before) != overlayInstructions(after))
        region += VisualBounds::difference(old.instructions(), now.instructions());
    return region;
}

} // namespace orvane
