#include "OrvaneCore/marking/overlay/OverlayDamage.h"

#include "OrvaneCore/marking/editing/AnnotationDamage.h"
#include "OrvaneCore/marking/overlay/OverlayLayout.h"
#include "OrvaneCore/marking/overlay/OverlayTexts.h"
#include "tests/unit/marking/overlay/drawing/OverlayScenes.h"

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

/// On a large display, with something of everything.
OverlayScene fullScene() {
    OverlayScene scene = emptyScene({3840, 2160});
    scene.markers = {markerAt({200, 300, 900, 700}, u"Note"_s), markerAt({1500, 400, 300, 200}, {}, 2)};
    scene.shapes.annotations = {shapeAt(Annotation::Kind::arrow, {300, 400}, {1900, 1500}),
                                shapeAt(Annotation::Kind::ellipse, {2000, 400}, {3000, 1500}),
                                shapeAt(Annotation::Kind::highlight, {2500, 1600}, {3200, 2000})};
    scene.mousePosition = QPointF(1000, 900);
    scene.selectedMarkerId = scene.markers[1].id;
    scene.shapes.selectedId = scene.shapes.annotations[0].id;
    return scene;
}

qint64 damagedArea(const OverlayScene& before, const OverlayScene& after) {
    const QRegion region = damage(before, after);
    EXPECT_FALSE(region.isEmpty());
    EXPECT_TRUE((region - wholeOf(after)).isEmpty());
    return areaOf(region);
}

constexpr qint64 plate = 100LL * 30;

} // namespace

TEST(OverlayDamage, NoneBetweenEqualScenes) {
    OverlayScene scene = fullScene();
    EXPECT_TRUE(damage(scene, scene).isEmpty());
    scene.currentRect = QRectF(1, 2, 300, 400);
    scene.shapes.draft = shapeAt(Annotation::Kind::box, {3, 4}, {500, 600});
    EXPECT_TRUE(damage(scene, OverlayScene(scene)).isEmpty());
    scene.shapes.annotations[0].strokeWidth = notANumber;
    scene.shapes.annotations[1].rotation = notANumber;
    scene.markers[0].rect.setX(notANumber);
    scene.mousePosition = QPointF(notANumber, 1);
    EXPECT_TRUE(damage(scene, scene).isEmpty());
}

TEST(OverlayDamage, WholeViewWhereModesPlaceOrSizeDiffer) {
    const OverlayScene before = fullScene();
    OverlayScene after = before;
    after.modes.spotlight = true;
    EXPECT_EQ(damage(before, after), wholeOf(after));
    after = before;
    after.modes.ocr = true;
    EXPECT_EQ(damage(before, after), wholeOf(after));
    after = before;
    after.shapes.origin = {0.25, 0};
    EXPECT_EQ(damage(before, after), wholeOf(after));
    after = before;
    after.shapes.size = {1000, 800.5};
    EXPECT_EQ(damage(before, after), QRegion(0, 0, 1000, 801));
}

TEST(OverlayDamage, OfAMovedPointerIsFourThinLinesAndTwoPlates) {
    for (const bool spotlight : {false, true}) {
        OverlayScene before = fullScene();
        before.modes.spotlight = spotlight;
        OverlayScene after = before;
        after.mousePosition = QPointF(1040, 930);
        EXPECT_LE(damagedArea(before, after), 2LL * 3 * (3840 + 2160) + 2 * plate);
        const QRegion region = damage(before, after);
        for (const QPoint& place : {QPoint(5, 900), QPoint(3835, 930), QPoint(1000, 5), QPoint(1040, 2155)})
            EXPECT_TRUE(region.contains(place));
        after.mousePosition.reset();
        EXPECT_LE(damagedArea(before, after), 3LL * (3840 + 2160) + plate);
        EXPECT_EQ(damage(before, after), damage(after, before));
    }
}

TEST(OverlayDamage, OfAPartOfAPoint) {
    const OverlayScene before = fullScene();
    OverlayScene after = before;
    after.mousePosition = *before.mousePosition + QPointF(1e-9, 0);
    EXPECT_FALSE(damage(before, after).isEmpty());
}

TEST(OverlayDamage, OfADraggedRegionIsWhatItGrewBy) {
    OverlayScene before = fullScene();
    before.mousePosition.reset();
    before.currentRect = QRectF(500, 500, 2000, 1200);
    OverlayScene after = before;
    after.currentRect = QRectF(500, 500, 2010, 1206);
    const qint64 grown = 2010 * 1206 - 2000 * 1200;
    const qint64 outlines = 4LL * (2010 + 1206) * 6;
    EXPECT_LE(damagedArea(before, after), grown + outlines + 2 * plate);
    EXPECT_FALSE(damage(before, after).contains(QPoint(1500, 1100)));
    EXPECT_TRUE(damage(before, after).contains(QPoint(2505, 1100)));
    // From nothing: all of it.
    before.currentRect.reset();
    EXPECT_TRUE(damage(before, after).contains(QPoint(1500, 1100)));
}

TEST(OverlayDamage, OfAMovedMarkerIsItsEdgesAndWhatHangsOnIt) {
    for (const bool spotlight : {false, true}) {
        OverlayScene before = fullScene();
        before.modes.spotlight = spotlight;
        OverlayScene after = before;
        after.markers[0].rect.translate(8, 4);
        const qint64 edges = 4LL * (900 + 700) * 12;
        EXPECT_LE(damagedArea(before, after), edges + 8 * plate);
        EXPECT_FALSE(damage(before, after).contains(QPoint(700, 700)));
        EXPECT_FALSE(damage(before, after).intersects(QRect(1400, 300, 500, 500)));
    }
}

