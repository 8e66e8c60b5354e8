#pragma once

#include "OrvaneCore/capture/ScreenCapture.h"

#include <QImage>
#include <QRectF>

namespace orvane {

/// A part of a captured window. `rectPoints` is relative to the window's top-left corner, in the units of the
/// window's size in points. The picture has the size of that rectangle in pixels; what lies beyond the window
/// is transparent in it. Throws RegionSizeError for a size that no picture can have.
QImage cropWindow(const WindowCapture& window, const QRectF& rectPoints);

} // namespace orvane
