#include "tests/unit/marking/overlay/GestureTest.h"

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

using test::isPoint;
using test::isRect;
using Calls = std::vector<std::string>;

/// One view with its origin at the global one.
class RegionGesturesTest : public test::MarkedScreenTest {
protected:
    RegionGesturesTest() { gestures.setCoordinates({.view = {{0, 0, 1920, 1080}}, .primaryHeight = 1080}); }

    void press(const QPointF& point) { gestures.pointerPressed(point); }
    void dragTo(const QPointF& point) { gestures.pointerDragged(point); }
    void release() { gestures.pointerReleased(); }
    void click(const QPointF& point) {
        press(point);
        release();
    }
    void drag(const QPointF& from, const QPointF& to) {
        press(from);
        dragTo(to);
        release();
    }

    RegionGestures gestures{manager, view};
};

} // namespace

TEST_F(RegionGesturesTest, ADragOfElevenAddsARegionAndOpensItsLabel) {
    drag({100, 200}, {111, 211});
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 200, 11, 11}));
    EXPECT_TRUE(markerNumber(1).label.isEmpty());
    EXPECT_EQ(view.calls, (Calls{"close editors", "take keyboard", "open label"}));
    EXPECT_EQ(view.editedMarker, markerNumber(1).id);
    EXPECT_TRUE(isPoint(view.place, {105.5, 200}));
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
}

TEST_F(RegionGesturesTest, ADragOfTenInEitherDirectionAddsNothing) {
    drag({100, 200}, {110, 300});
    drag({100, 200}, {300, 210});
    drag({110, 300}, {100, 200});
    drag({100, 200}, {110, 210});
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
}

TEST_F(RegionGesturesTest, AClickAddsNothing) {
    click({100, 200});
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_EQ(view.calls, (Calls{"close editors", "take keyboard"}));
}

TEST_F(RegionGesturesTest, TheRegionIsShownWhileItIsDrawnAndMayGrowToAnySide) {
    press({100, 200});
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
    dragTo({150, 230});
    ASSERT_TRUE(gestures.currentRect());
    EXPECT_TRUE(isRect(*gestures.currentRect(), {100, 200, 50, 30}));
    dragTo({60, 150});
    EXPECT_TRUE(isRect(*gestures.currentRect(), {60, 150, 40, 50}));
    EXPECT_TRUE(manager.markers().empty());
    release();
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {60, 150, 40, 50}));
}

TEST_F(RegionGesturesTest, WhileTextIsRecognisedNoLabelIsAskedFor) {
    manager.setOcrMode(true);
    drag({100, 200}, {200, 300});
    EXPECT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(view.calls, (Calls{"close editors", "take keyboard"}));
}

TEST_F(RegionGesturesTest, ADragMayLeaveTheView) {
    drag({100, 200}, {-300, 1500});
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {-300, 200, 400, 1300}));
    EXPECT_TRUE(isPoint(view.place, {-100, 200}));
}

TEST_F(RegionGesturesTest, ARegionThatIsAddedIsLoggedOnce) {
    testing::internal::CaptureStderr();
    press({100, 200});
    dragTo({105, 205});
    dragTo({400, 350});
    release();
    drag({100, 500}, {105, 505});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: convert viewRect=(100.0, 730.0, 300.0, 150.0) → cocoaScreen=(100.0, 730.0, 300.0, "
              "150.0) → quartz=(100.0, 200.0, 300.0, 150.0) mainH=1080.0\n");
}

TEST_F(RegionGesturesTest, AClickInsideARegionSelectsNothing) {
    manager.setSelectedMarkerId(region({100, 100, 200, 200}));
    click({200, 200});
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
}

TEST_F(RegionGesturesTest, ARegionCanBeDrawnWithinAnother) {
    region({100, 100, 200, 200});
    drag({150, 150}, {250, 250});
    ASSERT_EQ(manager.markers().size(), 2U);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 200, 200}));
    EXPECT_TRUE(isRect(markerNumber(2).rect, {150, 150, 100, 100}));
}

