#include "tests/unit/marking/overlay/GestureTest.h"

#include "OrvaneCore/marking/overlay/OverlayCommands.h"
#include "OrvaneCore/send/SendTargets.h"

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

using test::infinite;
using test::isPoint;
using test::isRect;
using test::notANumber;
using Kind = Annotation::Kind;

class OverlayGesturesTest : public test::GestureTest {
protected:
    SendTargets targets;
    OverlayCommands commands{manager, targets, [] {}, [] {}};
};

const QRectF leftFrame(-1440, 200, 1440, 900);

/// A second view, on a display to the left of the first and lower than it.
class TwoViewsTest : public OverlayGesturesTest {
protected:
    TwoViewsTest() { leftGestures.setFrame(leftFrame, 1080); }

    test::RecordingView leftView;
    OverlayGestures leftGestures{manager, leftView};
};

} // namespace

TEST_F(OverlayGesturesTest, ThePositionOfThePointerIsKeptUntilItLeaves) {
    EXPECT_EQ(gestures.mousePosition(), std::nullopt);
    gestures.pointerMoved({1, 2});
    EXPECT_TRUE(isPoint(gestures.mousePosition().value(), {1, 2}));
    press({3, 4});
    EXPECT_TRUE(isPoint(gestures.mousePosition().value(), {3, 4}));
    dragTo({5, 6});
    EXPECT_TRUE(isPoint(gestures.mousePosition().value(), {5, 6}));
    release({7, 8});
    EXPECT_TRUE(isPoint(gestures.mousePosition().value(), {7, 8}));
    gestures.pointerLeft();
    EXPECT_EQ(gestures.mousePosition(), std::nullopt);
}

TEST_F(OverlayGesturesTest, WhatIsAddedOnReleaseIsNoLongerAGestureWhenOthersHearOfIt) {
    bool heard = false;
    const Observers::Subscription subscription = manager.observe([this, &heard] {
        heard = heard || !manager.markers().empty();
        EXPECT_TRUE(manager.markers().empty() || !gestures.currentRect());
    });
    drag({100, 100}, {200, 200});
    EXPECT_TRUE(heard);
}

TEST_F(OverlayGesturesTest, DraggingAndReleasingWithoutAPressChangesNothing) {
    region({100, 100, 200, 200});
    dragTo({100, 200});
    release({300, 300});
    EXPECT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 200, 200}));
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
}

TEST_F(OverlayGesturesTest, ADrawingThatIsCancelledIsDropped) {
    press({100, 100});
    dragTo({200, 200});
    gestures.cancel();
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
    dragTo({300, 300});
    release({300, 300});
    EXPECT_TRUE(manager.markers().empty());

    manager.setCurrentTool(AnnotationTool::box);
    press({100, 100});
    dragTo({200, 200});
    gestures.cancel();
    EXPECT_EQ(gestures.draft(), std::nullopt);
    release({300, 300});
    EXPECT_TRUE(manager.annotations().empty());
}

TEST_F(OverlayGesturesTest, AMoveThatIsCancelledStaysAsFarAsItCame) {
    region({100, 100, 200, 200});
    press({100, 200});
    dragTo({110, 200});
    gestures.cancel();
    dragTo({150, 200});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {110, 100, 200, 200}));
}

TEST_F(OverlayGesturesTest, ASecondPressBeginsAnew) {
    press({100, 100});
    dragTo({200, 200});
    press({300, 300});
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
    dragTo({350, 350});
    release({350, 350});
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {300, 300, 50, 50}));
}

TEST_F(OverlayGesturesTest, ASecondPressThatBeginsNothingEndsTheFirst) {
    manager.setCurrentTool(AnnotationTool::select);
    shape(Kind::arrow, {100, 100}, {300, 100});
    press({200, 100});
    press({600, 600});
    dragTo({650, 650});
    EXPECT_TRUE(isPoint(annotationNumber(1).start, {100, 100}));
}

