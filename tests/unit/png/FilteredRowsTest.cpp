#include "OrvanePlatform/png/FilteredRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane::png {

namespace {

using testing::ElementsAre;

/// 2x3 pixels.
QImage smallPicture() {
    QImage picture(2, 3, QImage::Format_RGB32);
    picture.setPixel(0, 0, qRgb(10, 20, 30));
    picture.setPixel(1, 0, qRgb(11, 22, 33));
    picture.setPixel(0, 1, qRgb(15, 10, 30));
    picture.setPixel(1, 1, qRgb(0, 0, 255));
    picture.setPixel(0, 2, qRgb(15, 11, 32));
    picture.setPixel(1, 2, qRgb(255, 1, 0));
    return picture;
}

constexpr RowRange allRows{.first = 0, .count = 3};

} // namespace

TEST(FilteredRows, AreThePixelsThemselvesWithoutFilter) {
    const QImage picture = smallPicture();
    FilteredRows rows(picture);
    EXPECT_EQ(rows.count(), 3);
    EXPECT_EQ(rows.bytes(), 7);
    EXPECT_FALSE(rows.hasAlpha());
    EXPECT_THAT(rows.read(allRows, RowFilter::none),
                ElementsAre(0, 10, 20, 30, 11, 22, 33, 0, 15, 10, 30, 0, 0, 255, 0, 15, 11, 32, 255, 1, 0));
}

TEST(FilteredRows, TellWhatIsMoreThanInThePixelBefore) {
    const QImage picture = smallPicture();
    EXPECT_THAT(
        FilteredRows(picture).read(allRows, RowFilter::sub),
        ElementsAre(1, 10, 20, 30, 1, 2, 3, 1, 15, 10, 30, 241, 246, 225, 1, 15, 11, 32, 240, 246, 224));
}

TEST(FilteredRows, TellWhatIsMoreThanInThePixelAbove) {
    const QImage picture = smallPicture();
    EXPECT_THAT(FilteredRows(picture).read(allRows, RowFilter::up),
                ElementsAre(2, 10, 20, 30, 11, 22, 33, 2, 5, 246, 0, 245, 234, 222, 2, 0, 1, 2, 255, 1, 1));
}

TEST(FilteredRows, AreTheSameInPartsAsInOne) {
    const QImage picture = smallPicture();
    FilteredRows rows(picture);
    for (const RowFilter filter : {RowFilter::none, RowFilter::sub, RowFilter::up}) {
        const auto read = rows.read(allRows, filter);
        const std::vector<uchar> whole(read.begin(), read.end());
        std::vector<uchar> parts;
        // The last part after the first one, whose memory it uses again.
        for (const RowRange part : {RowRange{.first = 0, .count = 1}, RowRange{.first = 1, .count = 2}}) {
            const auto some = rows.read(part, filter);
            parts.insert(parts.end(), some.begin(), some.end());
        }
        EXPECT_EQ(parts, whole);
        const auto again = rows.read({.first = 0, .count = 1}, filter);
        EXPECT_TRUE(std::equal(again.begin(), again.end(), whole.begin()));
    }
}

TEST(FilteredRows, HaveAlphaThatIsNotMultipliedIn) {
    QImage picture(2, 2, QImage::Format_ARGB32_Premultiplied);
    picture.fill(0);
    picture.setPixelColor(1, 0, QColor(255, 0, 0, 128));
    picture.setPixelColor(0, 1, QColor(1, 2, 3));
    FilteredRows rows(picture);
    EXPECT_TRUE(rows.hasAlpha());
    EXPECT_EQ(rows.bytes(), 9);
    EXPECT_THAT(rows.read({.first = 0, .count = 2}, RowFilter::none),
                ElementsAre(0, 0, 0, 0, 0, 255, 0, 0, 128, 0, 1, 2, 3, 255, 0, 0, 0, 0));
    EXPECT_THAT(rows.read({.first = 0, .count = 2}, RowFilter::sub),
                ElementsAre(1, 0, 0, 0, 0, 255, 0, 0, 128, 1, 1, 2, 3, 255, 255, 254, 253, 1));
    EXPECT_THAT(rows.read({.first = 1, .count = 1}, RowFilter::up),
                ElementsAre(2, 1, 2, 3, 255, 1, 0, 0, 128));
}

} // namespace orvane::png
