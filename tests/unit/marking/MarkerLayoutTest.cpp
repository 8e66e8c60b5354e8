#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/marking/MarkerPainter.h"
#include "tests/unit/marking/Drawings.h"
#include "tests/unit/marking/ExactGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

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

/// But for what floating-point sums may lose.
bool isWithin(const QRectF& rect, const QRectF& bounds) {
    return bounds.adjusted(-rounding, -rounding, rounding, rounding).contains(rect);
}

/// Regions inside a display, at its edges and across them, with their middle on it.
std::vector<QRectF> regionsAround(const QRectF& display) {
    std::vector<QRectF> regions;
    regions.reserve(300);
    for (const QSizeF& size :
         {QSizeF(11, 11), QSizeF(60, 12), QSizeF(40, 300), QSizeF(300, 200), display.size()}) {
        const QSizeF half = size / 2;
        for (const qreal x : {0.0, half.width(), 7.0, display.width() / 3, display.width() - half.width(),
                              display.width() - 4.5, display.width()}) {
            for (const qreal y :
                 {0.0, half.height(), 9.0, display.height() / 2, display.height() - half.height(),
                  display.height() - 3.25, display.height()}) {
                const QPointF middle = display.topLeft() + QPointF(x, y);
                regions.emplace_back(middle - QPointF(half.width(), half.height()), size);
            }
        }
    }
    return regions;
}

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
        EXPECT_TRUE(isPoint(place.belowRegion, QPointF(100, 356) * scale(), rounding));
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
    EXPECT_TRUE(isPoint(place.belowRegion, QPointF(100, 356) * scale(), rounding));
}

TEST_P(LaysOutMarkers, RegionInsideOutOrFarAway) {
    const auto regionOf = [](const QRectF& rect) {
        return marker_painter::layout({}, rect, scale(), MarkerStyle::onOverlay, Spotlight::off).region;
    };
    EXPECT_TRUE(isRect(regionOf({90, 80, -50, -40}), {40, 40, 50, 40}));
    EXPECT_TRUE(isRect(regionOf({1e300, 80, 50, 40}), {1e6, 80, 0, 40}));
}

TEST_P(LaysOutMarkers, KeepsBadgeAndLabelOnTheDisplay) {
    const QRectF display = scaled({-400, 30, 800, 600});
    for (const MarkerStyle& style : {MarkerStyle::onImage, MarkerStyle::onOverlay}) {
        for (const QRectF& region : regionsAround({-400, 30, 800, 600})) {
            for (const QString& label :
                 {u"Note"_s, u"A label of some length\nand two lines"_s,
                  u"A label that is longer than the display is wide. "_s.repeated(20)}) {
                const Marker marker{.label = label};
                const auto where = [&] {
                    return testing::Message() << region.x() << "," << region.y() << " " << region.width()
                                              << "x" << region.height() << " " << label.size();
                };
                const MarkerLayout free =
                    marker_painter::layout(marker, scaled(region), scale(), style, Spotlight::off);
                const MarkerLayout kept =
                    marker_painter::layout(marker, scaled(region), scale(), style, Spotlight::off, display);
                EXPECT_TRUE(isWithin(kept.badgeRing.outer(), display)) << where();
                EXPECT_TRUE(isWithin(kept.label->capsule, display)) << where();
                EXPECT_FALSE(kept.label->capsule.intersects(kept.badgeRing.outer())) << where();
                EXPECT_TRUE(isPoint(kept.number.center(), kept.badge.center(), rounding));
                EXPECT_TRUE(isPoint(kept.badgeRing.rect.center(), kept.badge.center(), rounding));
                EXPECT_TRUE(isPoint(kept.label->text.topLeft() - kept.label->capsule.topLeft(),
                                    QPointF(22, 4) * scale(), rounding));
                EXPECT_TRUE(isRect(kept.region, free.region));
                EXPECT_TRUE(isRect(kept.outline.rect, free.outline.rect));
                if (isWithin(free.badgeRing.outer(), display) && isWithin(free.label->capsule, display)) {
                    EXPECT_TRUE(isRect(kept.badge, free.badge)) << where();
                    EXPECT_TRUE(isRect(kept.label->capsule, free.label->capsule)) << where();
                    EXPECT_FALSE(kept.label->room) << where();
                }
            }
        }
    }
}

