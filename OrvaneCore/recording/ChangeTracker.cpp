#include "OrvaneCore/recording/ChangeTracker.h"

#include <utility>

namespace orvane {

namespace {

constexpr double minorAverageDiff = 30.0;
constexpr std::size_t minorCellCount = 11;

} // namespace

std::optional<Change> ChangeTracker::analyse(std::vector<RegionDiff> regions) {
    if (regions.empty())
        return std::nullopt;

    double sum = 0;
    Cells cells;
    for (const RegionDiff& region : regions) {
        sum += region.diffPercent;
        cells.set(static_cast<std::size_t>(region.row) * gridCols + region.col);
    }
    const double averageDiff = sum / static_cast<double>(regions.size());
    const bool isMajor = averageDiff > minorAverageDiff || regions.size() > minorCellCount;
    const bool isFresh = (cells & ~m_activeCells).any();
    m_activeCells = cells;

    if (!isMajor && !isFresh) {
        ++m_pendingMinorChanges;
        return std::nullopt;
    }
    return Change{.regions = std::move(regions),
                  .averageDiff = averageDiff,
                  .isMajor = isMajor,
                  .minorChangesBefore = takePendingMinorChanges()};
}

int ChangeTracker::takePendingMinorChanges() {
    return std::exchange(m_pendingMinorChanges, 0);
}

} // namespace orvane
