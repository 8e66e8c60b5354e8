#include "OrvaneCore/marking/AnnotationRenderer.h"

#include "OrvaneCore/drawing/DrawnText.h"
#include "tests/unit/marking/Drawings.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

class DrawsPlates : public AtScale {};

/// Has a width and no ink, so that its plate is all there is to see.
const QString blank = u"          "_s;

/// A plate of that colour on white, with nothing in the way of the lines through its middle.
void expectPlate(const QImage& picture, const QRectF& plate, qreal radius, QRgb color) {
    const QRgb ink = blended(color, 0.95, white);
    EXPECT_TRUE(isFilled(picture, pixelsInside(plate.adjusted(radius, 0, -radius, 0)), ink));
    EXPECT_TRUE(isFilled(picture, pixelsInside(plate.adjusted(0, radius, 0, -radius)), ink));
    const QPointF middle = plate.center();
    EXPECT_TRUE(
        isSpan(spanInRow(picture, middle.y(), plate.left() - radius, plate.right() + radius - 1, white, ink),
               plate.left(), plate.right()));
    EXPECT_TRUE(isSpan(spanInColumn(picture, middle.x(), plate.top() - 3, plate.bottom() + 2, white, ink),
                       plate.top(), plate.bottom()));
    // The corners are quarters of circles.
    for (const QPointF& corner :
         {plate.topLeft(), plate.topRight(), plate.bottomLeft(), plate.bottomRight()}) {
        const QPointF inward(corner.x() < middle.x() ? radius : -radius,
                             corner.y() < middle.y() ? radius : -radius);
        const QPointF arcCenter = corner + inward;
        // However a pixel lies there, it is wholly on one side.
        const qreal pixel = 1.5 / std::hypot(inward.x(), inward.y());
        EXPECT_TRUE(isColor(picture, arcCenter - (M_SQRT1_2 - pixel) * inward, ink));
        EXPECT_TRUE(isColor(picture, arcCenter - (M_SQRT1_2 + pixel) * inward, white));
    }
}

/// How many pixels of an area are nearly of a colour.
int countOf(const QImage& picture, const QRect& area, QRgb color) {
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            count += colorDistance(picture.pixel(x, y), color) <= 24 ? 1 : 0;
    }
    return count;
}

QRectF tagOf(const QString& label, const QPointF& corner, qreal scale) {
    const qreal pad = 4 * scale;
    const QSizeF size = DrawnText(label, 12, QFont::DemiBold, scale).size() + QSizeF(2 * pad, 2 * pad);
    return {corner - QPointF(0, pad + size.height()), size};
}

} // namespace

TEST_P(DrawsPlates, TextStandsOnARoundedPlateAroundIt) {
    const qreal s = scale();
    const QImage picture = drawn(textShape(blank, {50, 40}, blue), s);
    const QSizeF size = annotation_renderer::textSize(textShape(blank, {}), s);
    ASSERT_GT(size.width(), 20 * s);
    const QRectF plate = QRectF(QPointF(50 * s, 40 * s), size).adjusted(-5 * s, -5 * s, 5 * s, 5 * s);
    expectPlate(picture, plate, 5 * s, blue);
}

TEST_P(DrawsPlates, TextBeginsAtTheTopLeftOfItself) {
    const qreal s = scale();
    // White on a black plate on black: only the letters can be seen.
    const QImage picture = drawn(textShape(u"HpH"_s, {50, 40}), s, {200, 150}, black);
    const QRectF text(QPointF(50 * s, 40 * s), annotation_renderer::textSize(textShape(u"HpH"_s, {}), s));
    const QRect ink = inkBounds(picture, black);
    EXPECT_TRUE(text.toAlignedRect().contains(ink));
    EXPECT_LT(ink.left() - text.left(), 3 * s);
    EXPECT_LT(text.right() - ink.right(), 4 * s);
    EXPECT_LT(ink.top() - text.top(), 6 * s);
    EXPECT_LT(text.bottom() - ink.bottom(), 4 * s);
    EXPECT_TRUE(isColor(picture, ink.center(), white) || countOf(picture, ink, white) > 10 * s);
}

TEST_P(DrawsPlates, TextIsOfTheFontAndSizeThatItIsMeasuredWith) {
    const qreal s = scale();
    QImage expected = ground((QSizeF(200, 150) * s).toSize(), black);
    QPainter painter(&expected);
    DrawnText(u"Agreed?"_s, 15, QFont::Bold, s).draw(painter, {50 * s, 40 * s}, QColor(white));
    painter.end();
    const QImage picture = drawn(textShape(u"Agreed?"_s, {50, 40}), s, {200, 150}, black);
    EXPECT_LE(difference(picture, expected, 1).largest, 1);
}

