#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/marking/MarkerPainter.h"
#include "tests/unit/marking/Drawings.h"
#include "tests/unit/marking/ExactGeometry.h"

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

using marker_painter::Spotlight;

/// What floating-point sums may lose.
constexpr qreal rounding = 1e-9;

class LaysOutMarkers : public AtScale {
protected:
    static MarkerLayout layout(const Marker& marker, const MarkerStyle& style,
                               Spotlight spotlight = Spotlight::off) {
        return marker_painter::layout(marker, scaled({100, 200, 300, 150}), scale(), style, spotlight);
    }
    static QRectF scaled(const QRectF& rect) { return {rect.topLeft() * scale(), rect.size() * scale()}; }
    static testing::AssertionResult isAt(const QRectF& actual, const QRectF& pointsExpected) {
        return isRect(actual, scaled(pointsExpected), rounding);
    }
};

} // namespace

TEST_P(LaysOutMarkers, LinesAroundTheRegion) {
    const MarkerLayout place = layout({}, MarkerStyle::onImage);
    EXPECT_TRUE(isAt(place.region, {100, 200, 300, 150}));
    EXPECT_DOUBLE_EQ(place.cornerRadius, 6 * scale());
    EXPECT_TRUE(isAt(place.halo.rect, {99.25, 199.25, 301.5, 151.5}));
    EXPECT_DOUBLE_EQ(place.halo.width, scale());
    EXPECT_TRUE(isAt(place.halo.outer(), {98.75, 198.75, 302.5, 152.5}));
    EXPECT_TRUE(isAt(place.outline.rect, {100, 200, 300, 150}));
}

TEST_P(LaysOutMarkers, OutlineIsAsWideAsTheStyleSays) {
    EXPECT_DOUBLE_EQ(layout({}, MarkerStyle::onImage).outline.width, 2 * scale());
    EXPECT_DOUBLE_EQ(layout({}, MarkerStyle::onImage, Spotlight::on).outline.width, 2 * scale());
    EXPECT_DOUBLE_EQ(layout({}, MarkerStyle::onOverlay).outline.width, 1.5 * scale());
    EXPECT_DOUBLE_EQ(layout({}, MarkerStyle::onOverlay, Spotlight::on).outline.width, 2 * scale());
}

TEST_P(LaysOutMarkers, BadgeOnTheTopLeftCorner) {
    const MarkerLayout onOverlay = layout({.index = 12}, MarkerStyle::onOverlay);
    EXPECT_TRUE(isAt(onOverlay.badge, {88, 188, 24, 24}));
    EXPECT_TRUE(isAt(onOverlay.badgeRing.rect, {87, 187, 26, 26}));
    EXPECT_DOUBLE_EQ(onOverlay.badgeRing.width, 2 * scale());
    EXPECT_TRUE(isAt(onOverlay.badgeRing.outer(), {86, 186, 28, 28}));
    const QSizeF number = DrawnText(u"12"_s, 13, QFont::Bold, scale()).size();
    EXPECT_EQ(onOverlay.number.size(), number);
    EXPECT_TRUE(isPoint(onOverlay.number.center(), QPointF(100, 200) * scale(), rounding));

    const MarkerLayout onImage = layout({.index = 12}, MarkerStyle::onImage);
    EXPECT_TRUE(isAt(onImage.badge, {86.5, 186.5, 27, 27}));
    EXPECT_TRUE(isAt(onImage.badgeRing.outer(), {84.5, 184.5, 31, 31}));
    EXPECT_EQ(onImage.number.size(), DrawnText(u"12"_s, 15, QFont::Bold, scale()).size());
}

TEST_P(LaysOutMarkers, ShadowOfTheBadgeIsLowerByAPoint) {
    const MarkerLayout place = layout({}, MarkerStyle::onOverlay);
    EXPECT_TRUE(isPoint(place.badgeShadow.center(), QPointF(100, 201) * scale(), rounding));
    // Three deviations of half its blur, and less than three pixels.
    EXPECT_NEAR(place.badgeShadow.width() / 2, (12 + 4.5) * scale() + 3, rounding);
    EXPECT_NEAR(place.badgeShadow.height(), place.badgeShadow.width(), rounding);
}

TEST_P(LaysOutMarkers, LabelBelowTheRegion) {
    for (const MarkerStyle& style : {MarkerStyle::onImage, MarkerStyle::onOverlay}) {
        const MarkerLayout place = layout({.label = u"Note"_s}, style);
        const QSizeF text =
            DrawnText(u"Note"_s, style.labelPixelSize, style.labelWeight, scale()).size() / scale();
        const QSizeF capsule = text + QSizeF(31, 8);
        ASSERT_TRUE(place.label);
        EXPECT_TRUE(isPoint(place.labelPlace, QPointF(100, 356) * scale(), rounding));
        EXPECT_TRUE(isAt(place.label->capsule, {QPointF(100, 356), capsule}));
        EXPECT_TRUE(isAt(place.label->text, {QPointF(122, 360), text}));
        EXPECT_TRUE(isAt(place.label->dot, {109, 356 + capsule.height() / 2 - 3.5, 7, 7}));
        const qreal reach = 6 * scale() + 3;
        EXPECT_TRUE(isRect(place.label->shadow,
                           place.label->capsule.adjusted(-reach, -reach, reach, reach).translated(0, scale()),
                           rounding));
    }
}

TEST_P(LaysOutMarkers, PlaceOfALabelThatIsNotThere) {
    const MarkerLayout place = layout({}, MarkerStyle::onOverlay);
    EXPECT_FALSE(place.label);
    EXPECT_TRUE(isPoint(place.labelPlace, QPointF(100, 356) * scale(), rounding));
}

TEST_P(LaysOutMarkers, RegionInsideOutOrFarAway) {
    const auto regionOf = [](const QRectF& rect) {
        return marker_painter::layout({}, rect, scale(), MarkerStyle::onOverlay, Spotlight::off).region;
    };
    EXPECT_TRUE(isRect(regionOf({90, 80, -50, -40}), {40, 40, 50, 40}));
    EXPECT_TRUE(isRect(regionOf({1e300, 80, 50, 40}), {1e6, 80, 0, 40}));
}

INSTANTIATE_TEST_SUITE_P(MarkerLayout, LaysOutMarkers, testing::ValuesIn(displayScales), nameOfScale);

} // namespace orvane::test
