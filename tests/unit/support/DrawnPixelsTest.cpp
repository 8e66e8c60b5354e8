#include "tests/support/DrawnPixels.h"

#include <gtest/gtest.h>

namespace orvane::test {

namespace {

constexpr QRgb red = 0xFFFF0000;

QImage withRect(const QRectF& rect, QRgb color) {
    QImage picture = ground({20, 10});
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect, QColor(color));
    return picture;
}

} // namespace

TEST(DrawnPixels, BlendsColours) {
    EXPECT_EQ(blended(red, 0, white), white);
    EXPECT_EQ(blended(red, 1, white), red);
    EXPECT_EQ(blended(qRgb(100, 0, 200), 0.25, qRgb(0, 100, 100)), qRgb(25, 75, 125));
}

TEST(DrawnPixels, TellsColoursApartByTheirWorstChannel) {
    EXPECT_EQ(colorDistance(red, red), 0);
    EXPECT_EQ(colorDistance(qRgb(10, 20, 30), qRgb(12, 13, 35)), 7);
    EXPECT_EQ(colorDistance(qRgb(10, 20, 30), qRgb(12, 23, 21)), 9);
}

TEST(DrawnPixels, FindsThePixelThatIsNotFilled) {
    QImage picture = ground({6, 5}, red);
    EXPECT_TRUE(isFilled(picture, picture.rect(), red));
    picture.setPixel(5, 4, qRgb(253, 0, 0));
    EXPECT_FALSE(isFilled(picture, picture.rect(), red));
    EXPECT_TRUE(isFilled(picture, picture.rect(), red, 2));
    EXPECT_TRUE(isFilled(picture, QRect(0, 0, 5, 5), red));
    EXPECT_FALSE(isFilled(picture, QRect(0, 0, 7, 5), red)) << "partly outside";
    EXPECT_FALSE(isFilled(picture, QRect(), red)) << "no pixel at all";
}

TEST(DrawnPixels, SamplesThePixelThatHoldsAPoint) {
    QImage picture = ground({4, 4});
    picture.setPixel(2, 1, red);
    EXPECT_TRUE(isColor(picture, {2.0, 1.0}, red));
    EXPECT_TRUE(isColor(picture, {2.99, 1.99}, red));
    EXPECT_FALSE(isColor(picture, {3.0, 1.5}, red));
    EXPECT_FALSE(isColor(picture, {-0.5, 1}, white)) << "outside";
}

TEST(DrawnPixels, KnowsThePixelsInside) {
    EXPECT_EQ(pixelsInside({1, 2, 3, 4}), QRect(1, 2, 3, 4));
    EXPECT_EQ(pixelsInside({0.5, 1.25, 3, 4}), QRect(1, 2, 2, 3));
    EXPECT_TRUE(pixelsInside({0.5, 0.5, 1, 1}).isEmpty());
}

TEST(DrawnPixels, FindsTheBoundsOfInk) {
    EXPECT_TRUE(inkBounds(ground({9, 9})).isEmpty());
    EXPECT_TRUE(inkBounds(ground({9, 9}, red), red).isEmpty());
    EXPECT_EQ(inkBounds(withRect({3, 2, 5, 4}, red)), QRect(3, 2, 5, 4));
    QImage picture = ground({9, 9});
    picture.setPixel(0, 8, qRgb(255, 255, 250));
    EXPECT_EQ(inkBounds(picture), QRect(0, 8, 1, 1));
    EXPECT_TRUE(inkBounds(picture, white, 5).isEmpty());
}

TEST(DrawnPixels, MeasuresPartsOfPixels) {
    const QImage picture = withRect({3.25, 2.5, 6.5, 4.25}, red);
    EXPECT_TRUE(isSpan(spanInRow(picture, 4.5, 0, 19, white, red), 3.25, 9.75, 0.02));
    EXPECT_TRUE(isSpan(spanInColumn(picture, 6.5, 0, 9, white, red), 2.5, 6.75, 0.02));
    EXPECT_FALSE(isSpan(spanInRow(picture, 4.5, 0, 19, white, red), 3.25, 9.85));
    EXPECT_NEAR(spanInRow(picture, 2.5, 0, 19, white, red).length(), 3.25, 0.02) << "half of that row";
    EXPECT_EQ(spanInRow(picture, 0.5, 0, 19, white, red).length(), 0) << "no ink there";
    EXPECT_TRUE(isSpan(spanInRow(picture, 4.5, -50, 50, white, red), 3.25, 9.75, 0.02)) << "to the edges";
    EXPECT_EQ(spanInRow(picture, 50, 0, 19, white, red).length(), 0) << "outside";
    EXPECT_NEAR(coverage(blended(red, 0.35, white), white, red), 0.35, 0.002);
}

TEST(DrawnPixels, ComparesPictures) {
    const QImage picture = ground({10, 10});
    EXPECT_EQ(difference(picture, picture, 0).mean, 0);
    QImage other = picture;
    other.setPixel(9, 9, qRgb(255, 225, 255));
    const Difference found = difference(picture, other, 29);
    EXPECT_DOUBLE_EQ(found.mean, 0.1);
    EXPECT_DOUBLE_EQ(found.share, 0.01);
    EXPECT_EQ(found.largest, 30);
    EXPECT_EQ(difference(picture, other, 30).share, 0);
}

TEST(DrawnPixels, NoticesWhatAPainterDidNotGiveBack) {
    QImage picture = ground({10, 10});
    QPainter painter(&picture);
    const PainterSettings fresh(painter);
    EXPECT_EQ(PainterSettings(painter), fresh);
    setUnusual(painter);
    const PainterSettings unusual(painter);
    EXPECT_NE(unusual.pen, fresh.pen);
    EXPECT_NE(unusual.brush, fresh.brush);
    EXPECT_NE(unusual.font, fresh.font);
    EXPECT_NE(unusual.transform, fresh.transform);
    EXPECT_NE(unusual.compositionMode, fresh.compositionMode);
    EXPECT_NE(unusual.renderHints, fresh.renderHints);
    EXPECT_NE(unusual.opacity, fresh.opacity);
    painter.setClipRect(0, 0, 3, 3);
    EXPECT_NE(PainterSettings(painter), unusual);
}

} // namespace orvane::test
