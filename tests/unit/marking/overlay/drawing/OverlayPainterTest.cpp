#include "OrvaneCore/marking/overlay/OverlayPainter.h"

#include "OrvaneCore/marking/overlay/OverlayLayout.h"
#include "OrvaneCore/marking/overlay/OverlayTexts.h"
#include "tests/unit/marking/overlay/drawing/OverlayScenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr QRectF region(60, 110, 150, 90);

class PaintsOverlay : public testing::TestWithParam<qreal> {
protected:
    static qreal ratio() { return GetParam(); }
    static QImage picture(const OverlayScene& scene, QRgb under = white) {
        return pictureOf(scene, ratio(), under);
    }
    /// The pixels that lie wholly in a rectangle of the view.
    static QRect pixels(const QRectF& rect) {
        return pixelsInside({rect.topLeft() * ratio(), rect.size() * ratio()});
    }
    static testing::AssertionResult isAt(const QImage& picture, const QPointF& point, QRgb color,
                                         int tolerance = 1) {
        return isColor(picture, point * ratio(), color, tolerance);
    }
    /// White letters on a ground of this colour, and nothing else.
    static testing::AssertionResult isWritten(const QImage& picture, const QRectF& plate, QRgb under) {
        const QImage part = picture.copy(pixels(plate));
        const QRect ink = inkBounds(part, under, 100);
        if (ink.width() < part.width() / 2 || ink.height() < part.height() / 4)
            return testing::AssertionFailure() << "too little ink";
        const int left = ink.left();
        const int right = part.width() - 1 - ink.right();
        if (std::abs(left - right) > 2 * ratio() + 1)
            return testing::AssertionFailure() << left << " before the text, " << right << " after it";
        return testing::AssertionSuccess();
    }
};

} // namespace

TEST_P(PaintsOverlay, SpotlightDarkensAllButTheRegions) {
    OverlayScene scene = emptyScene();
    scene.modes.spotlight = true;
    scene.markers = {markerAt(region), markerAt({120, 150, 200, 100}, {}, 2)};
    const QImage shown = picture(scene);
    const QRgb dark = blended(black, 0.55, white);
    EXPECT_TRUE(isFilled(shown, pixels({330, 120, 60, 60}), dark));
    EXPECT_TRUE(isFilled(shown, pixels({78, 130, 18, 60}), white));
    EXPECT_TRUE(isFilled(shown, pixels({220, 160, 90, 80}), white));
    // Where both overlap.
    EXPECT_TRUE(isFilled(shown, pixels({145, 175, 55, 20}), dark));
    scene.modes.spotlight = false;
    EXPECT_TRUE(isFilled(picture(scene), pixels({330, 120, 60, 60}), white));
}

TEST_P(PaintsOverlay, SpotlightWithoutRegionsDarkensAll) {
    OverlayScene scene = emptyScene();
    scene.modes.spotlight = true;
    EXPECT_TRUE(isFilled(picture(scene), pixels({0, 70, 400, 230}), blended(black, 0.55, white)));
}

TEST_P(PaintsOverlay, MarkersWhereTheirGlobalRegionsAre) {
    OverlayScene scene = emptyScene();
    scene.shapes.origin = {-1000, 500};
    scene.markers = {markerAt(region.translated(scene.shapes.origin))};
    const QImage shown = picture(scene, black);
    EXPECT_TRUE(isFilled(shown, pixels({80, 130, 120, 60}), blended(blue, 0.09, black)));
    // The badge, left of its number.
    EXPECT_TRUE(isAt(shown, {51.5, 110}, blue));
    EXPECT_TRUE(isAt(shown, {135, 110}, blue, 100));
}

