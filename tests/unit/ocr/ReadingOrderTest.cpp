#include "OrvanePlatform/ocr/layout/ReadingOrder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvane::ocr {
namespace {

/// The lefts and tops of the lines in reading order, whatever the order they come in.
std::vector<QPoint> order(std::vector<FoundLine> lines) {
    std::reverse(lines.begin(), lines.end());
    std::vector<QPoint> corners;
    corners.reserve(lines.size());
    for (const FoundLine& line : inReadingOrder(std::move(lines)))
        corners.push_back(line.box.topLeft());
    return corners;
}

FoundLine line(int left, int top, int area, int width = 50) {
    return {QRect(left, top, width, 12), area};
}

TEST(ReadingOrderTest, NothingIsInOrder) {
    EXPECT_TRUE(order({}).empty());
}

TEST(ReadingOrderTest, RowsFromTheTopAndEachFromTheLeft) {
    EXPECT_EQ(order({line(0, 0, 1), line(80, 2, 1), line(0, 20, 1), line(80, 18, 1), line(10, 40, 1)}),
              (std::vector<QPoint>{{0, 0}, {80, 2}, {0, 20}, {80, 18}, {10, 40}}));
}

TEST(ReadingOrderTest, PanesOneAfterTheOther) {
    EXPECT_EQ(order({line(0, 0, 1), line(0, 20, 1), line(0, 40, 1), line(80, 0, 2), line(80, 20, 2)}),
              (std::vector<QPoint>{{0, 0}, {0, 20}, {0, 40}, {80, 0}, {80, 20}}));
}

TEST(ReadingOrderTest, PanesBelowATitleAndAboveAStatusLine) {
    EXPECT_EQ(order({line(0, 0, 9, 130), line(0, 20, 1), line(0, 40, 1), line(80, 20, 2), line(80, 40, 2),
                     line(0, 60, 8, 130)}),
              (std::vector<QPoint>{{0, 0}, {0, 20}, {0, 40}, {80, 20}, {80, 40}, {0, 60}}));
}

TEST(ReadingOrderTest, ATableRowByRowWithAndWithoutLines) {
    const std::vector<QPoint> rows{{0, 0}, {80, 0}, {0, 20}, {80, 20}, {0, 40}, {80, 40}};
    EXPECT_EQ(order({line(0, 0, 1), line(80, 0, 2), line(0, 20, 3), line(80, 20, 4), line(0, 40, 5),
                     line(80, 40, 6)}),
              rows);
    EXPECT_EQ(order({line(0, 0, 1), line(80, 0, 1), line(0, 20, 1), line(80, 20, 1), line(0, 40, 1),
                     line(80, 40, 1)}),
              rows);
}

TEST(ReadingOrderTest, ButtonsInARowAreRead) {
    EXPECT_EQ(order({line(0, 0, 1, 200), line(0, 30, 2), line(60, 30, 3), line(120, 30, 4)}),
              (std::vector<QPoint>{{0, 0}, {0, 30}, {60, 30}, {120, 30}}));
}

} // namespace
} // namespace orvane::ocr
