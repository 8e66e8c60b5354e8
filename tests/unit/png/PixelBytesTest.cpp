#include "OrvanePlatform/png/PixelBytes.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvane::png {

namespace {

constexpr uchar untouched = 0xa5;

} // namespace

TEST(PixelBytes, AreRedGreenAndBlueOfAnyNumberOfPixelsAndNothingBehind) {
    for (int count = 0; count <= 40; ++count) {
        std::vector<QRgb> pixels;
        std::vector<uchar> expected;
        for (int i = 0; i < count; ++i) {
            // Every byte has a value of its own, the unused fourth one as well.
            const int value = 6 * i;
            pixels.push_back(qRgba(value, value + 1, value + 2, 255 - i));
            for (int channel = 0; channel < 3; ++channel)
                expected.push_back(static_cast<uchar>(value + channel));
        }
        expected.resize(expected.size() + 16, untouched);
        std::vector<uchar> bytes(expected.size(), untouched);
        packRgb(pixels.data(), count, bytes.data());
        EXPECT_EQ(bytes, expected) << count << " pixels";
    }
}

} // namespace orvane::png
