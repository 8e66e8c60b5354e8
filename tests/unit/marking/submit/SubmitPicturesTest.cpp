#include "OrvaneCore/marking/submit/SubmitPictures.h"

#include "OrvaneCore/drawing/SpotlightBlur.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/submit/SubmitRequest.h"
#include "tests/support/DrawnPixels.h"
#include "tests/support/KnownPicture.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <limits>

namespace orvane::test {

using namespace Qt::StringLiterals;
using Spotlight = marker_painter::Spotlight;

namespace {

Marker markerAt(const QRectF& rect, const QString& label = {}) {
    return {.rect = rect, .label = label, .color = QColor(0x3B, 0x82, 0xF6), .index = 1};
}

Annotation redBox(const QRectF& rect) {
    return {.kind = Annotation::Kind::box,
            .start = rect.topLeft(),
            .end = rect.bottomRight(),
            .color = Qt::red,
            .strokeWidth = 4};
}

struct Case {
    qreal scale;
    QPointF origin;
};

class SubmitPicturesAtScale : public testing::TestWithParam<Case> {
protected:
    /// 120x80 points.
    QRectF bounds() const { return {GetParam().origin, QSizeF(120, 80)}; }
    QImage capture() const { return knownPicture(toPixels(120), toPixels(80), false); }
    int toPixels(qreal points) const { return qRound(points * GetParam().scale); }
    QRectF onDisplay(qreal x, qreal y, qreal width, qreal height) const {
        return {bounds().topLeft() + QPointF(x, y), QSizeF(width, height)};
    }
};

INSTANTIATE_TEST_SUITE_P(Scales, SubmitPicturesAtScale,
                         testing::Values(Case{1, {0, 0}}, Case{1.5, {0, 0}}, Case{2, {0, 0}},
                                         Case{1, {-120, 40}}, Case{1.5, {-80, -54}}, Case{2, {1920, -1080}}));

TEST_P(SubmitPicturesAtScale, CropsHaveThePixelsOfTheCapture) {
    const QImage picture = capture();
    const SubmitPictures pictures(picture, bounds());
    for (const QRect& points : {QRect(10, 20, 30, 40), QRect(0, 0, 120, 80), QRect(0, 0, 2, 2),
                                QRect(118, 78, 2, 2), QRect(4, 60, 100, 20)}) {
        const QImage crop =
            pictures.regionCrop(onDisplay(points.x(), points.y(), points.width(), points.height()));
        const QRect pixels(toPixels(points.x()), toPixels(points.y()), toPixels(points.width()),
                           toPixels(points.height()));
        ASSERT_EQ(crop.size(), pixels.size());
        EXPECT_EQ(crop.format(), QImage::Format_RGB32);
        EXPECT_EQ(crop, picture.copy(pixels));
    }
}

TEST_P(SubmitPicturesAtScale, CropsAreTransparentBeyondTheDisplay) {
    const QImage picture = capture();
    const int width = toPixels(40);
    const int height = toPixels(60);
    const QImage crop = SubmitPictures(picture, bounds()).regionCrop(onDisplay(-20, 50, 40, 60));
    ASSERT_EQ(crop.size(), QSize(width, height));
    EXPECT_TRUE(crop.hasAlphaChannel());
    const int left = toPixels(-20);
    const int top = toPixels(50);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const QPoint place(x + left, y + top);
            const QRgb expected = picture.rect().contains(place) ? picture.pixel(place) : 0;
            ASSERT_EQ(crop.pixel(x, y), expected) << x << "," << y;
        }
    }
}

