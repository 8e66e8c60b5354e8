#include "OrvaneCore/marking/editing/AnnotationGestures.h"

#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "tests/unit/marking/ExactGeometry.h"
#include "tests/unit/marking/editing/FakeAnnotationDocument.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

using test::infinite;
using test::isPoint;
using test::notANumber;
using Calls = std::vector<std::string>;
using Kind = Annotation::Kind;
using Role = Annotation::Role;

testing::AssertionResult runs(const Annotation& annotation, const QPointF& start, const QPointF& end) {
    testing::AssertionResult first = isPoint(annotation.start, start);
    return first ? isPoint(annotation.end, end) << " as end" : first << " as start";
}

/// Remembers what the gestures ask of their view.
class RecordingTextView : public AnnotationGestures::View {
public:
    void openTextEditor(const QUuid& annotation, const QPointF& viewPoint) override {
        calls.emplace_back("open text");
        editedAnnotation = annotation;
        place = viewPoint;
    }
    void closeTextEditor() override {
        calls.emplace_back("close text");
        whenClosing();
    }
    void takeKeyboard() override { calls.emplace_back("take keyboard"); }

    /// In their order.
    std::vector<std::string> calls;
    QUuid editedAnnotation;
    /// Where the editor that was opened last belongs.
    QPointF place;
    std::function<void()> whenClosing = [] {};
};

/// One view with its origin at the global one, unless a test moves it.
class AnnotationGesturesTest : public testing::Test {
protected:
    AnnotationGesturesTest() { document.setCurrentTool(AnnotationTool::arrow); }

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

    /// Without selecting it.
    QUuid shape(Kind kind, const QPointF& start, const QPointF& end, const QString& text = QString()) {
        const QUuid id = selectedShape(kind, start, end, text);
        document.setSelectedAnnotationId(std::nullopt);
        return id;
    }
    QUuid selectedShape(Kind kind, const QPointF& start, const QPointF& end,
                        const QString& text = QString()) {
        const Annotation added{.kind = kind, .start = start, .end = end, .text = text, .strokeWidth = 3};
        document.addAnnotation(added);
        return added.id;
    }
    const Annotation& annotationNumber(int number) const {
        return document.annotations().at(std::size_t(number) - 1);
    }
    void lock(const QUuid& locked) {
        document.isChangeable = [locked](const Annotation& annotation) { return annotation.id != locked; };
    }

    test::FakeAnnotationDocument document;
    RecordingTextView view;
    AnnotationGestures gestures{document, view};
};

} // namespace

TEST_F(AnnotationGesturesTest, AnArrowOfSixIsKeptAndSelected) {
    document.setMarkupColor(QColor(Qt::green));
    document.setMarkupStrokeWidth(11);
    drag({100, 100}, {106, 100});
    ASSERT_EQ(document.annotations().size(), 1U);
    const Annotation& added = annotationNumber(1);
    EXPECT_EQ(added.kind, Kind::arrow);
    EXPECT_TRUE(runs(added, {100, 100}, {106, 100}));
    EXPECT_EQ(added.color, QColor(Qt::green));
    EXPECT_EQ(added.strokeWidth, 11);
    EXPECT_EQ(added.role, Annotation::Role::human);
    EXPECT_TRUE(added.text.isEmpty());
    EXPECT_EQ(document.selectedAnnotationId(), added.id);
    EXPECT_EQ(gestures.draft(), std::nullopt);
}

TEST_F(AnnotationGesturesTest, AnArrowOfFiveIsDropped) {
    drag({100, 100}, {105, 100});
    drag({100, 100}, {97, 96});
    click({100, 100});
    EXPECT_TRUE(document.annotations().empty());
    EXPECT_EQ(gestures.draft(), std::nullopt);
}

TEST_F(AnnotationGesturesTest, TheLengthOfADraftIsThatOfItsDiagonal) {
    drag({100, 100}, {104, 104});
    EXPECT_EQ(document.annotations().size(), 1U);
}

TEST_F(AnnotationGesturesTest, ADroppedDraftLeavesTheSelection) {
    const QUuid selected = selectedShape(Kind::box, {300, 300}, {400, 400});
    click({100, 100});
    EXPECT_EQ(document.selectedAnnotationId(), selected);
}

