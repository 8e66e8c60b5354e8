#include "OrvaneCore/marking/Palettes.h"

#include "OrvaneCore/drawing/ColorText.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <limits>

namespace orvane {

namespace {

constexpr std::array borderTexts{"#3B82F6", "#8B5CF6", "#10B981", "#F59E0B",
                                 "#F43F5E", "#0EA5E9", "#F97316", "#EC4899"};
constexpr std::array dotTexts{"#60A5FA", "#A78BFA", "#34D399", "#FBBF24",
                              "#FB7185", "#38BDF8", "#FB923C", "#F472B6"};

} // namespace

TEST(MarkupColors, OffersSixColours) {
    QStringList texts;
    for (const QRgb color : markup_colors::presets) {
        texts << toHexString(QColor(color));
        EXPECT_EQ(qAlpha(color), 255);
    }
    EXPECT_EQ(texts.join(QLatin1Char(' ')), QLatin1String("#EF4444 #F59E0B #3B82F6 #10B981 #FFFFFF #000000"));
}

TEST(MarkupColors, DrawsWithTheFirstByDefault) {
    EXPECT_EQ(toHexString(QColor(markup_colors::defaultColor)), QLatin1String("#EF4444"));
}

TEST(MarkupColors, OffersThreeStrokes) {
    EXPECT_EQ(markup_colors::strokePresets, (std::array<qreal, 3>{3, 6, 11}));
}

TEST(MarkerPalette, HasEightColoursForMarkers) {
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(toHexString(marker_palette::border(i + 1)), QLatin1String(borderTexts.at(i)));
        EXPECT_EQ(toHexString(marker_palette::dot(i + 1)), QLatin1String(dotTexts.at(i)));
        EXPECT_EQ(marker_palette::border(i + 1).alpha(), 255);
        EXPECT_EQ(marker_palette::dot(i + 1).alpha(), 255);
    }
}

TEST(MarkerPalette, TheNinthMarkerHasTheColourOfTheFirst) {
    EXPECT_EQ(marker_palette::border(9), marker_palette::border(1));
    EXPECT_EQ(marker_palette::dot(9), marker_palette::dot(1));
    EXPECT_EQ(marker_palette::border(16), marker_palette::border(8));
    EXPECT_EQ(marker_palette::border(17), marker_palette::border(1));
}

TEST(MarkerPalette, RepeatsForAnyNumber) {
    struct NumberCase {
        int index;
        std::size_t entry;
    };
    // The remainders of a division that rounds down: -1 is 7 in front of a multiple of 8.
    for (const auto& [index, entry] : {
             NumberCase{0, 7},
             NumberCase{-1, 6},
             NumberCase{-7, 0},
             NumberCase{-8, 7},
             NumberCase{std::numeric_limits<int>::max(), 6},
             NumberCase{std::numeric_limits<int>::min(), 7},
             NumberCase{std::numeric_limits<int>::min() + 1, 0},
         }) {
        EXPECT_EQ(toHexString(marker_palette::border(index)), QLatin1String(borderTexts.at(entry))) << index;
        EXPECT_EQ(toHexString(marker_palette::dot(index)), QLatin1String(dotTexts.at(entry))) << index;
    }
}

TEST(MarkerPalette, HasABadgeRing) {
    EXPECT_EQ(marker_palette::badgeRing().rgba(), 0xFF0B1220);
}

TEST(MarkerPalette, FillsLabelsNearlyOpaque) {
    const QColor fill = marker_palette::labelFill();
    EXPECT_EQ(fill.red(), 18);
    EXPECT_EQ(fill.green(), 20);
    EXPECT_EQ(fill.blue(), 26);
    EXPECT_NEAR(fill.alphaF(), 0.9, 1e-4);
}

} // namespace orvane
