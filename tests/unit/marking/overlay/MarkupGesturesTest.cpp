#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "tests/unit/marking/overlay/GestureTest.h"

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

using test::isPoint;
using Calls = std::vector<std::string>;
using Kind = Annotation::Kind;

testing::AssertionResult runs(const Annotation& annotation, const QPointF& start, const QPointF& end) {
    testing::AssertionResult first = isPoint(annotation.start, start);
    return first ? isPoint(annotation.end, end) << " as end" : first << " as start";
}

class MarkupGesturesTest : public test::GestureTest {
protected:
    MarkupGesturesTest() {
        manager.setMarkupMode(true);
        manager.setCurrentTool(AnnotationTool::arrow);
    }

    /// Selects it as well.
    QUuid selectedShape(Kind kind, const QPointF& start, const QPointF& end) {
        const QUuid id = shape(kind, start, end);
        manager.setSelectedAnnotationId(id);
        return id;
    }
};

} // namespace

TEST_F(MarkupGesturesTest, AnArrowOfSixIsKeptAndSelected) {
    manager.setMarkupColor(QColor(Qt::green));
    manager.setMarkupStrokeWidth(11);
    drag({100, 100}, {106, 100});
    ASSERT_EQ(manager.annotations().size(), 1U);
    const Annotation& added = annotationNumber(1);
    EXPECT_EQ(added.kind, Kind::arrow);
    EXPECT_TRUE(runs(added, {100, 100}, {106, 100}));
    EXPECT_EQ(added.color, QColor(Qt::green));
    EXPECT_EQ(added.strokeWidth, 11);
    EXPECT_EQ(added.role, Annotation::Role::human);
    EXPECT_TRUE(added.text.isEmpty());
    EXPECT_EQ(manager.selectedAnnotationId(), added.id);
    EXPECT_EQ(gestures.draft(), std::nullopt);
    EXPECT_TRUE(manager.markers().empty());
}

TEST_F(MarkupGesturesTest, AnArrowOfFiveIsDropped) {
    drag({100, 100}, {105, 100});
    drag({100, 100}, {97, 96});
    click({100, 100});
    EXPECT_TRUE(manager.annotations().empty());
    EXPECT_EQ(gestures.draft(), std::nullopt);
}

TEST_F(MarkupGesturesTest, TheLengthOfADraftIsThatOfItsDiagonal) {
    drag({100, 100}, {104, 104});
    EXPECT_EQ(manager.annotations().size(), 1U);
}

TEST_F(MarkupGesturesTest, ADroppedDraftLeavesTheSelection) {
    const QUuid selected = selectedShape(Kind::box, {300, 300}, {400, 400});
    click({100, 100});
    EXPECT_EQ(manager.selectedAnnotationId(), selected);
}

TEST_F(MarkupGesturesTest, EveryDrawingToolDrawsItsKind) {
    const std::vector<std::pair<AnnotationTool, Kind>> tools{{AnnotationTool::arrow, Kind::arrow},
                                                             {AnnotationTool::box, Kind::box},
                                                             {AnnotationTool::ellipse, Kind::ellipse},
                                                             {AnnotationTool::highlight, Kind::highlight},
                                                             {AnnotationTool::image, Kind::image}};
    for (const auto& [tool, kind] : tools) {
        manager.clearAll();
        manager.setCurrentTool(tool);
        drag({100, 100}, {60, 150});
        ASSERT_EQ(manager.annotations().size(), 1U);
        EXPECT_EQ(annotationNumber(1).kind, kind);
        EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {60, 150}));
    }
}

TEST_F(MarkupGesturesTest, TheDraftIsShownWhileItIsDrawn) {
    press({100, 100});
    ASSERT_TRUE(gestures.draft());
    EXPECT_TRUE(runs(*gestures.draft(), {100, 100}, {100, 100}));
    dragTo({130, 140});
    EXPECT_TRUE(runs(*gestures.draft(), {100, 100}, {130, 140}));
    EXPECT_TRUE(manager.annotations().empty());
    EXPECT_EQ(gestures.currentRect(), std::nullopt);
}

TEST_F(MarkupGesturesTest, APressClosesTheTextEditorOnly) {
    press({100, 100});
    EXPECT_EQ(view.calls, (Calls{"close text", "take keyboard"}));
}

TEST_F(MarkupGesturesTest, SelectDrawsNothingAndLetsGoOfTheSelection) {
    selectedShape(Kind::box, {300, 300}, {400, 400});
    manager.setCurrentTool(AnnotationTool::select);
    drag({100, 100}, {200, 200});
    EXPECT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
    EXPECT_TRUE(manager.markers().empty());
}

