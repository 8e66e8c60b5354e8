#pragma once

#include "OrvaneCore/recording/RegionDiff.h"

#include <QImage>

#include <vector>

namespace orvane {

/// The cells that changed from one frame to the next, row by row from the top. One pixel in sixteen is looked
/// at; more than 2 percent of a cell's samples have to differ visibly in red, green or blue.
///
/// The grid is that of `prev`. Columns and rows that are left over when its size is divided by the grid's are
/// not compared. A frame of another size is compared byte by byte as the pixels follow one another: where
/// `current` is wider or narrower the pictures are skewed against each other, and samples beyond its end do
/// not count. RGB32 and ARGB32_Premultiplied are read as they are, all else is converted first. A null image
/// has no changes. Any thread.
std::vector<RegionDiff> diffFrames(const QImage& prev, const QImage& current);

} // namespace orvane