TEST_P(DrawsPlates, TextIsBlackOrWhiteByItsGround) {
    const qreal s = scale();
    const auto countInPlate = [s](QRgb plate, QRgb color) {
        const QImage picture = drawn(textShape(u"MMMM"_s, {50, 40}, plate), s);
        const QSizeF size = annotation_renderer::textSize(textShape(u"MMMM"_s, {}), s);
        return countOf(picture, pixelsInside(QRectF(QPointF(50 * s, 40 * s), size)), color);
    };
    EXPECT_GT(countInPlate(white, black), 40 * s * s);
    EXPECT_GT(countInPlate(amber, black), 40 * s * s);
    EXPECT_EQ(countInPlate(amber, white), 0);
    EXPECT_GT(countInPlate(black, white), 40 * s * s);
    EXPECT_GT(countInPlate(blue, white), 40 * s * s);
    EXPECT_EQ(countInPlate(blue, black), 0);
}

TEST_P(DrawsPlates, LabelStandsAboveTheTopLeftCornerOfItsShape) {
    const qreal s = scale();
    for (const Kind kind : allKinds) {
        if (kind == Kind::text)
            continue;
        Annotation annotation = shape(kind, {60, 80}, {140, 130}, 2);
        annotation.color = QColor(blue);
        annotation.label = blank;
        const QImage picture = drawn(annotation, s);
        const QRectF tag = tagOf(blank, {60 * s, 80 * s}, s);
        EXPECT_DOUBLE_EQ(tag.bottom(), 76 * s);
        SCOPED_TRACE(rawValue(kind).data());
        expectPlate(picture, tag, 4 * s, blue);
        // It takes nothing away from the shape.
        annotation.label.clear();
        const QRect below(0, static_cast<int>(76 * s) + 1, picture.width(),
                          picture.height() - static_cast<int>(76 * s) - 1);
        EXPECT_EQ(drawn(annotation, s).copy(below), picture.copy(below));
        EXPECT_TRUE(isFilled(drawn(annotation, s), QRect(0, 0, picture.width(), below.top() - 1), white));
    }
}

TEST_P(DrawsPlates, LabelIsInTheCornerThatIsOnTheScreen) {
    const qreal s = scale();
    Annotation arrow = shape(Kind::arrow, {140, 130}, {60, 80}, 2);
    arrow.color = QColor(blue);
    arrow.label = blank;
    expectPlate(drawn(arrow, s), tagOf(blank, {60 * s, 80 * s}, s), 4 * s, blue);
    arrow.start = {140, 80};
    arrow.end = {60, 130};
    expectPlate(drawn(arrow, s), tagOf(blank, {60 * s, 80 * s}, s), 4 * s, blue);
}

TEST_P(DrawsPlates, LabelOfAPictureIsNotTurnedWithIt) {
    const qreal s = scale();
    Annotation picture = shape(Kind::image, {60, 80}, {100, 120});
    picture.color = QColor(blue);
    picture.image = ground({10, 10}, amber);
    picture.label = blank;
    const QRect above(0, 0, static_cast<int>(200 * s), static_cast<int>(70 * s));
    const QImage upright = drawn(picture, s);
    expectPlate(upright, tagOf(blank, {60 * s, 80 * s}, s), 4 * s, blue);
    picture.rotation = 0.5;
    const QImage turned = drawn(picture, s);
    EXPECT_EQ(turned.copy(above), upright.copy(above));
    EXPECT_NE(turned, upright);
}

TEST_P(DrawsPlates, LabelIsInItsOwnSmallerFont) {
    const qreal s = scale();
    Annotation highlight = shape(Kind::highlight, {60, 80}, {140, 130});
    highlight.label = u"Agreed?"_s;
    const QRectF tag = tagOf(highlight.label, {60 * s, 80 * s}, s);
    QImage expected = ground((QSizeF(200, 80) * s).toSize(), black);
    QPainter painter(&expected);
    DrawnText(highlight.label, 12, QFont::DemiBold, s)
        .draw(painter, tag.topLeft() + QPointF(4 * s, 4 * s), QColor(white));
    painter.end();
    const QImage picture = drawn(highlight, s, {200, 80}, black);
    EXPECT_LE(difference(picture, expected, 1).largest, 1);
    EXPECT_GT(countOf(picture, pixelsInside(tag), white), 10 * s);
}

