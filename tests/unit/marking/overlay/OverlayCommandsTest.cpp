#include "OrvaneCore/marking/overlay/OverlayCommands.h"

#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/send/SendTargets.h"
#include "tests/support/InMemorySettings.h"

#include <gtest/gtest.h>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

const SendTarget first{.name = u"First"_s, .bundleID = u"first"_s};
const SendTarget second{.name = u"Second"_s, .bundleID = u"second"_s};
const SendTarget third{.name = u"Third"_s, .bundleID = u"third"_s};

class OverlayCommandsTest : public testing::Test {
protected:
    void perform(OverlayCommand command) { commands.perform(command); }

    QUuid addMarker() { return manager.add({0, 0, 50, 50}, QString()).id; }
    /// Selects it as well.
    QUuid addAnnotation() {
        const Annotation annotation{.kind = Annotation::Kind::box, .end = {30, 30}};
        manager.addAnnotation(annotation);
        return annotation.id;
    }

    test::InMemorySettings settings;
    MarkerManager manager{settings};
    SendTargets targets{{first, second, third}};
    int submits = 0;
    int cancels = 0;
    OverlayCommands commands{manager, targets, [this] { ++submits; }, [this] { ++cancels; }};
};

} // namespace

TEST_F(OverlayCommandsTest, SubmitAndCancelAreHandedOn) {
    addMarker();
    perform(OverlayCommand::submit);
    EXPECT_EQ(submits, 1);
    EXPECT_EQ(cancels, 0);
    perform(OverlayCommand::cancel);
    EXPECT_EQ(submits, 1);
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(manager.markers().size(), 1U);
}

TEST_F(OverlayCommandsTest, DeleteTakesTheSelectedAnnotationBeforeTheSelectedMarker) {
    const QUuid marker = addMarker();
    const QUuid selected = addAnnotation();
    const QUuid last = addAnnotation();
    manager.setSelectedAnnotationId(selected);
    manager.setSelectedMarkerId(marker);

    perform(OverlayCommand::deleteMark);
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(manager.annotations()[0].id, last);
    EXPECT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
}

TEST_F(OverlayCommandsTest, DeleteTakesTheSelectedMarkerBeforeTheLastAnnotation) {
    const QUuid selected = addMarker();
    const QUuid last = addMarker();
    addAnnotation();
    manager.setSelectedAnnotationId(std::nullopt);
    manager.setMarkupMode(true);
    manager.setSelectedMarkerId(selected);

    perform(OverlayCommand::deleteMark);
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(manager.markers()[0].id, last);
    EXPECT_EQ(manager.markers()[0].index, 1);
    EXPECT_EQ(manager.annotations().size(), 1U);
}

TEST_F(OverlayCommandsTest, WhileMarkingUpDeleteTakesTheLastAnnotationAndThenTheLastMarker) {
    const QUuid firstMarker = addMarker();
    addMarker();
    const QUuid firstAnnotation = addAnnotation();
    addAnnotation();
    manager.setSelectedAnnotationId(std::nullopt);
    manager.setMarkupMode(true);

    perform(OverlayCommand::deleteMark);
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(manager.annotations()[0].id, firstAnnotation);
    EXPECT_EQ(manager.markers().size(), 2U);

    perform(OverlayCommand::deleteMark);
    EXPECT_TRUE(manager.annotations().empty());
    EXPECT_EQ(manager.markers().size(), 2U);

    perform(OverlayCommand::deleteMark);
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(manager.markers()[0].id, firstMarker);
}

TEST_F(OverlayCommandsTest, OtherwiseDeleteTakesTheLastMarkerAndLeavesAnnotations) {
    const QUuid firstMarker = addMarker();
    addMarker();
    addAnnotation();
    manager.setSelectedAnnotationId(std::nullopt);

    perform(OverlayCommand::deleteMark);
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(manager.markers()[0].id, firstMarker);
    perform(OverlayCommand::deleteMark);
    EXPECT_TRUE(manager.markers().empty());
    perform(OverlayCommand::deleteMark);
    EXPECT_EQ(manager.annotations().size(), 1U);
}

TEST_F(OverlayCommandsTest, MarkupOnGoesFromTheRegionToolToSelect) {
    const QUuid marker = addMarker();
    manager.setSelectedMarkerId(marker);
    perform(OverlayCommand::toggleMarkup);
    EXPECT_TRUE(manager.markupMode());
    EXPECT_EQ(manager.currentTool(), AnnotationTool::select);
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
}