TEST_F(OverlayGesturesTest, ARightPressDoesNotDisturbADrag) {
    region({100, 100, 200, 200});
    press({150, 150});
    gestures.rightPressed({160, 160});
    dragTo({250, 250});
    EXPECT_EQ(view.editedMarker, QUuid());
    release({250, 250});
    EXPECT_EQ(manager.markers().size(), 2U);
}

TEST_F(OverlayGesturesTest, AMarkerThatIsDeletedWhileItIsDraggedStaysAway) {
    for (const QPointF& place : {QPointF(100, 200), QPointF(300, 300)}) {
        region({100, 100, 200, 200});
        press(place);
        dragTo(place + QPointF(5, 5));
        commands.perform(OverlayCommand::deleteMark);
        dragTo({600, 600});
        EXPECT_EQ(gestures.currentRect(), std::nullopt);
        release({600, 600});
        EXPECT_TRUE(manager.markers().empty());
    }
}

TEST_F(OverlayGesturesTest, AnAnnotationThatIsDeletedWhileItIsDraggedStaysAway) {
    manager.setCurrentTool(AnnotationTool::arrow);
    for (const QPointF& place : {QPointF(200, 100), QPointF(300, 100)}) {
        manager.setSelectedAnnotationId(shape(Kind::arrow, {100, 100}, {300, 100}));
        press(place);
        dragTo(place + QPointF(5, 5));
        manager.clearAll();
        dragTo({600, 600});
        release({600, 600});
        EXPECT_TRUE(manager.annotations().empty());
        EXPECT_EQ(gestures.draft(), std::nullopt);
    }
}

TEST_F(OverlayGesturesTest, ADrawingOutlivesTheRemovalOfAllMarks) {
    region({500, 500, 50, 50});
    press({100, 100});
    dragTo({200, 200});
    manager.clearAll();
    release({200, 200});
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(markerNumber(1).index, 1);
}

TEST_F(OverlayGesturesTest, AnObserverMayCancelADragThatItIsToldOf) {
    const QUuid marker = region({100, 100, 200, 200});
    manager.setSelectedMarkerId(marker);
    const auto dragTwice = [this](const QPointF& from) {
        const Observers::Subscription subscription = manager.observe([this] { gestures.cancel(); });
        press(from);
        dragTo(from + QPointF(20, 20));
        dragTo(from + QPointF(90, 90));
        release(from + QPointF(90, 90));
    };
    dragTwice({100, 200});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {120, 120, 200, 200}));
    dragTwice({320, 320});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {120, 120, 220, 220}));

    manager.setCurrentTool(AnnotationTool::arrow);
    manager.setSelectedAnnotationId(shape(Kind::arrow, {100, 100}, {300, 100}));
    dragTwice({200, 100});
    EXPECT_TRUE(isPoint(annotationNumber(1).start, {120, 120}));
    EXPECT_TRUE(isPoint(annotationNumber(1).end, {320, 120}));
    dragTwice({320, 120});
    EXPECT_TRUE(isPoint(annotationNumber(1).end, {340, 140}));
}

TEST_F(OverlayGesturesTest, ADraftIsNotAddedOnceTheToolIsForRegions) {
    commands.perform(OverlayCommand::toggleMarkup);
    manager.setCurrentTool(AnnotationTool::arrow);
    press({100, 100});
    dragTo({200, 200});
    commands.perform(OverlayCommand::toggleMarkup);
    release({200, 200});
    EXPECT_TRUE(manager.annotations().empty());
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
}

TEST_F(OverlayGesturesTest, ARegionIsNotAddedOnceTheToolIsForAnnotations) {
    press({100, 100});
    dragTo({200, 200});
    commands.perform(OverlayCommand::toggleMarkup);
    dragTo({300, 300});
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
    commands.perform(OverlayCommand::toggleMarkup);
    release({300, 300});
    EXPECT_TRUE(manager.markers().empty());
}