TEST_P(SubmitPicturesAtScale, AnnotationsLieOnACropWhereTheyLieOnTheDisplay) {
    const qreal scale = GetParam().scale;
    QImage picture = ground({toPixels(120), toPixels(80)});
    const SubmitPictures pictures(picture, bounds());
    const QRectF region = onDisplay(20, 10, 60, 60);
    QImage crop = pictures.regionCrop(region);
    pictures.drawOnCrop(crop, region, {redBox(onDisplay(30, 30, 20, 20))});
    // The stroke is 4 points wide, on the middle of the edge.
    EXPECT_TRUE(isSpan(spanInRow(crop, 30 * scale, 0, 20 * scale, white, 0xFFFF0000), 8 * scale, 12 * scale));
    EXPECT_TRUE(
        isSpan(spanInColumn(crop, 20 * scale, 0, 30 * scale, white, 0xFFFF0000), 18 * scale, 22 * scale));
    EXPECT_TRUE(isFilled(crop, pixelsInside({13 * scale, 23 * scale, 14 * scale, 14 * scale}), white));
    EXPECT_EQ(picture, ground({toPixels(120), toPixels(80)})) << "the capture is not drawn on";
}

TEST_P(SubmitPicturesAtScale, TheAnnotatedDisplayIsTheCaptureWithTheMarks) {
    const qreal scale = GetParam().scale;
    const QImage picture = ground({toPixels(120), toPixels(80)});
    const Marker marker = markerAt(onDisplay(30, 20, 60, 40));
    const Annotation annotation = redBox(onDisplay(40, 30, 20, 20));
    const QImage annotated =
        SubmitPictures(picture, bounds()).annotatedDisplay({marker}, {annotation}, Spotlight::off);

    QImage expected = picture;
    QPainter painter(&expected);
    marker_painter::draw(painter, marker, {30 * scale, 20 * scale, 60 * scale, 40 * scale}, scale,
                         MarkerStyle::onImage, Spotlight::off, QRectF(expected.rect()));
    painter.end();
    EXPECT_EQ(annotated.size(), picture.size());
    EXPECT_EQ(annotated.format(), QImage::Format_RGB32);
    const QRect stroked = QRectF(37 * scale, 27 * scale, 26 * scale, 26 * scale).toAlignedRect();
    for (int y = 0; y < annotated.height(); ++y) {
        for (int x = 0; x < annotated.width(); ++x) {
            if (stroked.contains(x, y))
                continue;
            ASSERT_EQ(annotated.pixel(x, y), expected.pixel(x, y)) << x << "," << y;
        }
    }
    EXPECT_TRUE(isSpan(spanInRow(annotated, 40 * scale, 36 * scale, 50 * scale,
                                 expected.pixel(annotated.rect().center()), 0xFFFF0000),
                       38 * scale, 42 * scale));
}

TEST_P(SubmitPicturesAtScale, NumbersAndLabelsAtTheEdgesStayOnThePicture) {
    const qreal scale = GetParam().scale;
    const QImage picture = ground({toPixels(120), toPixels(80)});
    const Marker marker = markerAt(onDisplay(0, 0, 120, 80), u"Note"_s);
    const QImage annotated = SubmitPictures(picture, bounds()).annotatedDisplay({marker}, {}, Spotlight::off);
    const MarkerLayout place = marker_painter::layout(
        marker, QRectF(picture.rect()), scale, MarkerStyle::onImage, Spotlight::off, QRectF(picture.rect()));
    ASSERT_TRUE(QRectF(picture.rect()).contains(place.badgeRing.outer()));
    ASSERT_TRUE(QRectF(picture.rect()).contains(place.label->capsule));
    // A number on a badge that is all there, and a text on its capsule.
    const QPointF beside(8 * scale, 0);
    EXPECT_TRUE(isColor(annotated, place.badge.center() - beside, marker.color.rgb(), 2));
    EXPECT_FALSE(inkBounds(annotated.copy(pixelsInside(place.number)), marker.color.rgb(), 120).isEmpty());
    const QPointF beforeText(place.label->text.left() - 3 * scale, place.label->text.center().y());
    EXPECT_LT(qGray(annotated.pixel(pixelAt(beforeText))), 60);
    const QImage label = annotated.copy(pixelsInside(place.label->text));
    const QRect ink = inkBounds(label, annotated.pixel(pixelAt(beforeText)), 120);
    EXPECT_GT(ink.width(), place.label->text.width() * 0.8);
    EXPECT_LT(ink.height(), label.height());
}