TEST_F(RegionGesturesTest, TheBorderIsGrabbedUpToEightBesideIt) {
    const QUuid id = region({100, 100, 200, 200});
    for (const QPointF& point :
         {QPointF(100, 200), QPointF(92, 200), QPointF(107.9, 200), QPointF(292, 200), QPointF(307.9, 200),
          QPointF(200, 92), QPointF(200, 107.9), QPointF(200, 292), QPointF(200, 307.9)}) {
        manager.setSelectedMarkerId(std::nullopt);
        click(point);
        EXPECT_EQ(manager.selectedMarkerId(), id) << point.x() << ", " << point.y();
    }
    for (const QPointF& point :
         {QPointF(91.9, 200), QPointF(108, 200), QPointF(291.9, 200), QPointF(308, 200), QPointF(200, 91.9),
          QPointF(200, 108), QPointF(200, 291.9), QPointF(200, 308)}) {
        manager.setSelectedMarkerId(id);
        click(point);
        EXPECT_EQ(manager.selectedMarkerId(), std::nullopt) << point.x() << ", " << point.y();
    }
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 200, 200}));
}

TEST_F(RegionGesturesTest, DraggingABorderMovesTheRegion) {
    const QUuid id = region({100, 100, 200, 200});
    press({103, 200});
    dragTo({113, 190});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {110, 90, 200, 200}));
    dragTo({53, 250});
    release();
    EXPECT_TRUE(isRect(markerNumber(1).rect, {50, 150, 200, 200}));
    EXPECT_EQ(manager.selectedMarkerId(), id);
    EXPECT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(view.calls, (Calls{"close editors", "take keyboard"}));

    dragTo({500, 500});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {50, 150, 200, 200}));
}

TEST_F(RegionGesturesTest, ACornerIsGrabbedUpToTwelveBesideIt) {
    region({100, 100, 200, 200});
    drag({288, 300}, {350, 340});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 250, 240}));
    // Outside of the outline's reach, so that only the corner can be meant.
    drag({350, 352}, {300, 300});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 200, 200}));
    EXPECT_EQ(manager.markers().size(), 1U);
}

TEST_F(RegionGesturesTest, BeyondTwelveTheBorderIsGrabbed) {
    region({100, 100, 200, 200});
    drag({287.99, 300}, {297.99, 310});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {110, 110, 200, 200}, 1e-9));
}

TEST_F(RegionGesturesTest, EveryCornerLeavesTheOppositeOneWhereItIs) {
    region({100, 100, 200, 200});
    drag({100, 100}, {90, 80});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {90, 80, 210, 220}));
    drag({300, 80}, {310, 70});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {90, 70, 220, 230}));
    drag({90, 300}, {100, 320});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 70, 210, 250}));
}

TEST_F(RegionGesturesTest, ACornerDraggedAcrossTheOppositeOneMirrorsTheRegionAndBack) {
    region({100, 100, 50, 50});
    press({150, 150});
    dragTo({90, 80});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {90, 80, 10, 20}));
    dragTo({70, 60});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {70, 60, 30, 40}));
    dragTo({160, 170});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 60, 70}));
    release();
}

TEST_F(RegionGesturesTest, AClickOnACornerChangesNothing) {
    const QUuid id = region({100, 100, 200, 200});
    click({305, 306});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 200, 200}));
    EXPECT_EQ(manager.selectedMarkerId(), id);
}

TEST_F(RegionGesturesTest, ARegionMayBecomeAsSmallAsOneLikes) {
    region({100, 100, 200, 200});
    drag({300, 300}, {100, 100});
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 0, 0}));
}

TEST_F(RegionGesturesTest, OfTwoBordersThatOfTheNewerRegionIsGrabbed) {
    region({100, 100, 200, 200});
    const QUuid newer = region({100, 150, 300, 200});
    click({100, 200});
    EXPECT_EQ(manager.selectedMarkerId(), newer);
}

TEST_F(RegionGesturesTest, OfTwoCornersThatOfTheNewerRegionIsGrabbedEvenIfFarther) {
    region({100, 100, 200, 200});
    region({110, 100, 200, 200});
    drag({100, 100}, {100, 90});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 200, 200}));
    EXPECT_TRUE(isRect(markerNumber(2).rect, {100, 90, 210, 210}));
}

