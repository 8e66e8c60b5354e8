#include "OrvaneCore/capture/RegionSize.h"

#include <gtest/gtest.h>

namespace orvane {

namespace {

bool isTaken(const QSizeF& pixels) {
    try {
        checkRegionSize(pixels, pixels);
        return true;
    } catch (const RegionSizeError&) {
        return false;
    }
}

} // namespace

TEST(RegionSize, BeginsWithOnePixel) {
    EXPECT_TRUE(isTaken({1, 1}));
    EXPECT_FALSE(isTaken({0.99, 1}));
    EXPECT_FALSE(isTaken({1, 0.99}));
    EXPECT_FALSE(isTaken({qQNaN(), 1}));
    EXPECT_FALSE(isTaken({1, qQNaN()}));
}

TEST(RegionSize, EndsWithTheLongestSideAndTheMostPixels) {
    EXPECT_TRUE(isTaken({16384, 1}));
    EXPECT_TRUE(isTaken({1, 16384}));
    EXPECT_FALSE(isTaken({16384.5, 1}));
    EXPECT_FALSE(isTaken({1, 16384.5}));
    EXPECT_TRUE(isTaken({16384, 4096}));
    EXPECT_FALSE(isTaken({16384, 4097}));
    EXPECT_FALSE(isTaken({4097, 16384}));
}

TEST(RegionSize, SaysWhatIsTooLargeInTheUnitsOfTheCaller) {
    try {
        checkRegionSize({20000, 10}, {10000, 5});
        FAIL();
    } catch (const RegionSizeError& error) {
        EXPECT_STREQ(error.what(), "A region of 10000x5 is too large: a side may have 16384 pixels and the "
                                   "whole 64 million.");
    }
}

} // namespace orvane
