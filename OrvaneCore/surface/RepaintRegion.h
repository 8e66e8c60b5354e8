#pragma once

#include <QRect>
#include <QRegion>

namespace orvane {

/// What is to be painted anew, where `changed` has, so that no row of pixels of it is left out: `changed`, in
/// places with a point more. Qt clears and shows pixels by the scale that a display has, but clips painters
/// by that scale cut to 65536ths, and both round: an edge that lies on half a pixel, as every tenth does at
/// scale 1.1, comes to lie on two different ones, and the row between them is cleared and not painted, or
/// painted where nobody wipes it off. No edge of what is returned is near half a pixel, but for those where
/// the view itself ends. `view` begins where its window does; `scale` is that of its screen, in pixels to the
/// point, for that of a widget is cut already. Pure; any thread.
QRegion repaintRegion(const QRegion& changed, const QRect& view, qreal scale);

} // namespace orvane
