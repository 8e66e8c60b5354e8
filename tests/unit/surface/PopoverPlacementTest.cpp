#include "OrvaneCore/surface/PopoverPlacement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orvane {

namespace {

using Side = PopoverPlacement::Side;

constexpr QRect view(0, 0, 1000, 600);
constexpr QSize bubble(260, 74);

TEST(PopoverPlacement, IsAboveThePointInTheMiddle) {
    const PopoverPlacement placement = popoverPlacement(bubble, {500, 300}, view);
    EXPECT_EQ(placement.side, Side::above);
    EXPECT_EQ(placement.bubble, QRect(370, 300 - 1 - 8 - 74, 260, 74));
    EXPECT_EQ(placement.tip, QPoint(500, 299));
    EXPECT_EQ(placement.frame(), QRect(370, 217, 260, 82));
}

TEST(PopoverPlacement, IsBelowWhereThereIsNoRoomAbove) {
    const PopoverPlacement placement = popoverPlacement(bubble, {500, 20}, view);
    EXPECT_EQ(placement.side, Side::below);
    EXPECT_EQ(placement.bubble, QRect(370, 20 + 1 + 8, 260, 74));
    EXPECT_EQ(placement.tip, QPoint(500, 21));
    EXPECT_EQ(placement.frame(), QRect(370, 21, 260, 82));
}

TEST(PopoverPlacement, TurnsAtTheHeightThatItNeeds) {
    const int needed = 1 + 8 + 74 + 8;
    const PopoverPlacement enough = popoverPlacement(bubble, {500, qreal(needed)}, view);
    EXPECT_EQ(enough.side, Side::above);
    EXPECT_EQ(enough.bubble.y(), 8);
    EXPECT_EQ(popoverPlacement(bubble, {500, qreal(needed - 1)}, view).side, Side::below);
}

TEST(PopoverPlacement, StaysInsideAtTheSidesWhileTheArrowPointsAtThePoint) {
    const PopoverPlacement left = popoverPlacement(bubble, {60, 300}, view);
    EXPECT_EQ(left.bubble.x(), 8);
    EXPECT_EQ(left.tip.x(), 60);
    const PopoverPlacement right = popoverPlacement(bubble, {940, 300}, view);
    EXPECT_EQ(right.bubble.x() + right.bubble.width(), 1000 - 8);
    EXPECT_EQ(right.tip.x(), 940);
}

TEST(PopoverPlacement, KeepsTheArrowOffTheRoundCorners) {
    EXPECT_EQ(popoverPlacement(bubble, {0, 300}, view).tip.x(), 8 + 12 + 9);
    EXPECT_EQ(popoverPlacement(bubble, {1000, 300}, view).tip.x(), 1000 - 8 - 12 - 9);
}

TEST(PopoverPlacement, TakesTheSideWithMoreRoomWhereNeitherIsEnough) {
    const QRect low(0, 0, 400, 120);
    EXPECT_EQ(popoverPlacement(bubble, {200, 70}, low).side, Side::above);
    EXPECT_EQ(popoverPlacement(bubble, {200, 50}, low).side, Side::below);
    EXPECT_EQ(popoverPlacement(bubble, {200, 60}, low).side, Side::above) << "both have as much";
    for (const qreal y : {0.0, 50.0, 70.0, 120.0})
        EXPECT_TRUE(low.contains(popoverPlacement(bubble, {200, y}, low).frame())) << y;
}

TEST(PopoverPlacement, ShowsTheBeginningOfABubbleThatIsLargerThanTheView) {
    const PopoverPlacement placement = popoverPlacement(bubble, {50, 20}, QRect(0, 0, 100, 40));
    EXPECT_EQ(placement.frame().topLeft(), QPoint(8, 8));
}

TEST(PopoverPlacement, PointsAtTheNearestWholePoint) {
    EXPECT_EQ(popoverPlacement(bubble, {500.6, 300.6}, view), popoverPlacement(bubble, {501, 301}, view));
    EXPECT_EQ(popoverPlacement(bubble, {500.4, 300.4}, view), popoverPlacement(bubble, {500, 300}, view));
}

TEST(PopoverPlacement, IsInTheMiddleForAPointThatIsNotFinite) {
    constexpr qreal infinity = std::numeric_limits<qreal>::infinity();
    const PopoverPlacement middle = popoverPlacement(bubble, view.center(), view);
    for (const QPointF& point : {QPointF(infinity, 300), QPointF(20, -infinity), QPointF(std::nan(""), 20)})
        EXPECT_EQ(popoverPlacement(bubble, point, view), middle);
}

TEST(PopoverPlacement, IsInsideForAnyPoint) {
    constexpr qreal infinity = std::numeric_limits<qreal>::infinity();
    for (const qreal x :
         {-1e300, -infinity, -20.0, 0.0, 0.4, 500.5, 1000.0, 5000.0, 1e300, infinity, std::nan("")}) {
        for (const qreal y :
             {-1e300, -infinity, -20.0, 0.0, 0.4, 300.5, 600.0, 5000.0, 1e300, infinity, std::nan("")}) {
            const PopoverPlacement placement = popoverPlacement(bubble, {x, y}, view);
            ASSERT_TRUE(view.adjusted(8, 8, -8, -8).contains(placement.bubble)) << x << ',' << y;
            ASSERT_TRUE(view.contains(placement.frame())) << x << ',' << y;
            ASSERT_EQ(placement.bubble.size(), bubble);
        }
    }
}

TEST(PopoverPlacement, HoldsInAViewThatDoesNotBeginAtTheOrigin) {
    const PopoverPlacement placement = popoverPlacement(bubble, {-300, 300}, QRect(-1000, 100, 1000, 600));
    EXPECT_EQ(placement.bubble, QRect(-430, 217, 260, 74));
    EXPECT_EQ(popoverPlacement(bubble, {-500, 110}, QRect(-1000, 100, 1000, 600)).side, Side::below);
}

} // namespace

} // namespace orvane
