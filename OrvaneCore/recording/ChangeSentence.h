#pragma once

#include "OrvaneCore/recording/RegionDiff.h"

#include <QString>

#include <vector>

namespace orvane {

/// Where on the screen the cells lie, in at most two words joined by a hyphen: "top-right", "center",
/// "screen" where no word fits.
QString areaName(const std::vector<RegionDiff>& regions);

/// What a timeline says about a change. `cellCount` is the number of changed cells and `avgDiff` the mean of
/// their percentages, 0 to 100. A change of more than half of the screen is not given a place.
QString describeChange(const std::vector<RegionDiff>& changedRegions, int cellCount, double avgDiff,
                       bool isMajor);

/// A percentage as a whole number with its sign. An exact half goes to the even neighbour: "2%" for 2.5.
QString percentText(double percent);

} // namespace orvane
