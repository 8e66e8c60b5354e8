#include "OrvaneCore/drawing/ViewCoordinates.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {

namespace {

const ViewCoordinates leftDisplay{.frame = {-1440, 200, 1440, 900}};

} // namespace

TEST(ViewCoordinates, AViewLiesAtTheOriginOfItsFrame) {
    EXPECT_EQ(leftDisplay.convertPointToScreen({0, 0}), QPointF(-1440, 200));
    EXPECT_EQ(leftDisplay.convertPointToScreen({10.5, 20.25}), QPointF(-1429.5, 220.25));
    EXPECT_EQ(leftDisplay.convertToScreen({10, 20, 30, 40}), QRectF(-1430, 220, 30, 40));
}

TEST(ViewCoordinates, GlobalGeometryComesBackToTheView) {
    EXPECT_EQ(leftDisplay.convertPointFromScreen({-1440, 200}), QPointF(0, 0));
    EXPECT_EQ(leftDisplay.convertPointFromScreen({0, 0}), QPointF(1440, -200));
    EXPECT_EQ(leftDisplay.convertFromScreen({-1430, 220, 30, 40}), QRectF(10, 20, 30, 40));
}

TEST(ViewCoordinates, AViewWithoutAFramePassesGeometryThrough) {
    const ViewCoordinates nowhere;
    EXPECT_EQ(nowhere.convertPointToScreen({3, 4}), QPointF(3, 4));
    EXPECT_EQ(nowhere.convertPointFromScreen({3, 4}), QPointF(3, 4));
    EXPECT_EQ(nowhere.convertToScreen({3, 4, 5, 6}), QRectF(3, 4, 5, 6));
    EXPECT_EQ(nowhere.convertFromScreen({3, 4, 5, 6}), QRectF(3, 4, 5, 6));
}

TEST(ViewCoordinates, WhatAPointerReachesIsDecidedInGlobalSpace) {
    EXPECT_TRUE(leftDisplay.isReachable({-500, 20000}));
    EXPECT_TRUE(leftDisplay.isReachable({1e6 + 1440, -1e6 - 200}));
    EXPECT_FALSE(leftDisplay.isReachable({1e6 + 1441, 0}));
    EXPECT_FALSE(leftDisplay.isReachable({0, -1e6 - 201}));
    for (const qreal number :
         {std::numeric_limits<qreal>::quiet_NaN(), std::numeric_limits<qreal>::infinity(), -1e300}) {
        EXPECT_FALSE(leftDisplay.isReachable({number, 0}));
        EXPECT_FALSE(leftDisplay.isReachable({0, number}));
        EXPECT_FALSE((ViewCoordinates{.frame = {0, number, 100, 100}}.isReachable({10, 10})));
    }
}

} // namespace orvane
