#include "OrvaneCore/marking/overlay/MarkerManager.h"

#include "OrvaneCore/marking/Palettes.h"
#include "tests/support/InMemorySettings.h"

#include <gtest/gtest.h>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

const QString imageModeKey = u"ImageMode"_s;

class MarkerManagerTest : public testing::Test {
protected:
    std::vector<int> indices() const {
        std::vector<int> all;
        all.reserve(manager.markers().size());
        for (const Marker& marker : manager.markers())
            all.push_back(marker.index);
        return all;
    }

    /// How often the observers are called by that.
    template <typename Action>
    int notifications(Action action) {
        int count = 0;
        const auto subscription = manager.observe([&count] { ++count; });
        action();
        return count;
    }

    test::InMemorySettings settings;
    MarkerManager manager{settings};
};

Annotation arrow(const QPointF& start = {}, const QPointF& end = {}) {
    return {.kind = Annotation::Kind::arrow, .start = start, .end = end};
}

Marker region(int index, const QRectF& rect) {
    return {.rect = rect, .index = index};
}

} // namespace

TEST_F(MarkerManagerTest, BeginsEmpty) {
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_TRUE(manager.annotations().empty());
    EXPECT_FALSE(manager.isOverlayActive());
    EXPECT_EQ(manager.modes(), MarkupModes());
    EXPECT_FALSE(manager.markupMode());
    EXPECT_EQ(manager.currentTool(), AnnotationTool::region);
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
    EXPECT_EQ(manager.markupColor(), QColor(0xEF, 0x44, 0x44));
    EXPECT_EQ(manager.markupStrokeWidth(), 6);
    EXPECT_EQ(manager.currentSendTarget(), std::nullopt);
    EXPECT_EQ(manager.lastSendOutcome(), std::nullopt);
    EXPECT_EQ(MarkupModes::spotlightSigma, 18);
}

