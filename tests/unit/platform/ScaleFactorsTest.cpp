#include "OrvanePlatform/x11/ScaleFactors.h"

#include <gtest/gtest.h>

namespace orvane::x11 {

namespace {

qreal factorOf(const ScaleFactors::Inputs& inputs, const char* name = "A", int index = 0) {
    return ScaleFactors(inputs).factor(QLatin1String(name), index);
}

} // namespace

TEST(ScaleFactors, IsOneByDefault) {
    EXPECT_EQ(factorOf({}), 1.0);
}

TEST(ScaleFactors, FollowsTheFontResolution) {
    EXPECT_EQ(factorOf({.xftDpi = 144}), 1.5);
    EXPECT_EQ(factorOf({.xftDpi = 192}), 2.0);
    EXPECT_EQ(factorOf({.xftDpi = 72}), 1.0);
    EXPECT_EQ(factorOf({.fontDpi = QStringLiteral("192"), .xftDpi = 144}), 2.0);
    EXPECT_EQ(factorOf({.highDpiScaling = QStringLiteral("0"), .xftDpi = 144}), 1.0);
}

TEST(ScaleFactors, RoundsWhatComesFromTheDesktop) {
    const auto rounded = [](const char* policy, int dpi) {
        return factorOf({.roundingPolicy = QLatin1String(policy), .xftDpi = dpi});
    };
    EXPECT_EQ(rounded("Round", 144), 2.0);
    EXPECT_EQ(rounded("Floor", 144), 1.0);
    EXPECT_EQ(rounded("Ceil", 100), 2.0);
    EXPECT_EQ(rounded("RoundPreferFloor", 144), 1.0);
    EXPECT_EQ(rounded("RoundPreferFloor", 168), 2.0);
    EXPECT_EQ(rounded("PassThrough", 144), 1.5);
}

TEST(ScaleFactors, TakesFactorsByName) {
    const ScaleFactors::Inputs inputs{.screenScaleFactors = QStringLiteral("A=2;DP-1=1.5"), .xftDpi = 192};
    EXPECT_EQ(factorOf(inputs, "A"), 2.0);
    EXPECT_EQ(factorOf(inputs, "DP-1", 5), 1.5);
    EXPECT_EQ(factorOf(inputs, "other"), 2.0);
}

TEST(ScaleFactors, TakesFactorsByPlace) {
    const ScaleFactors::Inputs inputs{.screenScaleFactors = QStringLiteral("2;1.25")};
    EXPECT_EQ(factorOf(inputs, "A", 0), 2.0);
    EXPECT_EQ(factorOf(inputs, "B", 1), 1.25);
    EXPECT_EQ(factorOf(inputs, "C", 2), 1.0);
}

TEST(ScaleFactors, MultipliesByTheGlobalFactor) {
    EXPECT_EQ(factorOf({.scaleFactor = QStringLiteral("1.5"), .screenScaleFactors = QStringLiteral("A=2")}),
              3.0);
    EXPECT_EQ(factorOf({.scaleFactor = QStringLiteral("1.5"), .xftDpi = 192}), 3.0);
}

TEST(ScaleFactors, IgnoresNonsense) {
    for (const char* bad : {"", "abc", "0", "-2", "nan", "inf", "A=", "A=x", "=;=;", "A=0"}) {
        const QString text = QLatin1String(bad);
        EXPECT_EQ(factorOf({.scaleFactor = text, .screenScaleFactors = text, .fontDpi = text}), 1.0) << bad;
    }
}

TEST(XftDpi, IsReadFromTheResources) {
    EXPECT_EQ(xftDpi(QStringLiteral("Xft.antialias:\t1\nXft.dpi:\t144\n")), 144);
    EXPECT_EQ(xftDpi(QStringLiteral("Xft.dpi: 143.7")), 144);
    EXPECT_EQ(xftDpi(QStringLiteral("*dpi: 144\nXft.dpi2: 3\nXft.dpi: none")), std::nullopt);
    EXPECT_EQ(xftDpi(QString()), std::nullopt);
}

} // namespace orvane::x11
