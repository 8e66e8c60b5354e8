#include "OrvaneCore/marking/AnnotationRenderer.h"

#include "OrvaneCore/drawing/DrawnText.h"
#include "tests/unit/marking/Drawings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr QRgb red = 0xFFFF0000;
constexpr QRgb green = 0xFF00FF00;
constexpr QRgb navy = 0xFF000080;
constexpr QRgb yellow = 0xFFFFFF00;

/// Red and green above navy and yellow.
QImage fourColours(const QSize& size) {
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const bool isLeft = x < size.width() / 2;
            const bool isTop = y < size.height() / 2;
            picture.setPixel(x, y, isTop ? (isLeft ? red : green) : (isLeft ? navy : yellow));
        }
    }
    return picture;
}

class DrawsPictures : public AtScale {
protected:
    static Annotation image(const QSize& size) {
        Annotation annotation = shape(Kind::image, {50, 40}, {130, 100});
        annotation.image = fourColours(size);
        return annotation;
    }
};

/// The four quarters of a picture in `rect`, turned clockwise about its middle, and nothing around it.
void expectFourColours(const QImage& drawing, const QRectF& rect, qreal rotation) {
    const std::array<std::pair<QPointF, QRgb>, 4> quarters{
        {{{-1, -1}, red}, {{1, -1}, green}, {{-1, 1}, navy}, {{1, 1}, yellow}}};
    const auto at = [&](const QPointF& part) {
        const QPointF offset(part.x() * rect.width() / 2, part.y() * rect.height() / 2);
        return Annotation::rotate(rect.center() + offset, rect.center(), rotation);
    };
    for (const auto& [side, color] : quarters) {
        for (const qreal part : {0.2, 0.5, 0.9})
            EXPECT_TRUE(isColor(drawing, at(part * side), color)) << part << " " << rotation;
        EXPECT_TRUE(isColor(drawing, at(1.1 * side), white)) << rotation;
    }
    for (const QPointF& beyond : {QPointF(1.1, 0), QPointF(-1.1, 0), QPointF(0, 1.1), QPointF(0, -1.1)})
        EXPECT_TRUE(isColor(drawing, at(beyond), white)) << rotation;
}

} // namespace

TEST_P(DrawsPictures, InAllOfARectangleOfTheirProportions) {
    const qreal s = scale();
    const QImage drawing = drawn(image({8, 6}), s);
    expectFourColours(drawing, QRectF(50 * s, 40 * s, 80 * s, 60 * s), 0);
    EXPECT_EQ(inkBounds(drawing), QRectF(50 * s, 40 * s, 80 * s, 60 * s).toRect());
}

TEST_P(DrawsPictures, LetterboxedInTheMiddle) {
    const qreal s = scale();
    const QImage wide = drawn(image({160, 40}), s);
    expectFourColours(wide, QRectF(50 * s, 60 * s, 80 * s, 20 * s), 0);
    EXPECT_EQ(inkBounds(wide), QRectF(50 * s, 60 * s, 80 * s, 20 * s).toRect());
    const QImage tall = drawn(image({20, 60}), s);
    expectFourColours(tall, QRectF(80 * s, 40 * s, 20 * s, 60 * s), 0);
    EXPECT_EQ(inkBounds(tall), QRectF(80 * s, 40 * s, 20 * s, 60 * s).toRect());
}

TEST_P(DrawsPictures, TurnedClockwise) {
    const qreal s = scale();
    Annotation annotation = image({40, 20});
    const QRectF rect(50 * s, 50 * s, 80 * s, 40 * s);
    for (const qreal rotation : {0.1, -0.1, 0.6, std::numbers::pi / 2, std::numbers::pi, -2.5, 7.0}) {
        annotation.rotation = rotation;
        expectFourColours(drawn(annotation, s), rect, rotation);
    }
    annotation.rotation = std::numbers::pi;
    EXPECT_EQ(inkBounds(drawn(annotation, s), white, 8), rect.toRect());
    // A quarter to the right brings what was at the left to the top.
    annotation.rotation = std::numbers::pi / 2;
    const QImage quarter = drawn(annotation, s);
    EXPECT_EQ(inkBounds(quarter, white, 8), QRectF(70 * s, 30 * s, 40 * s, 80 * s).toRect());
    EXPECT_TRUE(isColor(quarter, {80 * s, 50 * s}, navy));
    EXPECT_TRUE(isColor(quarter, {100 * s, 50 * s}, red));
    EXPECT_TRUE(isColor(quarter, {80 * s, 90 * s}, yellow));
    EXPECT_TRUE(isColor(quarter, {100 * s, 90 * s}, green));
}