TEST_P(DrawsPlates, LabelIsBlackOrWhiteByItsGround) {
    const qreal s = scale();
    Annotation annotation = shape(Kind::highlight, {60, 80}, {140, 130});
    annotation.label = u"MMMM"_s;
    const QRect tag = pixelsInside(tagOf(annotation.label, {60 * s, 80 * s}, s).adjusted(3, 3, -3, -3));
    annotation.color = QColor(blue);
    EXPECT_GT(countOf(drawn(annotation, s), tag, white), 30 * s * s);
    EXPECT_EQ(countOf(drawn(annotation, s), tag, black), 0);
    annotation.color = QColor(amber);
    EXPECT_GT(countOf(drawn(annotation, s), tag, black), 30 * s * s);
    EXPECT_EQ(countOf(drawn(annotation, s), tag, white), 0);
}

TEST_P(DrawsPlates, LabelFollowsTheMapOfAnUnevenDrawing) {
    const PointMap map{.origin = {1000, -500}, .scaleX = 1.25, .scaleY = 0.75};
    Annotation box = shape(Kind::box, {1040, -400}, {1120, -380}, 2);
    box.color = QColor(blue);
    box.label = blank;
    expectPlate(drawn(box, ground({300, 200}), map, scale()), tagOf(blank, {50, 75}, scale()), 4 * scale(),
                blue);
}

TEST_P(DrawsPlates, LabelIsKeptOnTheDisplay) {
    const qreal s = scale();
    const QString& label = blank;
    const QSizeF tag = tagOf(label, {}, s).size();
    const QRectF display = QRectF(10 * s, 10 * s, 180 * s, 130 * s);
    const auto pictureOf = [&](const Annotation& annotation) {
        QImage picture = ground((QSizeF(200, 150) * s).toSize());
        QPainter painter(&picture);
        annotation_renderer::draw(painter, annotation, mapAt(s), s, display);
        painter.end();
        return picture;
    };
    const auto boxAt = [&](const QRectF& rect) {
        Annotation box = shape(Kind::highlight, rect.topLeft(), rect.bottomRight());
        box.label = label;
        // The shape itself does not show.
        box.color = QColor(blue);
        return box;
    };
    // Where it fits it is where it always is.
    expectPlate(pictureOf(boxAt({60, 80, 0, 0})), tagOf(label, QPointF(60, 80) * s, s), 4 * s, blue);
    // At the top, at the right, and in the corner.
    expectPlate(pictureOf(boxAt({60, 12, 0, 0})), {QPointF(60 * s, display.top()), tag}, 4 * s, blue);
    expectPlate(pictureOf(boxAt({185, 80, 0, 0})),
                {QPointF(display.right() - tag.width(), tagOf(label, QPointF(0, 80 * s), s).top()), tag},
                4 * s, blue);
    expectPlate(pictureOf(boxAt({185, 12, 0, 0})),
                {QPointF(display.right() - tag.width(), display.top()), tag}, 4 * s, blue);
}

TEST_P(DrawsPlates, LabelThatIsWiderThanTheDisplayIsWrapped) {
    const qreal s = scale();
    const QRectF display = QRectF(0, 0, 200 * s, 150 * s);
    Annotation box = shape(Kind::highlight, {100, 120}, {100, 120});
    box.label = u"Some words that are far more than what has room in one line"_s;
    QImage picture = ground(display.size().toSize());
    QPainter painter(&picture);
    annotation_renderer::draw(painter, box, mapAt(s), s, display);
    painter.end();
    const QRectF tag = annotation_renderer::extent(box, mapAt(s), s, display, display)
                           .parts.at(0)
                           .adjusted(14 * s, 14 * s, -14 * s, -14 * s);
    EXPECT_GT(tag.height(), 2 * tagOf(u"x"_s, {}, s).height());
    EXPECT_TRUE(display.adjusted(-0.01, -0.01, 0.01, 0.01).contains(tag));
    EXPECT_NEAR(tag.bottom(), 116 * s, 0.01);
    // To its end: as much ink in the last line as in one of its words.
    const QRectF lastLine(tag.left(), tag.bottom() - tagOf(u"x"_s, {}, s).height() + 4 * s, tag.width(),
                          12 * s);
    EXPECT_GT(countOf(picture, lastLine.toAlignedRect(), white), 10 * s);
}

