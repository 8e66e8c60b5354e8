#include "OrvanePlatform/png/FilterChoice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace orvane::png {

namespace {

constexpr QSize large(1200, 900);
constexpr QSize small(40, 30);

QImage picture(const QSize& size, const std::function<QRgb(int, int)>& pixel) {
    QImage drawn(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            drawn.setPixel(x, y, pixel(x, y));
    }
    return drawn;
}

RowFilter chosenFor(const QImage& image) {
    FilteredRows rows(image);
    return chooseFilter(rows);
}

/// A colour for each number, without order: a step of a hash by Knuth, spread over all bits.
QRgb anyColor(int number) {
    quint32 mixed = static_cast<quint32>(number) * 2'654'435'761U;
    mixed = (mixed ^ (mixed >> 15)) * 2'246'822'519U;
    return (mixed ^ (mixed >> 13)) & 0xffffffU;
}

QRgb brighter(QRgb color, int by) {
    return qRgb((qRed(color) + by) & 0xff, (qGreen(color) + by) & 0xff, (qBlue(color) + by) & 0xff);
}

} // namespace

TEST(FilterChoice, IsThePixelAboveWhereColumnsChangeSlowly) {
    for (const QSize& size : {large, small}) {
        EXPECT_EQ(chosenFor(picture(size, [](int x, int y) { return brighter(anyColor(x), y); })),
                  RowFilter::up);
    }
}

TEST(FilterChoice, IsThePixelBeforeWhereRowsChangeSlowly) {
    for (const QSize& size : {large, small}) {
        EXPECT_EQ(chosenFor(picture(size, [](int x, int y) { return brighter(anyColor(y), x); })),
                  RowFilter::sub);
    }
}

TEST(FilterChoice, IsNoneWhereTheSameComesAgain) {
    // Thirty letters with soft edges, one behind the other without order, as in windows with text.
    for (const QSize& size : {large, small}) {
        const QImage text = picture(size, [](int x, int y) {
            const auto letter = static_cast<int>(anyColor(x / 8 + 512 * (y / 16)) % 30);
            const auto cover = static_cast<int>(anyColor(128 * letter + x % 8 + 8 * (y % 16)) % 512);
            return brighter(0xff202028U, std::max(0, cover - 300));
        });
        EXPECT_EQ(chosenFor(text), RowFilter::none);
    }
}

TEST(FilterChoice, IsNoneWhereNothingHelps) {
    EXPECT_EQ(chosenFor(picture(large, [](int x, int y) { return anyColor(x + 1200 * y); })),
              RowFilter::none);
    EXPECT_EQ(chosenFor(picture({1, 1}, [](int, int) { return 0xff8080c0U; })), RowFilter::none);
}

TEST(FilterChoice, LooksAtMoreThanTheTopAndTheMiddle) {
    // A title bar of a single colour and another bar in the middle, and around it what a filter is for.
    const auto below = [](int x, int y) {
        return y < 60 || (y > 400 && y < 500) ? 0xff404040U : brighter(anyColor(x), y);
    };
    EXPECT_EQ(chosenFor(picture(large, below)), RowFilter::up);
}

} // namespace orvane::png