TEST_P(DrawsPictures, WithoutStrokeOrColour) {
    Annotation annotation = image({8, 6});
    const QImage drawing = drawn(annotation, scale());
    annotation.strokeWidth = 30;
    annotation.color = QColor(amber);
    EXPECT_EQ(drawn(annotation, scale()), drawing);
}

TEST_P(DrawsPictures, OverWhatLiesBelow) {
    const qreal s = scale();
    Annotation annotation = shape(Kind::image, {50, 40}, {130, 100});
    annotation.image = QImage(8, 6, QImage::Format_ARGB32);
    annotation.image.fill(QColor(0, 0, 255, 64));
    const QImage drawing = drawn(annotation, s, {200, 150}, amber);
    EXPECT_TRUE(isFilled(drawing, QRectF(50 * s, 40 * s, 80 * s, 60 * s).toRect(),
                         blended(0xFF0000FF, 64 / 255.0, amber)));
}

TEST_P(DrawsPictures, AsAPlaceholderWhereThereIsNone) {
    const qreal s = scale();
    Annotation annotation = shape(Kind::image, {50, 40}, {130, 100}, 20);
    annotation.color = QColor(blue);
    const QImage drawing = drawn(annotation, s);
    const QRectF rect(50 * s, 40 * s, 80 * s, 60 * s);
    const QRgb inside = blended(blue, 0.12, white);
    EXPECT_TRUE(isFilled(drawing, pixelsInside(rect.adjusted(0.75, 0.75, -0.75, -0.75)), inside));
    EXPECT_EQ(inkBounds(drawing), rect.adjusted(-0.75, -0.75, 0.75, 0.75).toAlignedRect());
    // The stroke is 1.5 wide at every scale, and covers the fill with its inner half.
    const auto strokeAt = [&](qreal outside, qreal insideHalf) {
        EXPECT_NEAR(outside, 0.75 * 0.9, 0.06);
        EXPECT_NEAR(insideHalf, 0.75 * (0.9 + 0.1 * 0.12) + 2.25 * 0.12, 0.06);
    };
    const auto inked = [&](const QPointF& from, const QPointF& step) {
        qreal sum = 0;
        for (int i = 0; i < 3; ++i)
            sum += coverage(drawing.pixel(pixelAt(from + i * step)), white, blue);
        return sum;
    };
    const QPointF middle = pixelAt(rect.center()) + QPointF(0.5, 0.5);
    const QPoint first = rect.topLeft().toPoint();
    const QPoint last = rect.bottomRight().toPoint() - QPoint(1, 1);
    strokeAt(inked({first.x() - 1.0, middle.y()}, {-1, 0}), inked({first.x() + 0.0, middle.y()}, {1, 0}));
    strokeAt(inked({middle.x(), first.y() - 1.0}, {0, -1}), inked({middle.x(), first.y() + 0.0}, {0, 1}));
    strokeAt(inked({last.x() + 1.0, middle.y()}, {1, 0}), inked({last.x() + 0.0, middle.y()}, {-1, 0}));
    strokeAt(inked({middle.x(), last.y() + 1.0}, {0, 1}), inked({middle.x(), last.y() + 0.0}, {0, -1}));
}

TEST_P(DrawsPictures, AsAPlaceholderOfTwoStrengths) {
    const qreal s = scale();
    // The stroke, from 0.75 before the edge to 0.75 after it, begins with a pixel here.
    const Annotation annotation = shape(Kind::image, QPointF(50.75, 40.75) / s, QPointF(130.75, 100.75) / s);
    const QImage drawing = drawn(annotation, s);
    EXPECT_TRUE(isFilled(drawing, QRect(53, 43, 76, 56), blended(black, 0.12, white)));
    const QRgb quarterFilled = blended(black, 0.25 * 0.12, white);
    EXPECT_TRUE(isFilled(drawing, QRect(50, 43, 1, 56), blended(black, 0.9, quarterFilled), 2));
    EXPECT_TRUE(isFilled(drawing, QRect(53, 40, 76, 1), blended(black, 0.9, quarterFilled), 2));
}

