#include "OrvaneCore/recording/DiffSummaryFrame.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "tests/support/DrawnPixels.h"

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr QRgb red = system_colors::red;
constexpr QRgb blue = 0xFF2040A0;

/// Cells of 100 by 100 pixels.
constexpr QSize frameSize(800, 600);

RegionDiff region(int col, int row, double percent) {
    return {.col = col, .row = row, .diffPercent = percent, .pixelRect = {}};
}

QImage marked(const std::vector<RegionDiff>& regions, const QSize& size = frameSize, QRgb under = white) {
    return markChanges(ground(size, under), regions);
}

/// Where the label of a cell at that corner lies.
QRectF labelRect(const QPointF& corner, const QString& text) {
    return {corner + QPointF(2, 2), DrawnText(text, 11, QFont::Bold, 1).size()};
}

} // namespace

TEST(DiffSummaryFrame, LeavesAFrameWithoutChangesAsItIs) {
    QImage frame = ground(frameSize, blue);
    frame.setPixel(12, 34, white);
    EXPECT_EQ(markChanges(frame, {}), frame);
}

TEST(DiffSummaryFrame, OutlinesTheCellInside) {
    const QImage picture = marked({region(3, 2, 50)});
    const QRgb line = blended(red, 0.65, white);
    EXPECT_TRUE(isFilled(picture, {300, 220, 2, 80}, line));
    EXPECT_TRUE(isFilled(picture, {398, 200, 2, 100}, line));
    EXPECT_TRUE(isFilled(picture, {300, 200, 100, 2}, line));
    EXPECT_TRUE(isFilled(picture, {300, 298, 100, 2}, line));
    EXPECT_TRUE(isFilled(picture, {302, 230, 96, 68}, white));
    EXPECT_EQ(inkBounds(picture), QRect(300, 200, 100, 100));
}

TEST(DiffSummaryFrame, OutlinesMoreStronglyWhatChangedMore) {
    const auto alphaIsFor = [](double percent, qreal alpha) {
        return isFilled(marked({region(3, 2, percent)}), {398, 200, 2, 100}, blended(red, alpha, white));
    };
    EXPECT_TRUE(alphaIsFor(0, 0.4));
    EXPECT_TRUE(alphaIsFor(2.1, 0.4105));
    EXPECT_TRUE(alphaIsFor(20, 0.5));
    EXPECT_TRUE(alphaIsFor(80, 0.8));
    EXPECT_TRUE(alphaIsFor(100, 0.9));
    EXPECT_TRUE(alphaIsFor(250, 0.9));
}

TEST(DiffSummaryFrame, LabelsTheTopLeftCorner) {
    const QRectF label = labelRect({300, 200}, u" 50% "_s);
    ASSERT_GT(label.width(), 22);
    ASSERT_GT(label.height(), 11);
    const QImage picture = marked({region(3, 2, 50)});
    const QRgb plate = blended(red, 0.75, white);
    const QRgb line = blended(red, 0.65, white);

    // Over the blanks at both ends there is nothing but the plate.
    const QRect inside = pixelsInside(label);
    EXPECT_TRUE(isFilled(picture, {inside.left(), inside.top(), 2, inside.height()}, plate));
    EXPECT_TRUE(isFilled(picture, {inside.right() - 1, inside.top(), 2, inside.height()}, plate));
    // It ends where the text does, to a part of a pixel. No letter reaches its first line.
    EXPECT_TRUE(isSpan(spanInRow(picture, 202, 302, 390, white, plate), label.left(), label.right()));
    EXPECT_TRUE(isSpan(spanInColumn(picture, 303, 202, 290, white, plate), label.top(), label.bottom()));
    EXPECT_TRUE(isColor(picture, {301, 205}, line));
    EXPECT_TRUE(isColor(picture, {305, 201}, line));
}

TEST(DiffSummaryFrame, WritesThePercentageInWhite) {
    const QRect label = pixelsInside(labelRect({300, 200}, u" 50% "_s));
    const QRgb plate = blended(red, 0.75, blue);
    const QImage text = marked({region(3, 2, 50)}, frameSize, blue).copy(label);
    const QRect ink = inkBounds(text, plate, 60);
    EXPECT_NEAR(ink.height(), 0.73 * 11, 2);
    EXPECT_NEAR(ink.center().y(), text.rect().center().y(), 2);
    EXPECT_NEAR(ink.center().x(), text.rect().center().x(), 2);
    EXPECT_GT(ink.width(), 17);
    int whitest = 255;
    for (int x = 0; x < text.width(); ++x) {
        for (int y = 0; y < text.height(); ++y)
            whitest = std::min(whitest, colorDistance(text.pixel(x, y), white));
    }
    EXPECT_LT(whitest, 20);
}

TEST(DiffSummaryFrame, WritesWholePercents) {
    const auto label = [](double percent) {
        return marked({region(3, 2, percent)}).copy(pixelsInside(labelRect({300, 200}, u" 48% "_s)));
    };
    EXPECT_EQ(label(48.5), label(48));
    EXPECT_EQ(label(49.5), label(50));
    EXPECT_EQ(label(48.51), label(49));
    EXPECT_NE(label(48), label(49));
    EXPECT_NE(label(49), label(50));
}

