#include "OrvanePlatform/png/SpngWriter.h"

#include "tests/support/KnownPicture.h"

#include <gtest/gtest.h>

namespace orvane::png {

using test::knownPicture;

namespace {

/// The colour type in the header of a PNG (ISO/IEC 15948, IHDR): 2 for RGB, 6 for RGBA.
int colorType(const QByteArray& png) {
    return png.size() > 25 ? png[25] : -1;
}

} // namespace

TEST(SpngWriter, WritesOpaquePicturesAsRgb) {
    const QByteArray png = SpngWriter().encode(knownPicture(301, 199, false));
    EXPECT_EQ(colorType(png), 2);
    EXPECT_EQ(QImage::fromData(png, "PNG"), knownPicture(301, 199, false));
}

TEST(SpngWriter, IgnoresTheUnusedByteOfOpaquePixels) {
    QImage picture(2, 2, QImage::Format_RGB32);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 2; ++x)
            reinterpret_cast<QRgb*>(picture.scanLine(y))[x] = 0x00123456U;
    }
    EXPECT_EQ(QImage::fromData(SpngWriter().encode(picture)).pixel(1, 1), 0xff123456U);
}

TEST(SpngWriter, WritesTransparencyStraight) {
    const QImage picture = knownPicture(33, 70, true);
    const QByteArray png = SpngWriter().encode(picture.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    EXPECT_EQ(colorType(png), 6);
    const QImage decoded = QImage::fromData(png, "PNG").convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(decoded.pixel(0, 5), picture.pixel(0, 5));
    EXPECT_EQ(qAlpha(decoded.pixel(1, 5)), 0x80);
    EXPECT_NEAR(qRed(decoded.pixel(1, 5)), qRed(picture.pixel(1, 5)), 1);
}

TEST(SpngWriter, WritesAnySize) {
    for (const QSize& size :
         {QSize(1, 1), QSize(1, 300), QSize(4000, 1), QSize(7, 32), QSize(7, 33), QSize(7, 64)}) {
        EXPECT_EQ(QImage::fromData(SpngWriter().encode(knownPicture(size.width(), size.height(), false))),
                  knownPicture(size.width(), size.height(), false));
    }
}

TEST(SpngWriter, WritesAPartOfALargerPicture) {
    const QImage whole = knownPicture(100, 100, false);
    const QImage part(whole.constScanLine(10) + ptrdiff_t(20) * 4, 30, 40, whole.bytesPerLine(),
                      whole.format());
    EXPECT_EQ(QImage::fromData(SpngWriter().encode(part)), whole.copy(20, 10, 30, 40));
}

TEST(SpngWriter, HasNothingForANullPicture) {
    EXPECT_TRUE(SpngWriter().encode(QImage()).isEmpty());
}

} // namespace orvane::png
