#include "OrvaneCore/marking/overlay/OverlayLayout.h"

#include "OrvaneCore/marking/overlay/OverlayFonts.h"
#include "OrvaneCore/marking/overlay/OverlayTexts.h"
#include "tests/unit/marking/overlay/drawing/OverlayScenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr QSizeF view(800, 600);

std::vector<QRectF> regions() {
    std::vector<QRectF> all;
    all.reserve(400);
    for (const qreal left : {-30.0, 0.0, 200.0, 640.5, 785.0}) {
        for (const qreal top : {-20.0, 0.0, 5.0, 17.0, 300.0, 585.0}) {
            for (const QSizeF& size : {QSizeF(11, 11), QSizeF(60, 12), QSizeF(40, 300), QSizeF(300, 200)})
                all.emplace_back(QPointF(left, top), size);
        }
    }
    return all;
}

/// A badge with its ring.
QRectF badgeOf(const QRectF& region) {
    return {region.left() - 14, region.top() - 14, 28, 28};
}

} // namespace

TEST(OverlayLayout, SizeTagIsClearOfBadgeLabelAndHint) {
    for (const QRectF& region : regions()) {
        const QRectF tag = overlay_layout::sizeTag(placed(region), view);
        const auto where = [&region] {
            return testing::Message()
                   << region.x() << "," << region.y() << " " << region.width() << "x" << region.height();
        };
        EXPECT_FALSE(tag.intersects(badgeOf(region))) << where();
        EXPECT_FALSE(tag.intersects(placed(region, u"A label"_s).label->capsule)) << where();
        EXPECT_FALSE(tag.intersects(overlay_layout::hint(placed(region)))) << where();
        EXPECT_GE(tag.top(), std::min(region.top(), 0.0)) << where();
    }
}

TEST(OverlayLayout, PlatesOfARegionAreOnItsDisplayAndClearOfEachOther) {
    const QRectF display({0, 0}, view);
    for (const QRectF& region : regions()) {
        if (!display.contains(region.center()))
            continue;
        for (const QString& label : {QString(), u"A label"_s, u"Lines\nand lines\nand lines"_s,
                                     u"A label that is longer than the display. "_s.repeated(9)}) {
            const auto where = [&] {
                return testing::Message() << region.x() << "," << region.y() << " " << region.width() << "x"
                                          << region.height() << " " << label.size();
            };
            const MarkerLayout place = placed(region, label, display);
            const QRectF below = place.label ? place.label->capsule : overlay_layout::hint(place);
            const QRectF tag = overlay_layout::sizeTag(place, view);
            EXPECT_TRUE(display.contains(tag)) << where();
            EXPECT_TRUE(display.contains(below)) << where();
            EXPECT_FALSE(tag.intersects(place.badgeRing.outer())) << where();
            EXPECT_FALSE(tag.intersects(below)) << where();
            EXPECT_FALSE(below.intersects(place.badgeRing.outer())) << where();
            const QRectF usual = overlay_layout::sizeTag(placed(region, label), view);
            const bool isFree = display.contains(usual) && !usual.intersects(place.badgeRing.outer()) &&
                                !usual.intersects(below);
            EXPECT_TRUE(!isFree || tag == usual) << where();
        }
    }
}

TEST(OverlayLayout, PlatesOfARegionOnAnotherDisplayAreThere) {
    const QRectF left(-640, 0, 640, 480);
    const MarkerLayout place = placed({-30, 100, 40, 50}, u"A label of some length"_s, left);
    EXPECT_EQ(place.label->capsule.right(), 0);
    EXPECT_TRUE(left.contains(overlay_layout::sizeTag(place, view)));
    EXPECT_EQ(overlay_layout::hint(placed({-30, 100, 40, 50}, {}, left)).right(), 0);
}

