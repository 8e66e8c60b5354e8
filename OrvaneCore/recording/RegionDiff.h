#pragma once

#include <QRectF>

namespace orvane {

/// The fixed grid that change detection lays over a frame.
inline constexpr int gridCols = 8;
inline constexpr int gridRows = 6;
inline constexpr int gridCells = gridCols * gridRows;

/// A cell of the grid that changed between two frames.
struct RegionDiff {
    /// The column from the left, 0 to 7.
    int col = 0;
    /// The row from the top, 0 to 5.
    int row = 0;
    /// The part of the compared pixels that changed, 0 to 100.
    double diffPercent = 0;
    /// What was compared, in pixels of the earlier frame.
    QRectF pixelRect;

    bool operator==(const RegionDiff&) const = default;
};

} // namespace orvane
