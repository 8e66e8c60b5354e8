#include "OrvaneCore/marking/Marker.h"

#include "tests/unit/marking/ExactGeometry.h"

namespace orvane {

namespace {

using Handle = Annotation::Handle;
using test::areHandles;
using test::infinite;
using test::isRect;
using test::notANumber;

const QRectF rect(100, 200, 60, 40);

Marker markerOf(const QRectF& bounds) {
    Marker marker;
    marker.rect = bounds;
    return marker;
}

bool isOnBorder(const QPointF& point, qreal tolerance = 8) {
    return markerOf(rect).isOnBorder(point, tolerance);
}

} // namespace

TEST(Marker, StartsWithoutWhatSubmittingFindsOut) {
    const Marker marker;
    EXPECT_FALSE(marker.id.isNull());
    EXPECT_NE(marker.id, Marker().id);
    EXPECT_TRUE(marker.label.isEmpty());
    EXPECT_EQ(marker.index, 1);
    EXPECT_FALSE(marker.windowRelativeRect);
    EXPECT_FALSE(marker.windowAppName);
    EXPECT_FALSE(marker.windowBounds);
    EXPECT_FALSE(marker.displayId);
    EXPECT_FALSE(marker.displayBounds);
    EXPECT_FALSE(marker.recognizedText);
}

TEST(MarkerCorners, AreTheFourOfItsRectangle) {
    EXPECT_TRUE(areHandles(markerOf(rect).cornerHandles(), {{Handle::topLeft, {100, 200}},
                                                            {Handle::topRight, {160, 200}},
                                                            {Handle::bottomLeft, {100, 240}},
                                                            {Handle::bottomRight, {160, 240}}}));
}

TEST(MarkerCorners, TheNearestWithinTheToleranceIsTaken) {
    const Marker marker = markerOf(rect);
    EXPECT_EQ(marker.cornerHandle({100, 200}, 12), Handle::topLeft);
    EXPECT_EQ(marker.cornerHandle({155, 205}, 12), Handle::topRight);
    EXPECT_EQ(marker.cornerHandle({95, 250}, 12), Handle::bottomLeft);
    EXPECT_EQ(marker.cornerHandle({160, 252}, 12), Handle::bottomRight);
    EXPECT_EQ(marker.cornerHandle({160, 252.001}, 12), std::nullopt);
    EXPECT_EQ(marker.cornerHandle({130, 220}, 12), std::nullopt);
    EXPECT_EQ(marker.cornerHandle({140, 230}, 1000), Handle::bottomRight);
}

TEST(MarkerCorners, ToleranceIsEuclidean) {
    EXPECT_EQ(markerOf(rect).cornerHandle({103, 204}, 5), Handle::topLeft);
    EXPECT_EQ(markerOf(rect).cornerHandle({104, 204}, 5), std::nullopt);
}

TEST(MarkerCorners, OnTiesTheEarlierIsTaken) {
    const Marker marker = markerOf(rect);
    EXPECT_EQ(marker.cornerHandle({130, 220}, 100), Handle::topLeft);
    EXPECT_EQ(marker.cornerHandle({130, 230}, 100), Handle::bottomLeft);
    EXPECT_EQ(marker.cornerHandle({150, 220}, 100), Handle::topRight);
    EXPECT_EQ(markerOf({50, 50, 0, 0}).cornerHandle({50, 50}, 0), Handle::topLeft);
}

TEST(MarkerBorder, LiesWithinTheToleranceOfTheOutline) {
    for (const QPointF& point : {QPointF(100, 220), QPointF(160, 220), QPointF(130, 200), QPointF(130, 240),
                                 QPointF(100, 200), QPointF(160, 240), QPointF(93, 193), QPointF(107, 207)})
        EXPECT_TRUE(isOnBorder(point)) << point.x() << ", " << point.y();
    EXPECT_FALSE(isOnBorder({130, 220}));
    EXPECT_FALSE(isOnBorder({80, 220}));
    EXPECT_FALSE(isOnBorder({130, 260}));
}

TEST(MarkerBorder, HasItsLimitsAtTheTolerance) {
    // Outside, the left and top limits belong to it. Inside, they belong to the hole.
    EXPECT_TRUE(isOnBorder({92, 220}));
    EXPECT_FALSE(isOnBorder({91.999, 220}));
    EXPECT_FALSE(isOnBorder({108, 220}));
    EXPECT_TRUE(isOnBorder({107.999, 220}));
    EXPECT_TRUE(isOnBorder({130, 192}));
    EXPECT_FALSE(isOnBorder({130, 191.999}));
    EXPECT_FALSE(isOnBorder({130, 208}));
    EXPECT_TRUE(isOnBorder({130, 207.999}));
    // With the right and bottom limits it is the other way round.
    EXPECT_FALSE(isOnBorder({168, 220}));
    EXPECT_TRUE(isOnBorder({167.999, 220}));
    EXPECT_TRUE(isOnBorder({152, 220}));
    EXPECT_FALSE(isOnBorder({151.999, 220}));
    EXPECT_FALSE(isOnBorder({130, 248}));
    EXPECT_TRUE(isOnBorder({130, 247.999}));
    EXPECT_TRUE(isOnBorder({130, 232}));
    EXPECT_FALSE(isOnBorder({130, 231.999}));
}

TEST(MarkerBorder, FillsASmallMarker) {
    EXPECT_TRUE(markerOf({100, 200, 16, 16}).isOnBorder({108, 208}, 8));
    EXPECT_TRUE(markerOf({100, 200, 10, 10}).isOnBorder({105, 205}, 8));
    EXPECT_TRUE(markerOf({100, 200, 300, 10}).isOnBorder({250, 205}, 8));
    EXPECT_TRUE(markerOf({100, 200, 0, 0}).isOnBorder({107, 207}, 8));
    EXPECT_FALSE(markerOf({100, 200, 17, 17}).isOnBorder({108.5, 208.5}, 8));
}

TEST(MarkerBorder, IsEmptyWithoutTolerance) {
    EXPECT_FALSE(isOnBorder({100, 220}, 0));
    EXPECT_FALSE(isOnBorder({130, 220}, 0));
    EXPECT_FALSE(isOnBorder({100, 220}, -8));
    EXPECT_FALSE(isOnBorder({130, 220}, -8));
    EXPECT_FALSE(isOnBorder({100, 220}, notANumber));
}

TEST(Marker, IsNotHitAtCoordinatesThatAreNotFinite) {
    for (const qreal bad : {notANumber, infinite, -infinite}) {
        EXPECT_FALSE(isOnBorder({bad, 220}, infinite)) << bad;
        EXPECT_FALSE(isOnBorder({130, bad}, infinite)) << bad;
        EXPECT_EQ(markerOf(rect).cornerHandle({bad, 200}, infinite), std::nullopt) << bad;
        EXPECT_EQ(markerOf(rect).cornerHandle({100, 200}, -1), std::nullopt) << bad;
        for (const QRectF& bounds : {QRectF(bad, 200, 60, 40), QRectF(100, bad, 60, 40),
                                     QRectF(100, 200, bad, 40), QRectF(100, 200, 60, bad)}) {
            EXPECT_TRUE(markerOf(bounds).cornerHandles().empty()) << bad;
            EXPECT_EQ(markerOf(bounds).cornerHandle({100, 200}, infinite), std::nullopt) << bad;
            EXPECT_FALSE(markerOf(bounds).isOnBorder({100, 200}, infinite)) << bad;
        }
    }
    EXPECT_EQ(markerOf(rect).cornerHandle({100, 200}, notANumber), std::nullopt);
}

TEST(MarkerReshape, KeepsTheOppositeCorner) {
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::topLeft, {90, 180}), {90, 180, 70, 60}));
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::topRight, {190, 180}), {100, 180, 90, 60}));
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::bottomLeft, {90, 270}), {90, 200, 70, 70}));
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::bottomRight, {190, 270}), {100, 200, 90, 70}));
}