TEST_F(AnnotationGesturesTest, EveryDrawingToolDrawsItsKind) {
    const std::vector<std::pair<AnnotationTool, Kind>> tools{{AnnotationTool::arrow, Kind::arrow},
                                                             {AnnotationTool::box, Kind::box},
                                                             {AnnotationTool::ellipse, Kind::ellipse},
                                                             {AnnotationTool::highlight, Kind::highlight},
                                                             {AnnotationTool::image, Kind::image}};
    for (const auto& [tool, kind] : tools) {
        document.setAnnotations({});
        document.setCurrentTool(tool);
        drag({100, 100}, {60, 150});
        ASSERT_EQ(document.annotations().size(), 1U);
        EXPECT_EQ(annotationNumber(1).kind, kind);
        EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {60, 150}));
    }
}

TEST_F(AnnotationGesturesTest, TheDraftIsShownWhileItIsDrawn) {
    press({100, 100});
    ASSERT_TRUE(gestures.draft());
    EXPECT_TRUE(runs(*gestures.draft(), {100, 100}, {100, 100}));
    dragTo({130, 140});
    EXPECT_TRUE(runs(*gestures.draft(), {100, 100}, {130, 140}));
    EXPECT_TRUE(document.annotations().empty());
}

TEST_F(AnnotationGesturesTest, APressClosesTheTextEditorOnly) {
    press({100, 100});
    EXPECT_EQ(view.calls, (Calls{"close text", "take keyboard"}));
}

TEST_F(AnnotationGesturesTest, SelectDrawsNothingAndLetsGoOfTheSelection) {
    selectedShape(Kind::box, {300, 300}, {400, 400});
    document.setCurrentTool(AnnotationTool::select);
    drag({100, 100}, {200, 200});
    EXPECT_EQ(document.annotations().size(), 1U);
    EXPECT_EQ(document.selectedAnnotationId(), std::nullopt);
}

TEST_F(AnnotationGesturesTest, AShapeIsHitUpToEightBesideItWithAnyTool) {
    const QUuid id = shape(Kind::arrow, {100, 100}, {300, 100});
    click({200, 108});
    EXPECT_EQ(document.selectedAnnotationId(), id);
    EXPECT_EQ(gestures.draft(), std::nullopt);
    document.setSelectedAnnotationId(std::nullopt);
    click({200, 108.1});
    EXPECT_EQ(document.selectedAnnotationId(), std::nullopt);
}

TEST_F(AnnotationGesturesTest, OfTwoShapesTheNewerIsHit) {
    shape(Kind::highlight, {100, 100}, {300, 300});
    const QUuid newer = shape(Kind::highlight, {200, 200}, {400, 400});
    click({250, 250});
    EXPECT_EQ(document.selectedAnnotationId(), newer);
}

TEST_F(AnnotationGesturesTest, DraggingAShapeMovesIt) {
    shape(Kind::box, {100, 100}, {300, 200});
    press({200, 102});
    dragTo({210, 92});
    EXPECT_TRUE(runs(annotationNumber(1), {110, 90}, {310, 190}));
    dragTo({150, 152});
    release();
    EXPECT_TRUE(runs(annotationNumber(1), {50, 150}, {250, 250}));
    EXPECT_EQ(document.annotations().size(), 1U);

    dragTo({500, 500});
    EXPECT_TRUE(runs(annotationNumber(1), {50, 150}, {250, 250}));
}

TEST_F(AnnotationGesturesTest, AHandleOfTheSelectedShapeReshapesIt) {
    selectedShape(Kind::box, {100, 100}, {300, 200});
    // Outside of the outline's reach, so that only the handle can be meant.
    drag({300, 212}, {350, 260});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {350, 260}));
    drag({350, 272.1}, {400, 400});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {350, 260}));
}

TEST_F(AnnotationGesturesTest, AHandleOfAShapeThatIsNotSelectedMovesIt) {
    const QUuid id = shape(Kind::box, {100, 100}, {300, 200});
    drag({300, 200}, {310, 220});
    EXPECT_TRUE(runs(annotationNumber(1), {110, 120}, {310, 220}));
    EXPECT_EQ(document.selectedAnnotationId(), id);
}

TEST_F(AnnotationGesturesTest, AHandleOfTheSelectedShapeComesBeforeANewerShape) {
    const QUuid older = selectedShape(Kind::arrow, {100, 100}, {300, 100});
    shape(Kind::highlight, {250, 50}, {350, 150});
    document.setSelectedAnnotationId(older);
    drag({295, 100}, {320, 120});
    EXPECT_EQ(document.selectedAnnotationId(), older);
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {320, 120}));
    EXPECT_TRUE(runs(annotationNumber(2), {250, 50}, {350, 150}));
}