TEST_F(MarkupGesturesTest, AShapeIsHitUpToEightBesideItWithAnyTool) {
    const QUuid id = shape(Kind::arrow, {100, 100}, {300, 100});
    click({200, 108});
    EXPECT_EQ(manager.selectedAnnotationId(), id);
    EXPECT_EQ(gestures.draft(), std::nullopt);
    manager.setSelectedAnnotationId(std::nullopt);
    click({200, 108.1});
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
}

TEST_F(MarkupGesturesTest, OfTwoShapesTheNewerIsHit) {
    shape(Kind::highlight, {100, 100}, {300, 300});
    const QUuid newer = shape(Kind::highlight, {200, 200}, {400, 400});
    click({250, 250});
    EXPECT_EQ(manager.selectedAnnotationId(), newer);
}

TEST_F(MarkupGesturesTest, DraggingAShapeMovesIt) {
    shape(Kind::box, {100, 100}, {300, 200});
    press({200, 102});
    dragTo({210, 92});
    EXPECT_TRUE(runs(annotationNumber(1), {110, 90}, {310, 190}));
    dragTo({150, 152});
    release({150, 152});
    EXPECT_TRUE(runs(annotationNumber(1), {50, 150}, {250, 250}));
    EXPECT_EQ(manager.annotations().size(), 1U);

    dragTo({500, 500});
    EXPECT_TRUE(runs(annotationNumber(1), {50, 150}, {250, 250}));
}

TEST_F(MarkupGesturesTest, AHandleOfTheSelectedShapeReshapesIt) {
    selectedShape(Kind::box, {100, 100}, {300, 200});
    // Outside of the outline's reach, so that only the handle can be meant.
    drag({300, 212}, {350, 260});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {350, 260}));
    drag({350, 272.1}, {400, 400});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {350, 260}));
}

TEST_F(MarkupGesturesTest, AHandleOfAShapeThatIsNotSelectedMovesIt) {
    const QUuid id = shape(Kind::box, {100, 100}, {300, 200});
    drag({300, 200}, {310, 220});
    EXPECT_TRUE(runs(annotationNumber(1), {110, 120}, {310, 220}));
    EXPECT_EQ(manager.selectedAnnotationId(), id);
}

TEST_F(MarkupGesturesTest, AHandleOfTheSelectedShapeComesBeforeANewerShape) {
    const QUuid older = selectedShape(Kind::arrow, {100, 100}, {300, 100});
    shape(Kind::highlight, {250, 50}, {350, 150});
    manager.setSelectedAnnotationId(older);
    drag({295, 100}, {320, 120});
    EXPECT_EQ(manager.selectedAnnotationId(), older);
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {320, 120}));
    EXPECT_TRUE(runs(annotationNumber(2), {250, 50}, {350, 150}));
}

TEST_F(MarkupGesturesTest, AClickOnAHandleChangesNothing) {
    selectedShape(Kind::arrow, {100, 100}, {300, 100});
    click({305, 104});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {300, 100}));
}

TEST_F(MarkupGesturesTest, ACornerDraggedAcrossTheOppositeOneMirrorsTheShapeAndBack) {
    selectedShape(Kind::box, {100, 100}, {150, 150});
    press({150, 150});
    dragTo({90, 80});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {90, 80}));
    dragTo({70, 60});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {70, 60}));
    dragTo({160, 170});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {160, 170}));
}

TEST_F(MarkupGesturesTest, AnImageKeepsItsProportionsThroughADrag) {
    selectedShape(Kind::image, {100, 100}, {300, 200});
    press({300, 200});
    dragTo({100, 100});
    dragTo({0, 0});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {0, 50}));
    dragTo({500, 400});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {500, 300}));
}

TEST_F(MarkupGesturesTest, TheTextToolPlacesATextAndAsksForIt) {
    manager.setCurrentTool(AnnotationTool::text);
    manager.setMarkupColor(QColor(Qt::blue));
    press({100, 200});
    ASSERT_EQ(manager.annotations().size(), 1U);
    const Annotation& added = annotationNumber(1);
    EXPECT_EQ(added.kind, Kind::text);
    EXPECT_TRUE(runs(added, {100, 200}, {100, 200}));
    EXPECT_TRUE(added.text.isEmpty());
    EXPECT_EQ(added.color, QColor(Qt::blue));
    EXPECT_EQ(added.strokeWidth, 6);
    EXPECT_EQ(manager.selectedAnnotationId(), added.id);
    EXPECT_EQ(view.calls, (Calls{"close text", "take keyboard", "open text"}));
    EXPECT_EQ(view.editedAnnotation, added.id);
    EXPECT_TRUE(isPoint(view.place, {100, 200}));

    dragTo({300, 300});
    release({300, 300});
    EXPECT_EQ(manager.annotations().size(), 1U);
    EXPECT_TRUE(runs(annotationNumber(1), {100, 200}, {100, 200}));
}