TEST_F(OverlayGesturesTest, WhereTheButtonGoesUpDoesNotCount) {
    press({100, 200});
    release({400, 400});
    EXPECT_TRUE(manager.markers().empty());
    press({100, 200});
    dragTo({150, 250});
    release({400, 400});
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 200, 50, 50}));
}

TEST_F(OverlayGesturesTest, WithTheRegionToolAnnotationsAreNotGrabbed) {
    shape(Kind::highlight, {100, 100}, {300, 300});
    drag({150, 150}, {250, 250});
    EXPECT_TRUE(isPoint(annotationNumber(1).start, {100, 100}));
    EXPECT_TRUE(isPoint(annotationNumber(1).end, {300, 300}));
    EXPECT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(gestures.draft(), std::nullopt);
}

TEST_F(OverlayGesturesTest, WithADrawingToolMarkersAreNotGrabbed) {
    region({100, 100, 200, 200});
    manager.setCurrentTool(AnnotationTool::arrow);
    drag({100, 200}, {150, 250});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 200, 200}));
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
    EXPECT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
}

TEST_F(OverlayGesturesTest, AMarkerIsNotDraggedOnAfterTheToolWasAway) {
    region({100, 100, 200, 200});
    press({100, 200});
    dragTo({110, 200});
    manager.setCurrentTool(AnnotationTool::box);
    dragTo({120, 200});
    manager.setCurrentTool(AnnotationTool::region);
    dragTo({130, 200});
    release({130, 200});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {110, 100, 200, 200}));
    EXPECT_TRUE(manager.annotations().empty());
}

TEST_F(OverlayGesturesTest, AMoveGoesOnWhenTheToolWasAwayAndBackBetweenTwoSteps) {
    region({100, 100, 200, 200});
    press({100, 200});
    manager.setCurrentTool(AnnotationTool::box);
    manager.setCurrentTool(AnnotationTool::region);
    dragTo({130, 200});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {130, 100, 200, 200}));
}

TEST_F(OverlayGesturesTest, ADraftOutlivesAChangeAmongTheDrawingTools) {
    manager.setCurrentTool(AnnotationTool::arrow);
    press({100, 100});
    manager.setCurrentTool(AnnotationTool::select);
    dragTo({200, 200});
    release({200, 200});
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(annotationNumber(1).kind, Kind::arrow);
}

TEST_F(OverlayGesturesTest, APressWithAnotherToolDropsTheGestureOfTheFirst) {
    press({100, 100});
    dragTo({200, 200});
    manager.setCurrentTool(AnnotationTool::arrow);
    press({300, 300});
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
    dragTo({350, 300});
    manager.setCurrentTool(AnnotationTool::region);
    press({500, 500});
    EXPECT_EQ(gestures.draft(), std::nullopt);
    release({500, 500});
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_TRUE(manager.annotations().empty());
}

TEST_F(OverlayGesturesTest, ARightPressDoesNotDisturbADraft) {
    region({100, 100, 200, 200});
    manager.setCurrentTool(AnnotationTool::arrow);
    press({150, 150});
    gestures.rightPressed({160, 160});
    EXPECT_EQ(view.editedMarker, QUuid());
    dragTo({250, 250});
    release({250, 250});
    EXPECT_EQ(manager.annotations().size(), 1U);
    gestures.rightPressed({160, 160});
    EXPECT_EQ(view.editedMarker, markerNumber(1).id);
}

TEST_F(OverlayGesturesTest, WhatIsDrawnIsTheHumans) {
    manager.setCurrentTool(AnnotationTool::box);
    drag({100, 100}, {200, 200});
    EXPECT_EQ(annotationNumber(1).role, Annotation::Role::human);
    EXPECT_TRUE(manager.canHit(annotationNumber(1)));
    EXPECT_TRUE(manager.canChange(annotationNumber(1)));
}