TEST_F(AnnotationGesturesTest, AClickOnAHandleChangesNothing) {
    selectedShape(Kind::arrow, {100, 100}, {300, 100});
    click({305, 104});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {300, 100}));
}

TEST_F(AnnotationGesturesTest, ACornerDraggedAcrossTheOppositeOneMirrorsTheShapeAndBack) {
    selectedShape(Kind::box, {100, 100}, {150, 150});
    press({150, 150});
    dragTo({90, 80});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {90, 80}));
    dragTo({70, 60});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {70, 60}));
    dragTo({160, 170});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {160, 170}));
}

TEST_F(AnnotationGesturesTest, AnImageKeepsItsProportionsThroughADrag) {
    selectedShape(Kind::image, {100, 100}, {300, 200});
    press({300, 200});
    dragTo({100, 100});
    dragTo({0, 0});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {0, 50}));
    dragTo({500, 400});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {500, 300}));
}

TEST_F(AnnotationGesturesTest, TheTextToolPlacesATextAndAsksForIt) {
    document.setCurrentTool(AnnotationTool::text);
    document.setMarkupColor(QColor(Qt::blue));
    press({100, 200});
    ASSERT_EQ(document.annotations().size(), 1U);
    const Annotation& added = annotationNumber(1);
    EXPECT_EQ(added.kind, Kind::text);
    EXPECT_TRUE(runs(added, {100, 200}, {100, 200}));
    EXPECT_TRUE(added.text.isEmpty());
    EXPECT_EQ(added.color, QColor(Qt::blue));
    EXPECT_EQ(added.strokeWidth, 6);
    EXPECT_EQ(document.selectedAnnotationId(), added.id);
    EXPECT_EQ(view.calls, (Calls{"close text", "take keyboard", "open text"}));
    EXPECT_EQ(view.editedAnnotation, added.id);
    EXPECT_TRUE(isPoint(view.place, {100, 200}));

    dragTo({300, 300});
    release();
    EXPECT_EQ(document.annotations().size(), 1U);
    EXPECT_TRUE(runs(annotationNumber(1), {100, 200}, {100, 200}));
}

TEST_F(AnnotationGesturesTest, AWrittenTextIsKept) {
    document.setCurrentTool(AnnotationTool::text);
    click({100, 200});
    gestures.textClosed(view.editedAnnotation, u"see here"_s);
    ASSERT_EQ(document.annotations().size(), 1U);
    EXPECT_EQ(annotationNumber(1).text, u"see here"_s);
    gestures.textClosed(view.editedAnnotation, u" "_s);
    EXPECT_EQ(annotationNumber(1).text, u" "_s);
    EXPECT_TRUE(runs(annotationNumber(1), {100, 200}, {100, 200}));
}

TEST_F(AnnotationGesturesTest, ATextAbandonedEmptyLeavesNothing) {
    document.setCurrentTool(AnnotationTool::text);
    click({100, 200});
    gestures.textClosed(view.editedAnnotation, u""_s);
    EXPECT_TRUE(document.annotations().empty());
    EXPECT_EQ(document.selectedAnnotationId(), std::nullopt);
}

TEST_F(AnnotationGesturesTest, ATextThatIsGoneStaysAway) {
    const QUuid other = shape(Kind::text, {500, 500}, {500, 500}, u"other"_s);
    gestures.textClosed(QUuid::createUuid(), u"late"_s);
    gestures.textClosed(QUuid::createUuid(), QString());
    ASSERT_EQ(document.annotations().size(), 1U);
    EXPECT_EQ(annotationNumber(1).id, other);
    EXPECT_EQ(annotationNumber(1).text, u"other"_s);
}

TEST_F(AnnotationGesturesTest, AnEmptyTextThatThePressClosesIsNotHitByIt) {
    document.setCurrentTool(AnnotationTool::text);
    click({100, 200});
    const QUuid abandoned = view.editedAnnotation;
    view.whenClosing = [this, abandoned] { gestures.textClosed(abandoned, QString()); };
    click({110, 195});
    ASSERT_EQ(document.annotations().size(), 1U);
    EXPECT_NE(annotationNumber(1).id, abandoned);
    EXPECT_TRUE(isPoint(annotationNumber(1).start, {110, 195}));
}