TEST(OverlayLayout, SizeTagIsAboveTheTopRightCorner) {
    const QRectF region(100, 200, 300, 150);
    const QRectF tag = overlay_layout::sizeTag(placed(region), view);
    EXPECT_EQ(tag.right(), 400);
    EXPECT_EQ(tag.bottom(), 196);
    EXPECT_GE(tag.width(), overlayTextSize(OverlayFont::sizeTag, u" 300x150 "_s).width());
}

TEST(OverlayLayout, SizeTagIsInsideAtTheTopOfTheView) {
    const QRectF tag = overlay_layout::sizeTag(placed({100, 3, 300, 150}), view);
    EXPECT_EQ(tag.right(), 396);
    EXPECT_EQ(tag.top(), 7);
    const QRectF besideLow = overlay_layout::sizeTag(placed({100, 3, 300, 12}), view);
    EXPECT_EQ(besideLow.left(), 404);
    // Of a display that begins further down than the view.
    const QRectF low =
        overlay_layout::sizeTag(placed({100, 103, 300, 150}, {}, QRectF(0, 100, 800, 500)), view);
    EXPECT_EQ(low.right(), 396);
    EXPECT_EQ(low.top(), 107);
}

TEST(OverlayLayout, SizeTagStaysInTheViewWithItsRegionPartlyOutside) {
    const QRectF tag = overlay_layout::sizeTag(placed({600, 200, 900, 150}), view);
    EXPECT_LE(tag.right(), view.width());
    EXPECT_GE(tag.left(), 618);
}

TEST(OverlayLayout, HintIsWhereALabelWouldBe) {
    const QRectF region(100, 200, 300, 150);
    EXPECT_EQ(placed(region, u"Note"_s).label->capsule.topLeft(), QPointF(100, 356));
    EXPECT_EQ(overlay_layout::hint(placed(region)).topLeft(), QPointF(100, 356));
}

TEST(OverlayLayout, CoordinatePlateIsBesideThePointerAndInsideTheView) {
    const QString text = u"-1920, 1080"_s;
    for (qreal x = -40; x <= 840; x += 20) {
        for (qreal y = -40; y <= 640; y += 20) {
            const QRectF plate = overlay_layout::coordinatePlate({x, y}, text, view);
            EXPECT_TRUE(QRectF({0, 0}, view).contains(plate)) << x << "," << y;
            EXPECT_FALSE(plate.contains(QPointF(x, y))) << x << "," << y;
        }
    }
    EXPECT_EQ(overlay_layout::coordinatePlate({100, 100}, text, view).topLeft(), QPointF(114, 114));
    // On the other side.
    const QRectF atTheCorner = overlay_layout::coordinatePlate({795, 595}, text, view);
    EXPECT_EQ(atTheCorner.right(), 781);
    EXPECT_EQ(atTheCorner.bottom(), 581);
}

TEST(OverlayLayout, CoordinatePlateInATinyView) {
    const QRectF plate = overlay_layout::coordinatePlate({5, 5}, u"5, 5"_s, {10, 10});
    EXPECT_EQ(plate.topLeft(), QPointF(0, 0));
}

TEST(OverlayLayout, DimensionLabelIsAboveTheRegionOrInside) {
    const QRectF above = overlay_layout::dimensionLabel({100, 200, 300, 150}, view);
    EXPECT_EQ(above.left(), 100);
    EXPECT_EQ(above.bottom(), 194);
    const QRectF inside = overlay_layout::dimensionLabel({100, 5, 300, 150}, view);
    EXPECT_EQ(inside.topLeft(), QPointF(106, 11));
    EXPECT_EQ(overlay_layout::dimensionLabel({-30, 5, 300, 150}, view).topLeft(), QPointF(6, 11));
    EXPECT_LE(overlay_layout::dimensionLabel({790, 200, 8, 8}, view).right(), view.width());
    for (const QRectF& region : regions())
        EXPECT_TRUE(QRectF({0, 0}, view).contains(overlay_layout::dimensionLabel(region, view)));
}

