#include "OrvanePlatform/ocr/layout/LinePicture.h"

#include "tests/unit/ocr/TextPicture.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace orvane::ocr {
namespace {

/// The darkest and the lightest of a picture's pixels.
std::pair<int, int> extremes(const QImage& gray) {
    int darkest = 255;
    int lightest = 0;
    for (int y = 0; y < gray.height(); ++y) {
        const auto [low, high] =
            std::minmax_element(gray.constScanLine(y), gray.constScanLine(y) + gray.width());
        darkest = std::min(darkest, int{*low});
        lightest = std::max(lightest, int{*high});
    }
    return {darkest, lightest};
}

QImage lineIn(const QColor& ink, const QColor& background, int size = 13, const LineShape& shape = lowLine) {
    const QImage picture = test::pictureOf(u"Highlight"_s, ink, background, test::interfaceFont(size));
    return linePicture(picture, test::inkIn(picture, picture.rect()), shape);
}

TEST(LinePictureTest, IsBlackOnWhiteWhateverTheColours) {
    const std::vector<std::pair<QColor, QColor>> pairs{
        {Qt::black, Qt::white},
        {Qt::white, Qt::black},
        {QColor(90, 90, 90), QColor(45, 45, 45)},
        {QColor(200, 60, 60), QColor(60, 60, 200)},
        {QColor(150, 150, 150), QColor(250, 250, 240)},
    };
    for (const auto& [ink, background] : pairs) {
        const QImage line = lineIn(ink, background);
        ASSERT_EQ(line.format(), QImage::Format_Grayscale8);
        const auto [darkest, lightest] = extremes(line);
        EXPECT_LT(darkest, 40) << ink.name().toStdString() << " on " << background.name().toStdString();
        EXPECT_EQ(lightest, 255);
        for (int x = 0; x < line.width(); ++x) {
            EXPECT_EQ(line.constScanLine(0)[x], 255);
            EXPECT_EQ(line.constScanLine(line.height() - 1)[x], 255);
        }
    }
}

TEST(LinePictureTest, HasOneHeightForEverySizeOfText) {
    for (const int size : {8, 11, 18, 40, 120}) {
        EXPECT_EQ(lineIn(Qt::black, Qt::white, size, lowLine).height(), 40) << size;
        EXPECT_EQ(lineIn(Qt::black, Qt::white, size, tallLine).height(), 48) << size;
    }
}

TEST(LinePictureTest, TheInkOfALineFillsAllButItsMargins) {
    for (const LineShape& shape : {lowLine, tallLine}) {
        const QImage line = lineIn(Qt::black, Qt::white, 40, shape);
        const QRect ink = test::inkIn(line.convertToFormat(QImage::Format_RGB32), line.rect());
        const double without = shape.height / (1 + 2 * shape.marginAbove);
        EXPECT_NEAR(ink.height(), without, 1.5) << shape.height;
        EXPECT_NEAR(ink.center().y(), shape.height / 2.0, 1.5) << shape.height;
    }
}

TEST(LinePictureTest, KeepsTheProportions) {
    const QImage line = lineIn(Qt::black, Qt::white, 13);
    const QImage doubled = lineIn(Qt::black, Qt::white, 26);
    EXPECT_NEAR(line.width(), doubled.width(), line.width() / 10.0);
}

TEST(LinePictureTest, ALineAtTheEdgeOfThePictureIsTakenWhole) {
    QImage picture(20, 10, QImage::Format_RGB32);
    picture.fill(Qt::white);
    const QImage line = linePicture(picture, picture.rect(), lowLine);
    EXPECT_EQ(extremes(line), std::pair(255, 255));
}

} // namespace
} // namespace orvane::ocr