TEST_P(DrawsPlates, LabelWithoutSpacesFillsTheDisplayAndNoMore) {
    const qreal s = scale();
    const QRectF display = QRectF(0, 0, 200 * s, 150 * s);
    Annotation box = shape(Kind::highlight, {100, 120}, {100, 120});
    box.label = QString(150, u'i');
    const QRectF tag = annotation_renderer::extent(box, mapAt(s), s, display, display)
                           .parts.at(0)
                           .adjusted(14 * s, 14 * s, -14 * s, -14 * s);
    EXPECT_LE(tag.right(), display.right() + 0.01);
    EXPECT_GT(tag.width(), 190 * s);
}

INSTANTIATE_TEST_SUITE_P(AnnotationRenderer, DrawsPlates, testing::ValuesIn(displayScales), nameOfScale);

TEST(AnnotationPlates, EmptyTextDrawsNothing) {
    Annotation text = textShape({}, {50, 40});
    EXPECT_TRUE(inkBounds(drawn(text, 1)).isEmpty());
    text.label = u"label"_s;
    EXPECT_TRUE(inkBounds(drawn(text, 1)).isEmpty());
}

TEST(AnnotationPlates, TextShowsNoLabel) {
    Annotation text = textShape(u"words"_s, {50, 70});
    const QImage plain = drawn(text, 1);
    text.label = u"label"_s;
    EXPECT_EQ(drawn(text, 1), plain);
}

TEST(AnnotationPlates, TextGoesByItsStartAlone) {
    Annotation text = textShape(u"words"_s, {50, 70}, blue);
    const QImage plain = drawn(text, 1);
    text.end = {190, 20};
    text.strokeWidth = 30;
    text.rotation = 1;
    EXPECT_EQ(drawn(text, 1), plain);
}

TEST(AnnotationPlates, PlatesHaveTheirOwnAlpha) {
    Annotation text = textShape(blank, {50, 40}, blue);
    const QImage plain = drawn(text, 1);
    text.color.setAlpha(30);
    EXPECT_EQ(drawn(text, 1), plain);
}

TEST(AnnotationPlates, EmptyTextHasTheSizeOfAPlaceholder) {
    for (const qreal s : {1.0, 1.25, 2.0, 3.0}) {
        EXPECT_DOUBLE_EQ(annotation_renderer::textSize(textShape({}, {}), s).width(), 80 * s);
        EXPECT_DOUBLE_EQ(annotation_renderer::textSize(textShape({}, {}), s).height(), 20 * s);
    }
}

TEST(AnnotationPlates, TextSizeIsInProportionToTheScale) {
    for (const QString& text : {u"Hello"_s, u"two\nlines"_s, u" "_s, u"שלום"_s, u"i"_s}) {
        const QSizeF one = annotation_renderer::textSize(textShape(text, {}), 1);
        EXPECT_GT(one.height(), 15);
        for (const qreal s : {0.5, 1.25, 1.5, 2.0, 3.0}) {
            const QSizeF scaled = annotation_renderer::textSize(textShape(text, {}), s);
            EXPECT_DOUBLE_EQ(scaled.width(), s * one.width());
            EXPECT_DOUBLE_EQ(scaled.height(), s * one.height());
        }
    }
}

TEST(AnnotationPlates, TextSizeIsThatOfTheBoldFont) {
    const QSizeF size = annotation_renderer::textSize(textShape(u"Boldness"_s, {}), 2);
    EXPECT_EQ(size, DrawnText(u"Boldness"_s, 15, QFont::Bold, 2).size());
    EXPECT_GT(size.width(), DrawnText(u"Boldness"_s, 15, QFont::Normal, 2).size().width() + 5);
}

namespace {

/// What people write, and what they should not have.
const std::array<std::pair<const char*, QString>, 14> manyTexts{{
    {"latin", u"Agreed, Jörg? (fjÅQ)"_s},
    {"wide", u"WWWMMM@@@"_s},
    {"rightToLeft", u"שלום עולם"_s},
    {"arabic", u"السلام عليكم"_s},
    {"mixed", u"Button ולחצן (OK) עולם 42"_s},
    {"lines", u"one\nseveral words\nthree"_s},
    {"linesFromTheRight", u"שלום\nשלום עולם\nok"_s},
    {"emoji", u"ok \U0001F600\U0001F44D\U0001F3FD \U0001F468‍\U0001F469‍\U0001F467"_s},
    {"combining", u"e\u0301a\u0308o\u0302 A\u030A\u0301 n\u0323\u0303"_s},
    {"emptyLine", u"above\n\nbelow\n"_s},
    {"trailingSpaces", u"trailing    "_s},
    {"leadingSpaces", u"    leading"_s},
    {"chinese", u"一二三，測試テスト한글"_s},
    {"controls", u"tab\there\r\nnext\u2028line\u2029end"_s},
}};

class PlateFits : public testing::TestWithParam<std::pair<const char*, QString>> {};

/// Black plates with white letters on a black ground, so that all that shows is text. The least of grey is a
/// letter's edge.
constexpr int darkest = 2;

} // namespace

