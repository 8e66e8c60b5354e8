#include "OrvaneCore/recording/ChangeTracker.h"

#include <gtest/gtest.h>

namespace orvane {

namespace {

/// The first cells of the grid, row by row.
std::vector<RegionDiff> firstCells(int count, double percent) {
    std::vector<RegionDiff> regions;
    regions.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        regions.push_back(
            {.col = i % gridCols, .row = i / gridCols, .diffPercent = percent, .pixelRect = {}});
    }
    return regions;
}

std::vector<RegionDiff> cell(int col, int row, double percent = 10) {
    return {{.col = col, .row = row, .diffPercent = percent, .pixelRect = {}}};
}

std::vector<RegionDiff> both(std::vector<RegionDiff> regions, const std::vector<RegionDiff>& more) {
    regions.insert(regions.end(), more.begin(), more.end());
    return regions;
}

bool isMajor(const std::vector<RegionDiff>& regions) {
    const std::optional<Change> change = ChangeTracker().analyse(regions);
    EXPECT_TRUE(change);
    return change && change->isMajor;
}

} // namespace

TEST(ChangeTracker, TellsWhatChanged) {
    ChangeTracker tracker;
    const auto regions = both(cell(0, 0, 12), both(cell(7, 5, 20), cell(3, 2, 31)));
    const std::optional<Change> change = tracker.analyse(regions);
    ASSERT_TRUE(change);
    EXPECT_EQ(change->regions, regions);
    EXPECT_DOUBLE_EQ(change->averageDiff, 21);
    EXPECT_FALSE(change->isMajor);
    EXPECT_EQ(change->minorChangesBefore, 0);
}

TEST(ChangeTracker, CallsAChangeMajorAboveItsLimits) {
    EXPECT_FALSE(isMajor(firstCells(11, 30.0)));
    EXPECT_TRUE(isMajor(firstCells(11, 30.1)));
    EXPECT_TRUE(isMajor(firstCells(12, 2.1)));
    EXPECT_FALSE(isMajor(firstCells(1, 30.0)));
    EXPECT_TRUE(isMajor(firstCells(1, 30.1)));
    // The mean, not the largest.
    EXPECT_FALSE(isMajor(both(cell(0, 0, 50), cell(1, 0, 10))));
    EXPECT_TRUE(isMajor(both(cell(0, 0, 52), cell(1, 0, 10))));
}

TEST(ChangeTracker, PassesOverACellThatGoesOnBlinking) {
    ChangeTracker tracker;
    EXPECT_TRUE(tracker.analyse(cell(3, 1)));
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(tracker.analyse(cell(3, 1)));

    const std::optional<Change> other = tracker.analyse(both(cell(3, 1), cell(4, 1)));
    ASSERT_TRUE(other);
    EXPECT_FALSE(other->isMajor);
    EXPECT_EQ(other->regions.size(), 2U);
    EXPECT_EQ(other->minorChangesBefore, 5);
    EXPECT_EQ(tracker.takePendingMinorChanges(), 0);

    EXPECT_FALSE(tracker.analyse(both(cell(3, 1), cell(4, 1))));
    EXPECT_EQ(tracker.takePendingMinorChanges(), 1);
    EXPECT_EQ(tracker.takePendingMinorChanges(), 0);
}

TEST(ChangeTracker, CountsAnewAfterAFlush) {
    ChangeTracker tracker;
    tracker.analyse(cell(3, 1));
    tracker.analyse(cell(3, 1));
    tracker.analyse(cell(3, 1));
    EXPECT_EQ(tracker.takePendingMinorChanges(), 2);
    tracker.analyse(cell(3, 1));
    const std::optional<Change> change = tracker.analyse(cell(0, 0));
    ASSERT_TRUE(change);
    EXPECT_EQ(change->minorChangesBefore, 1);
}

TEST(ChangeTracker, ForgetsACellThatRestedWhileAnotherChanged) {
    ChangeTracker tracker;
    EXPECT_TRUE(tracker.analyse(cell(3, 1)));
    EXPECT_FALSE(tracker.analyse(cell(3, 1)));
    EXPECT_TRUE(tracker.analyse(cell(0, 0)));
    EXPECT_TRUE(tracker.analyse(cell(3, 1)));
    EXPECT_FALSE(tracker.analyse(cell(3, 1)));
}

TEST(ChangeTracker, ForgetsACellThatRestedWhileOthersWentOn) {
    ChangeTracker tracker;
    EXPECT_TRUE(tracker.analyse(both(cell(3, 1), cell(4, 1))));
    EXPECT_FALSE(tracker.analyse(cell(4, 1)));
    const std::optional<Change> resumed = tracker.analyse(both(cell(3, 1), cell(4, 1)));
    ASSERT_TRUE(resumed);
    EXPECT_EQ(resumed->minorChangesBefore, 1);
}

TEST(ChangeTracker, KeepsItsMemoryThroughStillFrames) {
    ChangeTracker tracker;
    EXPECT_TRUE(tracker.analyse(cell(3, 1)));
    for (int i = 0; i < 10; ++i)
        EXPECT_FALSE(tracker.analyse({}));
    EXPECT_EQ(tracker.takePendingMinorChanges(), 0);
    EXPECT_FALSE(tracker.analyse(cell(3, 1)));
    EXPECT_FALSE(tracker.analyse({}));
    EXPECT_EQ(tracker.takePendingMinorChanges(), 1);
}

TEST(ChangeTracker, AlwaysTellsOfMajorChanges) {
    ChangeTracker tracker;
    EXPECT_TRUE(tracker.analyse(firstCells(12, 5)));
    const std::optional<Change> again = tracker.analyse(firstCells(12, 5));
    ASSERT_TRUE(again);
    EXPECT_TRUE(again->isMajor);
    EXPECT_EQ(again->minorChangesBefore, 0);
}

TEST(ChangeTracker, RemembersTheCellsOfMajorChanges) {
    ChangeTracker tracker;
    tracker.analyse(cell(0, 0));
    tracker.analyse(cell(0, 0));
    const std::optional<Change> major = tracker.analyse(firstCells(12, 50));
    ASSERT_TRUE(major);
    EXPECT_EQ(major->minorChangesBefore, 1);
    EXPECT_FALSE(tracker.analyse(firstCells(11, 20)));
    EXPECT_TRUE(tracker.analyse(firstCells(12, 20)));
}

TEST(ChangeTracker, KnowsEveryCellFromEveryOther) {
    for (int first = 0; first < gridCells; ++first) {
        for (int second = 0; second < gridCells; ++second) {
            ChangeTracker tracker;
            EXPECT_TRUE(tracker.analyse(cell(first % gridCols, first / gridCols)));
            EXPECT_EQ(tracker.analyse(cell(second % gridCols, second / gridCols)).has_value(),
                      second != first)
                << first << " then " << second;
        }
    }
}

} // namespace orvane
