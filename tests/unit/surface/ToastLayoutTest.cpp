#include "OrvaneCore/surface/ToastLayout.h"

#include <gtest/gtest.h>

namespace orvane::test {

namespace {

constexpr QRect available(0, 0, 1000, 700);

} // namespace

TEST(ToastLayout, TitleAloneHasOneLine) {
    const ToastLayout layout =
        toast::layout({.title = {100, 18}, .subtitle = {}, .hasIcon = false}, available);
    EXPECT_EQ(layout.frame, QRect(430, 12, 140, 42));
    EXPECT_EQ(layout.title, QPointF(20, 12));
    EXPECT_TRUE(layout.icon.isEmpty());
}

TEST(ToastLayout, SubtitleIsFourBelowTheTitle) {
    const ToastLayout layout =
        toast::layout({.title = {100, 18}, .subtitle = QSizeF(160, 14), .hasIcon = false}, available);
    EXPECT_EQ(layout.frame, QRect(400, 12, 200, 60));
    EXPECT_EQ(layout.title, QPointF(20, 12));
    EXPECT_EQ(layout.subtitle, QPointF(20, 34));
}

TEST(ToastLayout, WidestLineDecides) {
    const ToastLayout layout =
        toast::layout({.title = {300, 18}, .subtitle = QSizeF(160, 14), .hasIcon = false}, available);
    EXPECT_EQ(layout.frame.width(), 340);
}

TEST(ToastLayout, IconIsLeftOfTheTextAndInTheMiddleOfTheHeight) {
    const ToastLayout layout =
        toast::layout({.title = {100, 18}, .subtitle = QSizeF(160, 14), .hasIcon = true}, available);
    EXPECT_EQ(layout.frame, QRect(382, 12, 236, 60));
    EXPECT_EQ(layout.icon, QRectF(20, 16, 28, 28));
    EXPECT_EQ(layout.title, QPointF(56, 12));
    EXPECT_EQ(layout.subtitle, QPointF(56, 34));
}

TEST(ToastLayout, IconBesideATitleAloneStaysInside) {
    const ToastLayout layout =
        toast::layout({.title = {100, 18}, .subtitle = {}, .hasIcon = true}, available);
    EXPECT_EQ(layout.icon, QRectF(20, 7, 28, 28));
    EXPECT_EQ(layout.frame.height(), 42);
}

TEST(ToastLayout, SizesAreRoundedUp) {
    const ToastLayout layout =
        toast::layout({.title = {100.2, 17.6}, .subtitle = QSizeF(90, 14.1), .hasIcon = false}, available);
    EXPECT_EQ(layout.frame.size(), QSize(141, 60));
    EXPECT_EQ(layout.subtitle, QPointF(20, 33.6));
}

TEST(ToastLayout, IsBelowThePanelOfAnyScreen) {
    const ToastLayout layout =
        toast::layout({.title = {100, 18}, .subtitle = {}, .hasIcon = false}, QRect(-1920, 230, 1920, 1000));
    EXPECT_EQ(layout.frame, QRect(-1920 + 890, 242, 140, 42));
}

TEST(ToastLayout, WidestTextFillsTheScreenButForItsEdges) {
    for (const bool hasIcon : {false, true}) {
        const qreal width = toast::widestText(hasIcon, available);
        const ToastLayout layout =
            toast::layout({.title = {width, 18}, .subtitle = {}, .hasIcon = hasIcon}, available);
        EXPECT_EQ(layout.frame.left(), 12);
        EXPECT_EQ(layout.frame.width(), 976);
    }
}

TEST(ToastLayout, NoRoomForTextIsNotLessThanNone) {
    EXPECT_EQ(toast::widestText(true, QRect(0, 0, 50, 50)), 0.0);
}

} // namespace orvane::test