TEST_P(PlateFits, ItsText) {
    const QString& text = GetParam().second;
    for (const qreal s : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        const QSizeF size = annotation_renderer::textSize(textShape(text, {}), s);
        const QPointF start(30 * s, 30 * s);
        QImage picture = ground((size + QSizeF(60 * s, 60 * s)).toSize(), black);
        picture = drawn(textShape(text, {30, 30}), picture, mapAt(s), s);
        const QRectF plate = QRectF(start, size).adjusted(-5 * s, -5 * s, 5 * s, 5 * s);
        const QRect ink = inkBounds(picture, black, darkest);
        EXPECT_TRUE(pixelsInside(plate).contains(ink)) << "at " << s << ": " << ink.left() << " " << ink.top()
                                                       << " " << ink.right() << " " << ink.bottom();
        EXPECT_GT(ink.height(), 7 * s);
        // And no plate is much wider than what stands on it.
        if (text.trimmed() == text) {
            EXPECT_GT(ink.width(), size.width() * 0.8) << "at " << s;
        }
    }
}

TEST_P(PlateFits, ItsLabel) {
    for (const qreal s : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        Annotation highlight = shape(Kind::highlight, {30, 130}, {60, 150});
        highlight.label = GetParam().second;
        const QRectF tag = tagOf(highlight.label, {30 * s, 130 * s}, s);
        QImage picture = ground({static_cast<int>(tag.right() + 30 * s), static_cast<int>(160 * s)}, black);
        picture = drawn(highlight, picture, mapAt(s), s);
        EXPECT_TRUE(pixelsInside(tag).contains(inkBounds(picture, black, darkest))) << "at " << s;
        EXPECT_FALSE(inkBounds(picture, black, 100).isEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(AnnotationRenderer, PlateFits, testing::ValuesIn(manyTexts),
                         [](const auto& text) { return std::string(text.param.first); });

TEST(AnnotationPlates, FitTextsLongerThanAScreen) {
    const QString text = u"Never ending "_s.repeated(770) + u"stop. MMMM"_s;
    ASSERT_GT(text.size(), 10000);
    for (const qreal s : {1.0, 3.0}) {
        const QSizeF size = annotation_renderer::textSize(textShape(text, {}), s);
        EXPECT_GT(size.width(), 10000 * 4 * s);
        // At both ends of it.
        for (const qreal shift : {0.0, size.width() / s - 100}) {
            const PointMap map{.origin = {shift, 0}, .scaleX = s, .scaleY = s};
            const QImage picture =
                drawn(textShape(text, {30, 30}), ground((QSizeF(200, 100) * s).toSize(), black), map, s);
            const QRectF plate(QPointF((25 - shift) * s, 25 * s), size + QSizeF(10 * s, 10 * s));
            const QRect ink = inkBounds(picture, black, darkest);
            EXPECT_TRUE(pixelsInside(plate).contains(ink)) << shift;
            EXPECT_GT(ink.width(), 90 * s) << shift;
        }
    }
}

TEST(AnnotationPlates, FitLabelsLongerThanAScreen) {
    Annotation highlight = shape(Kind::highlight, {30, 60}, {60, 90});
    highlight.color = QColor(blue);
    highlight.label = u"x"_s.repeated(10000);
    const QRectF tag = tagOf(highlight.label, {30, 60}, 1);
    const QImage picture = drawn(highlight, 1);
    EXPECT_TRUE(isFilled(picture, QRect(40, 50, 160, 5), blended(blue, 0.95, white)));
    EXPECT_EQ(inkBounds(picture).right(), 199);
    const QImage end = drawn(highlight, ground({200, 150}), {.origin = {tag.right() - 100, 0}}, 1);
    EXPECT_EQ(inkBounds(end).right(), 99);
}

} // namespace orvane::test
