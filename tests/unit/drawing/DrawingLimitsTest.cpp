#include "OrvaneCore/drawing/DrawingLimits.h"

#include <gtest/gtest.h>

namespace orvane {

namespace {

const QRectF area(10, 20, 100, 50);

} // namespace

TEST(DrawingLimits, BringPointsNearer) {
    EXPECT_EQ(drawable(QPointF(3, -4)), QPointF(3, -4));
    EXPECT_EQ(drawable(QPointF(1e300, -1e7)), QPointF(1e6, -1e6));
    EXPECT_EQ(drawable(QPointF(1e300, 5), 1e12), QPointF(1e12, 5));
}

TEST(DrawingLimits, BringRectanglesNearerAndSortTheirCorners) {
    EXPECT_EQ(drawable(QRectF(QPointF(30, -1e9), QPointF(10, 40))),
              QRectF(QPointF(10, -1e6), QPointF(30, 40)));
}

TEST(DrawingLimits, LeaveALineInsideAlone) {
    EXPECT_EQ(clipped({20, 30, 90, 60}, area), QLineF(20, 30, 90, 60));
    EXPECT_EQ(clipped({40, 40, 40, 40}, area), QLineF(40, 40, 40, 40));
}

TEST(DrawingLimits, CutALineAtTheSidesItCrosses) {
    EXPECT_EQ(clipped({-50, 40, 500, 40}, area), QLineF(10, 40, 110, 40));
    EXPECT_EQ(clipped({500, 40, -50, 40}, area), QLineF(110, 40, 10, 40));
    EXPECT_EQ(clipped({60, 0, 60, 45}, area), QLineF(60, 20, 60, 45));
    EXPECT_EQ(clipped({0, 10, 100, 110}, area), QLineF(10, 20, 60, 70));
}

TEST(DrawingLimits, KeepALineAlongASide) {
    EXPECT_EQ(clipped({0, area.top(), 500, area.top()}, area), QLineF(area.topLeft(), area.topRight()));
    EXPECT_EQ(clipped({area.right(), 0, area.right(), 500}, area),
              QLineF(area.topRight(), area.bottomRight()));
}

TEST(DrawingLimits, DropALineOutside) {
    EXPECT_FALSE(clipped({0, 0, 200, 0}, area));
    EXPECT_FALSE(clipped({0, 100, 200, 100}, area));
    EXPECT_FALSE(clipped({5, 0, 5, 100}, area));
    EXPECT_FALSE(clipped({120, 40, 300, 40}, area));
    EXPECT_FALSE(clipped({5, 5, 5, 5}, area));
    // Past the corner.
    EXPECT_FALSE(clipped({0, 65, 30, 95}, area));
}

TEST(DrawingLimits, KeepTheDirectionOfAVeryLongLine) {
    const auto line = clipped({-1e12, -2e12, 1e12, 2e12}, QRectF(-100, -100, 200, 200));
    ASSERT_TRUE(line);
    EXPECT_NEAR(line->x1(), -50, 0.01);
    EXPECT_NEAR(line->y1(), -100, 0.01);
    EXPECT_NEAR(line->x2(), 50, 0.01);
    EXPECT_NEAR(line->y2(), 100, 0.01);
}

} // namespace orvane
