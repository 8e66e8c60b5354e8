#include "OrvanePlatform/x11/WindowPlacement.h"

#include <gtest/gtest.h>

namespace orvane::x11 {

TEST(VisibleRect, IsTheFrameOfADecoratedWindow) {
    EXPECT_EQ(visibleRect({98, 78, 304, 224}, {100, 100, 300, 200}, QMargins(2, 22, 2, 2), {}),
              QRect(98, 78, 304, 224));
}

TEST(VisibleRect, IsTheFrameWhereDecorationsAreNotTold) {
    EXPECT_EQ(visibleRect({98, 78, 304, 224}, {100, 100, 300, 200}, std::nullopt, {}),
              QRect(98, 78, 304, 224));
}

TEST(VisibleRect, LeavesOutClientSideShadows) {
    EXPECT_EQ(visibleRect({80, 80, 340, 240}, {80, 80, 340, 240}, QMargins(), {20, 15, 20, 25}),
              QRect(100, 95, 300, 200));
    EXPECT_EQ(visibleRect({80, 80, 340, 240}, {80, 80, 340, 240}, std::nullopt, {20, 15, 20, 25}),
              QRect(100, 95, 300, 200));
}

TEST(VisibleRect, LeavesOutInvisibleResizeBorders) {
    EXPECT_EQ(visibleRect({90, 70, 320, 240}, {100, 100, 300, 200}, QMargins(1, 22, 1, 1), {}),
              QRect(99, 78, 302, 223));
}

TEST(VisibleRect, IsWhatRemainsOfAShadedWindow) {
    EXPECT_EQ(visibleRect({98, 78, 304, 22}, {100, 100, 300, 200}, QMargins(2, 22, 2, 2), {}),
              QRect(98, 78, 304, 22));
}

TEST(VisibleRect, BelievesTheFrameOverNonsense) {
    EXPECT_EQ(visibleRect({0, 0, 50, 50}, {0, 0, 50, 50}, QMargins(), {40, 40, 40, 40}), QRect(0, 0, 50, 50));
    EXPECT_EQ(visibleRect({0, 0, 50, 50}, {500, 500, 50, 50}, QMargins(), {}), QRect(0, 0, 50, 50));
}

} // namespace orvane::x11