TEST_F(MarkupGesturesTest, AWrittenTextIsKept) {
    manager.setCurrentTool(AnnotationTool::text);
    click({100, 200});
    gestures.textClosed(view.editedAnnotation, u"see here"_s);
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(annotationNumber(1).text, u"see here"_s);
    EXPECT_TRUE(runs(annotationNumber(1), {100, 200}, {100, 200}));
}

TEST_F(MarkupGesturesTest, ATextAbandonedEmptyLeavesNothing) {
    manager.setCurrentTool(AnnotationTool::text);
    click({100, 200});
    gestures.textClosed(view.editedAnnotation, u""_s);
    EXPECT_TRUE(manager.annotations().empty());
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
}

TEST_F(MarkupGesturesTest, ATextThatIsGoneStaysAway) {
    const QUuid other = shape(Kind::text, {500, 500}, {500, 500}, u"other"_s);
    gestures.textClosed(QUuid::createUuid(), u"late"_s);
    gestures.textClosed(QUuid::createUuid(), QString());
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(annotationNumber(1).id, other);
    EXPECT_EQ(annotationNumber(1).text, u"other"_s);
}

TEST_F(MarkupGesturesTest, AnEmptyTextThatThePressClosesIsNotHitByIt) {
    manager.setCurrentTool(AnnotationTool::text);
    click({100, 200});
    const QUuid abandoned = view.editedAnnotation;
    view.whenClosing = [this, abandoned] { gestures.textClosed(abandoned, QString()); };
    click({110, 195});
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_NE(annotationNumber(1).id, abandoned);
    EXPECT_TRUE(isPoint(annotationNumber(1).start, {110, 195}));
}

TEST_F(MarkupGesturesTest, AnEmptyTextIsHitAsIfItWereEightyByTwenty) {
    const QUuid id = shape(Kind::text, {100, 200}, {100, 200});
    click({187, 175});
    EXPECT_EQ(manager.selectedAnnotationId(), id);
    for (const QPointF& point : {QPointF(189, 190), QPointF(140, 171), QPointF(140, 209), QPointF(91, 190)}) {
        manager.setSelectedAnnotationId(std::nullopt);
        click(point);
        EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt) << point.x() << ", " << point.y();
    }
}

TEST_F(MarkupGesturesTest, ATextIsHitInTheSizeInWhichItIsDrawn) {
    const QUuid id = shape(Kind::text, {100, 200}, {100, 200}, u"a rather long text, wider than eighty"_s);
    const qreal width = AnnotationRenderer::textSize(annotationNumber(1), 1).width();
    ASSERT_GT(width, 150);
    click({100 + width + 7, 195});
    EXPECT_EQ(manager.selectedAnnotationId(), id);
    manager.setSelectedAnnotationId(std::nullopt);
    click({100 + width + 9, 195});
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
}

TEST_F(MarkupGesturesTest, AClickOnATextWithTheTextToolSelectsIt) {
    const QUuid id = shape(Kind::text, {100, 200}, {100, 200}, u"text"_s);
    manager.setCurrentTool(AnnotationTool::text);
    drag({110, 195}, {130, 215});
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(manager.selectedAnnotationId(), id);
    EXPECT_TRUE(isPoint(annotationNumber(1).start, {120, 220}));
    EXPECT_EQ(view.calls, (Calls{"close text", "take keyboard"}));
}

TEST_F(MarkupGesturesTest, MarkersAreNotGrabbed) {
    region({100, 100, 200, 200});
    drag({100, 200}, {150, 250});
    EXPECT_EQ(markerNumber(1).rect, QRectF(100, 100, 200, 200));
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
    EXPECT_EQ(manager.annotations().size(), 1U);
}

TEST_F(MarkupGesturesTest, WithTheRegionToolAnnotationsAreNotGrabbed) {
    shape(Kind::highlight, {100, 100}, {300, 300});
    manager.setCurrentTool(AnnotationTool::region);
    drag({150, 150}, {250, 250});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {300, 300}));
    EXPECT_EQ(manager.markers().size(), 1U);
}

} // namespace orvane
