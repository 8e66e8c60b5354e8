#include "OrvaneCore/marking/overlay/OverlayBarLayout.h"

#include <gtest/gtest.h>

namespace orvane {

namespace {

using Kind = OverlayBarPart::Kind;

const std::vector<OverlayBarPart> parts{
    {Kind::button, 80}, {Kind::divider, 0},  {Kind::button, 90}, {Kind::button, 75}, {Kind::button, 85},
    {Kind::button, 55}, {Kind::button, 150}, {Kind::label, 200}, {Kind::button, 65},
};

/// One beside the other, in order, inside the bar and each on its middle line.
void expectInOrder(const OverlayBarLayout& layout) {
    ASSERT_EQ(layout.parts.size(), parts.size());
    int end = 0;
    for (const QRect& part : layout.parts) {
        EXPECT_GT(part.x(), end);
        end = part.x() + part.width();
        EXPECT_EQ(part.y() * 2 + part.height(), layout.bar.height());
    }
    EXPECT_LT(end, layout.bar.width());
}

TEST(OverlayBarLayout, StandsInTheMiddleAboveTheBottomEdge) {
    const QRect view(100, 50, 1600, 900);
    const OverlayBarLayout layout = overlayBarLayout(parts, view);
    EXPECT_EQ(layout.bar.height(), 44);
    EXPECT_EQ(layout.bar.y() + layout.bar.height(), 50 + 900 - 32);
    EXPECT_LE(std::abs(layout.bar.x() * 2 + layout.bar.width() - (2 * 100 + 1600)), 1);
    expectInOrder(layout);
    EXPECT_EQ(layout.parts.front().x(), 8);
    EXPECT_EQ(layout.parts.back().x() + layout.parts.back().width(), layout.bar.width() - 8);
}

TEST(OverlayBarLayout, GivesEachPartItsSize) {
    const OverlayBarLayout layout = overlayBarLayout(parts, QRect(0, 0, 1600, 900));
    EXPECT_EQ(layout.parts[0].size(), QSize(80 + 2 * layout.padding, 28));
    EXPECT_EQ(layout.parts[1].size(), QSize(1, 24));
    EXPECT_EQ(layout.parts[6].size(), QSize(150 + 2 * layout.padding, 28));
    EXPECT_EQ(layout.parts[7].size(), QSize(200, 28));
    EXPECT_EQ(layout.parts[8].size(), QSize(65 + 2 * layout.padding, 28));
}

TEST(OverlayBarLayout, IsNeverWiderThanTheView) {
    for (int width = 0; width <= 1300; ++width) {
        const OverlayBarLayout layout = overlayBarLayout(parts, QRect(0, 0, width, 400));
        ASSERT_LE(layout.bar.width(), width);
        ASSERT_GE(layout.bar.x(), 0);
    }
}

TEST(OverlayBarLayout, KeepsOrderAtEveryWidthThatHoldsIt) {
    for (const int width : {300, 400, 640, 800, 1000, 1300})
        expectInOrder(overlayBarLayout(parts, QRect(0, 0, width, 400)));
}

TEST(OverlayBarLayout, ShrinksPaddingsBeforeContents) {
    const int natural = overlayBarLayout(parts, QRect(0, 0, 5000, 400)).bar.width();
    const OverlayBarLayout tighter = overlayBarLayout(parts, QRect(0, 0, natural - 40, 400));
    const OverlayBarLayout natural5000 = overlayBarLayout(parts, QRect(0, 0, 5000, 400));
    EXPECT_LT(tighter.padding, natural5000.padding);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (parts[i].kind == Kind::button) {
            EXPECT_EQ(tighter.parts[i].width(), parts[i].contentWidth + 2 * tighter.padding);
        }
    }
    EXPECT_EQ(tighter.parts[7].width(), 200);
}

TEST(OverlayBarLayout, ThenShrinksTheLabelAndThenTheLongestTitles) {
    const OverlayBarLayout narrow = overlayBarLayout(parts, QRect(0, 0, 740, 400));
    EXPECT_LT(narrow.parts[7].width(), 200);
    EXPECT_EQ(narrow.parts[6].width(), 150 + 2 * narrow.padding);

    const OverlayBarLayout narrower = overlayBarLayout(parts, QRect(0, 0, 640, 400));
    EXPECT_LT(narrower.parts[6].width(), 150 + 2 * narrower.padding);
    EXPECT_EQ(narrower.parts[3].width(), 75 + 2 * narrower.padding);
    EXPECT_EQ(narrower.parts[5].width(), 55 + 2 * narrower.padding);
    EXPECT_GE(narrower.bar.width(), 640 - 8);
    // An icon and a bit of the text remain.
    EXPECT_EQ(narrower.parts[7].width(), 48);
}

TEST(OverlayBarLayout, StaysAtTheTopOfAViewThatIsTooLow) {
    EXPECT_EQ(overlayBarLayout(parts, QRect(0, 10, 1600, 50)).bar.y(), 10);
}

} // namespace

} // namespace orvane
