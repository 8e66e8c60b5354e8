#include "OrvaneCore/present/session/PresentSessionCodec.h"

#include "tests/unit/marking/ExactGeometry.h"
#include "tests/unit/present/session/SampleStrokes.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvane {

namespace {

using namespace test;

} // namespace

TEST(PresentSessionRemap, PlacesAStrokeInTheDisplayAtItsPosition) {
    StrokeRecord stroke = record();
    stroke.displayIndex = 1;
    const Annotation annotation = remapped(stroke, twoDisplays);
    EXPECT_TRUE(isPoint(annotation.start, {1100, 100}));
    EXPECT_TRUE(isPoint(annotation.end, {1200, 150}));
}

TEST(PresentSessionRemap, FallsBackOnTheFirstDisplay) {
    for (const std::optional<qint64> index :
         {std::optional<qint64>(), std::optional<qint64>(2), std::optional<qint64>(5),
          std::optional<qint64>(-1), std::optional<qint64>(5'000'000'000),
          std::optional<qint64>(std::numeric_limits<qint64>::max()),
          std::optional<qint64>(std::numeric_limits<qint64>::min())}) {
        StrokeRecord stroke = record();
        stroke.displayIndex = index;
        const Annotation annotation = remapped(stroke, twoDisplays);
        EXPECT_TRUE(isPoint(annotation.start, {500, 250})) << index.value_or(0);
        EXPECT_TRUE(isPoint(annotation.end, {1000, 500})) << index.value_or(0);
    }
}

TEST(PresentSessionRemap, WithoutDisplaysGivesTheFractions) {
    for (const std::optional<qint64> index : {std::optional<qint64>(), std::optional<qint64>(1)}) {
        StrokeRecord stroke = record();
        stroke.displayIndex = index;
        stroke.startNorm = {0.25, -3};
        const Annotation annotation = remapped(stroke, {});
        EXPECT_TRUE(isPoint(annotation.start, {0.25, -3}));
        EXPECT_TRUE(isPoint(annotation.end, {1, 1}));
    }
}

TEST(PresentSessionRemap, GoesByPositionAndNotByTheIndexField) {
    // The second of the three displays has no number, so that the third bears index 2 at position 1.
    const std::vector<DisplayInfo> displays = present_session_codec::currentDisplays(
        {display(1, {0, 0, 100, 100}), display(0, {100, 0, 100, 100}), display(3, {200, 0, 100, 100})});
    const Annotation onThird = shape({210, 10}, {230, 30});
    const StrokeRecord stroke = encodedStroke(onThird, displays);
    EXPECT_EQ(stroke.displayIndex, 2);
    EXPECT_TRUE(isPoint(remapped(stroke, displays).start, {10, 10}));

    StrokeRecord atOne = stroke;
    atOne.displayIndex = 1;
    EXPECT_TRUE(isPoint(remapped(atOne, displays).start, {210, 10}));
}

TEST(PresentSessionRemap, IgnoresTheDisplaysOfTheFile) {
    StrokeRecord stroke = record();
    stroke.displayIndex = 1;
    const PresentSessionBundle bundle{
        .displays = {{.displayId = 22, .index = 1, .bounds = {0, 0, 8, 8}}, {.displayId = 11, .index = 0}},
        .strokes = {stroke}};
    const std::vector<Annotation> annotations = present_session_codec::remap(bundle, twoDisplays);
    ASSERT_EQ(annotations.size(), 1);
    EXPECT_TRUE(isPoint(annotations[0].start, {1100, 100}));
}

TEST(PresentSessionRemap, MovesADrawingOfTheSecondDisplayOntoTheOnlyOne) {
    const std::vector<DisplayInfo> before{{.displayId = 1, .index = 0, .bounds = {0, 0, 1000, 500}},
                                          {.displayId = 2, .index = 1, .bounds = {1000, 0, 500, 250}}};
    Annotation annotation = shape({1125, 50}, {1250, 125});
    annotation.strokeWidth = 4;
    const Annotation moved = remapped(encodedStroke(annotation, before), {before[0]});
    EXPECT_TRUE(isPoint(moved.start, {250, 100}));
    EXPECT_TRUE(isPoint(moved.end, {500, 250}));
    EXPECT_EQ(moved.strokeWidth, 4);
}

TEST(PresentSessionRemap, ClampsNothing) {
    StrokeRecord stroke = record();
    stroke.startNorm = {1.5, -0.2};
    EXPECT_TRUE(isPoint(remapped(stroke, twoDisplays).start, {1500, -100}));
}

TEST(PresentSessionRemap, CopiesEverythingElse) {
    StrokeRecord stroke = record();
    stroke.strokeWidth = 3;
    stroke.text = u"text"_s;
    stroke.label = u"label"_s;
    stroke.rotation = 0.5;
    stroke.role = u"review"_s;
    stroke.removed = true;
    Annotation expected = decoded(stroke);
    EXPECT_EQ(expected.role, Annotation::Role::review);
    EXPECT_TRUE(expected.removed);
    EXPECT_EQ(expected.strokeWidth, 3);
    EXPECT_EQ(expected.text, u"text"_s);
    EXPECT_EQ(expected.label, u"label"_s);
    EXPECT_EQ(expected.rotation, 0.5);
    expected.start = {500, 250};
    expected.end = {1000, 500};
    EXPECT_EQ(remapped(stroke, twoDisplays), expected);
    EXPECT_EQ(remapped(stroke, twoDisplays).color, expected.color);
}

TEST(PresentSessionRemap, UndoesNormalizeOnTheSameDisplays) {
    for (const QRectF& bounds : {QRectF(-1920, 100, 1920, 1080), QRectF(200, 100, -100, -50)}) {
        const std::vector<DisplayInfo> displays{{.displayId = 1, .index = 0, .bounds = bounds}};
        const Annotation annotation = shape({120, 60}, {-700.25, 900.75});
        const Annotation back = remapped(encodedStroke(annotation, displays), displays);
        EXPECT_TRUE(isPoint(back.start, annotation.start, 1e-9));
        EXPECT_TRUE(isPoint(back.end, annotation.end, 1e-9));
    }
}

} // namespace orvane