TEST_F(AnnotationGesturesTest, AnEmptyTextIsHitAsIfItWereEightyByTwenty) {
    const QUuid id = shape(Kind::text, {100, 200}, {100, 200});
    click({187, 175});
    EXPECT_EQ(document.selectedAnnotationId(), id);
    for (const QPointF& point : {QPointF(189, 190), QPointF(140, 171), QPointF(140, 209), QPointF(91, 190)}) {
        document.setSelectedAnnotationId(std::nullopt);
        click(point);
        EXPECT_EQ(document.selectedAnnotationId(), std::nullopt) << point.x() << ", " << point.y();
    }
}

TEST_F(AnnotationGesturesTest, ATextIsHitInTheSizeInWhichItIsDrawn) {
    const QUuid id = shape(Kind::text, {100, 200}, {100, 200}, u"a rather long text, wider than eighty"_s);
    const qreal width = annotation_renderer::textSize(annotationNumber(1), 1).width();
    ASSERT_GT(width, 150);
    click({100 + width + 7, 195});
    EXPECT_EQ(document.selectedAnnotationId(), id);
    document.setSelectedAnnotationId(std::nullopt);
    click({100 + width + 9, 195});
    EXPECT_EQ(document.selectedAnnotationId(), std::nullopt);
}

TEST_F(AnnotationGesturesTest, AClickOnATextWithTheTextToolSelectsIt) {
    const QUuid id = shape(Kind::text, {100, 200}, {100, 200}, u"text"_s);
    document.setCurrentTool(AnnotationTool::text);
    drag({110, 195}, {130, 215});
    ASSERT_EQ(document.annotations().size(), 1U);
    EXPECT_EQ(document.selectedAnnotationId(), id);
    EXPECT_TRUE(isPoint(annotationNumber(1).start, {120, 220}));
    EXPECT_EQ(view.calls, (Calls{"close text", "take keyboard"}));
}

TEST_F(AnnotationGesturesTest, ADrawingIsOfTheRoleThatTheDocumentGives) {
    for (const Role role : {Role::agent, Role::review}) {
        document.setAnnotations({});
        document.role = role;
        document.setCurrentTool(AnnotationTool::arrow);
        press({100, 100});
        EXPECT_EQ(gestures.draft().value().role, role);
        dragTo({200, 200});
        release();
        document.setCurrentTool(AnnotationTool::text);
        click({400, 400});
        ASSERT_EQ(document.annotations().size(), 2U);
        EXPECT_EQ(annotationNumber(1).role, role);
        EXPECT_EQ(annotationNumber(2).role, role);
    }
}

TEST_F(AnnotationGesturesTest, WhatCannotBeHitIsDrawnOver) {
    const QUuid below = shape(Kind::highlight, {100, 100}, {300, 300});
    const QUuid above = shape(Kind::highlight, {100, 100}, {300, 300});
    document.isHittable = [above](const Annotation& annotation) { return annotation.id != above; };
    click({200, 200});
    EXPECT_EQ(document.selectedAnnotationId(), below);

    document.isHittable = [](const Annotation&) { return false; };
    document.setSelectedAnnotationId(std::nullopt);
    drag({200, 200}, {250, 250});
    ASSERT_EQ(document.annotations().size(), 3U);
    EXPECT_TRUE(runs(annotationNumber(3), {200, 200}, {250, 250}));
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {300, 300}));
    EXPECT_TRUE(runs(annotationNumber(2), {100, 100}, {300, 300}));
}

TEST_F(AnnotationGesturesTest, WhatCannotBeHitIsNotReshaped) {
    selectedShape(Kind::box, {100, 100}, {300, 200});
    document.isHittable = [](const Annotation&) { return false; };
    document.setCurrentTool(AnnotationTool::select);
    drag({300, 200}, {350, 260});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {300, 200}));
    EXPECT_EQ(document.selectedAnnotationId(), std::nullopt);
}

TEST_F(AnnotationGesturesTest, WhatCannotBeChangedCanBeSelectedAndStaysWhereItIs) {
    const QUuid locked = shape(Kind::box, {100, 100}, {300, 200});
    lock(locked);
    press({200, 102});
    EXPECT_EQ(document.selectedAnnotationId(), locked);
    EXPECT_FALSE(gestures.isGoingOn());
    dragTo({250, 152});
    release();
    // Neither by its handles, now that it is selected.
    drag({300, 200}, {350, 260});
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {300, 200}));
    EXPECT_EQ(document.annotations().size(), 1U);
    EXPECT_EQ(document.selectedAnnotationId(), locked);
}