TEST_P(PaintsOverlay, SizeTagAtTheTopRightOfTheRegion) {
    OverlayScene scene = emptyScene();
    scene.markers = {markerAt(region)};
    const QRectF tag = overlay_layout::sizeTag(placed(region), scene.shapes.size);
    const QImage shown = picture(scene);
    EXPECT_TRUE(isFilled(shown, pixels({tag.left() + 1, tag.top() + 4, 3, tag.height() - 8}), plateGround));
    EXPECT_TRUE(isWritten(shown, tag.adjusted(1, 1, -1, -1), plateGround));
    // Round.
    EXPECT_TRUE(isAt(shown, tag.topLeft() + QPointF(0.2, 0.2), white, 60));
}

TEST_P(PaintsOverlay, HintWhereALabelWouldBe) {
    OverlayScene scene = emptyScene();
    scene.markers = {markerAt(region)};
    const QRectF hint = overlay_layout::hint(placed(region));
    // What is beneath does not show through.
    for (const QRgb under : {white, black})
        EXPECT_TRUE(isWritten(picture(scene, under), hint.adjusted(2, 2, -2, -2), plateGround));
    scene.modes.ocr = true;
    EXPECT_TRUE(isFilled(picture(scene), pixels(hint), white));
    scene.markers[0].label = u"Note"_s;
    const QImage labelled = picture(scene);
    EXPECT_FALSE(isFilled(labelled, pixels(hint), white));
    scene.modes.ocr = false;
    // With a label there is no hint.
    const QRectF belowInstructions(0, 95, 400, 205);
    EXPECT_EQ(labelled.copy(pixels(belowInstructions)), picture(scene).copy(pixels(belowInstructions)));
}

TEST_P(PaintsOverlay, RegionThatIsDraggedOpen) {
    OverlayScene scene = emptyScene();
    scene.currentRect = region;
    const QImage shown = picture(scene);
    EXPECT_TRUE(isFilled(shown, pixels(region.adjusted(2, 2, -2, -2)), blended(yellow, 0.2, white)));
    // Dashes of 6 and gaps of 4 along a line 2 wide, half of it on the fill.
    const QRgb dash = blended(yellow, 0.8, white);
    EXPECT_TRUE(isFilled(shown, pixels({59, 109, 6, 1}), dash));
    EXPECT_TRUE(isFilled(shown, pixels({69, 109, 6, 1}), dash));
    EXPECT_TRUE(isFilled(shown, pixels({65, 109, 4, 1}), white));
    EXPECT_TRUE(isFilled(shown, pixels({59, 111, 1, 6}), dash));
    EXPECT_TRUE(isFilled(shown, pixels({210, 111, 1, 6}), dash));
    EXPECT_TRUE(isFilled(shown, pixels({59, 200, 6, 1}), dash));
    EXPECT_TRUE(isFilled(shown, pixels({220, 70, 170, 230}), white));

    const QRectF label = overlay_layout::dimensionLabel(region, scene.shapes.size);
    EXPECT_TRUE(isWritten(shown, label.adjusted(1, 1, -1, -1), blended(plateGround, 0.9, white)));

    // The last dash of a side ends with the side.
    scene.currentRect = QRectF(60, 110, 150, 85);
    EXPECT_TRUE(isFilled(picture(scene), pixels({56, 196, 160, 8}), white));
}

TEST_P(PaintsOverlay, CrosshairOverTheWholeView) {
    OverlayScene scene = emptyScene();
    scene.mousePosition = QPointF(120, 150);
    const QImage shown = picture(scene, black);
    const QImage without = picture(emptyScene(), black);
    const QRect row = inkBounds(shown.copy(pixels({130, 145, 270, 12})), black);
    const QRect column = inkBounds(shown.copy(pixels({115, 200, 12, 100})), black);
    // Half a point is at most a pixel; it is where the pointer is.
    EXPECT_EQ(row.height(), 1);
    EXPECT_EQ(column.width(), 1);
    EXPECT_NEAR(row.top(), 5 * ratio(), 1);
    EXPECT_NEAR(column.left(), 5 * ratio(), 1);
    scene.mousePosition = QPointF(120.3, 150.4);
    EXPECT_EQ(inkBounds(picture(scene, black).copy(pixels({130, 145, 270, 12})), black).height(), 1);
    // From edge to edge, dashed.
    for (const QRectF& stretch :
         {QRectF(0, 145, 12, 12), QRectF(388, 145, 12, 12), QRectF(115, 288, 12, 12), QRectF(115, 0, 12, 12)})
        EXPECT_FALSE(inkBounds(shown.copy(pixels(stretch)), black).isEmpty());
    const QRgb line = blended(white, 0.4 * std::min(1.0, 0.5 * ratio()), black);
    EXPECT_TRUE(isAt(shown, {2, 150}, line, 2));
    EXPECT_TRUE(isAt(shown, {6, 150}, black));
    EXPECT_TRUE(isAt(shown, {10, 150}, line, 2));
    EXPECT_TRUE(inkBounds(without.copy(pixels({0, 70, 400, 230})), black).isEmpty());
}

