#include "OrvanePlatform/ocr/layout/LineFinder.h"

#include "tests/unit/ocr/TextPicture.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace orvane::ocr {
namespace {

using test::drawLine;
using test::DrawnText;
using test::interfaceFont;

QImage sheet(int width, int height, const QColor& colour = Qt::white) {
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

std::vector<QRect> boxesOf(const QImage& picture) {
    std::vector<QRect> boxes;
    for (const FoundLine& line : findLines(picture))
        boxes.push_back(line.box);
    return boxes;
}

/// Antialiasing leaves traces beside a letter that are too faint to count.
bool isBoxOf(const QRect& box, const QRect& ink) {
    return ink.contains(box) && box.adjusted(-1, -1, 1, 1).contains(ink);
}

TEST(LineFinderTest, FindsNothingWhereNothingIs) {
    EXPECT_TRUE(boxesOf(sheet(300, 200)).empty());
    EXPECT_TRUE(boxesOf(sheet(1, 1, Qt::black)).empty());
}

TEST(LineFinderTest, ALineIsOneBoxAroundAllItsMarks) {
    for (const int size : {11, 13, 18, 30, 60}) {
        for (const QString& text : {u"\"Don't\" go: i = a_b - c;"_s, u"snake_case_"_s, u"a - b = c..."_s}) {
            QImage picture = sheet(1500, 140);
            const DrawnText drawn = drawLine(picture, {20, 20}, text, Qt::black, interfaceFont(size));

            const std::vector<QRect> boxes = boxesOf(picture);

            ASSERT_EQ(boxes.size(), 1U) << text.toStdString() << " at " << size;
            EXPECT_TRUE(isBoxOf(boxes[0], drawn.ink)) << text.toStdString() << " at " << size;
        }
    }
}

TEST(LineFinderTest, ALineOfLargeBoldLettersIsOneBox) {
    for (const int size : {24, 40, 80}) {
        QImage picture = sheet(1500, 140);
        QFont font = interfaceFont(size);
        font.setBold(true);
        const DrawnText drawn = drawLine(picture, {20, 20}, u"Big B8 (0) Dog: HIM"_s, Qt::black, font);

        const std::vector<QRect> boxes = boxesOf(picture);

        ASSERT_EQ(boxes.size(), 1U) << size;
        EXPECT_TRUE(isBoxOf(boxes[0], drawn.ink)) << size;
    }
}

TEST(LineFinderTest, LinesOneBelowTheOtherStayApart) {
    QImage picture = sheet(300, 100);
    const QFont font = interfaceFont(11);
    std::vector<DrawnText> drawn;
    drawn.reserve(4);
    for (int row = 0; row < 4; ++row)
        drawn.push_back(drawLine(picture, {10, 5 + 14 * row}, u"jumping quickly"_s, Qt::black, font));

    const std::vector<QRect> boxes = boxesOf(picture);

    ASSERT_EQ(boxes.size(), 4U);
    for (size_t row = 0; row < 4; ++row)
        EXPECT_TRUE(isBoxOf(boxes[row], drawn[row].ink)) << row;
}

TEST(LineFinderTest, NothingJoinsAcrossALineBetweenTwoCells) {
    for (const bool hasLine : {false, true}) {
        QImage picture = sheet(200, 40);
        drawLine(picture, {10, 10}, u"left"_s, Qt::black, interfaceFont());
        drawLine(picture, {44, 10}, u"right"_s, Qt::black, interfaceFont());
        if (hasLine)
            QPainter(&picture).fillRect(QRect(39, 0, 1, 40), QColor(225, 225, 225));

        EXPECT_EQ(boxesOf(picture).size(), hasLine ? 2U : 1U);
    }
}

TEST(LineFinderTest, ColumnsThatStandApartAreLinesOfTheirOwn) {
    QImage picture = sheet(400, 40);
    drawLine(picture, {10, 10}, u"Name"_s, Qt::black, interfaceFont());
    drawLine(picture, {120, 10}, u"Size"_s, Qt::black, interfaceFont());

    EXPECT_EQ(boxesOf(picture).size(), 2U);
}

TEST(LineFinderTest, AButtonsBorderIsNoLine) {
    QImage picture = sheet(140, 60);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::darkGray);
    painter.setBrush(QColor(230, 230, 230));
    painter.drawRoundedRect(QRectF(10.5, 10.5, 90, 30), 4, 4);
    painter.end();
    const DrawnText drawn = drawLine(picture, {30, 16}, u"Save"_s, Qt::black, interfaceFont());

    const std::vector<QRect> boxes = boxesOf(picture);

    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_TRUE(isBoxOf(boxes[0], drawn.ink));
}

TEST(LineFinderTest, ACheckBoxAndARuleAreNoLetters) {
    QImage picture = sheet(200, 60);
    QPainter painter(&picture);
    painter.setPen(Qt::darkGray);
    painter.drawRect(10, 10, 13, 13);
    painter.drawLine(10, 40, 80, 40);
    painter.end();
    const DrawnText drawn = drawLine(picture, {30, 10}, u"Remember me"_s, Qt::black, interfaceFont());

    const std::vector<QRect> boxes = boxesOf(picture);

    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_TRUE(isBoxOf(boxes[0], drawn.ink));
}

TEST(LineFinderTest, AnImageOfNoiseHasNoLines) {
    QImage picture = sheet(400, 300);
    std::mt19937 random(5);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, static_cast<QRgb>(random()));
    }
    EXPECT_TRUE(boxesOf(picture).empty());
}

TEST(LineFinderTest, TakesTheTopmostOfTooMany) {
    QImage picture = sheet(1600, 1600);
    QPainter painter(&picture);
    for (int y = 10; y + 8 < picture.height(); y += 20) {
        for (int x = 10; x + 6 < picture.width(); x += 20)
            painter.fillRect(x, y, 6, 8, Qt::black);
    }
    painter.end();
    const std::vector<QRect> boxes = boxesOf(picture);
    ASSERT_EQ(boxes.size(), mostLines);
    // 80 in a row.
    for (const QRect& box : boxes)
        EXPECT_LT(box.top(), 10 + 20 * 38);
}

TEST(LineFinderTest, TakesAPatternOfDotsForNoText) {
    QImage picture = sheet(2400, 2400);
    for (int y = 0; y < picture.height(); y += 6) {
        for (int x = 0; x < picture.width(); x += 6)
            picture.setPixel(x, y, qRgb(0, 0, 0));
    }
    EXPECT_TRUE(boxesOf(picture).empty());
}

} // namespace
} // namespace orvane::ocr