TEST_P(SubmitPicturesAtScale, LabelsOfShapesStayOnDisplayAndCrop) {
    const qreal scale = GetParam().scale;
    const QImage picture = ground({toPixels(120), toPixels(80)});
    const SubmitPictures pictures(picture, bounds());
    Annotation annotation = redBox(onDisplay(90, 2, 28, 20));
    annotation.label = u"Note"_s;
    const auto tagOn = [&](const QSize& size, const PointMap& map) {
        const QRectF whole({0, 0}, size);
        return annotation_renderer::extent(annotation, map, scale, whole, whole).parts.back();
    };
    // All of the tag, which has the shape's colour: the widest row of it begins left of the shape.
    const QImage annotated = pictures.annotatedDisplay({}, {annotation}, Spotlight::off);
    const QRectF tag =
        tagOn(picture.size(), {.origin = bounds().topLeft(), .scaleX = scale, .scaleY = scale});
    EXPECT_LT(inkBounds(annotated).left(), 88 * scale);
    EXPECT_LE(tag.left() + 14 * scale, inkBounds(annotated).left() + 1);
    const QRectF region = onDisplay(70, 0, 50, 40);
    QImage crop = pictures.regionCrop(region);
    pictures.drawOnCrop(crop, region, {annotation});
    EXPECT_LT(inkBounds(crop).left(), 18 * scale);
    EXPECT_EQ(inkBounds(crop).top(), 0);
}

TEST(SubmitPictures, AnnotationsLieOnTopOfMarkers) {
    const QImage picture = ground({120, 80});
    const SubmitPictures pictures(picture, {0, 0, 120, 80});
    Annotation annotation = redBox({10, 20, 60, 40});
    annotation.strokeWidth = 6;
    const QImage annotated =
        pictures.annotatedDisplay({markerAt({10, 20, 60, 40})}, {annotation}, Spotlight::off);
    EXPECT_TRUE(isFilled(annotated, {30, 19, 20, 2}, 0xFFFF0000)) << "over the marker's outline";
}

TEST(SubmitPictures, ASpotlightBlursAllButTheRegions) {
    const QImage picture = knownPicture(240, 160, false);
    const SubmitPictures pictures(picture, {-120, 0, 120, 80});
    const QImage annotated = pictures.annotatedDisplay({markerAt({-90, 20, 60, 40})}, {}, Spotlight::on);
    const QImage blurred = blurOutside(picture, {{60, 40, 120, 80}}, MarkupModes::spotlightSigma);
    // Off the badge on the top-left corner, the outline and its round corners.
    const QRect clear(64, 84, 112, 20);
    const QRect far(0, 130, 240, 30);
    EXPECT_EQ(annotated.copy(clear), picture.copy(clear)) << "sharp, and without a tint";
    EXPECT_EQ(annotated.copy(far), blurred.copy(far));
    EXPECT_NE(annotated.copy(far), picture.copy(far));
    EXPECT_EQ(pictures.regionCrop({-110, 60, 20, 15}), picture.copy(20, 120, 40, 30)) << "crops stay sharp";
}

TEST(SubmitPictures, EachAxisHasItsOwnScale) {
    const QImage picture = knownPicture(200, 300, false);
    const SubmitPictures pictures(picture, {0, 0, 100, 100});
    EXPECT_EQ(pictures.regionCrop({10, 10, 20, 30}), picture.copy(20, 30, 40, 90));
}

TEST(SubmitPictures, StrokesHaveTheLargerOfBothScales) {
    const QImage picture = ground({100, 200});
    const SubmitPictures pictures(picture, {0, 0, 100, 100});
    QImage crop = pictures.regionCrop({0, 0, 100, 100});
    pictures.drawOnCrop(crop, {0, 0, 100, 100}, {redBox({20, 20, 60, 60})});
    EXPECT_TRUE(isSpan(spanInRow(crop, 100, 0, 50, white, 0xFFFF0000), 16, 24));
}