TEST_F(AnnotationGesturesTest, AHandleOfWhatCannotBeChangedHidesNothing) {
    lock(selectedShape(Kind::arrow, {100, 100}, {300, 100}));
    const QUuid newer = shape(Kind::highlight, {250, 50}, {350, 150});
    document.setSelectedAnnotationId(annotationNumber(1).id);
    drag({295, 100}, {305, 110});
    EXPECT_EQ(document.selectedAnnotationId(), newer);
    EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {300, 100}));
    EXPECT_TRUE(runs(annotationNumber(2), {260, 60}, {360, 160}));
}

TEST_F(AnnotationGesturesTest, OtherShapesAreChangedAsEver) {
    lock(shape(Kind::arrow, {100, 100}, {300, 100}));
    shape(Kind::arrow, {100, 400}, {300, 400});
    drag({200, 400}, {210, 410});
    EXPECT_TRUE(runs(annotationNumber(2), {110, 410}, {310, 410}));
    drag({310, 410}, {500, 500});
    EXPECT_TRUE(runs(annotationNumber(2), {110, 410}, {500, 500}));
}

TEST_F(AnnotationGesturesTest, ADragEndsWhereTheShapeCannotBeChangedAnyMore) {
    const QUuid id = selectedShape(Kind::arrow, {100, 100}, {300, 100});
    for (const QPointF& place : {QPointF(200, 100), QPointF(300, 100)}) {
        document.isChangeable = [](const Annotation&) { return true; };
        const Annotation before = annotationNumber(1);
        press(place);
        EXPECT_TRUE(gestures.isGoingOn());
        lock(id);
        dragTo(place + QPointF(50, 50));
        release();
        EXPECT_TRUE(runs(annotationNumber(1), before.start, before.end));
    }
}

TEST_F(AnnotationGesturesTest, ATextThatCannotBeChangedAnyMoreStaysAsItIs) {
    const QUuid id = shape(Kind::text, {100, 200}, {100, 200}, u"old"_s);
    lock(id);
    gestures.textClosed(id, u"new"_s);
    gestures.textClosed(id, QString());
    ASSERT_EQ(document.annotations().size(), 1U);
    EXPECT_EQ(annotationNumber(1).text, u"old"_s);
}

TEST_F(AnnotationGesturesTest, AShapeIsDrawnWhereTheViewLies) {
    gestures.setCoordinates({.frame = {-1440, 200, 1440, 900}});
    press({10, 20});
    dragTo({30, 60});
    EXPECT_TRUE(runs(gestures.draft().value(), {-1430, 220}, {-1410, 260}));
    release();
    drag({20, 40}, {25, 50});
    EXPECT_TRUE(runs(annotationNumber(1), {-1425, 230}, {-1405, 270}));
    drag({35, 70}, {100, 100});
    EXPECT_TRUE(runs(annotationNumber(1), {-1425, 230}, {-1340, 300}));

    document.setCurrentTool(AnnotationTool::text);
    press({300, 400});
    EXPECT_TRUE(runs(annotationNumber(2), {-1140, 600}, {-1140, 600}));
    EXPECT_TRUE(isPoint(view.place, {300, 400}));
}

TEST_F(AnnotationGesturesTest, WhatIsCancelledIsNotAdded) {
    press({100, 100});
    dragTo({200, 200});
    EXPECT_TRUE(gestures.isGoingOn());
    gestures.cancel();
    EXPECT_FALSE(gestures.isGoingOn());
    EXPECT_EQ(gestures.draft(), std::nullopt);
    dragTo({300, 300});
    release();
    EXPECT_TRUE(document.annotations().empty());
}

TEST_F(AnnotationGesturesTest, APressDropsTheGestureThatIsGoingOn) {
    shape(Kind::box, {300, 100}, {500, 200});
    press({100, 100});
    dragTo({200, 200});
    document.setCurrentTool(AnnotationTool::select);
    press({600, 500});
    EXPECT_FALSE(gestures.isGoingOn());
    release();
    EXPECT_EQ(document.annotations().size(), 1U);

    press({400, 102});
    EXPECT_TRUE(gestures.isGoingOn());
    press({600, 500});
    dragTo({650, 550});
    EXPECT_TRUE(runs(annotationNumber(1), {300, 100}, {500, 200}));
}

