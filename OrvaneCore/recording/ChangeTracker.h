#pragma once

#include "OrvaneCore/recording/RegionDiff.h"

#include <bitset>
#include <optional>
#include <vector>

namespace orvane {

/// A moment at which something visibly happened.
struct Change {
    std::vector<RegionDiff> regions;
    /// The mean of the regions' percentages.
    double averageDiff = 0;
    /// Many cells changed, or much of them.
    bool isMajor = false;
    /// How many frames of continuous activity were passed over since they were last told about.
    int minorChangesBefore = 0;

    bool operator==(const Change&) const = default;
};

/// Tells new activity from activity that goes on. A frame whose changed cells have all changed in the frame
/// before is passed over and only counted, unless it is major; so a blinking cursor is one change.
///
/// Lives longer than a recording: what still moved at the end of one goes on at the start of the next. One
/// thread at a time.
class ChangeTracker {
public:
    /// Takes what diffFrames found in the next frame. Nothing for a still frame, which leaves the memory as
    /// it is, and for one that is passed over.
    std::optional<Change> analyse(std::vector<RegionDiff> regions);

    /// The frames passed over since the last change or call; 0 from then on.
    int takePendingMinorChanges();

private:
    using Cells = std::bitset<gridCells>;

    /// Those that changed in the last frame that was not still.
    Cells m_activeCells;
    int m_pendingMinorChanges = 0;
};

} // namespace orvane