TEST_P(PaintsOverlay, CoordinatePlateSaysWhereThePointerIsGlobally) {
    OverlayScene scene = emptyScene();
    scene.shapes.origin = {1000, -200};
    scene.mousePosition = QPointF(120, 150);
    const QRectF plate = overlay_layout::coordinatePlate({120, 150}, u"1120, -50"_s, scene.shapes.size);
    const QRgb ground = blended(plateGround, 0.9, white);
    const QImage shown = picture(scene);
    EXPECT_TRUE(isWritten(shown, plate.adjusted(2, 2, -2, -2), ground));
    EXPECT_TRUE(isFilled(shown, pixels({plate.left() + 1, plate.top() + 5, 3, 8}), ground));
    EXPECT_TRUE(isFilled(shown, pixels({plate.right() + 1, plate.top(), 60, plate.height()}), white));
    scene.shapes.origin = {2000, -200};
    EXPECT_NE(picture(scene), shown);
}

TEST_P(PaintsOverlay, InstructionsInAPill) {
    const OverlayScene scene = emptyScene();
    const QImage shown = picture(scene);
    const QRectF pill = overlay_layout::instructions(overlayInstructions({}, 0), scene.shapes.size).pill;
    const QRgb ground = blended(black, 0.75, white);
    EXPECT_TRUE(isFilled(shown, pixels({pill.left() + 14, pill.top() + 1, pill.width() - 28, 4}), ground));
    EXPECT_TRUE(isWritten(shown, pill.adjusted(2, 7, -2, -7), ground));
    const QRect ink = inkBounds(shown);
    EXPECT_NEAR(ink.left(), pill.left() * ratio(), 1.1);
    EXPECT_NEAR(ink.right() + 1, pill.right() * ratio(), 1.1);
    EXPECT_NEAR(ink.top(), pill.top() * ratio(), 1.1);
    EXPECT_NEAR(ink.bottom() + 1, 62 * ratio(), 1.1);
    // Round at its ends.
    EXPECT_TRUE(isAt(shown, pill.topLeft() + QPointF(2, 2), white));
}

TEST_P(PaintsOverlay, SelectionHandles) {
    OverlayScene scene = emptyScene();
    scene.markers = {markerAt(region)};
    scene.shapes.annotations = {shapeAt(Annotation::Kind::arrow, {250, 120}, {330, 240})};
    scene.selectedMarkerId = scene.markers[0].id;
    const QImage onMarker = picture(scene, black);
    for (const QPointF& corner : {QPointF(60, 110), QPointF(210, 110), QPointF(60, 200), QPointF(210, 200)})
        EXPECT_TRUE(isAt(onMarker, corner + QPointF(1, 1), white));
    EXPECT_FALSE(isAt(onMarker, {250, 120}, white, 40));
    scene.selectedMarkerId.reset();
    scene.shapes.selectedId = scene.shapes.annotations[0].id;
    const QImage onShape = picture(scene, black);
    EXPECT_TRUE(isAt(onShape, {250, 120}, white));
    EXPECT_TRUE(isAt(onShape, {330, 240}, white));
    EXPECT_FALSE(isAt(onShape, {211, 201}, white, 40));
    scene.shapes.selectedId = QUuid::createUuid();
    scene.selectedMarkerId = QUuid::createUuid();
    const QImage unknown = picture(scene, black);
    scene.shapes.selectedId.reset();
    scene.selectedMarkerId.reset();
    EXPECT_EQ(unknown, picture(scene, black));
}