TEST(SubmitPictures, AlmostWholePixelsAreWhole) {
    const QImage picture = knownPicture(150, 150, false);
    const SubmitPictures pictures(picture, {0.1, 0.2, 100, 100});
    EXPECT_EQ(pictures.regionCrop({10.1 + 1e-9, 20.2 - 1e-9, 30 - 1e-9, 40 + 1e-9}),
              picture.copy(15, 30, 45, 60));
}

TEST(SubmitPictures, CropsHaveAtLeastOnePixel) {
    const QImage picture = knownPicture(100, 100, false);
    const SubmitPictures pictures(picture, {0, 0, 100, 100});
    EXPECT_EQ(pictures.regionCrop({10, 10, 0, 0}), picture.copy(10, 10, 1, 1));
    EXPECT_EQ(pictures.regionCrop({10, 10, 0.2, 30}), picture.copy(10, 10, 1, 30));
}

TEST(SubmitPictures, ARectangleFromAnyCornerIsTheSame) {
    const QImage picture = knownPicture(100, 100, false);
    const SubmitPictures pictures(picture, {0, 0, 100, 100});
    EXPECT_EQ(pictures.regionCrop({40, 60, -30, -40}), picture.copy(10, 20, 30, 40));
    QImage usual = pictures.regionCrop({10, 20, 30, 40});
    QImage fromBelow = usual;
    pictures.drawOnCrop(usual, {10, 20, 30, 40}, {redBox({15, 30, 20, 20})});
    pictures.drawOnCrop(fromBelow, {40, 60, -30, -40}, {redBox({15, 30, 20, 20})});
    EXPECT_NE(usual, picture.copy(10, 20, 30, 40));
    EXPECT_EQ(fromBelow, usual);
}

TEST(SubmitPictures, ThereIsNoCropOfWhatIsNoSize) {
    const qreal nan = std::numeric_limits<qreal>::quiet_NaN();
    const qreal infinite = std::numeric_limits<qreal>::infinity();
    const SubmitPictures pictures(ground({100, 100}), {0, 0, 100, 100});
    for (const QRectF& region :
         {QRectF(nan, 0, 10, 10), QRectF(0, nan, 10, 10), QRectF(0, 0, nan, 10), QRectF(0, 0, 10, infinite),
          QRectF(-infinite, 0, 10, 10), QRectF(-1e300, -1e300, 2e300, 2e300), QRectF(0, 0, 16385, 1),
          QRectF(0, 0, 1, 16385), QRectF(0, 0, 10000, 10000), QRectF(0, 0, 1e19, 1e19)}) {
        QImage crop = pictures.regionCrop(region);
        EXPECT_TRUE(crop.isNull()) << region.width() << "x" << region.height();
    }
    EXPECT_EQ(pictures.regionCrop({0, 0, 16384, 1}).size(), QSize(16384, 1));
}

TEST(SubmitPictures, ACropFarAwayIsTransparent) {
    const SubmitPictures pictures(ground({100, 100}), {0, 0, 100, 100});
    for (const QPointF& corner :
         {QPointF(1e300, 0), QPointF(0, -1e300), QPointF(1e9, 1e9), QPointF(100, 0)}) {
        const QImage crop = pictures.regionCrop({corner, QSizeF(3, 2)});
        ASSERT_EQ(crop.size(), QSize(3, 2));
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(crop.pixel(x, 1), 0U);
    }
}

TEST(SubmitPictures, MarksThatAreNowhereHarmNothing) {
    const qreal nan = std::numeric_limits<qreal>::quiet_NaN();
    const QImage picture = ground({100, 100});
    const SubmitPictures pictures(picture, {0, 0, 100, 100});
    for (const Spotlight spotlight : {Spotlight::off, Spotlight::on}) {
        EXPECT_EQ(pictures.annotatedDisplay({markerAt({nan, 0, 10, 10}), markerAt({0, 0, nan, nan})},
                                            {redBox({nan, nan, 1, 1})}, spotlight),
                  picture);
    }
    EXPECT_EQ(pictures.annotatedDisplay({markerAt({-1e300, -1e300, 2e300, 2e300})}, {}, Spotlight::on).size(),
              picture.size());
}

} // namespace
} // namespace orvane::test
