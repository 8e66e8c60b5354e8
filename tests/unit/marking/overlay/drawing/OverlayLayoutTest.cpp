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
    EXPECT_LE(overlay_layout::dimensionLabel({790, 200, 8, 8}, view).right(), view.width());
}

TEST(OverlayLayout, InstructionsAreCentredAboveALineNearTheTop) {
    const QString text = overlayInstructions({}, 0);
    const QRectF place = overlay_layout::instructionsText(text, view);
    EXPECT_EQ(place.size(), overlayTextSize(OverlayFont::instructions, text));
    EXPECT_DOUBLE_EQ(place.bottom(), 56);
    EXPECT_NEAR(place.center().x(), 400, 0.5);
    EXPECT_EQ(overlay_layout::instructionsPill(place), place.adjusted(-12, -6, 12, 6));
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
