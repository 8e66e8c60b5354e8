#include "OrvanePlatform/ocr/layout/InkMap.h"

#include <QPainter>

#include <gtest/gtest.h>

namespace orvane::ocr {
namespace {

QImage plain(int width, int height, const QColor& colour) {
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

void fill(QImage& picture, const QRect& box, const QColor& colour) {
    QPainter(&picture).fillRect(box, colour);
}

std::vector<QRect> boxesOf(const InkMap& map) {
    std::vector<QRect> boxes;
    boxes.reserve(map.pieces().size());
    for (const InkPiece& piece : map.pieces())
        boxes.push_back(piece.box);
    return boxes;
}

TEST(InkMapTest, APlainPictureHasNoInk) {
    EXPECT_TRUE(InkMap(plain(60, 40, Qt::white)).pieces().empty());
    EXPECT_TRUE(InkMap(plain(1, 1, Qt::black)).pieces().empty());
}

TEST(InkMapTest, FindsInkThatIsDarkerAndInkThatIsLighter) {
    for (const bool isDark : {false, true}) {
        QImage picture = plain(60, 40, isDark ? Qt::black : Qt::white);
        fill(picture, {10, 8, 3, 12}, isDark ? Qt::white : Qt::black);
        fill(picture, {20, 8, 5, 6}, Qt::gray);

        EXPECT_EQ(boxesOf(InkMap(picture)), (std::vector{QRect(10, 8, 3, 12), QRect(20, 8, 5, 6)}));
    }
}

TEST(InkMapTest, InkThatFillsThePictureFromEdgeToEdgeHasBackgroundAroundIt) {
    QImage picture = plain(12, 12, Qt::white);
    fill(picture, {5, 0, 2, 12}, Qt::black);

    const InkMap map(picture);

    ASSERT_EQ(boxesOf(map), std::vector{QRect(5, 0, 2, 12)});
    EXPECT_NE(map.pieces()[0].area, InkMap::ink);
}

TEST(InkMapTest, PiecesHangTogetherByTheCornersOfTheirPixels) {
    QImage picture = plain(60, 40, Qt::white);
    fill(picture, {10, 10, 4, 4}, Qt::black);
    fill(picture, {14, 14, 4, 4}, Qt::black);
    fill(picture, {6, 14, 4, 4}, Qt::black);

    EXPECT_EQ(boxesOf(InkMap(picture)), std::vector{QRect(6, 10, 12, 8)});
}

TEST(InkMapTest, AGradientIsBackground) {
    QImage picture = plain(256, 40, Qt::white);
    for (int x = 0; x < 256; ++x)
        fill(picture, {x, 0, 1, 40}, QColor(255 - x, 255 - x, 255 - x));
    fill(picture, {100, 10, 3, 12}, Qt::white);

    EXPECT_EQ(boxesOf(InkMap(picture)), std::vector{QRect(100, 10, 3, 12)});
}

TEST(InkMapTest, TwoPanesAreTwoAreas) {
    QImage picture = plain(80, 40, Qt::white);
    fill(picture, {40, 0, 40, 40}, Qt::black);
    fill(picture, {10, 10, 3, 12}, Qt::black);
    fill(picture, {20, 10, 3, 12}, Qt::black);
    fill(picture, {50, 10, 3, 12}, Qt::white);

    const InkMap map(picture);

    ASSERT_EQ(map.pieces().size(), 3U);
    EXPECT_EQ(map.pieces()[0].area, map.pieces()[1].area);
    EXPECT_NE(map.pieces()[0].area, map.pieces()[2].area);
    EXPECT_TRUE(map.isClear(15, 13, 20, map.pieces()[0].area));
    EXPECT_FALSE(map.isClear(15, 12, 20, map.pieces()[0].area));
    EXPECT_FALSE(map.isClear(15, 23, 50, map.pieces()[0].area));
}

TEST(InkMapTest, TheFaceOfASmallButtonIsBackgroundHoweverDenseItsTextIs) {
    for (const double radius : {0.0, 4.0, 12.0}) {
        QImage picture = plain(100, 60, Qt::white);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(30, 90, 200));
        painter.drawRoundedRect(QRectF(20, 20, 50, 24), radius, radius);
        painter.end();
        for (int x = 28; x < 62; x += 3)
            fill(picture, {x, 25, 2, 14}, Qt::white);

        const InkMap map(picture);

        int strokes = 0;
        for (const InkPiece& piece : map.pieces())
            strokes += piece.box.size() == QSize(2, 14) && piece.area != InkMap::ink ? 1 : 0;
        EXPECT_EQ(strokes, 12) << radius;
    }
}

TEST(InkMapTest, TheBorderOfAButtonIsAFrameAndALetterIsNot) {
    QImage picture = plain(100, 60, Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::darkGray, 1.5));
    painter.drawRoundedRect(QRectF(10, 10, 40, 24), 5, 5);
    painter.setPen(QPen(Qt::black, 5));
    painter.drawEllipse(QRectF(65, 10, 20, 24));
    painter.end();

    const InkMap map(picture);

    ASSERT_GE(map.pieces().size(), 2U);
    for (const InkPiece& piece : map.pieces())
        EXPECT_EQ(map.isFrame(piece), piece.box.right() < 60) << piece.box.left() << ' ' << piece.box.top();
}

} // namespace
} // namespace orvane::ocr
