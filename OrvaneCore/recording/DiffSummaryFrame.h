#pragma once

#include "OrvaneCore/recording/RegionDiff.h"

#include <QImage>

#include <vector>

namespace orvane {

/// The frame with a red outline around each changed cell, the stronger the more of it changed, and the
/// percentage in its top-left corner. Of the frame's size in pixels, with device pixel ratio 1; null for a
/// null frame. Marks whole eighths and sixths of the frame, with what the comparison left out at the edges.
/// Needs a QGuiApplication; any thread.
QImage markChanges(const QImage& frame, const std::vector<RegionDiff>& changedRegions);

} // namespace orvane