TEST_F(RegionGesturesTest, ACornerOfAnOlderRegionComesBeforeABorderOfANewerOne) {
    const QUuid older = region({200, 200, 100, 100});
    region({100, 195, 300, 300});
    press({200, 195});
    dragTo({190, 180});
    release();
    EXPECT_EQ(manager.selectedMarkerId(), older);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {190, 180, 110, 120}));
    EXPECT_TRUE(isRect(markerNumber(2).rect, {100, 195, 300, 300}));
}

TEST_F(RegionGesturesTest, OfTheCornersOfASmallRegionTheNearestIsGrabbedAndTheEarlierOfEqualOnes) {
    region({100, 100, 10, 10});
    drag({108, 109}, {140, 150});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 40, 50}));
    manager.clearAll();
    region({100, 100, 10, 10});
    drag({105, 105}, {80, 90});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {80, 90, 30, 20}));
}

TEST_F(RegionGesturesTest, ARightClickOpensTheLabelOfTheNewestRegionUnderIt) {
    region({100, 100, 200, 200});
    const QUuid newer = region({150, 150, 300, 100});
    gestures.rightPressed({200, 200});
    EXPECT_EQ(view.calls, (Calls{"close editors", "open label"}));
    EXPECT_EQ(view.editedMarker, newer);
    EXPECT_TRUE(isPoint(view.place, {300, 150}));
}

TEST_F(RegionGesturesTest, ARightClickGoesByTheInsideAndNotByTheReachOfTheBorder) {
    const QUuid id = region({100, 100, 200, 200});
    for (const QPointF& point : {QPointF(99.9, 200), QPointF(300, 200), QPointF(200, 300), QPointF(200, 99)})
        gestures.rightPressed(point);
    EXPECT_TRUE(view.calls.empty());
    gestures.rightPressed({100, 100});
    EXPECT_EQ(view.editedMarker, id);
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
}

TEST_F(RegionGesturesTest, ARightClickWorksWithEveryToolAndWhileTextIsRecognised) {
    const QUuid id = region({100, 100, 200, 200});
    manager.setOcrMode(true);
    manager.setCurrentTool(AnnotationTool::arrow);
    gestures.rightPressed({200, 200});
    EXPECT_EQ(view.editedMarker, id);
}

TEST_F(RegionGesturesTest, ALabelGoesToItsMarker) {
    const QUuid first = region({100, 100, 200, 200});
    region({400, 100, 200, 200});
    gestures.labelSubmitted(first, u"one\ntwo"_s);
    EXPECT_EQ(markerNumber(1).label, u"one\ntwo"_s);
    EXPECT_TRUE(markerNumber(2).label.isEmpty());
    gestures.labelSubmitted(first, QString());
    EXPECT_TRUE(markerNumber(1).label.isEmpty());
}

TEST_F(RegionGesturesTest, ALabelOfAMarkerThatIsGoneIsDropped) {
    const QUuid gone = region({100, 100, 200, 200});
    region({400, 100, 200, 200});
    manager.remove(gone);
    gestures.labelSubmitted(gone, u"late"_s);
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(markerNumber(1).label.isEmpty());
}

TEST_F(RegionGesturesTest, ADragToTheLastPixelMarksUpToTheEdge) {
    drag({1800, 1000}, {1919, 1079});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {1800, 1000, 120, 80}));
    drag({1919, 600}, {1700, 400});
    EXPECT_TRUE(isRect(markerNumber(2).rect, {1700, 400, 220, 200}));
    drag({0, 0}, {50, 50});
    EXPECT_TRUE(isRect(markerNumber(3).rect, {0, 0, 50, 50}));
}

TEST_F(RegionGesturesTest, ACornerCanBeDraggedToTheEdge) {
    region({1000, 500, 200, 100});
    drag({1200, 600}, {1919, 1079});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {1000, 500, 920, 580}));
    drag({1915, 1075}, {1300, 700});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {1000, 500, 300, 200}));
}

} // namespace orvane
