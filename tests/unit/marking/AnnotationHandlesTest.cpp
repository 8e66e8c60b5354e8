#include "OrvaneCore/marking/AnnotationRenderer.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "tests/unit/marking/Drawings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::test {

namespace {

class DrawsHandles : public AtScale {
protected:
    static QImage handlesOf(const Annotation& annotation, const PointMap& map, QImage picture) {
        QPainter painter(&picture);
        annotation_renderer::drawSelectionHandles(painter, annotation, map, scale());
        painter.end();
        return picture;
    }
    static QImage handlesOf(const Annotation& annotation) {
        return handlesOf(annotation, mapAt(scale()),
                         ground((QSizeF(200, 150) * scale()).toSize(), qRgb(40, 90, 40)));
    }
    static QImage dots(const std::vector<QPointF>& points, QImage picture) {
        QPainter painter(&picture);
        annotation_renderer::drawHandleDots(painter, points, scale());
        painter.end();
        return picture;
    }
    static QImage dotsAt(const std::vector<QPointF>& points) {
        return dots(points, ground((QSizeF(200, 150) * scale()).toSize(), qRgb(40, 90, 40)));
    }
};

} // namespace

TEST_P(DrawsHandles, DotsAreWhiteInABlueRing) {
    const qreal s = scale();
    // In the middle of a pixel at every scale.
    const QPointF center(60.5, 50.5);
    const qreal ringRadius = 4.5 * s + 1;
    const qreal ringWidth = 1.5 * s;

    const QImage onWhite = dots({center}, ground({120, 100}));
    const auto isRing = [&](const Span& span, qreal middle) {
        return isSpan(span, middle - ringWidth / 2, middle + ringWidth / 2, 0.15);
    };
    EXPECT_TRUE(isRing(spanInRow(onWhite, 50.5, 0, 60.5, white, system_colors::blue), 60.5 - ringRadius));
    EXPECT_TRUE(isRing(spanInRow(onWhite, 50.5, 60.5, 119, white, system_colors::blue), 60.5 + ringRadius));
    EXPECT_TRUE(isRing(spanInColumn(onWhite, 60.5, 0, 50.5, white, system_colors::blue), 50.5 - ringRadius));
    EXPECT_TRUE(isRing(spanInColumn(onWhite, 60.5, 50.5, 99, white, system_colors::blue), 50.5 + ringRadius));

    // Where the ring is wide it covers the rim of the white.
    const qreal whiteRadius = std::min(4.5 * s, ringRadius - ringWidth / 2);
    const QImage onBlue = dots({center}, ground({120, 100}, system_colors::blue));
    EXPECT_TRUE(isSpan(spanInRow(onBlue, 50.5, 0, 119, system_colors::blue, white), 60.5 - whiteRadius,
                       60.5 + whiteRadius, 0.15));
    EXPECT_TRUE(isSpan(spanInColumn(onBlue, 60.5, 0, 99, system_colors::blue, white), 50.5 - whiteRadius,
                       50.5 + whiteRadius, 0.15));
    for (int i = 0; i < 8; ++i) {
        const QPointF direction(std::cos(i * std::numbers::pi / 4 + 0.3),
                                std::sin(i * std::numbers::pi / 4 + 0.3));
        EXPECT_TRUE(isColor(onBlue, center + (whiteRadius - 1.5) * direction, white)) << i;
        EXPECT_TRUE(isColor(onBlue, center + (whiteRadius + 1.5) * direction, system_colors::blue)) << i;
    }
}

TEST_P(DrawsHandles, DotsAreDrawnWhereTheyAreInTheDrawing) {
    const qreal s = scale();
    const QImage picture = dotsAt({{20, 30}, {90, 60}});
    const QImage both = dots({{90, 60}}, dotsAt({{20, 30}}));
    EXPECT_EQ(picture, both);
    EXPECT_TRUE(isColor(picture, {20, 30}, white));
    EXPECT_TRUE(isColor(picture, {90, 60}, white));
    const QRect ink = inkBounds(picture, qRgb(40, 90, 40));
    const qreal outside = 4.5 * s + 1 + 0.75 * s;
    EXPECT_EQ(
        ink,
        QRectF(QPointF(20 - outside, 30 - outside), QPointF(90 + outside, 60 + outside)).toAlignedRect());
    EXPECT_TRUE(inkBounds(dotsAt({}), qRgb(40, 90, 40)).isEmpty());
}

TEST_P(DrawsHandles, LaterDotsCoverEarlierOnes) {
    const qreal s = scale();
    const QPointF second(40 + 4 * s, 40);
    const QImage picture = dotsAt({{40, 40}, second});
    EXPECT_TRUE(isColor(picture, second, white));
    EXPECT_TRUE(isColor(picture, second - QPointF(4.5 * s + 1, 0), system_colors::blue, 40));
    EXPECT_TRUE(isColor(dotsAt({second, {40, 40}}), QPointF(40 + 4.5 * s + 1, 40), system_colors::blue, 40));
    EXPECT_TRUE(isColor(picture, QPointF(40 + 4.5 * s + 1, 40), white));
}

TEST_P(DrawsHandles, ArrowsHaveThemAtTheirEnds) {
    const qreal s = scale();
    EXPECT_EQ(handlesOf(shape(Kind::arrow, {30, 40}, {150, 100})),
              dotsAt({{30 * s, 40 * s}, {150 * s, 100 * s}}));
}

