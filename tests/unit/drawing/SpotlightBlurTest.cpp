#include "OrvaneCore/drawing/SpotlightBlur.h"

#include "OrvaneCore/drawing/GaussianBlur.h"
#include "tests/support/KnownPicture.h"

#include <QByteArrayView>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace orvane {

namespace {

using test::knownPicture;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double sigma = 18;

/// Fails unless the sharp pixels are those of `picture` in exactly these areas, and all others those of the
/// blurred picture. All bytes count, the unused ones of a pixel too.
void expectSharpInside(const QImage& picture, const QImage& result, const std::vector<QRect>& areas) {
    ASSERT_EQ(result.size(), picture.size());
    ASSERT_EQ(result.format(), picture.format());
    const QImage blurred = gaussianBlur(picture, sigma).convertToFormat(picture.format());
    const int bytes = picture.depth() / 8;
    const auto pixel = [bytes](const QImage& of, int x, int y) {
        return QByteArrayView(of.constScanLine(y) + std::ptrdiff_t{x} * bytes, bytes);
    };
    int sameEverywhere = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool sharp = std::any_of(areas.begin(), areas.end(),
                                           [x, y](const QRect& area) { return area.contains(x, y); });
            ASSERT_EQ(pixel(result, x, y), pixel(sharp ? picture : blurred, x, y))
                << x << "," << y << (sharp ? " should be sharp" : " should be blurred");
            sameEverywhere += pixel(picture, x, y) == pixel(blurred, x, y) ? 1 : 0;
        }
    }
    // A picture that blurs to itself would prove nothing.
    ASSERT_LT(sameEverywhere, picture.width() * picture.height() / 50);
}

QImage picture() {
    return knownPicture(120, 90, false);
}

} // namespace

TEST(SpotlightBlur, BlursEverythingWithoutRectangles) {
    EXPECT_EQ(blurOutside(picture(), {}, sigma), gaussianBlur(picture(), sigma));
    expectSharpInside(picture(), blurOutside(picture(), {}, sigma), {});
}

TEST(SpotlightBlur, KeepsThePixelsInsideTheRectangle) {
    expectSharpInside(picture(), blurOutside(picture(), {{30, 20, 41, 17}}, sigma), {{30, 20, 41, 17}});
}

TEST(SpotlightBlur, KeepsThePixelsOfManyRectangles) {
    std::vector<QRectF> rects;
    std::vector<QRect> areas;
    for (int i = 0; i < 40; ++i) {
        const QRect area((i * 37) % 110, (i * 23) % 80, 3 + i % 5, 2 + i % 7);
        rects.push_back(area);
        areas.push_back(area);
    }
    expectSharpInside(picture(), blurOutside(picture(), rects, sigma), areas);
}

TEST(SpotlightBlur, KeepsOverlappingRectanglesAsOneArea) {
    expectSharpInside(picture(), blurOutside(picture(), {{10, 10, 30, 30}, {25, 5, 10, 60}}, sigma),
                      {{10, 10, 30, 30}, {25, 5, 10, 60}});
}

TEST(SpotlightBlur, ClipsWhatOverhangs) {
    expectSharpInside(
        picture(),
        blurOutside(picture(), {{-10, -20, 15, 30}, {110, 85, 500, 1e300}, {50, -5, 3, 200}}, sigma),
        {{0, 0, 5, 10}, {110, 85, 10, 5}, {50, 0, 3, 90}});
}

TEST(SpotlightBlur, IgnoresWhatLiesBesideThePicture) {
    expectSharpInside(picture(),
                      blurOutside(picture(),
                                  {{-50, 10, 50, 20}, {120, 10, 20, 20}, {10, -20, 20, 20}, {10, 90, 20, 20}},
                                  sigma),
                      {});
}

TEST(SpotlightBlur, KeepsAllOfAPictureThatIsCoveredWhole) {
    EXPECT_EQ(blurOutside(picture(), {{-1e300, -1e300, 1.7e308, 1.7e308}}, sigma), picture());
}

TEST(SpotlightBlur, GrowsFractionsToWholePixels) {
    expectSharpInside(picture(),
                      blurOutside(picture(), {{10.9, 20.1, 5.2, 3}, {50.25, 60.5, 0.1, 0.2}}, sigma),
                      {{10, 20, 7, 4}, {50, 60, 1, 1}});
}

TEST(SpotlightBlur, TakesRectanglesInPoints) {
    QImage fine = picture();
    fine.setDevicePixelRatio(2);
    const QImage result = blurOutside(fine, {{10, 15, 20.5, 7}, {50.3, 30, 100, 5}}, sigma);
    EXPECT_EQ(result.devicePixelRatio(), 2);
    expectSharpInside(fine, result, {{20, 30, 41, 14}, {100, 60, 20, 10}});
}

TEST(SpotlightBlur, AddsNoPixelForARoundingErrorOfTheScale) {
    QImage fine = picture();
    fine.setDevicePixelRatio(1.1);
    std::vector<QRectF> rects;
    std::vector<QRect> areas;
    for (int i = 0; i < 10; ++i) {
        const QRect area(3 + 11 * i, 1 + 9 * i, 4, 5);
        areas.push_back(area);
        rects.emplace_back(area.x() / 1.1, area.y() / 1.1, area.width() / 1.1, area.height() / 1.1);
    }
    expectSharpInside(fine, blurOutside(fine, rects, sigma), areas);
}