TEST_F(OverlayGesturesTest, PointsThatNoPointerReachesAreIgnored) {
    region({100, 100, 200, 200});
    for (const QPointF& point : {QPointF(notANumber, 200), QPointF(100, infinite), QPointF(-infinite, 200),
                                 QPointF(1e300, 200), QPointF(100, -1e300)}) {
        view.calls.clear();
        press(point);
        dragTo({150, 150});
        release({150, 150});
        gestures.rightPressed(point);
        EXPECT_TRUE(view.calls.empty());
        gestures.pointerMoved(point);
        EXPECT_TRUE(isPoint(gestures.mousePosition().value(), {150, 150}));

        press({100, 200});
        dragTo(point);
        release(point);
        EXPECT_TRUE(isPoint(gestures.mousePosition().value(), {100, 200}));
        EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 200, 200}));
        dragTo({500, 500});
        EXPECT_TRUE(isRect(markerNumber(1).rect, {100, 100, 200, 200}));
    }
    EXPECT_EQ(manager.markers().size(), 1U);
}

TEST_F(OverlayGesturesTest, AViewAtAPlaceThatIsNoPlaceTakesNoGestures) {
    for (const qreal x : {notANumber, infinite, 1e300}) {
        gestures.setFrame({x, 0, 100, 100}, x);
        drag({10, 10}, {80, 80});
    }
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_TRUE(view.calls.empty());
}

TEST_F(TwoViewsTest, WhatIsDrawnInAViewLandsOnItsDisplay) {
    leftGestures.pointerPressed({0, 0});
    leftGestures.pointerDragged({100.5, 50});
    EXPECT_TRUE(isRect(leftGestures.currentRect().value(), {0, 0, 100.5, 50}));
    leftGestures.pointerReleased({100.5, 50});
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {-1440, 200, 100.5, 50}));
    EXPECT_TRUE(isPoint(leftView.place, {50.25, 0}));
    EXPECT_EQ(leftView.editedMarker, markerNumber(1).id);
    EXPECT_TRUE(view.calls.empty());
}

TEST_F(TwoViewsTest, AnnotationsAreGlobalAndEditorsOpenInTheView) {
    manager.setCurrentTool(AnnotationTool::box);
    leftGestures.pointerPressed({10, 20});
    leftGestures.pointerDragged({30, 60});
    EXPECT_TRUE(isPoint(leftGestures.draft().value().start, {-1430, 220}));
    EXPECT_TRUE(isPoint(leftGestures.draft().value().end, {-1410, 260}));
    leftGestures.pointerReleased({30, 60});

    manager.setCurrentTool(AnnotationTool::text);
    leftGestures.pointerPressed({300, 400});
    EXPECT_TRUE(isPoint(annotationNumber(2).start, {-1140, 600}));
    EXPECT_TRUE(isPoint(leftView.place, {300, 400}));
}

TEST_F(TwoViewsTest, AMarkOfOneViewIsGrabbedInTheOtherWhereItReachesIt) {
    const QUuid id = region({-100, 300, 300, 200});
    leftGestures.pointerPressed({1340, 150});
    leftGestures.pointerDragged({1330, 155});
    leftGestures.pointerReleased({1330, 155});
    EXPECT_EQ(manager.selectedMarkerId(), id);
    EXPECT_TRUE(isRect(markerNumber(1).rect, {-110, 305, 300, 200}));

    drag({190, 505}, {250, 600});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {-110, 305, 360, 295}));

    leftGestures.rightPressed({1400, 300});
    EXPECT_EQ(leftView.editedMarker, id);
    EXPECT_TRUE(isPoint(leftView.place, {1510, 105}));
}

TEST_F(TwoViewsTest, AnAnnotationIsMovedAndReshapedInAnyView) {
    manager.setCurrentTool(AnnotationTool::select);
    shape(Kind::arrow, {-200, 400}, {200, 400});
    leftGestures.pointerPressed({1340, 203});
    leftGestures.pointerDragged({1345, 213});
    leftGestures.pointerReleased({1345, 213});
    EXPECT_TRUE(isPoint(annotationNumber(1).start, {-195, 410}));

    leftGestures.pointerPressed({1245, 210});
    leftGestures.pointerDragged({1200, 100});
    leftGestures.pointerReleased({1200, 100});
    EXPECT_TRUE(isPoint(annotationNumber(1).start, {-240, 300}));
    EXPECT_TRUE(isPoint(annotationNumber(1).end, {205, 410}));
}