TEST_F(AnnotationGesturesTest, AShapeThatGoesAwayWhileItIsDraggedStaysAway) {
    for (const QPointF& place : {QPointF(200, 100), QPointF(300, 100)}) {
        const QUuid id = selectedShape(Kind::arrow, {100, 100}, {300, 100});
        press(place);
        dragTo(place + QPointF(5, 5));
        document.removeAnnotation(id);
        dragTo({600, 600});
        release();
        EXPECT_TRUE(document.annotations().empty());
    }
}

TEST_F(AnnotationGesturesTest, WhatIsAddedOnReleaseIsNoLongerADraftWhenOthersHearOfIt) {
    bool heard = false;
    const Observers::Subscription subscription = document.observe([this, &heard] {
        heard = heard || !document.annotations().empty();
        EXPECT_FALSE(gestures.isGoingOn());
    });
    drag({100, 100}, {200, 200});
    EXPECT_TRUE(heard);
}

TEST_F(AnnotationGesturesTest, PointsThatNoPointerReachesAreIgnored) {
    shape(Kind::arrow, {100, 100}, {300, 100});
    for (const QPointF& point :
         {QPointF(notANumber, 100), QPointF(200, infinite), QPointF(-infinite, 100), QPointF(1e300, 100)}) {
        view.calls.clear();
        press(point);
        dragTo({150, 150});
        release();
        EXPECT_EQ(view.calls, Calls());

        press({200, 100});
        dragTo(point);
        EXPECT_TRUE(gestures.isGoingOn());
        release();
        EXPECT_TRUE(runs(annotationNumber(1), {100, 100}, {300, 100}));
    }
    EXPECT_EQ(document.annotations().size(), 1U);
}

TEST_F(AnnotationGesturesTest, ATextIsOpenedAboveItsMiddle) {
    gestures.setCoordinates({.frame = {-100, 50, 800, 600}});
    const Annotation text{.kind = Kind::text, .start = {200, 300}, .end = {200, 300}, .text = u"words"_s};
    document.addAnnotation(text);
    document.setSelectedAnnotationId(std::nullopt);
    EXPECT_TRUE(gestures.editTextAt({305, 245}));
    EXPECT_EQ(view.calls, Calls{"open text"});
    EXPECT_EQ(view.editedAnnotation, text.id);
    const QSizeF size = annotation_renderer::textSize(text, 1);
    EXPECT_TRUE(isPoint(view.place, {300 + size.width() / 2, 250 - size.height()}));
    EXPECT_FALSE(gestures.isGoingOn());
}

TEST_F(AnnotationGesturesTest, ATextThatIsOpenedIsNotDraggedOn) {
    shape(Kind::text, {200, 300}, {200, 300}, u"words"_s);
    press({205, 295});
    EXPECT_TRUE(gestures.isGoingOn());
    EXPECT_TRUE(gestures.editTextAt({205, 295}));
    EXPECT_FALSE(gestures.isGoingOn());
    dragTo({255, 345});
    EXPECT_TRUE(runs(annotationNumber(1), {200, 300}, {200, 300}));
}

TEST_F(AnnotationGesturesTest, OnlyTheTopmostShapeIsOpenedAndOnlyATextWithWords) {
    EXPECT_FALSE(gestures.editTextAt({200, 300}));
    document.addAnnotation({.kind = Kind::text, .start = {200, 300}, .end = {200, 300}});
    EXPECT_FALSE(gestures.editTextAt({205, 295}));
    const Annotation text{.kind = Kind::text, .start = {200, 300}, .end = {200, 300}, .text = u"words"_s};
    document.addAnnotation(text);
    EXPECT_TRUE(gestures.editTextAt({205, 295}));
    EXPECT_FALSE(gestures.editTextAt({notANumber, 295}));
    EXPECT_FALSE(gestures.editTextAt({infinite, 295}));
    document.addAnnotation({.kind = Kind::highlight, .start = {190, 250}, .end = {300, 400}});
    EXPECT_FALSE(gestures.editTextAt({205, 295}));
    EXPECT_EQ(view.calls, Calls{"open text"});
}

TEST_F(AnnotationGesturesTest, ATextThatMayNotBeHitOrChangedIsNotOpened) {
    document.addAnnotation({.kind = Kind::text, .start = {200, 300}, .end = {200, 300}, .text = u"words"_s});
    document.isChangeable = [](const Annotation&) { return false; };
    EXPECT_FALSE(gestures.editTextAt({205, 295}));
    document.isChangeable = [](const Annotation&) { return true; };
    document.isHittable = [](const Annotation&) { return false; };
    EXPECT_FALSE(gestures.editTextAt({205, 295}));
}

} // namespace orvane