TEST(OverlayDamage, OfAMarkerTooFlatForAnInside) {
    OverlayScene before = emptyScene();
    before.markers = {markerAt({-29.5, 126.25, 89, 1.5})};
    OverlayScene after = before;
    after.markers[0].rect.translate(0, 100);
    const QRegion region = damage(before, after);
    EXPECT_TRUE((QRegion(0, 126, 59, 2) + QRegion(0, 226, 59, 2) - region).isEmpty());
    QImage picture = pictureOf(before);
    repaint(picture, after, region);
    EXPECT_EQ(picture, pictureOf(after));
}

TEST(OverlayDamage, OfARecolouredMarkerIsItsTintUnlessInTheSpotlight) {
    OverlayScene before = fullScene();
    OverlayScene after = before;
    after.markers[0].color = QColor(red);
    EXPECT_TRUE(damage(before, after).contains(QPoint(700, 700)));
    before.modes.spotlight = after.modes.spotlight = true;
    EXPECT_FALSE(damage(before, after).contains(QPoint(700, 700)));
    EXPECT_FALSE(damage(before, after).isEmpty());
}

TEST(OverlayDamage, OfALabelIsNotTheRegionsInside) {
    const OverlayScene before = fullScene();
    OverlayScene after = before;
    after.markers[1].label = u"Another note"_s;
    EXPECT_LE(damagedArea(before, after), 2LL * (300 + 200) * 12 + 5 * plate);
    EXPECT_TRUE(damage(before, after).contains(QPoint(1520, 610)));
}

TEST(OverlayDamage, OfTheNumberOfMarkersIsTheInstructionsToo) {
    OverlayScene before = emptyScene({3840, 2160});
    OverlayScene after = before;
    after.markers = {markerAt({200, 1300, 300, 200})};
    const auto pill = [](int count) {
        return overlay_layout::instructions(overlayInstructions({}, count), {3840, 2160})
            .pill.toAlignedRect();
    };
    for (const QRegion& region : {damage(before, after), damage(after, before)}) {
        EXPECT_TRUE((QRegion(pill(0)) + pill(1) - region).isEmpty());
        EXPECT_LE(areaOf(region), 320 * 220 + 1000 * 35 + 5 * plate);
    }
    before = after;
    before.markers[0].label = u"x"_s;
    EXPECT_FALSE(damage(before, after).intersects(pill(1)));
}

TEST(OverlayDamage, OfTheToolIsTheInstructions) {
    const OverlayScene before = emptyScene({3840, 2160});
    OverlayScene after = before;
    after.tool = AnnotationTool::arrow;
    const QRegion region = damage(before, after);
    for (const AnnotationTool tool : {AnnotationTool::region, AnnotationTool::arrow}) {
        const QRectF pill = overlay_layout::instructions(overlayInstructions({}, 0, tool), {3840, 2160}).pill;
        EXPECT_TRUE((QRegion(pill.toAlignedRect()) - region).isEmpty());
    }
    EXPECT_LE(areaOf(region), 1000 * 35);
    EXPECT_TRUE(damage(after, after).isEmpty());
}

TEST(OverlayDamage, OfOtherDisplaysIsAll) {
    const OverlayScene before = fullScene();
    OverlayScene after = before;
    after.shapes.displays = {{0, 0, 1920, 1080}};
    EXPECT_EQ(damage(before, after), QRegion(wholeOf(before)));
}

TEST(OverlayDamage, OfAnAnnotationIsThatOfItsShape) {
    const OverlayScene before = fullScene();
    OverlayScene after = before;
    after.shapes.annotations[2] = after.shapes.annotations[2].moved({5, 5});
    EXPECT_EQ(damage(before, after), damage(before.shapes, after.shapes));
    EXPECT_LE(damagedArea(before, after), 2 * (700 + 400) * 2 * 10);
    after = before;
    after.shapes.draft = shapeAt(Annotation::Kind::box, {100, 100}, {700, 500});
    EXPECT_EQ(damage(before, after), damage(before.shapes, after.shapes));
    EXPECT_FALSE(damage(before, after).isEmpty());
}

TEST(OverlayDamage, OfASelectionIsItsHandles) {
    const OverlayScene before = fullScene();
    OverlayScene after = before;
    after.selectedMarkerId = after.markers[0].id;
    EXPECT_LE(damagedArea(before, after), 8 * 17 * 17);
    after = before;
    after.shapes.selectedId.reset();
    EXPECT_LE(damagedArea(before, after), 2 * 17 * 17);
}

TEST(OverlayDamage, OfAMovedMarkerThatIsSelectedIsItsHandlesToo) {
    OverlayScene before = emptyScene();
    before.markers = {markerAt({60, 110, 150, 90})};
    before.selectedMarkerId = before.markers[0].id;
    OverlayScene after = before;
    after.markers[0].rect.translate(40, 30);
    const QRegion damaged = damage(before, after);
    // Of the dots, what is outside of the outline and its halo.
    EXPECT_TRUE(damaged.contains(QPoint(213, 203)));
    EXPECT_TRUE(damaged.contains(QPoint(253, 233)));
}

} // namespace orvane::test
