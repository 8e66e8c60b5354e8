#include "OrvanePlatform/x11/ScreenLayout.h"

#include <gtest/gtest.h>

#include <QSet>

namespace orvane::x11 {

namespace {

ScreenLayout layoutOf(const std::vector<Monitor>& monitors, const char* factors = "") {
    return {monitors, ScaleFactors({.screenScaleFactors = QLatin1String(factors)})};
}

const std::vector<Monitor> twoMonitors{
    {.name = QStringLiteral("A"), .pixels = {0, 0, 1920, 1080}, .primary = true},
    {.name = QStringLiteral("B"), .pixels = {1920, 100, 1280, 1024}, .primary = false},
};

} // namespace

TEST(ScreenLayout, IsPixelsAtScaleOne) {
    const ScreenLayout layout = layoutOf(twoMonitors);
    ASSERT_EQ(layout.displays().size(), 2U);
    EXPECT_EQ(layout.displays()[1].boundsPoints, QRectF(1920, 100, 1280, 1024));
    EXPECT_EQ(layout.toPoints({2000, 200, 30, 40}), QRectF(2000, 200, 30, 40));
    EXPECT_EQ(ScreenLayout::toPixels(layout.displays()[1], {80, 100, 30, 40}), QRect(2000, 200, 30, 40));
}

TEST(ScreenLayout, HalvesAtScaleTwo) {
    const ScreenLayout layout = layoutOf(twoMonitors, "2;2");
    EXPECT_EQ(layout.displays()[0].boundsPoints, QRectF(0, 0, 960, 540));
    EXPECT_EQ(layout.displays()[0].sizePixels, QSize(1920, 1080));
    EXPECT_EQ(layout.displays()[1].boundsPoints, QRectF(1920, 100, 640, 512));
    EXPECT_EQ(layout.toPoints({100, 50, 31, 40}), QRectF(50, 25, 15.5, 20));
    EXPECT_EQ(layout.toPoints({2020, 200, 30, 40}), QRectF(1970, 150, 15, 20));
    EXPECT_EQ(ScreenLayout::toPixels(layout.displays()[1], {50, 50, 15, 20}), QRect(2020, 200, 30, 40));
}

TEST(ScreenLayout, HandlesFractions) {
    const ScreenLayout layout = layoutOf(twoMonitors, "1.5;1.5");
    EXPECT_EQ(layout.displays()[0].boundsPoints, QRectF(0, 0, 1280, 720));
    EXPECT_EQ(layout.displays()[1].boundsPoints, QRectF(1920, 100, 853, 683));
    EXPECT_EQ(layout.toPoints({300, 150, 450, 300}), QRectF(200, 100, 300, 200));
    EXPECT_EQ(ScreenLayout::toPixels(layout.displays()[0], {1, 1, 3, 5}), QRect(2, 2, 4, 7));
    EXPECT_EQ(ScreenLayout::pixelBounds(layout.displays()[1]), QRect(1920, 100, 1280, 1024));
}

TEST(ScreenLayout, ScalesEachDisplayByItself) {
    const ScreenLayout layout = layoutOf(twoMonitors, "A=2");
    EXPECT_EQ(layout.toPoints({100, 100, 50, 50}), QRectF(50, 50, 25, 25));
    EXPECT_EQ(layout.toPoints({2000, 200, 50, 50}), QRectF(2000, 200, 50, 50));
    // Mostly on A, so all of it is measured from A.
    EXPECT_EQ(layout.toPoints({1900, 200, 30, 50}), QRectF(950, 100, 15, 25));
    EXPECT_EQ(layout.toPoints({1910, 200, 30, 50}), QRectF(1910, 200, 30, 50));
    // As much on one as on the other: the first one counts.
    EXPECT_EQ(layout.toPoints({1910, 200, 20, 50}), QRectF(955, 100, 10, 25));
}

TEST(ScreenLayout, PutsThePrimaryFirst) {
    std::vector<Monitor> monitors = twoMonitors;
    monitors[0].primary = false;
    monitors[1].primary = true;
    const ScreenLayout layout = layoutOf(monitors);
    EXPECT_EQ(layout.displays()[0].name, u"B");
    EXPECT_EQ(layout.displays()[1].name, u"A");
}

TEST(ScreenLayout, MeasuresFromTheFirstDisplayWhatLiesOnNone) {
    EXPECT_EQ(layoutOf(twoMonitors, "2;1").toPoints({-300, -100, 20, 20}), QRectF(-150, -50, 10, 10));
}

TEST(ScreenLayout, WorksWithoutDisplays) {
    EXPECT_TRUE(layoutOf({}).displays().empty());
    EXPECT_EQ(layoutOf({}).toPoints({1, 2, 3, 4}), QRectF(1, 2, 3, 4));
}

TEST(ScreenLayout, KeepsHugeRectanglesInBounds) {
    const ScreenLayout layout = layoutOf(twoMonitors);
    const QRect huge = ScreenLayout::toPixels(layout.displays()[0], {1e30, -1e30, 1e30, 1e30});
    EXPECT_GT(huge.x(), 1'000'000);
    EXPECT_LT(huge.y(), -1'000'000);
    EXPECT_GT(huge.width(), 1'000'000);
}

TEST(DisplayId, IsTheSameForeverAndNeverZero) {
    // FNV-1a of "A" and of nothing, from its published parameters.
    EXPECT_EQ(ScreenLayout::displayId(QStringLiteral("A")), 0xc40bf6ccU);
    EXPECT_EQ(ScreenLayout::displayId(QString()), 0x811c9dc5U);
    QSet<quint32> ids;
    for (int i = 0; i < 1000; ++i)
        ids.insert(ScreenLayout::displayId(QStringLiteral("DP-%1").arg(i)));
    EXPECT_EQ(ids.size(), 1000);
    EXPECT_FALSE(ids.contains(0));
}

} // namespace orvane::x11
