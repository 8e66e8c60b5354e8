#include "OrvaneCore/tools/WindowCrop.h"

#include "OrvaneCore/capture/RegionSize.h"
#include "tests/support/KnownPicture.h"

#include <gtest/gtest.h>

namespace orvane {

namespace {

using test::knownPicture;
using test::knownPixel;

/// A window of 100x80 points at the given scale.
WindowCapture windowAtScale(int scale) {
    return {.image = knownPicture(100 * scale, 80 * scale, false), .width = 100, .height = 80};
}

} // namespace

TEST(WindowCrop, TakesPointsFromTheTopLeft) {
    const QImage crop = cropWindow(windowAtScale(1), {10, 20, 30, 40});
    EXPECT_EQ(crop.size(), QSize(30, 40));
    EXPECT_EQ(crop.pixel(0, 0), knownPixel(10, 20));
    EXPECT_EQ(crop.pixel(29, 39), knownPixel(39, 59));
}

TEST(WindowCrop, TakesEveryPixelOfAScaledWindow) {
    const QImage crop = cropWindow(windowAtScale(2), {10, 20, 30, 40});
    EXPECT_EQ(crop.size(), QSize(60, 80));
    EXPECT_EQ(crop.pixel(0, 0), knownPixel(20, 40));
    EXPECT_EQ(crop.pixel(59, 79), knownPixel(79, 119));
}

TEST(WindowCrop, ScalesEachAxisByItself) {
    const WindowCapture window{.image = knownPicture(200, 80, false), .width = 100, .height = 80};
    const QImage crop = cropWindow(window, {10, 20, 30, 40});
    EXPECT_EQ(crop.size(), QSize(60, 40));
    EXPECT_EQ(crop.pixel(0, 0), knownPixel(20, 20));
}

TEST(WindowCrop, CountsAWindowOfNoWholePointAsOne) {
    const WindowCapture window{.image = knownPicture(200, 80, false), .width = 0, .height = 0};
    EXPECT_EQ(cropWindow(window, {0, 0, 0.5, 0.5}).size(), QSize(100, 40));
}

TEST(WindowCrop, LeavesTransparentWhatLiesBeyondTheWindow) {
    const QImage crop = cropWindow(windowAtScale(1), {-5, 70, 20, 30});
    EXPECT_EQ(crop.size(), QSize(20, 30));
    EXPECT_EQ(qAlpha(crop.pixel(4, 0)), 0);
    EXPECT_EQ(crop.pixel(5, 0), knownPixel(0, 70));
    EXPECT_EQ(crop.pixel(19, 9), knownPixel(14, 79));
    EXPECT_EQ(qAlpha(crop.pixel(19, 10)), 0);
}

TEST(WindowCrop, IsAllTransparentFarAway) {
    const QImage crop = cropWindow(windowAtScale(1), {1e18, -1e18, 3, 3});
    EXPECT_EQ(crop.size(), QSize(3, 3));
    EXPECT_EQ(qAlpha(crop.pixel(1, 1)), 0);
}

TEST(WindowCrop, RefusesSizesNoPictureCanHave) {
    for (const QSizeF& size :
         {QSizeF(0, 5), QSizeF(5, 0), QSizeF(-1, 5), QSizeF(1e18, 5), QSizeF(9000, 9000)})
        EXPECT_THROW(cropWindow(windowAtScale(1), {QPointF(0, 0), size}), RegionSizeError);
}

} // namespace orvane
