#pragma once

#include "OrvaneCore/marking/overlay/OverlayScene.h"

class QPainter;
class QRegion;

namespace orvane {

/// Paints all of a scene but the window's ground, which is there already. The painter counts in points of
/// the view, of any number of pixels, and shows nothing outside `exposed`, in points as well: what does not
/// touch it may be left out. The painter is left as it was. Needs a QGuiApplication; any thread.
void paintOverlay(QPainter& painter, const OverlayScene& scene, const QRegion& exposed);

} // namespace orvane