TEST(DiffSummaryFrame, MarksEachCell) {
    std::vector<RegionDiff> regions;
    regions.reserve(gridCells);
    for (int row = 0; row < gridRows; ++row) {
        for (int col = 0; col < gridCols; ++col)
            regions.push_back(region(col, row, 2 * (row * gridCols + col)));
    }
    const QImage picture = marked(regions);
    for (const RegionDiff& cell : regions) {
        const QRgb line = blended(red, cell.diffPercent / 200 + 0.4, white);
        const QPoint corner(cell.col * 100, cell.row * 100);
        EXPECT_TRUE(isFilled(picture, {corner + QPoint(0, 50), QSize(2, 50)}, line));
        EXPECT_TRUE(isFilled(picture, {corner + QPoint(98, 0), QSize(2, 100)}, line));
        EXPECT_TRUE(isFilled(picture, {corner + QPoint(2, 30), QSize(96, 68)}, white));
        EXPECT_TRUE(isColor(picture, corner + QPoint(3, 3), blended(red, 0.75, white)));
    }
}

TEST(DiffSummaryFrame, GoesByTheCellAndNotByWhatWasCompared) {
    RegionDiff cell = region(3, 2, 50);
    const QImage picture = marked({cell});
    cell.pixelRect = QRectF(5, 5, 20, 20);
    EXPECT_EQ(marked({cell}), picture);
}

TEST(DiffSummaryFrame, ReachesTheEdgesOfAFrameThatTheGridDoesNotDivide) {
    const QImage picture = marked({region(7, 5, 100)}, {805, 605});
    const QRgb line = blended(red, 0.9, white);
    const qreal left = 805 * 0.125 * 7;
    const qreal top = 605 / 6.0 * 5;
    EXPECT_TRUE(isFilled(picture, {803, 510, 2, 95}, line));
    EXPECT_TRUE(isFilled(picture, {710, 603, 95, 2}, line));
    EXPECT_TRUE(isSpan(spanInRow(picture, 560, left - 10, left + 40, white, line), left, left + 2));
    EXPECT_TRUE(isSpan(spanInColumn(picture, 780, top - 10, top + 40, white, line), top, top + 2));

    const QRectF label = labelRect({left, top}, u" 100% "_s);
    const QRgb plate = blended(red, 0.75, white);
    EXPECT_TRUE(isSpan(spanInColumn(picture, 708, 507, 560, white, plate), 507, label.bottom()));
    const qreal blank = std::floor(label.right()) - 2;
    EXPECT_TRUE(isSpan(spanInRow(picture, 512, blank, blank + 20, white, plate), blank, label.right()));
}

TEST(DiffSummaryFrame, CountsPixelsAndNotPoints) {
    QImage frame = ground(frameSize);
    frame.setDevicePixelRatio(2);
    const QImage picture = markChanges(frame, {region(3, 2, 50)});
    EXPECT_EQ(picture.devicePixelRatio(), 1);
    EXPECT_EQ(picture, marked({region(3, 2, 50)}));
    EXPECT_EQ(frame.devicePixelRatio(), 2);
    EXPECT_EQ(markChanges(frame, {}).devicePixelRatio(), 1);
}

TEST(DiffSummaryFrame, KeepsWhatIsTransparent) {
    QImage frame(frameSize, QImage::Format_ARGB32_Premultiplied);
    frame.fill(Qt::transparent);
    const QImage picture = markChanges(frame, {region(3, 2, 50)});
    EXPECT_EQ(picture.pixelColor(350, 250).alpha(), 0);
    EXPECT_NEAR(picture.pixelColor(399, 250).alphaF(), 0.65, 0.005);
}

TEST(DiffSummaryFrame, MarksFramesOfEveryFormat) {
    const QImage expected = marked({region(3, 2, 50)});
    for (const auto format : {QImage::Format_Grayscale8, QImage::Format_RGB888, QImage::Format_Mono})
        EXPECT_EQ(markChanges(ground(frameSize).convertToFormat(format), {region(3, 2, 50)}), expected);
}

TEST(DiffSummaryFrame, LeavesTheFrameAlone) {
    const QImage frame = ground(frameSize);
    markChanges(frame, {region(3, 2, 50)});
    EXPECT_EQ(frame, ground(frameSize));
}

TEST(DiffSummaryFrame, MarksTheSmallestFrame) {
    const QImage picture = marked({region(0, 0, 100), region(7, 5, 100)}, {8, 6});
    EXPECT_EQ(picture.size(), QSize(8, 6));
    EXPECT_FALSE(inkBounds(picture).isEmpty());
}

TEST(DiffSummaryFrame, IsNothingWithoutAFrame) {
    EXPECT_TRUE(markChanges({}, {region(3, 2, 50)}).isNull());
}

} // namespace orvane::test