TEST_P(LaysOutMarkers, MovesNoFurtherThanItMust) {
    const auto kept = [](const QRectF& region, const QString& label) {
        return marker_painter::layout({.label = label}, scaled(region), scale(), MarkerStyle::onOverlay,
                                      Spotlight::off, scaled({0, 0, 800, 600}));
    };
    EXPECT_TRUE(isAt(kept({0, 0, 300, 200}, u"x"_s).badgeRing.outer(), {0, 0, 28, 28}));
    EXPECT_TRUE(isAt(kept({500, 5, 200, 200}, u"x"_s).badgeRing.outer(), {486, 0, 28, 28}));
    const MarkerLayout atTheRight = kept({790, 100, 10, 50}, u"A label"_s);
    EXPECT_NEAR(atTheRight.label->capsule.right(), 800 * scale(), rounding);
    EXPECT_NEAR(atTheRight.label->capsule.top(), 156 * scale(), rounding);
    const MarkerLayout atTheBottom = kept({100, 400, 300, 190}, u"A label"_s);
    EXPECT_NEAR(atTheBottom.label->capsule.bottom(), 600 * scale(), rounding);
    EXPECT_NEAR(atTheBottom.label->capsule.left(), 100 * scale(), rounding);
    // Where nothing has to move, not even for the badge of a flat region.
    const MarkerLayout flat = kept({300, 300, 80, 2}, u"A label"_s);
    EXPECT_TRUE(isPoint(flat.label->capsule.topLeft(), QPointF(300, 308) * scale(), rounding));
}

TEST_P(LaysOutMarkers, ALabelThatMakesWayForItsBadgeKeepsItsDistance) {
    const auto kept = [](const QRectF& region) {
        return marker_painter::layout({.label = u"A label"_s}, scaled(region), scale(),
                                      MarkerStyle::onOverlay, Spotlight::off, scaled({0, 0, 800, 600}));
    };
    const qreal gap = 6 * scale();
    const MarkerLayout below = kept({300, -200, 200, 195});
    EXPECT_TRUE(isPoint(below.label->capsule.topLeft(),
                        {300 * scale(), below.badgeRing.outer().bottom() + gap}, rounding));
    const MarkerLayout beside = kept({300, 590, 200, 5});
    EXPECT_TRUE(isPoint(beside.label->capsule.bottomLeft(),
                        {beside.badgeRing.outer().right() + gap, 600 * scale()}, rounding));
    const MarkerLayout before = kept({780, 590, 15, 5});
    EXPECT_TRUE(isPoint(before.label->capsule.bottomRight(),
                        {before.badgeRing.outer().left() - gap, 600 * scale()}, rounding));
}

TEST_P(LaysOutMarkers, WrapsALabelOnlyWhereItIsWiderThanTheDisplay) {
    const auto labelOf = [](const QString& label, const QRectF& region, qreal displayWidth) {
        return *marker_painter::layout({.label = label}, scaled(region), scale(), MarkerStyle::onImage,
                                       Spotlight::off, scaled({0, 0, displayWidth, 900}))
                    .label;
    };
    const QString label = u"Twelve words that make a label as long as it is wide"_s;
    const QFont font = systemFont(13, QFont::Medium);
    const QSizeF line = drawnTextSize(label, font);
    const QRectF region(10, 10, 200, 100);
    const MarkerLayout::Label whole = labelOf(label, region, std::ceil(line.width()) + 31);
    EXPECT_FALSE(whole.room);
    EXPECT_TRUE(isRect(whole.text, {whole.text.topLeft(), line * scale()}, rounding));
    const MarkerLayout::Label wrapped = labelOf(label, region, std::floor(line.width()) + 30);
    EXPECT_TRUE(wrapped.room);
    EXPECT_NEAR(wrapped.text.height(), 2 * line.height() * scale(), rounding);
    // Easily read, unless the region is wider.
    const QString text = (label + u' ').repeated(12);
    EXPECT_LE(labelOf(text, region, 1200).text.width(), 480 * scale());
    EXPECT_GT(labelOf(text, region, 1200).text.width(), 400 * scale());
    EXPECT_GT(labelOf(text, {10, 10, 900, 100}, 1200).text.width(), 800 * scale());
    EXPECT_LE(labelOf(text, {10, 10, 900, 100}, 1200).text.width(), (900 - 31) * scale());
}

TEST_P(LaysOutMarkers, ALabelLargerThanItsDisplayIsShortened) {
    const QString label = u"word "_s.repeated(2000);
    const QRectF display = scaled({0, 0, 300, 200});
    const MarkerLayout place = marker_painter::layout({.label = label}, scaled({50, 50, 100, 60}), scale(),
                                                      MarkerStyle::onImage, Spotlight::off, display);
    EXPECT_TRUE(isWithin(place.label->capsule, display));
    EXPECT_GT(place.label->capsule.height(), 180 * scale());
}

TEST_P(LaysOutMarkers, ADisplaySmallerThanAMarker) {
    for (const QSizeF& size : {QSizeF(10, 10), QSizeF(0, 0), QSizeF(1, 900)}) {
        const QRectF display = scaled({{100, 200}, size});
        const MarkerLayout place = marker_painter::layout({.label = u"Note"_s}, display, scale(),
                                                          MarkerStyle::onImage, Spotlight::off, display);
        EXPECT_TRUE(isPoint(place.badgeRing.outer().topLeft(), display.topLeft(), rounding));
        EXPECT_GE(place.label->capsule.width(), 31 * scale() - rounding);
    }
}

INSTANTIATE_TEST_SUITE_P(MarkerLayout, LaysOutMarkers, testing::ValuesIn(displayScales), nameOfScale);

} // namespace orvane::test
