#include "OrvanePlatform/media/video/VideoLimits.h"

#include "OrvaneCore/platform/PlatformError.h"

#include <gtest/gtest.h>

#include <climits>

namespace orvane::media {
namespace {

VideoFormat ofSize(int width, int height) {
    return {QSize(width, height), 30, 1'000'000, 60};
}

TEST(VideoLimitsTest, SizesWithoutPixelsAreImpossible) {
    EXPECT_THROW(requirePossible(ofSize(0, 0)), PlatformError);
    EXPECT_THROW(requirePossible(ofSize(0, 10)), PlatformError);
    EXPECT_THROW(requirePossible(ofSize(10, 0)), PlatformError);
    EXPECT_THROW(requirePossible(ofSize(-2, 10)), PlatformError);
    EXPECT_THROW(requirePossible(ofSize(10, INT_MIN)), PlatformError);
    EXPECT_THROW(requirePossible(VideoFormat{}), PlatformError);
}

TEST(VideoLimitsTest, SizesThatH264DoesNotKnowAreImpossible) {
    EXPECT_NO_THROW(requirePossible(ofSize(1, 1)));
    EXPECT_NO_THROW(requirePossible(ofSize(3 * 3840, 2160)));
    EXPECT_NO_THROW(requirePossible(ofSize(8192, 4320)));
    EXPECT_NO_THROW(requirePossible(ofSize(16'384, 2160)));
    EXPECT_THROW(requirePossible(ofSize(16'385, 16)), PlatformError);
    EXPECT_THROW(requirePossible(ofSize(16, 16'385)), PlatformError);
    EXPECT_THROW(requirePossible(ofSize(16'384, 4320)), PlatformError);
    EXPECT_THROW(requirePossible(ofSize(INT_MAX, INT_MAX)), PlatformError);
}

TEST(VideoLimitsTest, RatesAndIntervalsThatAreNoneAreImpossible) {
    for (const int framesPerSecond : {0, -1, 1001, INT_MAX}) {
        VideoFormat format = ofSize(64, 64);
        format.framesPerSecond = framesPerSecond;
        EXPECT_THROW(requirePossible(format), PlatformError) << framesPerSecond;
    }
    for (const qint64 bits : {qint64{0}, qint64{-1}, qint64{1'000'000'001}}) {
        VideoFormat format = ofSize(64, 64);
        format.bitsPerSecond = bits;
        EXPECT_THROW(requirePossible(format), PlatformError) << bits;
    }
    for (const int interval : {0, -60}) {
        VideoFormat format = ofSize(64, 64);
        format.keyFrameInterval = interval;
        EXPECT_THROW(requirePossible(format), PlatformError) << interval;
    }
}

TEST(VideoLimitsTest, StoredSizesAreEven) {
    EXPECT_EQ(storedSize({641, 479}), QSize(642, 480));
    EXPECT_EQ(storedSize({1, 2}), QSize(2, 2));
    EXPECT_EQ(storedSize({1920, 1080}), QSize(1920, 1080));
}

} // namespace
} // namespace orvane::media
