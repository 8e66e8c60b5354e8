#include "OrvaneCore/marking/overlay/OverlayCoordinates.h"

#include "tests/unit/marking/ExactGeometry.h"

#include <string>

namespace orvane {

namespace {

using test::isPoint;
using test::isRect;

/// What a conversion of the rectangle to global space logs.
std::string logged(const OverlayCoordinates& coordinates, const QRectF& viewRect) {
    testing::internal::CaptureStderr();
    coordinates.convertToScreen(viewRect);
    return testing::internal::GetCapturedStderr();
}

const OverlayCoordinates leftDisplay{.frame = {-1440, 200, 1440, 900}, .primaryHeight = 1080};

} // namespace

TEST(OverlayCoordinates, AViewLiesAtTheOriginOfItsFrame) {
    EXPECT_TRUE(isPoint(leftDisplay.convertPointToScreen({0, 0}), {-1440, 200}));
    EXPECT_TRUE(isPoint(leftDisplay.convertPointToScreen({10.5, 20.25}), {-1429.5, 220.25}));
    EXPECT_TRUE(isRect(leftDisplay.convertToScreen({10, 20, 30, 40}), {-1430, 220, 30, 40}));
}

TEST(OverlayCoordinates, GlobalGeometryComesBackToTheView) {
    EXPECT_TRUE(isPoint(leftDisplay.convertPointFromScreen({-1440, 200}), {0, 0}));
    EXPECT_TRUE(isPoint(leftDisplay.convertPointFromScreen({0, 0}), {1440, -200}));
    EXPECT_TRUE(isRect(leftDisplay.convertFromScreen({-1430, 220, 30, 40}), {10, 20, 30, 40}));
}

TEST(OverlayCoordinates, AViewWithoutAFramePassesGeometryThrough) {
    const OverlayCoordinates nowhere;
    EXPECT_TRUE(isPoint(nowhere.convertPointToScreen({3, 4}), {3, 4}));
    EXPECT_TRUE(isPoint(nowhere.convertPointFromScreen({3, 4}), {3, 4}));
    EXPECT_TRUE(isRect(nowhere.convertToScreen({3, 4, 5, 6}), {3, 4, 5, 6}));
    EXPECT_TRUE(isRect(nowhere.convertFromScreen({3, 4, 5, 6}), {3, 4, 5, 6}));
}

TEST(OverlayCoordinates, ARectangleIsLoggedInAllSpaces) {
    EXPECT_EQ(logged({.frame = {0, 0, 1920, 1080}, .primaryHeight = 1080}, {100, 200, 300, 150}),
              "orvane: convert viewRect=(100.0, 730.0, 300.0, 150.0) → cocoaScreen=(100.0, 730.0, 300.0, "
              "150.0) → quartz=(100.0, 200.0, 300.0, 150.0) mainH=1080.0\n");
}

TEST(OverlayCoordinates, OnAnotherDisplayTheHeightOfThePrimaryOneCounts) {
    EXPECT_EQ(logged(leftDisplay, {10, 20, 30.25, 40}),
              "orvane: convert viewRect=(10.0, 840.0, 30.2, 40.0) → cocoaScreen=(-1430.0, 820.0, 30.2, "
              "40.0) → quartz=(-1430.0, 220.0, 30.2, 40.0) mainH=1080.0\n");
}

TEST(OverlayCoordinates, WhatIsBelowThePrimaryDisplayIsLoggedBelowZero) {
    EXPECT_EQ(logged({.frame = {0, 1080, 1280, 800}, .primaryHeight = 1080}, {5, 6, 20, 10}),
              "orvane: convert viewRect=(5.0, 784.0, 20.0, 10.0) → cocoaScreen=(5.0, -16.0, 20.0, 10.0) → "
              "quartz=(5.0, 1086.0, 20.0, 10.0) mainH=1080.0\n");
}

TEST(OverlayCoordinates, OnlyTheConversionOfARectangleToGlobalSpaceIsLogged) {
    testing::internal::CaptureStderr();
    leftDisplay.convertPointToScreen({1, 2});
    leftDisplay.convertPointFromScreen({1, 2});
    leftDisplay.convertFromScreen({1, 2, 3, 4});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace orvane