TEST_P(DrawsPictures, AndNoneThatIsNotBiggerThanOne) {
    const qreal s = scale();
    for (const bool hasPicture : {false, true}) {
        for (const QSizeF& size :
             {QSizeF(1, 50), QSizeF(50, 1), QSizeF(0, 0), QSizeF(0.5, 0.5), QSizeF(-1, 50), QSizeF(0, 50)}) {
            Annotation annotation = shape(Kind::image, {50, 40}, {});
            // It is the size in the drawing that counts.
            annotation.end = annotation.start + QPointF(size.width(), size.height()) / s;
            annotation.label = u"label"_s;
            if (hasPicture)
                annotation.image = fourColours({8, 6});
            EXPECT_TRUE(inkBounds(drawn(annotation, s)).isEmpty()) << size.width() << "x" << size.height();
        }
        Annotation annotation = shape(Kind::image, {50, 40}, QPointF(50, 40) + QPointF(1.25, 1.25) / s);
        if (hasPicture)
            annotation.image = fourColours({8, 6});
        EXPECT_FALSE(inkBounds(drawn(annotation, s)).isEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(AnnotationRenderer, DrawsPictures, testing::ValuesIn(displayScales), nameOfScale);

TEST(AnnotationPictures, PlaceholderIsNotTurned) {
    Annotation annotation = shape(Kind::image, {50, 40}, {130, 100});
    const QImage upright = drawn(annotation, 1);
    annotation.rotation = 0.7;
    EXPECT_EQ(drawn(annotation, 1), upright);
}

TEST(AnnotationPictures, OtherKindsAreNotTurned) {
    for (const Kind kind : allKinds) {
        if (kind == Kind::image)
            continue;
        Annotation annotation = shape(kind, {50, 40}, {130, 100});
        annotation.text = u"words"_s;
        const QImage upright = drawn(annotation, 1);
        annotation.rotation = 0.7;
        EXPECT_EQ(drawn(annotation, 1), upright) << rawValue(kind).data();
    }
}

TEST(AnnotationPictures, HaveTheirProportionsWhateverTheirPixelsMeasure) {
    Annotation annotation = shape(Kind::image, {50, 40}, {130, 100});
    annotation.image = fourColours({80, 20});
    annotation.image.setDevicePixelRatio(2);
    expectFourColours(drawn(annotation, 1), QRectF(50, 60, 80, 20), 0);
}

TEST(AnnotationPictures, CountAllTheirPixelsWhenShrunk) {
    QImage checkered(800, 600, QImage::Format_RGB32);
    for (int y = 0; y < checkered.height(); ++y) {
        for (int x = 0; x < checkered.width(); ++x)
            checkered.setPixel(x, y, (x / 5 + y / 5) % 2 == 0 ? black : white);
    }
    Annotation image = shape(Kind::image, {20, 20}, {100, 80});
    image.image = checkered;
    const QImage picture = drawn(image, 1);
    for (int x = 25; x < 95; ++x)
        EXPECT_NEAR(qGray(picture.pixel(x, 50)), 127, 30) << x;
}

TEST(AnnotationPictures, HaveAllTheirPixelsOnADisplayOfManyPixelsToThePoint) {
    QImage striped(160, 120, QImage::Format_RGB32);
    for (int y = 0; y < striped.height(); ++y) {
        for (int x = 0; x < striped.width(); ++x)
            striped.setPixel(x, y, x / 2 % 2 == 0 ? black : amber);
    }
    Annotation image = shape(Kind::image, {10, 10}, {50, 40});
    image.image = striped;
    QImage picture = ground({400, 400});
    picture.setDevicePixelRatio(4);
    picture = drawn(image, picture, mapAt(1), 1);
    EXPECT_EQ(picture.copy(40, 40, 160, 120).convertToFormat(striped.format()).pixel(0, 0), black);
    for (int x = 0; x < striped.width(); ++x)
        EXPECT_EQ(picture.pixel(40 + x, 100), striped.pixel(x, 60)) << x;
}

TEST(AnnotationPictures, MayBeOnePixelOrMany) {
    Annotation annotation = shape(Kind::image, {50, 40}, {130, 100});
    annotation.image = ground({1, 1}, red);
    EXPECT_TRUE(isFilled(drawn(annotation, 1), QRect(60, 40, 60, 60), red));
    annotation.image = fourColours({3000, 1});
    EXPECT_FALSE(inkBounds(drawn(annotation, 1)).isEmpty());
    annotation.image = fourColours({1600, 1200});
    expectFourColours(drawn(annotation, 1), QRectF(50, 40, 80, 60), 0);
}

} // namespace orvane::test
