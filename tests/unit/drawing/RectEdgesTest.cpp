#include "OrvaneCore/drawing/RectEdges.h"

#include "tests/unit/marking/ExactGeometry.h"

#include <gtest/gtest.h>

namespace orvane::test {

namespace {

constexpr QRectF bounds(-100, 50, 300, 200);

const RectEdges edges{.left = 10, .top = 20, .right = 50, .bottom = 60};

} // namespace

TEST(RectEdges, AreSortedWhicheverCornersTheyCameFrom) {
    for (const RectEdges& found :
         {RectEdges::between({10, 60}, {50, 20}), RectEdges::between({50, 20}, {10, 60})}) {
        EXPECT_EQ(found.left, 10);
        EXPECT_EQ(found.top, 20);
        EXPECT_EQ(found.right, 50);
        EXPECT_EQ(found.bottom, 60);
    }
    EXPECT_EQ(edges.toRect(), QRectF(10, 20, 40, 40));
    EXPECT_EQ(edges.center(), QPointF(30, 40));
}

TEST(RectEdges, ContainWhatTheMarginAddsAndNotTheFarEdges) {
    EXPECT_TRUE(edges.contains({10, 20}, 0));
    EXPECT_FALSE(edges.contains({50, 40}, 0));
    EXPECT_FALSE(edges.contains({30, 60}, 0));
    EXPECT_TRUE(edges.contains({5, 15}, 5));
    EXPECT_FALSE(edges.contains({4.9, 40}, 5));
    EXPECT_FALSE(edges.contains({30, 14.9}, 5));
    EXPECT_TRUE(edges.contains({54.9, 64.9}, 5));
    EXPECT_FALSE(edges.contains({55, 40}, 5));
    EXPECT_FALSE(edges.contains({12, 40}, -5));
    EXPECT_FALSE(edges.contains({30, 40}, -20));
}

TEST(RectEdges, AnOutlineIsAsWideInsideAsOutside) {
    for (const qreal x : {5.0, 10.0, 14.9, 45.0, 54.9})
        EXPECT_TRUE(edges.outlineContains({x, 40}, 5)) << x;
    for (const qreal x : {4.9, 15.0, 30.0, 44.9, 55.0})
        EXPECT_FALSE(edges.outlineContains({x, 40}, 5)) << x;
    for (const qreal y : {15.0, 24.9, 55.0, 64.9})
        EXPECT_TRUE(edges.outlineContains({30, y}, 5)) << y;
    for (const qreal y : {14.9, 25.0, 54.9, 65.0})
        EXPECT_FALSE(edges.outlineContains({30, y}, 5)) << y;
}

TEST(RectEdges, AreFiniteWhereAllNumbersAre) {
    EXPECT_TRUE(isFinite(QRectF(1, 2, 3, 4)));
    EXPECT_FALSE(isFinite(QPointF(infinite, 1)));
    EXPECT_FALSE(isFinite(QPointF(1, qQNaN())));
    EXPECT_FALSE(isFinite(QRectF(1, 2, infinite, 4)));
    EXPECT_FALSE(isFinite(QRectF(1, qQNaN(), 3, 4)));
}

TEST(MovedInto, LeavesWhatIsInside) {
    for (const QRectF& rect : {QRectF(0.1, 60.3, 20.7, 30), bounds, QRectF(-100, 50, 1, 1),
                               QRectF(199, 249, 1, 1), QRectF(10, 60, 0, 0)})
        EXPECT_TRUE(isRect(movedInto(rect, bounds), rect));
}

TEST(MovedInto, MovesAsLittleAsItTakes) {
    EXPECT_TRUE(isRect(movedInto({-120, 100, 50, 20}, bounds), {-100, 100, 50, 20}));
    EXPECT_TRUE(isRect(movedInto({190, 100, 50, 20}, bounds), {150, 100, 50, 20}));
    EXPECT_TRUE(isRect(movedInto({0, 0, 50, 20}, bounds), {0, 50, 50, 20}));
    EXPECT_TRUE(isRect(movedInto({900, 900, 50, 20}, bounds), {150, 230, 50, 20}));
}

TEST(MovedInto, ShowsTheBeginningOfWhatIsTooLarge) {
    EXPECT_TRUE(isRect(movedInto({0, 100, 400, 20}, bounds), {-100, 100, 400, 20}));
    EXPECT_TRUE(isRect(movedInto({0, 100, 50, 500}, bounds), {0, 50, 50, 500}));
}

} // namespace orvane::test