TEST_F(MarkerManagerTest, NumbersAndColoursMarkersByTheirPlace) {
    for (int i = 0; i < 10; ++i)
        manager.add(QRectF(i, 0, 5, 5), QString::number(i));
    EXPECT_EQ(indices(), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(manager.markers()[8].color, marker_palette::border(1));

    manager.remove(manager.markers()[1].id);
    EXPECT_EQ(indices(), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(manager.markers()[1].label, u"2"_s);
    for (const Marker& marker : manager.markers())
        EXPECT_EQ(marker.color, marker_palette::border(marker.index));
}

TEST_F(MarkerManagerTest, GivesTheMarkerThatItAdds) {
    const Marker first = manager.add(QRectF(1, 2, 30, 40), u"label"_s);
    const Marker second = manager.add(QRectF(), QString());
    EXPECT_NE(first.id, second.id);
    EXPECT_EQ(first.rect, QRectF(1, 2, 30, 40));
    EXPECT_EQ(first.label, u"label"_s);
    EXPECT_EQ(first.index, 1);
    EXPECT_EQ(first.windowAppName, std::nullopt);
    EXPECT_EQ(second.index, 2);
}

TEST_F(MarkerManagerTest, ChangesOneMarker) {
    const QUuid id = manager.add(QRectF(0, 0, 5, 5), QString()).id;
    manager.add(QRectF(0, 0, 5, 5), QString());
    EXPECT_EQ(notifications([&] { manager.updateLabel(id, u"new"_s); }), 1);
    EXPECT_EQ(notifications([&] { manager.updateRect(id, QRectF(1, 1, 2, 2)); }), 1);
    EXPECT_EQ(manager.markers()[0].label, u"new"_s);
    EXPECT_EQ(manager.markers()[0].rect, QRectF(1, 1, 2, 2));
    EXPECT_EQ(manager.markers()[1].label, QString());
    EXPECT_EQ(notifications([&] {
                  manager.updateLabel(QUuid::createUuid(), u"other"_s);
                  manager.updateRect(QUuid::createUuid(), QRectF());
                  manager.remove(QUuid::createUuid());
              }),
              0);
}

TEST_F(MarkerManagerTest, LetsGoOfAMarkerThatIsRemoved) {
    const QUuid first = manager.add(QRectF(0, 0, 5, 5), QString()).id;
    const QUuid second = manager.add(QRectF(0, 0, 5, 5), QString()).id;
    manager.setSelectedMarkerId(second);
    manager.remove(first);
    EXPECT_EQ(manager.selectedMarkerId(), second);
    manager.remove(second);
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
}

TEST_F(MarkerManagerTest, SelectsTheAnnotationThatIsAdded) {
    const Annotation first = arrow();
    const Annotation second = arrow();
    manager.addAnnotation(first);
    EXPECT_EQ(manager.selectedAnnotationId(), first.id);
    manager.addAnnotation(second);
    EXPECT_EQ(manager.selectedAnnotationId(), second.id);
    manager.removeAnnotation(first.id);
    EXPECT_EQ(manager.selectedAnnotationId(), second.id);
    manager.removeAnnotation(second.id);
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
    EXPECT_TRUE(manager.annotations().empty());
}

TEST_F(MarkerManagerTest, ReplacesAnAnnotation) {
    Annotation drawn = arrow({1, 1}, {2, 2});
    manager.addAnnotation(drawn);
    drawn.end = {9, 9};
    // Recolouring alone is a change as well.
    drawn.color = Qt::green;
    EXPECT_EQ(notifications([&] { manager.updateAnnotation(drawn); }), 1);
    EXPECT_EQ(manager.annotations().front().end, QPointF(9, 9));
    EXPECT_EQ(manager.annotations().front().color, QColor(Qt::green));
    EXPECT_EQ(notifications([&] { manager.updateAnnotation(arrow()); }), 0);
    EXPECT_EQ(manager.annotations().size(), 1U);
}

TEST_F(MarkerManagerTest, RemovesEveryAnnotationWithAnId) {
    const Annotation one = arrow();
    manager.setAnnotations({one, arrow(), one});
    manager.removeAnnotation(one.id);
    EXPECT_EQ(manager.annotations().size(), 1U);
}

TEST_F(MarkerManagerTest, ClearsMarksAndNothingElse) {
    manager.setSelectedMarkerId(manager.add(QRectF(0, 0, 5, 5), QString()).id);
    manager.addAnnotation(arrow());
    manager.setSpotlightMode(true);
    manager.setMarkupMode(true);
    manager.setMarkupColor(Qt::blue);
    manager.setMarkupStrokeWidth(11);
    manager.setCurrentTool(AnnotationTool::box);
    manager.clearAll();
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_TRUE(manager.annotations().empty());
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
    EXPECT_TRUE(manager.modes().spotlight);
    EXPECT_TRUE(manager.markupMode());
    EXPECT_EQ(manager.markupColor(), QColor(Qt::blue));
    EXPECT_EQ(manager.markupStrokeWidth(), 11);
    EXPECT_EQ(manager.currentTool(), AnnotationTool::box);
}

TEST_F(MarkerManagerTest, NeverSelectsAcrossTools) {
    const QUuid marker = manager.add(QRectF(0, 0, 5, 5), QString()).id;
    const Annotation annotation = arrow();
    manager.addAnnotation(annotation);
    for (const AnnotationTool tool : allAnnotationTools) {
        manager.setSelectedMarkerId(marker);
        manager.setSelectedAnnotationId(annotation.id);
        manager.setCurrentTool(tool);
        EXPECT_EQ(manager.currentTool(), tool);
        EXPECT_EQ(manager.selectedMarkerId().has_value(), tool == AnnotationTool::region);
        EXPECT_EQ(manager.selectedAnnotationId().has_value(), tool != AnnotationTool::region);
    }
    // The same tool again runs the rule as well.
    manager.setCurrentTool(AnnotationTool::region);
    manager.setSelectedAnnotationId(annotation.id);
    manager.setCurrentTool(AnnotationTool::region);
    EXPECT_EQ(manager.selectedAnnotationId(), std::nullopt);
}

TEST_F(MarkerManagerTest, ReadingTextExcludesPicturesAndSending) {
    manager.setImageMode(true);
    manager.setDirectSend(true);
    EXPECT_TRUE(manager.modes().image && manager.modes().directSend);
    manager.setOcrMode(true);
    EXPECT_EQ(manager.modes(), (MarkupModes{.ocr = true}));
    manager.setOcrMode(false);
    EXPECT_EQ(manager.modes(), MarkupModes());
    EXPECT_EQ(settings.value(imageModeKey), QJsonValue(false));

    manager.setOcrMode(true);
    manager.setImageMode(true);
    EXPECT_EQ(manager.modes(), (MarkupModes{.image = true}));
    manager.setOcrMode(true);
    manager.setDirectSend(true);
    EXPECT_EQ(manager.modes(), (MarkupModes{.directSend = true}));
    manager.setImageMode(true);
    EXPECT_EQ(manager.modes(), (MarkupModes{.image = true, .directSend = true}));
}

TEST_F(MarkerManagerTest, SpotlightAndMarkupExcludeNothing) {
    manager.setOcrMode(true);
    manager.setSpotlightMode(true);
    manager.setMarkupMode(true);
    EXPECT_EQ(manager.modes(), (MarkupModes{.spotlight = true, .ocr = true}));
    manager.setDirectSend(true);
    manager.setImageMode(true);
    EXPECT_TRUE(manager.modes().spotlight);
    EXPECT_TRUE(manager.markupMode());
}

TEST_F(MarkerManagerTest, KeepsTheImageModeInTheSettings) {
    manager.setImageMode(true);
    EXPECT_EQ(settings.value(imageModeKey), QJsonValue(true));
    MarkerManager next(settings);
    EXPECT_FALSE(next.modes().image);
    next.setOcrMode(false);
    next.restoreImageMode();
    EXPECT_EQ(next.modes(), (MarkupModes{.image = true}));
}

TEST_F(MarkerManagerTest, RestoringTurnsTextOffOnlyForPictures) {
    settings.setValue(imageModeKey, true);
    manager.setOcrMode(true);
    settings.setValue(imageModeKey, false);
    manager.restoreImageMode();
    EXPECT_EQ(manager.modes(), (MarkupModes{.ocr = true}));
    settings.setValue(imageModeKey, true);
    manager.restoreImageMode();
    EXPECT_EQ(manager.modes(), (MarkupModes{.image = true}));
}

TEST_F(MarkerManagerTest, RestoringFromOtherSettingsIsOff) {
    manager.restoreImageMode();
    EXPECT_FALSE(manager.modes().image);
    EXPECT_TRUE(settings.value(imageModeKey).isUndefined());
    settings.setValue(imageModeKey, u"yes"_s);
    manager.restoreImageMode();
    EXPECT_FALSE(manager.modes().image);
}

TEST_F(MarkerManagerTest, TellsOfEveryChangeAndOfNoneThatIsNot) {
    EXPECT_EQ(notifications([&] { manager.add(QRectF(0, 0, 5, 5), QString()); }), 1);
    EXPECT_EQ(notifications([&] { manager.setOverlayActive(true); }), 1);
    EXPECT_EQ(notifications([&] { manager.setOverlayActive(true); }), 0);
    EXPECT_EQ(notifications([&] { manager.setSpotlightMode(true); }), 1);
    EXPECT_EQ(notifications([&] { manager.setSpotlightMode(true); }), 0);
    EXPECT_EQ(notifications([&] { manager.setOcrMode(true); }), 1);
    EXPECT_EQ(notifications([&] { manager.setDirectSend(true); }), 1);
    EXPECT_EQ(notifications([&] { manager.setMarkupMode(true); }), 1);
    EXPECT_EQ(notifications([&] { manager.setMarkupColor(Qt::white); }), 1);
    EXPECT_EQ(notifications([&] { manager.setMarkupStrokeWidth(3); }), 1);
    EXPECT_EQ(notifications([&] { manager.setCurrentTool(AnnotationTool::arrow); }), 1);
    EXPECT_EQ(notifications([&] { manager.setCurrentSendTarget(SendTarget{}); }), 1);
    EXPECT_EQ(notifications([&] { manager.setLastSendOutcome(SendOutcome{}); }), 1);
    EXPECT_EQ(notifications([&] { manager.clearAll(); }), 1);
}

TEST_F(MarkerManagerTest, HandsOutWhatASubmissionNeeds) {
    manager.add(QRectF(1, 2, 30, 40), u"a"_s);
    manager.addAnnotation(arrow({1, 1}, {2, 2}));
    manager.setSpotlightMode(true);
    const SendTarget target{.name = u"There"_s, .bundleID = u"there"_s};
    manager.setCurrentSendTarget(target);
    const SubmitRequest request = manager.submitRequest();
    manager.clearAll();
    ASSERT_EQ(request.markers.size(), 1U);
    EXPECT_EQ(request.markers.front().label, u"a"_s);
    ASSERT_EQ(request.annotations.size(), 1U);
    EXPECT_EQ(request.modes, (MarkupModes{.spotlight = true}));
    EXPECT_EQ(request.sendTarget, target);
}

TEST(RegionOfAnAnnotation, IsTheFirstThatHoldsItsAnchor) {
    const std::vector<Marker> markers{region(1, QRectF(0, 0, 100, 100)), region(2, QRectF(50, 50, 100, 100))};
    const auto indexOf = [&markers](const QPointF& anchor) {
        const Annotation box{.kind = Annotation::Kind::box, .start = anchor, .end = anchor};
        return resolveRegionIndex(box, markers);
    };
    EXPECT_EQ(indexOf({75, 75}), 1);
    EXPECT_EQ(indexOf({120, 120}), 2);
    EXPECT_EQ(indexOf({0, 0}), 1);
    EXPECT_EQ(indexOf({100, 20}), std::nullopt);
    EXPECT_EQ(indexOf({-1, 20}), std::nullopt);
    EXPECT_EQ(indexOf({qQNaN(), 20}), std::nullopt);
    EXPECT_EQ(resolveRegionIndex(arrow(), {}), std::nullopt);
}

} // namespace orvane