TEST(OverlayLayout, InstructionsAreCentredAboveALineNearTheTop) {
    const QString text = overlayInstructions({}, 0);
    const auto [pill, lines] = overlay_layout::instructions(text, view);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, text);
    const QRectF place = lines[0].place;
    EXPECT_EQ(place.size(), overlayTextSize(OverlayFont::instructions, text));
    EXPECT_DOUBLE_EQ(place.bottom(), 56);
    EXPECT_NEAR(place.center().x(), 400, 0.5);
    EXPECT_EQ(pill, place.adjusted(-12, -6, 12, 6));
}

TEST(OverlayLayout, InstructionsTakeAsManyLinesAsANarrowViewNeeds) {
    const QString text = overlayInstructions({}, 2);
    const qreal whole = overlayTextSize(OverlayFont::instructions, text).width();
    const qreal lineHeight = overlayTextSize(OverlayFont::instructions, text).height();
    EXPECT_EQ(overlay_layout::instructions(text, {std::ceil(whole) + 24, 600}).lines.size(), 1U);
    EXPECT_EQ(overlay_layout::instructions(text, {std::floor(whole) + 23, 600}).lines.size(), 2U);
    for (const qreal width : {900.0, 853.5, 800.0, 640.0, 512.0, 427.0, 320.0, 240.0}) {
        const auto [pill, lines] = overlay_layout::instructions(text, {width, 600});
        EXPECT_TRUE(QRectF(0, 0, width, 600).contains(pill)) << width;
        QStringList said;
        qreal bottom = pill.top() + 6;
        for (const auto& [line, place] : lines) {
            EXPECT_EQ(place.size(), overlayTextSize(OverlayFont::instructions, line));
            EXPECT_NEAR(place.center().x(), width / 2, 0.5) << width;
            EXPECT_NEAR(place.top(), bottom, 1e-9) << width;
            EXPECT_TRUE(pill.adjusted(12, 6, -12, -6).adjusted(-0.1, -0.1, 0.1, 0.1).contains(place))
                << width;
            bottom = place.bottom();
            said << line.trimmed();
        }
        // Nothing is lost.
        EXPECT_EQ(said.join(u' ').remove(u'•').simplified(), QString(text).remove(u'•').simplified())
            << width;
        EXPECT_NEAR(pill.bottom(), bottom + 6, 1e-9);
        // As low as ever while there is room above.
        const bool isLow = 56 - static_cast<qreal>(lines.size()) * lineHeight < 10;
        EXPECT_NEAR(bottom, isLow ? 10 + static_cast<qreal>(lines.size()) * lineHeight : 56, 1e-9) << width;
    }
    EXPECT_EQ(overlay_layout::instructions(text, {800, 600}).lines.size(), 2U);
}

TEST(OverlayLayout, SpacesCountAtBothEnds) {
    for (const OverlayFont font :
         {OverlayFont::hint, OverlayFont::instructions, OverlayFont::sizeTag, OverlayFont::plate}) {
        const qreal bare = overlayTextSize(font, u"text"_s).width();
        const qreal before = overlayTextSize(font, u"  text"_s).width() - bare;
        const qreal after = overlayTextSize(font, u"text  "_s).width() - bare;
        EXPECT_GT(before, 4);
        EXPECT_NEAR(after, before, 1.1);
    }
}

TEST(OverlayLayout, MonospacedTextIsMonospaced) {
    for (const OverlayFont font : {OverlayFont::sizeTag, OverlayFont::plate})
        EXPECT_DOUBLE_EQ(overlayTextSize(font, u"iiii"_s).width(), overlayTextSize(font, u"0000"_s).width());
    EXPECT_NEAR(overlayTextSize(OverlayFont::sizeTag, u"00000"_s).width() / 10,
                overlayTextSize(OverlayFont::plate, u"00000"_s).width() / 11, 0.02);
}

} // namespace orvane::test