TEST_F(TwoViewsTest, AClickInOneViewLetsGoOfWhatWasSelectedInTheOther) {
    const QUuid id = region({100, 100, 200, 200});
    click({100, 200});
    ASSERT_EQ(manager.selectedMarkerId(), id);
    leftGestures.pointerPressed({700, 700});
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
}

TEST_F(TwoViewsTest, AGestureOfOneViewIsNoneOfTheOther) {
    press({100, 100});
    dragTo({200, 200});
    leftGestures.pointerReleased({200, 200});
    EXPECT_EQ(leftGestures.currentRect(), std::nullopt);
    EXPECT_TRUE(gestures.currentRect());
    EXPECT_TRUE(manager.markers().empty());
}

TEST_F(TwoViewsTest, ARegionMayReachFromOneDisplayIntoTheOther) {
    drag({100, 300}, {-300, 500});
    EXPECT_TRUE(isRect(markerNumber(1).rect, {-300, 300, 400, 200}));
    EXPECT_TRUE(isPoint(view.place, {-100, 300}));
}

TEST_F(OverlayGesturesTest, ADoubleClickOpensATextWithEveryTool) {
    const Annotation text{
        .kind = Annotation::Kind::text, .start = {300, 300}, .end = {300, 300}, .text = u"words"_s};
    manager.addAnnotation(text);
    for (const AnnotationTool tool :
         {AnnotationTool::select, AnnotationTool::arrow, AnnotationTool::text, AnnotationTool::region}) {
        manager.setCurrentTool(tool);
        click({310, 295});
        view.calls.clear();
        doublePress({310, 295});
        ASSERT_FALSE(view.calls.empty());
        EXPECT_EQ(view.calls.back(), "open text");
        EXPECT_EQ(view.editedAnnotation, text.id);
        // The press has begun nothing.
        dragTo({400, 400});
        EXPECT_EQ(gestures.currentRect(), std::nullopt);
        EXPECT_EQ(gestures.draft(), std::nullopt);
        release({400, 400});
        ASSERT_EQ(manager.annotations().size(), 1U);
        EXPECT_EQ(annotationNumber(1).start, QPointF(300, 300));
        EXPECT_TRUE(manager.markers().empty());
    }
}

TEST_F(OverlayGesturesTest, ADoublePressElsewhereIsAPress) {
    manager.setCurrentTool(AnnotationTool::region);
    doublePress({100, 100});
    dragTo({200, 200});
    release({200, 200});
    EXPECT_EQ(manager.markers().size(), 1U);
    manager.setCurrentTool(AnnotationTool::box);
    doublePress({300, 300});
    dragTo({400, 400});
    release({400, 400});
    EXPECT_EQ(manager.annotations().size(), 1U);
    // On the outline of what is no text.
    doublePress({350, 300});
    dragTo({360, 310});
    release({360, 310});
    EXPECT_EQ(annotationNumber(1).start, QPointF(310, 310));
}

TEST_F(OverlayGesturesTest, ADoubleClickOnARegionsOutlineMeansTheRegion) {
    manager.addAnnotation(
        {.kind = Annotation::Kind::text, .start = {300, 300}, .end = {300, 300}, .text = u"words"_s});
    region({305, 200, 200, 200});
    manager.setCurrentTool(AnnotationTool::region);
    view.calls.clear();
    doublePress({305, 295});
    EXPECT_EQ(view.calls, (std::vector<std::string>{"close editors", "take keyboard"}));
    dragTo({315, 295});
    EXPECT_EQ(markerNumber(1).rect.x(), 315);
}

} // namespace orvane
