#include "OrvaneCore/marking/overlay/OverlayCoordinates.h"

#include "tests/unit/marking/ExactGeometry.h"

#include <string>

namespace orvane {

namespace {

using test::isRect;

/// What a conversion of the rectangle to global space logs.
std::string logged(const OverlayCoordinates& coordinates, const QRectF& viewRect) {
    testing::internal::CaptureStderr();
    coordinates.convertToScreen(viewRect);
    return testing::internal::GetCapturedStderr();
}

const OverlayCoordinates leftDisplay{.view = {{-1440, 200, 1440, 900}}, .primaryHeight = 1080};

} // namespace

TEST(OverlayCoordinates, AViewLiesAtTheOriginOfItsFrame) {
    EXPECT_TRUE(isRect(leftDisplay.convertToScreen({10, 20, 30, 40}), {-1430, 220, 30, 40}));
    EXPECT_TRUE(isRect(OverlayCoordinates().convertToScreen({3, 4, 5, 6}), {3, 4, 5, 6}));
}

TEST(OverlayCoordinates, ARectangleIsLoggedInAllSpaces) {
    EXPECT_EQ(logged({.view = {{0, 0, 1920, 1080}}, .primaryHeight = 1080}, {100, 200, 300, 150}),
              "orvane: convert viewRect=(100.0, 730.0, 300.0, 150.0) → cocoaScreen=(100.0, 730.0, 300.0, "
              "150.0) → quartz=(100.0, 200.0, 300.0, 150.0) mainH=1080.0\n");
}

TEST(OverlayCoordinates, OnAnotherDisplayTheHeightOfThePrimaryOneCounts) {
    EXPECT_EQ(logged(leftDisplay, {10, 20, 30.25, 40}),
              "orvane: convert viewRect=(10.0, 840.0, 30.2, 40.0) → cocoaScreen=(-1430.0, 820.0, 30.2, "
              "40.0) → quartz=(-1430.0, 220.0, 30.2, 40.0) mainH=1080.0\n");
}

TEST(OverlayCoordinates, WhatIsBelowThePrimaryDisplayIsLoggedBelowZero) {
    EXPECT_EQ(logged({.view = {{0, 1080, 1280, 800}}, .primaryHeight = 1080}, {5, 6, 20, 10}),
              "orvane: convert viewRect=(5.0, 784.0, 20.0, 10.0) → cocoaScreen=(5.0, -16.0, 20.0, 10.0) → "
              "quartz=(5.0, 1086.0, 20.0, 10.0) mainH=1080.0\n");
}

TEST(OverlayCoordinates, TheLastColumnAndRowMeanTheEdge) {
    const OverlayCoordinates once{.view = {{-1440, 200, 1440, 900}}, .primaryHeight = 1080};
    EXPECT_EQ(once.regionCorner({1439, 899}), QPointF(1440, 900));
    EXPECT_EQ(once.regionCorner({1439, 400}), QPointF(1440, 400));
    EXPECT_EQ(once.regionCorner({700, 899}), QPointF(700, 900));
    for (const QPointF& inside : {QPointF(1438, 898), QPointF(0, 0), QPointF(0.5, 700)})
        EXPECT_EQ(once.regionCorner(inside), inside);
    // On other displays the pointer is where it is.
    for (const QPointF& outside : {QPointF(1440, 900), QPointF(1500, 1000), QPointF(-1, -1)})
        EXPECT_EQ(once.regionCorner(outside), outside);
}

TEST(OverlayCoordinates, TheLastColumnIsAPixelWideAtEveryScale) {
    const OverlayCoordinates twice{.view = {{0, 0, 800, 600}}, .primaryHeight = 600, .pixelSide = 0.5};
    EXPECT_EQ(twice.regionCorner({799.5, 599.5}), QPointF(800, 600));
    EXPECT_EQ(twice.regionCorner({799, 599}), QPointF(799, 599));
    // 1000 pixels are 666.67 points, and a view has whole ones.
    const OverlayCoordinates half{.view = {{0, 0, 667, 800}}, .primaryHeight = 800, .pixelSide = 1 / 1.5};
    EXPECT_EQ(half.regionCorner({999 / 1.5, 100}), QPointF(667, 100));
    EXPECT_EQ(half.regionCorner({998 / 1.5, 100}), QPointF(998 / 1.5, 100));
}

TEST(OverlayCoordinates, WithoutAFrameThereIsNoEdge) {
    for (const QPointF& point : {QPointF(0, 0), QPointF(-1, -0.5), QPointF(30, 40)})
        EXPECT_EQ(OverlayCoordinates().regionCorner(point), point);
}

} // namespace orvane