TEST_P(PaintsOverlay, PlatesHaveALightEdgeOnDarkWindows) {
    OverlayScene scene = emptyScene();
    scene.markers = {markerAt(region), markerAt({240, 110, 120, 90}, u"Note"_s, 2)};
    scene.mousePosition = QPointF(120, 150);
    const QImage shown = picture(scene, black);
    const QString pointer = u"120, 150"_s;
    const std::array plates{overlay_layout::sizeTag(placed(region), scene.shapes.size),
                            overlay_layout::hint(placed(region)),
                            placed({240, 110, 120, 90}, u"Note"_s).label->capsule,
                            overlay_layout::coordinatePlate({120, 150}, pointer, scene.shapes.size),
                            overlay_layout::instructions(overlayInstructions({}, 2), scene.shapes.size).pill};
    for (const QRectF& plate : plates) {
        // The lightest on the way across its left side, above the text.
        const QRect side = pixels({plate.left() - 2, plate.center().y() - 1, 5, 2});
        int lightest = 0;
        for (int x = side.left(); x <= side.right(); ++x)
            lightest = std::max(lightest, qGray(shown.pixel(x, side.center().y())));
        EXPECT_GE(lightest, 50) << plate.left() << "," << plate.top();
        // It is thin: within it is dark again.
        EXPECT_LE(qGray(shown.pixel(pixelAt((QPointF(plate.left() + 2.6, plate.center().y())) * ratio()))),
                  36);
    }
}

TEST_P(PaintsOverlay, LayersLieInTheirOrder) {
    OverlayScene scene = emptyScene();
    const QPointF place(150, 150);
    const auto at = [&] { return picture(scene).pixel(pixelAt(place * ratio())); };
    scene.markers = {markerAt(region)};
    QRgb expected = blended(blue, 0.09, white);
    EXPECT_LE(colorDistance(at(), expected), 1);
    scene.currentRect = QRectF(100, 120, 90, 60);
    expected = blended(yellow, 0.2, expected);
    EXPECT_LE(colorDistance(at(), expected), 2);
    scene.shapes.annotations = {shapeAt(Annotation::Kind::highlight, {110, 130}, {180, 170}, red)};
    expected = blended(red, 0.35, expected);
    EXPECT_LE(colorDistance(at(), expected), 2);
    scene.shapes.annotations.push_back(shapeAt(Annotation::Kind::highlight, {110, 130}, {180, 170}, blue));
    expected = blended(blue, 0.35, expected);
    EXPECT_LE(colorDistance(at(), expected), 3);
    scene.shapes.draft = shapeAt(Annotation::Kind::highlight, {110, 130}, {180, 170}, black);
    expected = blended(black, 0.35, expected);
    EXPECT_LE(colorDistance(at(), expected), 3);
    // The handles of what is selected are above all shapes, and the plate of the pointer above them.
    scene.shapes.annotations.push_back(shapeAt(Annotation::Kind::box, place, {250, 250}));
    scene.shapes.selectedId = scene.shapes.annotations.back().id;
    EXPECT_EQ(at(), white);
    scene.mousePosition = place - QPointF(17, 16);
    EXPECT_LE(colorDistance(at(), blended(plateGround, 0.9, white)), 1);
}

TEST_P(PaintsOverlay, InstructionsAreAboveAll) {
    OverlayScene scene = emptyScene();
    scene.markers = {markerAt({20, -20, 360, 150})};
    scene.shapes.annotations = {shapeAt(Annotation::Kind::highlight, {0, 0}, {400, 100}, white)};
    const QRectF pill = overlay_layout::instructions(overlayInstructions({}, 1), scene.shapes.size).pill;
    const QRgb under = blended(white, 0.35, blended(blue, 0.09, white));
    EXPECT_TRUE(
        isFilled(picture(scene), pixels({200, pill.top() + 1, 60, 4}), blended(black, 0.75, under), 2));
}