TEST_P(DrawsHandles, AreasHaveThemAtTheirCorners) {
    const qreal s = scale();
    const QImage expected =
        dotsAt({{30 * s, 40 * s}, {150 * s, 40 * s}, {30 * s, 100 * s}, {150 * s, 100 * s}});
    for (const Kind kind : {Kind::box, Kind::ellipse, Kind::highlight}) {
        EXPECT_EQ(handlesOf(shape(kind, {30, 40}, {150, 100})), expected) << rawValue(kind).data();
        EXPECT_EQ(handlesOf(shape(kind, {150, 40}, {30, 100})), expected) << rawValue(kind).data();
    }
}

TEST_P(DrawsHandles, TextsHaveNone) {
    EXPECT_TRUE(
        inkBounds(handlesOf(textShape(QStringLiteral("words"), {60, 60})), qRgb(40, 90, 40)).isEmpty());
}

TEST_P(DrawsHandles, PicturesHaveOneToTurnThemByOnALine) {
    const qreal s = scale();
    const QImage picture = handlesOf(shape(Kind::image, {60, 60}, {140, 120}));
    const std::vector<QPointF> corners{
        {60 * s, 60 * s}, {140 * s, 60 * s}, {60 * s, 120 * s}, {140 * s, 120 * s}};
    for (const QPointF& corner : corners)
        EXPECT_TRUE(isColor(picture, corner, white));
    EXPECT_TRUE(isColor(picture, {100 * s, 30 * s}, white));
    const QRgb under = qRgb(40, 90, 40);
    EXPECT_TRUE(isSpan(spanInRow(picture, 50 * s, 80 * s, 120 * s, under, system_colors::blue),
                       (100 - 0.75) * s, (100 + 0.75) * s));
    // From the upper edge of the picture up to below the dot, which lies on it.
    EXPECT_TRUE(isSpan(spanInRow(picture, 60 * s - 1, 80 * s, 120 * s, under, system_colors::blue),
                       (100 - 0.75) * s, (100 + 0.75) * s));
    EXPECT_TRUE(isColor(picture, {100 * s, 60 * s + 1}, under));
    EXPECT_TRUE(isColor(picture, {100 * s, 32 * s}, white));
    EXPECT_EQ(inkBounds(picture, under).top(),
              static_cast<int>(std::floor(30 * s - (4.5 * s + 1 + 0.75 * s))));
}

TEST_P(DrawsHandles, TurnWithTheirPicture) {
    const qreal s = scale();
    Annotation image = shape(Kind::image, {60, 60}, {140, 120});
    const QPointF center(100, 90);
    for (const qreal rotation : {0.4, std::numbers::pi / 2, 3.0, -1.2}) {
        image.rotation = rotation;
        const QImage picture = handlesOf(image);
        const auto at = [&](const QPointF& point) { return s * Annotation::rotate(point, center, rotation); };
        for (const QPointF& corner : {QPointF(60, 60), QPointF(140, 60), QPointF(60, 120), QPointF(140, 120)})
            EXPECT_TRUE(isColor(picture, at(corner), white)) << rotation;
        EXPECT_TRUE(isColor(picture, at({100, 30}), white)) << rotation;
        // Where the line is not a whole pixel wide, its colour is not pure.
        EXPECT_TRUE(isColor(picture, at({100, 55}), system_colors::blue, 80)) << rotation;
        EXPECT_TRUE(isColor(picture, at({100, 45}), system_colors::blue, 80)) << rotation;
        EXPECT_TRUE(isColor(picture, at({104, 50}), qRgb(40, 90, 40))) << rotation;
        EXPECT_TRUE(isColor(picture, at({96, 50}), qRgb(40, 90, 40))) << rotation;
        EXPECT_TRUE(isColor(picture, at({100, 65}), qRgb(40, 90, 40))) << rotation;
    }
}

TEST_P(DrawsHandles, AreWhereTheMapSays) {
    const PointMap map{.origin = {1000, -500}, .scaleX = 1.25, .scaleY = 0.75};
    const QImage picture = handlesOf(shape(Kind::arrow, {1040, -460}, {1120, -380}), map, ground({200, 150}));
    EXPECT_EQ(picture, dots({{50, 30}, {150, 90}}, ground({200, 150})));
    // The handle to turn a picture by is 30 points above it, and these follow the map.
    const QImage image = handlesOf(shape(Kind::image, {1040, -440}, {1120, -380}), map, ground({200, 150}));
    EXPECT_TRUE(isColor(image, {100, 22.5}, white));
    EXPECT_TRUE(isSpan(spanInRow(image, 43, 80, 120, white, system_colors::blue), 100 - 0.75 * scale(),
                       100 + 0.75 * scale()));
}

INSTANTIATE_TEST_SUITE_P(AnnotationRenderer, DrawsHandles, testing::ValuesIn(displayScales), nameOfScale);

TEST(AnnotationHandles, LeaveThePainterAsItWas) {
    QImage picture = ground({200, 200});
    QPainter painter(&picture);
    setUnusual(painter);
    const PainterSettings before(painter);
    annotation_renderer::drawHandleDots(painter, {{30, 30}}, 2);
    EXPECT_EQ(PainterSettings(painter), before);
    EXPECT_FALSE(inkBounds(picture).isEmpty());
}

} // namespace orvane::test