TEST(MarkerReshape, IsNormalisedAcrossTheOppositeCorner) {
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::topLeft, {180, 250}), {160, 240, 20, 10}));
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::topRight, {70, 250}), {70, 240, 30, 10}));
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::bottomLeft, {180, 150}), {160, 150, 20, 50}));
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::bottomRight, {70, 150}), {70, 150, 30, 50}));
}

TEST(MarkerReshape, HasNoSmallestSize) {
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::topLeft, {160, 240}), {160, 240, 0, 0}));
    EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::bottomRight, {100.25, 200}), {100, 200, 0.25, 0}));
}

TEST(MarkerReshape, ACornerDraggedToItsPlaceChangesNothing) {
    for (const auto& [handle, place] : markerOf(rect).cornerHandles())
        EXPECT_TRUE(isRect(Marker::reshapedRect(rect, handle, place), rect));
}

TEST(MarkerReshape, OtherHandlesCountAsTheBottomRightCorner) {
    for (const Handle handle : {Handle::start, Handle::end, Handle::rotate})
        EXPECT_TRUE(isRect(Marker::reshapedRect(rect, handle, {190, 270}), {100, 200, 90, 70}));
}

TEST(MarkerReshape, APointThatIsNotFiniteChangesNothing) {
    for (const qreal bad : {notANumber, infinite, -infinite}) {
        EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::topLeft, {bad, 180}), rect)) << bad;
        EXPECT_TRUE(isRect(Marker::reshapedRect(rect, Handle::topLeft, {90, bad}), rect)) << bad;
    }
}

TEST(MarkerOfAnAnnotation, HoldsTheTipOfAnArrowTheStartOfATextAndTheMiddleOfTheRest) {
    Marker left = markerOf({0, 0, 100, 100});
    Marker middle = markerOf({100, 0, 100, 100});
    Marker right = markerOf({200, 0, 100, 100});
    left.index = 1;
    middle.index = 2;
    right.index = 3;
    const auto indexOf = [&](Annotation::Kind kind) {
        const Annotation annotation{.kind = kind, .start = {50, 50}, .end = {250, 50}};
        return resolveRegionIndex(annotation, {left, middle, right});
    };
    EXPECT_EQ(indexOf(Annotation::Kind::arrow), 3);
    EXPECT_EQ(indexOf(Annotation::Kind::text), 1);
    for (const Annotation::Kind kind : {Annotation::Kind::box, Annotation::Kind::ellipse,
                                        Annotation::Kind::highlight, Annotation::Kind::image})
        EXPECT_EQ(indexOf(kind), 2) << rawValue(kind).data();
}

} // namespace orvane