TEST_P(PaintsOverlay, AllLinesOfTheInstructions) {
    OverlayScene scene = emptyScene();
    scene.markers = {markerAt(region)};
    const auto [pill, lines] = overlay_layout::instructions(overlayInstructions({}, 1), scene.shapes.size);
    ASSERT_GT(lines.size(), 1U);
    const QImage shown = picture(scene);
    for (const auto& [text, place] : lines)
        EXPECT_TRUE(isWritten(shown, place, blended(black, 0.75, white))) << text.toStdString();
}

TEST_P(PaintsOverlay, MarksOfAnotherDisplayKeepTheirTextsThere) {
    OverlayScene scene = emptyScene();
    scene.shapes.displays = {{0, 0, 400, 300}, {-400, 0, 400, 300}};
    // The middle of each is on the display at the left.
    scene.markers = {markerAt({-90, 100, 100, 60}, u"A label that is wider than its region"_s)};
    Annotation shape = shapeAt(Annotation::Kind::highlight, {-60, 200}, {20, 260}, red);
    shape.label = u"A label of that"_s;
    scene.shapes.annotations = {shape};
    const QRectF beside(30, 95, 300, 195);
    EXPECT_TRUE(isFilled(picture(scene), pixels(beside), white));
    EXPECT_TRUE(isFilled(picture(scene), pixels({12, 168, 300, 18}), white));
    // One whose middle is on the view has its texts here.
    scene.markers[0].rect = {-40, 100, 100, 60};
    EXPECT_FALSE(isFilled(picture(scene), pixels({12, 168, 300, 18}), white));
    // Alone, the view has them.
    scene.markers[0].rect = {-90, 100, 100, 60};
    scene.shapes.displays = {{0, 0, 400, 300}};
    EXPECT_FALSE(isFilled(picture(scene), pixels({12, 168, 300, 18}), white));
}

TEST_P(PaintsOverlay, OnlyWhatIsExposed) {
    OverlayScene scene = emptyScene();
    scene.markers = {markerAt(region, u"Note"_s)};
    scene.shapes.annotations = {shapeAt(Annotation::Kind::arrow, {250, 120}, {330, 240})};
    QImage shown = viewGround(scene.shapes.size, ratio(), white);
    QPainter painter(&shown);
    paintOverlay(painter, scene, QRect(0, 260, 400, 40));
    EXPECT_TRUE(inkBounds(shown).isEmpty());
    paintOverlay(painter, scene, QRect(260, 120, 40, 40));
    painter.end();
    // Of the arrow alone.
    EXPECT_FALSE(inkBounds(shown).isEmpty());
    EXPECT_TRUE(isFilled(shown, pixels({0, 0, 230, 300}), white));
}

TEST_P(PaintsOverlay, ThePainterIsLeftAsItWas) {
    OverlayScene scene = emptyScene();
    scene.modes.spotlight = true;
    scene.markers = {markerAt(region), markerAt({250, 150, 80, 60}, u"Note"_s, 2)};
    scene.shapes.annotations = {shapeAt(Annotation::Kind::arrow, {250, 120}, {330, 240})};
    scene.selectedMarkerId = scene.markers[0].id;
    scene.shapes.selectedId = scene.shapes.annotations[0].id;
    scene.currentRect = QRectF(100, 100, 100, 100);
    scene.mousePosition = QPointF(200, 200);
    QImage shown = viewGround(scene.shapes.size, ratio(), white);
    QPainter painter(&shown);
    setUnusual(painter);
    const PainterSettings before(painter);
    paintOverlay(painter, scene, wholeOf(scene));
    EXPECT_EQ(PainterSettings(painter), before);
    EXPECT_FALSE(inkBounds(shown).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Overlay, PaintsOverlay, testing::ValuesIn(displayScales),
                         [](const auto& scale) { return nameOfScale(scale.param); });

} // namespace orvane::test