TEST_F(OverlayCommandsTest, MarkupOnKeepsAMarkupToolAndLetsGoOfTheMarker) {
    const QUuid marker = addMarker();
    manager.setCurrentTool(AnnotationTool::ellipse);
    manager.setSelectedMarkerId(marker);
    perform(OverlayCommand::toggleMarkup);
    EXPECT_EQ(manager.currentTool(), AnnotationTool::ellipse);
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
}

TEST_F(OverlayCommandsTest, MarkupOffGoesBackToRegionsAndLetsGoOfTheAnnotation) {
    perform(OverlayCommand::toggleMarkup);
    manager.setCurrentTool(AnnotationTool::arrow);
    addAnnotation();
    perform(OverlayCommand::toggleMarkup);
    EXPECT_FALSE(manager.markupMode());
    EXPECT_EQ(manager.currentTool(), AnnotationTool::region);
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
    EXPECT_EQ(manager.annotations().size(), 1U);
}

TEST_F(OverlayCommandsTest, SpotlightIsIndependentOfAllElse) {
    perform(OverlayCommand::toggleOcr);
    perform(OverlayCommand::toggleSpotlight);
    EXPECT_EQ(manager.modes(), (MarkupModes{.spotlight = true, .ocr = true}));
    perform(OverlayCommand::toggleSpotlight);
    EXPECT_EQ(manager.modes(), (MarkupModes{.ocr = true}));
}

TEST_F(OverlayCommandsTest, RecognitionExcludesImagesAndSending) {
    perform(OverlayCommand::toggleImage);
    perform(OverlayCommand::toggleSend);
    EXPECT_EQ(manager.modes(), (MarkupModes{.image = true, .directSend = true}));
    perform(OverlayCommand::toggleOcr);
    EXPECT_EQ(manager.modes(), (MarkupModes{.ocr = true}));
    perform(OverlayCommand::toggleOcr);
    EXPECT_EQ(manager.modes(), MarkupModes{});
    perform(OverlayCommand::toggleOcr);
    perform(OverlayCommand::toggleImage);
    EXPECT_EQ(manager.modes(), (MarkupModes{.image = true}));
    perform(OverlayCommand::toggleImage);
    EXPECT_EQ(manager.modes(), MarkupModes{});
}

TEST_F(OverlayCommandsTest, SendingTakesTheFirstTargetAndTurnsRecognitionOff) {
    perform(OverlayCommand::toggleOcr);
    manager.setCurrentSendTarget(third);
    perform(OverlayCommand::toggleSend);
    EXPECT_EQ(manager.modes(), (MarkupModes{.directSend = true}));
    EXPECT_EQ(manager.currentSendTarget(), first);
}

TEST_F(OverlayCommandsTest, SendingNoMoreLeavesTheTarget) {
    perform(OverlayCommand::toggleSend);
    perform(OverlayCommand::nextTarget);
    perform(OverlayCommand::toggleSend);
    EXPECT_FALSE(manager.modes().directSend);
    EXPECT_EQ(manager.currentSendTarget(), second);
}

TEST_F(OverlayCommandsTest, WithNothingRunningThereIsNoTarget) {
    targets = SendTargets();
    manager.setCurrentSendTarget(third);
    perform(OverlayCommand::toggleSend);
    EXPECT_TRUE(manager.modes().directSend);
    EXPECT_EQ(manager.currentSendTarget(), std::nullopt);
    manager.setCurrentSendTarget(third);
    perform(OverlayCommand::nextTarget);
    EXPECT_EQ(manager.currentSendTarget(), std::nullopt);
}

TEST_F(OverlayCommandsTest, TargetsAreSteppedThroughInBothDirections) {
    perform(OverlayCommand::toggleSend);
    perform(OverlayCommand::nextTarget);
    EXPECT_EQ(manager.currentSendTarget(), second);
    perform(OverlayCommand::previousTarget);
    EXPECT_EQ(manager.currentSendTarget(), first);
    perform(OverlayCommand::previousTarget);
    EXPECT_EQ(manager.currentSendTarget(), third);
    perform(OverlayCommand::nextTarget);
    EXPECT_EQ(manager.currentSendTarget(), first);
}

TEST_F(OverlayCommandsTest, WhileNotSendingTargetsStayAsTheyAre) {
    perform(OverlayCommand::nextTarget);
    EXPECT_EQ(manager.currentSendTarget(), std::nullopt);
    manager.setCurrentSendTarget(second);
    perform(OverlayCommand::previousTarget);
    EXPECT_EQ(manager.currentSendTarget(), second);
}

} // namespace orvane
