#include "OrvaneCore/drawing/ColorText.h"

#include <gtest/gtest.h>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

struct HexCase {
    const char16_t* text;
    QRgb color;
};

class ColorFromHex : public ::testing::TestWithParam<HexCase> {};

} // namespace

TEST_P(ColorFromHex, IsOpaqueAndInSrgb) {
    const QColor color = colorFromHex(GetParam().text);
    EXPECT_EQ(color.rgba(), GetParam().color);
    EXPECT_EQ(color.spec(), QColor::Rgb);
}

INSTANTIATE_TEST_SUITE_P(Plain, ColorFromHex,
                         ::testing::Values(HexCase{u"#3B82F6", 0xFF3B82F6}, HexCase{u"3B82F6", 0xFF3B82F6},
                                           HexCase{u"#3b82f6", 0xFF3B82F6}, HexCase{u"#09afAF", 0xFF09AFAF},
                                           HexCase{u"#000000", 0xFF000000}, HexCase{u"#FFFFFF", 0xFFFFFFFF}));

INSTANTIATE_TEST_SUITE_P(
    Prefixed, ColorFromHex,
    ::testing::Values(HexCase{u"0x3B82F6", 0xFF3B82F6}, HexCase{u"#0X3B82F6", 0xFF3B82F6},
                      HexCase{u"  3B82F6", 0xFF3B82F6}, HexCase{u"#\t\n 0x3B82F6", 0xFF3B82F6},
                      HexCase{u"##3B82F6", 0xFF000000}, HexCase{u" #3B82F6", 0xFF000000},
                      HexCase{u"0x 3B82F6", 0xFF000000}, HexCase{u"0x0x3B82F6", 0xFF000000}));

INSTANTIATE_TEST_SUITE_P(OtherLengths, ColorFromHex,
                         ::testing::Values(HexCase{u"#FFF", 0xFF000FFF}, HexCase{u"#7", 0xFF000007},
                                           HexCase{u"#AA3B82F6", 0xFF3B82F6},
                                           HexCase{u"#123456789ABCDEF0", 0xFFBCDEF0},
                                           HexCase{u"#0000000000000000003B82F6", 0xFF3B82F6},
                                           HexCase{u"#10000000000000000", 0xFFFFFFFF},
                                           HexCase{u"#123456789ABCDEF01234", 0xFFFFFFFF}));

INSTANTIATE_TEST_SUITE_P(Broken, ColorFromHex,
                         ::testing::Values(HexCase{u"", 0xFF000000}, HexCase{u"#", 0xFF000000},
                                           HexCase{u"   ", 0xFF000000}, HexCase{u"0x", 0xFF000000},
                                           HexCase{u"red", 0xFF000000}, HexCase{u"-FF", 0xFF000000},
                                           HexCase{u"#12345G", 0xFF012345}, HexCase{u"#FF 00 00", 0xFF0000FF},
                                           HexCase{u"#\uFF11\uFF12", 0xFF000000}));

TEST(ColorFromHex, StopsAtTheEndOfAView) {
    const QString text = u"#3B82F6AB"_s;
    EXPECT_EQ(colorFromHex(QStringView(text).first(7)).rgba(), 0xFF3B82F6);
}

TEST(ToHexString, WritesUpperCaseWithLeadingZeros) {
    EXPECT_EQ(toHexString(QColor(0x3B, 0x82, 0xF6)), u"#3B82F6"_s);
    EXPECT_EQ(toHexString(QColor(0x00, 0x0A, 0x01)), u"#000A01"_s);
    EXPECT_EQ(toHexString(Qt::white), u"#FFFFFF"_s);
}

TEST(ToHexString, LeavesOutTheAlphaValue) {
    QColor color(0xEF, 0x44, 0x44);
    color.setAlphaF(0.5F);
    EXPECT_EQ(toHexString(color), u"#EF4444"_s);
    EXPECT_EQ(toHexString(Qt::transparent), u"#000000"_s);
}

TEST(ToHexString, RoundsComponents) {
    EXPECT_EQ(toHexString(QColor::fromRgbF(10.4F / 255, 10.6F / 255, 254.6F / 255)), u"#0A0BFF"_s);
    // 51.7 is 52 by rounding; the upper byte of Qt's 16 bits is 51.
    EXPECT_EQ(toHexString(QColor::fromRgbF(0.2F, 51.7F / 255, 0)), u"#333400"_s);
}

TEST(ToHexString, ConvertsOtherColourSpaces) {
    EXPECT_EQ(toHexString(QColor::fromHsv(120, 255, 255)), u"#00FF00"_s);
    EXPECT_EQ(toHexString(QColor::fromHsl(240, 255, 128)), u"#0101FF"_s);
    EXPECT_EQ(toHexString(QColor::fromCmyk(0, 255, 255, 0)), u"#FF0000"_s);
}

TEST(ToHexString, ClampsColoursOutOfRange) {
    const QColor color = QColor::fromRgbF(1.5F, -0.5F, 0.5F);
    ASSERT_EQ(color.spec(), QColor::ExtendedRgb);
    EXPECT_EQ(toHexString(color), u"#FF0080"_s);
}

TEST(ToHexString, TakesAnInvalidColourForBlack) {
    EXPECT_EQ(toHexString(QColor()), u"#000000"_s);
}

TEST(ColorText, SurvivesARoundTrip) {
    for (QRgb channel = 0; channel < 256; ++channel) {
        const QRgb color = 0xFF000000 | channel << 16 | (255 - channel) << 8 | (channel ^ 0x55);
        EXPECT_EQ(colorFromHex(toHexString(QColor(color))).rgba(), color) << channel;
    }
}

} // namespace orvane