TEST(SpotlightBlur, TakesInvertedRectanglesAsTheirArea) {
    expectSharpInside(picture(), blurOutside(picture(), {{60, 50, -20, -30}, {90, 10, -5, 6}}, sigma),
                      {{40, 20, 20, 30}, {85, 10, 5, 6}});
}

TEST(SpotlightBlur, ClearsNothingForRectanglesThatAreNone) {
    const std::vector<QRectF> rects{
        {10.5, 10.5, 0, 20},          {10.5, 10.5, 20, 0},         {},
        {notANumber, 10, 20, 20},     {10, notANumber, 20, 20},    {10, 10, notANumber, 20},
        {10, 10, 20, notANumber},     {-infinity, 10, 20, 20},     {10, infinity, 20, 20},
        {10, 10, infinity, 20},       {10, 10, 20, -infinity},     {-infinity, -infinity, infinity, infinity},
        {1e300, 1e300, 1e300, 1e300}, {-1e308, -1e308, -1e308, 5}, {1.7e308, 0, 1.7e308, 50}};
    for (const QRectF& rect : rects) {
        EXPECT_EQ(blurOutside(picture(), {rect}, sigma), gaussianBlur(picture(), sigma))
            << rect.x() << " " << rect.y() << " " << rect.width() << " " << rect.height();
    }
    std::vector<QRectF> withAGoodOne = rects;
    withAGoodOne.emplace_back(30, 40, 10, 12);
    expectSharpInside(picture(), blurOutside(picture(), withAGoodOne, sigma), {{30, 40, 10, 12}});
}

TEST(SpotlightBlur, KeepsSharpPixelsExactInEveryFormatOfFullDepth) {
    const QImage transparent = knownPicture(120, 90, true);
    for (const QImage::Format format :
         {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied,
          QImage::Format_RGBA8888, QImage::Format_RGBX8888, QImage::Format_RGBA64, QImage::Format_Grayscale16,
          QImage::Format_BGR30}) {
        const QImage other = transparent.convertToFormat(format);
        expectSharpInside(other, blurOutside(other, {{31, 21, 40, 30}}, sigma), {{31, 21, 40, 30}});
    }
    const QImage mask = picture().convertToFormat(QImage::Format_Grayscale8);
    QImage alpha = mask;
    alpha.reinterpretAsFormat(QImage::Format_Alpha8);
    expectSharpInside(alpha, blurOutside(alpha, {{31, 21, 40, 30}}, sigma), {{31, 21, 40, 30}});
}

TEST(SpotlightBlur, KeepsTheColoursOfPalettesAndShallowFormats) {
    for (const QImage::Format format :
         {QImage::Format_Mono, QImage::Format_Indexed8, QImage::Format_RGB16, QImage::Format_RGB888,
          QImage::Format_Grayscale8, QImage::Format_ARGB4444_Premultiplied,
          QImage::Format_ARGB8565_Premultiplied}) {
        const QImage shallow = knownPicture(60, 50, true).convertToFormat(format);
        const QImage result = blurOutside(shallow, {{10, 12, 20, 15}}, sigma);
        EXPECT_EQ(result.depth(), 32) << format;
        EXPECT_EQ(result.hasAlphaChannel(), shallow.hasAlphaChannel()) << format;
        for (int y = 12; y < 27; ++y) {
            for (int x = 10; x < 30; ++x)
                ASSERT_EQ(result.pixel(x, y), shallow.pixel(x, y)) << format << ": " << x << "," << y;
        }
    }
}

TEST(SpotlightBlur, KeepsTheColoursOfATranslucentPalette) {
    QImage palette(40, 30, QImage::Format_Indexed8);
    palette.setColorTable({qRgba(200, 100, 50, 3), qRgba(1, 2, 3, 255), qRgba(90, 80, 255, 120)});
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x)
            palette.setPixel(x, y, static_cast<uint>(x / 2 + y / 3) % 3U);
    }
    const QImage result = blurOutside(palette, {{5, 5, 12, 9}}, sigma);
    for (int y = 5; y < 14; ++y) {
        for (int x = 5; x < 17; ++x)
            ASSERT_EQ(result.pixel(x, y), palette.pixel(x, y)) << x << "," << y;
    }
    EXPECT_NE(result.pixel(30, 20), palette.pixel(30, 20));
}

TEST(SpotlightBlur, GivesThePictureBackWhereThereIsNothingToBlur) {
    const QImage indexed = picture().convertToFormat(QImage::Format_Indexed8);
    for (const double none : {0.0, -3.0, -infinity, notANumber}) {
        const QImage result = blurOutside(indexed, {{10, 10, 20, 20}}, none);
        EXPECT_EQ(result.format(), QImage::Format_Indexed8) << none;
        EXPECT_EQ(result, indexed) << none;
    }
    EXPECT_TRUE(blurOutside(QImage(), {{10, 10, 20, 20}}, sigma).isNull());
}

TEST(SpotlightBlur, TakesTheSigmaItIsGiven) {
    for (const double other : {1.5, 6.0, infinity})
        EXPECT_EQ(blurOutside(picture(), {}, other), gaussianBlur(picture(), other)) << other;
}

TEST(SpotlightBlur, NeverTouchesItsInput) {
    const QImage input = picture();
    const QImage before = input.copy();
    const QImage result = blurOutside(input, {{10, 10, 20, 20}}, sigma);
    EXPECT_NE(result, before);
    EXPECT_EQ(input, before);
}

} // namespace orvane
