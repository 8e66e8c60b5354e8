#include "OrvaneCore/marking/AnnotationRenderer.h"

#include "tests/unit/marking/Drawings.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <numbers>

namespace orvane::test {

namespace {

constexpr qreal halfOpening = std::numbers::pi / 7;

class DrawsShapes : public AtScale {};

/// What a stroked shape looks like on the lines through its middle.
void expectStrokedEdges(const QImage& picture, const QRectF& rect, qreal width) {
    const QPointF middle = rect.center();
    const qreal half = width / 2;
    const qreal around = width + 3;
    EXPECT_TRUE(
        isSpan(spanInRow(picture, middle.y(), rect.left() - around, rect.left() + around, white, black),
               rect.left() - half, rect.left() + half));
    EXPECT_TRUE(
        isSpan(spanInRow(picture, middle.y(), rect.right() - around, rect.right() + around, white, black),
               rect.right() - half, rect.right() + half));
    EXPECT_TRUE(
        isSpan(spanInColumn(picture, middle.x(), rect.top() - around, rect.top() + around, white, black),
               rect.top() - half, rect.top() + half));
    EXPECT_TRUE(isSpan(
        spanInColumn(picture, middle.x(), rect.bottom() - around, rect.bottom() + around, white, black),
        rect.bottom() - half, rect.bottom() + half));
    EXPECT_EQ(inkBounds(picture), rect.adjusted(-half, -half, half, half).toAlignedRect());
}

/// A point given by how far it lies behind the tip of an arrow and how far to its right.
QPointF fromTip(const QPointF& tip, qreal angle, qreal back, qreal aside) {
    return tip - back * QPointF(std::cos(angle), std::sin(angle)) +
           aside * QPointF(-std::sin(angle), std::cos(angle));
}

} // namespace

TEST_P(DrawsShapes, BoxIsAnOutlineOfTheStrokeWidth) {
    const qreal s = scale();
    const QRectF rect(40 * s, 30 * s, 120 * s, 80 * s);
    for (const qreal width : {1.0, 3.0, 6.0, 11.0}) {
        const QImage picture = drawn(shape(Kind::box, {40, 30}, {160, 110}, width), s);
        expectStrokedEdges(picture, rect, width * s);
        const qreal half = width * s / 2;
        EXPECT_TRUE(isFilled(picture, pixelsInside(rect.adjusted(half, half, -half, -half)), white));
        if (half < 1)
            continue;
        // The corners are not cut off.
        const QRect outer = pixelsInside(rect.adjusted(-half, -half, half, half));
        EXPECT_TRUE(isColor(picture, outer.topLeft(), black)) << width;
        EXPECT_TRUE(isColor(picture, outer.bottomRight(), black)) << width;
    }
}

TEST_P(DrawsShapes, EllipseIsAnOutlineOfTheStrokeWidth) {
    const qreal s = scale();
    const QRectF rect(40 * s, 30 * s, 120 * s, 80 * s);
    for (const qreal width : {3.0, 6.0, 11.0}) {
        const QImage picture = drawn(shape(Kind::ellipse, {40, 30}, {160, 110}, width), s);
        // The pixels of a row see the curve bend away a little.
        const auto isEdge = [&](const Span& span, qreal middle) {
            return isSpan(span, middle - width * s / 2, middle + width * s / 2, 0.1);
        };
        EXPECT_TRUE(isEdge(spanInRow(picture, 70 * s, 0, 100 * s, white, black), rect.left()));
        EXPECT_TRUE(isEdge(spanInRow(picture, 70 * s, 100 * s, 199 * s, white, black), rect.right()));
        EXPECT_TRUE(isEdge(spanInColumn(picture, 100 * s, 0, 70 * s, white, black), rect.top()));
        EXPECT_TRUE(isEdge(spanInColumn(picture, 100 * s, 70 * s, 149 * s, white, black), rect.bottom()));
        for (const qreal angle : {0.5, 0.9, 2.2, 4.0, 5.5}) {
            const QPointF direction(std::cos(angle), std::sin(angle));
            const auto at = [&](qreal part) {
                return rect.center() +
                       part * QPointF(direction.x() * rect.width() / 2, direction.y() * rect.height() / 2);
            };
            EXPECT_TRUE(isColor(picture, at(1), black)) << angle;
            EXPECT_TRUE(isColor(picture, at(0.8), white)) << angle;
            EXPECT_TRUE(isColor(picture, at(1.2), white)) << angle;
        }
        EXPECT_TRUE(isColor(picture, rect.center(), white));
    }
}

TEST_P(DrawsShapes, OutlinesHaveNothingInThem) {
    const qreal s = scale();
    const QImage box = drawn(shape(Kind::box, {40, 30}, {160, 110}, 4), s, {200, 150}, amber);
    EXPECT_TRUE(isFilled(box, pixelsInside({42 * s, 32 * s, 116 * s, 76 * s}), amber));
    const QImage ellipse = drawn(shape(Kind::ellipse, {40, 30}, {160, 110}, 4), s, {200, 150}, amber);
    EXPECT_TRUE(isFilled(ellipse, pixelsInside({65 * s, 50 * s, 70 * s, 40 * s}), amber));
}

TEST_P(DrawsShapes, HighlightIsATranslucentAreaWithoutOutline) {
    const qreal s = scale();
    const QRectF rect(40 * s, 30 * s, 120 * s, 80 * s);
    for (const QRgb under : {white, black, qRgb(90, 160, 30)}) {
        Annotation highlight = shape(Kind::highlight, {40, 30}, {160, 110});
        highlight.color = QColor(amber);
        const QImage picture = drawn(highlight, s, {200, 150}, under);
        EXPECT_EQ(inkBounds(picture, under), rect.toRect());
        EXPECT_TRUE(isFilled(picture, rect.toRect(), blended(amber, 0.35, under)));

        highlight.strokeWidth = 25;
        EXPECT_EQ(drawn(highlight, s, {200, 150}, under), picture);
        highlight.color.setAlpha(40);
        EXPECT_EQ(drawn(highlight, s, {200, 150}, under), picture) << "it has an alpha of its own";
    }
}

TEST_P(DrawsShapes, TranslucentShapesHaveNoSeams) {
    const qreal s = scale();
    constexpr QRgb green = 0xFF2F6B4A;
    const QImage under = ground((QSizeF(200, 150) * s).toSize(), green);
    // At places between pixels, where every row has soft ends.
    for (const qreal shift : {0.0, 0.25, 0.4, 0.5, 0.75}) {
        Annotation highlight =
            shape(Kind::highlight, QPointF(20, 10) + QPointF(shift, shift), {170.3, 140.6});
        highlight.color = QColor(amber);
        QImage expected = under;
        QPainter painter(&expected);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor translucent = highlight.color;
        translucent.setAlphaF(0.35F);
        painter.fillRect(QRectF(highlight.start * s, highlight.end * s), translucent);
        painter.end();
        EXPECT_EQ(drawn(highlight, s, {200, 150}, green), expected) << shift;
    }
}

TEST_P(DrawsShapes, TranslucentShapesHaveOneColourOnATurnedPainter) {
    const qreal s = scale();
    Annotation highlight = shape(Kind::highlight, {-60, -60}, {60, 60});
    highlight.color = QColor(amber);
    QImage picture = ground((QSizeF(200, 200) * s).toSize());
    QPainter painter(&picture);
    painter.translate(100 * s, 100 * s);
    painter.rotate(30);
    annotation_renderer::draw(painter, highlight, mapAt(s), s);
    painter.end();
    EXPECT_TRUE(
        isFilled(picture, pixelsInside({60 * s, 60 * s, 80 * s, 80 * s}), blended(amber, 0.35, white)));
}

TEST_P(DrawsShapes, TranslucentShapesStayInTheClipOfTheirPainter) {
    const qreal s = scale();
    Annotation highlight = shape(Kind::highlight, {20.4, 10.3}, {170.3, 140.6});
    highlight.label = QStringLiteral("a note");
    const QRegion clip = QRegion(30, 5, 60, 40) + QRegion(70, 60, 50, 61);
    const QImage whole = drawn(highlight, s);
    QImage picture = ground((QSizeF(200, 150) * s).toSize(), white);
    QImage expected = picture;
    QPainter painter(&picture);
    painter.setClipRegion(clip);
    annotation_renderer::draw(painter, highlight, mapAt(s), s);
    EXPECT_EQ(painter.clipRegion(), clip);
    painter.end();
    for (const QRect& rect : clip)
        QPainter(&expected).drawImage(rect.topLeft(), whole.copy(rect));
    EXPECT_EQ(picture, expected);
}

TEST_P(DrawsShapes, NoStrokeIsThinnerThanAUnitOfTheDrawing) {
    const qreal s = scale();
    const QRectF rect(40 * s, 30 * s, 120 * s, 80 * s);
    for (const qreal width : {0.0, -5.0, 0.1, 0.5, notANumber})
        expectStrokedEdges(drawn(shape(Kind::box, {40, 30}, {160, 110}, width), s), rect, 1);
    EXPECT_EQ(drawn(shape(Kind::ellipse, {40, 30}, {160, 110}, 0), s),
              drawn(shape(Kind::ellipse, {40, 30}, {160, 110}, 1 / s), s));
    const QImage arrow = drawn(shape(Kind::arrow, {40, 60}, {160, 60}, 0), s);
    EXPECT_NEAR(spanInColumn(arrow, 80 * s, 0, 100 * s, white, black).length(), 1, 0.06);
}

TEST_P(DrawsShapes, ArrowHeadGrowsWithTheLineAndHasAFloorInUnitsOfTheDrawing) {
    const qreal s = scale();
    const QPointF tip(150 * s, 70 * s);
    const auto headOf = [s](qreal width) { return std::max(3.5 * width * s, 12.0); };
    for (const qreal width : {1.0, 2.0, 3.0, 6.0, 11.0}) {
        const qreal head = headOf(width);
        const QImage picture = drawn(shape(Kind::arrow, {30, 70}, {150, 70}, width), s);

        const Span shaft = spanInColumn(picture, 60 * s, 0, 149 * s, white, black);
        EXPECT_TRUE(isSpan(shaft, tip.y() - width * s / 2, tip.y() + width * s / 2));

        // The triangle ends where it is highest, and opens evenly until there.
        const QRect ink = inkBounds(picture, white, 8);
        EXPECT_NEAR(ink.top(), tip.y() - head * std::sin(halfOpening), 1) << width;
        EXPECT_NEAR(ink.bottom() + 1, tip.y() + head * std::sin(halfOpening), 1) << width;
        EXPECT_NEAR(ink.right() + 1, tip.x(), 1) << width;
        for (const qreal part : {0.3, 0.5, 0.7}) {
            const qreal x = std::floor(tip.x() - part * head) + 0.5;
            const qreal half = (tip.x() - x) * std::tan(halfOpening);
            if (half < width * s / 2)
                continue;
            EXPECT_TRUE(isSpan(spanInColumn(picture, x, 0, 149 * s, white, black), tip.y() - half,
                               tip.y() + half, 0.1))
                << width << " at " << part;
        }
        // Beside the shaft only the head is left.
        const qreal y = std::floor(tip.y() - head * std::sin(halfOpening) * 0.8) + 0.5;
        const qreal aside = tip.y() - y;
        ASSERT_GT(aside - 0.5, width * s / 2);
        EXPECT_TRUE(isSpan(spanInRow(picture, y, 0, 199 * s, white, black),
                           tip.x() - head * std::cos(halfOpening), tip.x() - aside / std::tan(halfOpening),
                           0.2))
            << width;
    }
}

TEST_P(DrawsShapes, ArrowPointsInEveryDirection) {
    const qreal s = scale();
    const QPointF start(100, 75);
    const qreal width = 6;
    const qreal head = 3.5 * width * s;
    for (int i = 0; i < 16; ++i) {
        const qreal angle = i * std::numbers::pi / 8 + 0.05;
        const QPointF end = start + 60 * QPointF(std::cos(angle), std::sin(angle));
        const QImage picture = drawn(shape(Kind::arrow, start, end, width), s);
        for (const qreal part : {0.3, 0.5, 0.7, 0.85}) {
            const qreal half = part * head * std::tan(halfOpening);
            for (const qreal side : {-1.0, 1.0}) {
                EXPECT_TRUE(isColor(picture,
                                    fromTip(end * s, angle, part * head, side * (half - std::numbers::sqrt2)),
                                    black))
                    << angle << " " << part;
                EXPECT_TRUE(isColor(picture,
                                    fromTip(end * s, angle, part * head, side * (half + std::numbers::sqrt2)),
                                    white))
                    << angle << " " << part;
            }
        }
        const qreal base = head * std::cos(halfOpening);
        const qreal besideShaft = width * s / 2 + std::numbers::sqrt2;
        for (const qreal side : {-1.0, 1.0}) {
            EXPECT_TRUE(isColor(
                picture, fromTip(end * s, angle, base + std::numbers::sqrt2, side * besideShaft), white))
                << angle;
        }
        EXPECT_TRUE(isColor(picture, fromTip(end * s, angle, 1.5 * head, 0), black)) << angle;
        EXPECT_TRUE(isColor(picture, fromTip(end * s, angle, -std::numbers::sqrt2, 0), white)) << angle;
    }
}

TEST_P(DrawsShapes, ArrowShaftStopsShortOfTheTipWithRoundCaps) {
    const qreal s = scale();
    const qreal width = 10;
    const qreal head = 3.5 * width * s;
    const QPointF tip(160 * s, 70 * s);
    Annotation arrow = shape(Kind::arrow, {30, 70}, {160, 70}, width);
    // Where a translucent shaft and its head overlap it is darker.
    arrow.color.setAlphaF(0.5F);
    const QImage picture = drawn(arrow, s);
    const QRgb once = blended(black, 0.5, white);
    const QRgb twice = blended(black, 0.5, once);

    const QRectF overlap(QPointF(tip.x() - head * std::cos(halfOpening), tip.y() - 1),
                         QPointF(tip.x() - 0.8 * head + width * s / 2, tip.y() + 1));
    EXPECT_TRUE(isFilled(picture, pixelsInside(overlap.adjusted(0, 0, -0.5, 0)), twice, 2));
    EXPECT_TRUE(isFilled(picture, pixelsInside({overlap.right(), tip.y() - 1, head / 2, 2}), once, 2));
    // The cap is half a circle around the end of the shaft, which a square one would stand out of.
    const QPointF shaftEnd(tip.x() - 0.8 * head, tip.y());
    const qreal corner = width * s / 2 - 0.75;
    EXPECT_TRUE(isColor(picture, shaftEnd + QPointF(corner, corner), once, 2));
    EXPECT_TRUE(isColor(picture, shaftEnd + QPointF(-1, corner), twice, 2));

    // So does the tail begin.
    EXPECT_NEAR(inkBounds(picture, white, 8).left(), 30 * s - width * s / 2, 1);
    EXPECT_TRUE(isColor(picture, QPointF(30 * s - corner, 70 * s - corner), white));
    EXPECT_TRUE(isColor(picture, QPointF(30 * s - corner + 1, 70 * s), once, 2));
}

TEST_P(DrawsShapes, ArrowWithoutLengthPointsRight) {
    const qreal s = scale();
    const qreal head = 3.5 * 6 * s;
    const QPointF tip(100 * s, 70 * s);
    Annotation arrow = shape(Kind::arrow, {100, 70}, {100, 70}, 6);
    arrow.color.setAlphaF(0.5F);
    const QImage picture = drawn(arrow, s);
    const QRgb once = blended(black, 0.5, white);
    const QRgb twice = blended(black, 0.5, once);

    const QRect ink = inkBounds(picture, white, 8);
    EXPECT_NEAR(ink.top(), tip.y() - head * std::sin(halfOpening), 1);
    EXPECT_NEAR(ink.bottom() + 1, tip.y() + head * std::sin(halfOpening), 1);
    // The shaft runs backwards from the tip to 0.8 heads, and its caps show on both sides of the head.
    EXPECT_NEAR(ink.left(), tip.x() - 0.8 * head - 3 * s, 1);
    EXPECT_NEAR(ink.right() + 1, tip.x() + 3 * s, 1);
    EXPECT_TRUE(isColor(picture, tip - QPointF(0.5 * head, 0), twice, 2));
    EXPECT_TRUE(isColor(picture, tip - QPointF(0.8 * head, 0), twice, 2));
}

TEST_P(DrawsShapes, ArrowShowsWhatIsOnThePictureOfItsHeadAndLine) {
    const qreal s = scale();
    // The tip is beyond the right edge, and the middle of the line above the upper one.
    const QImage beyond = drawn(shape(Kind::arrow, {30, 70}, {210, 70}, 11), s);
    const qreal behindTip = 0.7 * 3.5 * 11;
    const qreal aside = behindTip * std::tan(halfOpening) - 3;
    EXPECT_TRUE(isColor(beyond, QPointF(210 - behindTip, 70 - aside) * s, black));
    EXPECT_TRUE(isColor(beyond, QPointF(210 - behindTip, 70 + aside) * s, black));
    EXPECT_TRUE(isColor(beyond, QPointF(198, 70) * s, black));
    const QImage above = drawn(shape(Kind::arrow, {30, -3}, {150, -3}, 11), s);
    EXPECT_TRUE(isColor(above, QPointF(60, 1) * s, black));
    EXPECT_TRUE(isColor(above, QPointF(150 - behindTip, 6) * s, black));
}

TEST_P(DrawsShapes, MapsPointsAndSizesApart) {
    const qreal s = scale();
    const PointMap map{.origin = {1000, -500}, .scaleX = 1.25, .scaleY = 0.75};
    const QImage picture = drawn(shape(Kind::box, {1040, -460}, {1120, -380}, 4), ground({200, 150}), map, s);
    expectStrokedEdges(picture, QRectF(50, 30, 100, 60), 4 * s);
    const QImage area = drawn(shape(Kind::highlight, {1040, -460}, {1120, -380}), ground({200, 150}), map, s);
    EXPECT_EQ(inkBounds(area), QRect(50, 30, 100, 60));
    // The head has its proportions in the drawing.
    const QImage arrow = drawn(shape(Kind::arrow, {1040, -460}, {1120, -380}, 6), ground({200, 150}), map, s);
    const qreal angle = std::atan2(60, 100);
    const qreal side = 0.7 * 21 * s * std::tan(halfOpening) - std::numbers::sqrt2;
    EXPECT_TRUE(isColor(arrow, fromTip({150, 90}, angle, 0.7 * 21 * s, side), black));
    EXPECT_TRUE(isColor(arrow, fromTip({150, 90}, angle, 0.7 * 21 * s, -side), black));
    EXPECT_TRUE(isColor(arrow, fromTip({150, 90}, angle, 0.7 * 21 * s, side + 3), white));
}

TEST_P(DrawsShapes, LooksTheSameWhicheverCornerItBeganAt) {
    for (const Kind kind : {Kind::box, Kind::ellipse, Kind::highlight, Kind::image}) {
        Annotation annotation = shape(kind, {40, 50}, {160, 110});
        annotation.label = QStringLiteral("label");
        const QImage picture = drawn(annotation, scale());
        for (const auto& [start, end] :
             {std::pair(QPointF(160, 110), QPointF(40, 50)), std::pair(QPointF(40, 110), QPointF(160, 50)),
              std::pair(QPointF(160, 50), QPointF(40, 110))}) {
            annotation.start = start;
            annotation.end = end;
            EXPECT_EQ(drawn(annotation, scale()), picture) << rawValue(kind).data();
        }
    }
}

TEST_P(DrawsShapes, FlatOutlinesAreLinesOfTheirLength) {
    const qreal s = scale();
    for (const Kind kind : {Kind::box, Kind::ellipse}) {
        for (const qreal width : {3.0, 11.0}) {
            const qreal half = width * s / 2;
            for (const qreal thickness : {0.0, 0.01}) {
                const QRect level = inkBounds(drawn(shape(kind, {60, 70}, {140, 70 + thickness}, width), s));
                EXPECT_GE(level.left(), 60 * s - half - 1) << width;
                EXPECT_LE(level.right(), 140 * s + half + 1) << width;
                EXPECT_GE(level.width(), 80 * s - 1) << width;
                EXPECT_NEAR(level.height(), 2 * half, 2) << width;
                const QRect upright =
                    inkBounds(drawn(shape(kind, {100, 40}, {100 + thickness, 110}, width), s));
                EXPECT_GE(upright.top(), 40 * s - half - 1) << width;
                EXPECT_LE(upright.bottom(), 110 * s + half + 1) << width;
                EXPECT_GE(upright.height(), 70 * s - 1) << width;
                EXPECT_NEAR(upright.width(), 2 * half, 2) << width;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AnnotationRenderer, DrawsShapes, testing::ValuesIn(displayScales), nameOfScale);

TEST(AnnotationRenderer, DrawsWhatWasRemovedAllTheSame) {
    for (const Kind kind : allKinds) {
        Annotation annotation = shape(kind, {40, 50}, {160, 110});
        annotation.text = annotation.label = QStringLiteral("Words");
        const QImage picture = drawn(annotation, 1);
        EXPECT_NE(picture, ground(picture.size()));
        annotation.removed = true;
        annotation.role = Annotation::Role::agent;
        annotation.regionIndex = 3;
        EXPECT_EQ(drawn(annotation, 1), picture) << rawValue(kind).data();
    }
}

TEST(AnnotationRenderer, LeavesThePainterAsItWas) {
    for (const Kind kind : allKinds) {
        for (const qreal rotation : {0.0, 0.7}) {
            Annotation annotation = shape(kind, {40, 50}, {160, 110});
            annotation.text = annotation.label = QStringLiteral("Words");
            annotation.image = ground({8, 6}, amber);
            annotation.rotation = rotation;
            QImage picture = ground({300, 200});
            QPainter painter(&picture);
            setUnusual(painter);
            const PainterSettings before(painter);
            annotation_renderer::draw(painter, annotation, mapAt(1), 1);
            EXPECT_EQ(PainterSettings(painter), before) << rawValue(kind).data();
            annotation_renderer::drawSelectionHandles(painter, annotation, mapAt(1), 1);
            EXPECT_EQ(PainterSettings(painter), before) << rawValue(kind).data();
            EXPECT_FALSE(inkBounds(picture).isEmpty()) << rawValue(kind).data();
        }
    }
}

TEST(AnnotationRenderer, DrawsTheSameWhateverThePainterWasSetTo) {
    for (const Kind kind : allKinds) {
        Annotation annotation = shape(kind, {40, 50}, {160, 110});
        annotation.color = QColor(amber);
        annotation.text = annotation.label = QStringLiteral("Words");
        const QImage expected = drawn(annotation, 1);
        QImage picture = ground(expected.size());
        QPainter painter(&picture);
        setUnusual(painter);
        // Where and how strongly it paints is the caller's choice.
        painter.resetTransform();
        painter.setOpacity(1);
        annotation_renderer::draw(painter, annotation, mapAt(1), 1);
        painter.end();
        EXPECT_EQ(picture, expected) << rawValue(kind).data();
    }
}

TEST(AnnotationRenderer, LooksAnotherAfterAChangeOfAnythingThatShows) {
    using Change = std::function<void(Annotation&)>;
    const std::array<Change, 11> visible{
        [](Annotation& changed) { changed.kind = Kind::image; },
        [](Annotation& changed) { changed.start.rx() += 1e-9; },
        [](Annotation& changed) { changed.start.ry() += 1e-9; },
        [](Annotation& changed) { changed.end.rx() += 1e-9; },
        [](Annotation& changed) { changed.end.ry() += 1e-9; },
        [](Annotation& changed) { changed.text = QStringLiteral("Others"); },
        [](Annotation& changed) { changed.label = QStringLiteral("Another"); },
        [](Annotation& changed) { changed.strokeWidth = 11; },
        [](Annotation& changed) { changed.rotation = 0.7; },
        [](Annotation& changed) { changed.color = QColor(amber); },
        [](Annotation& changed) {
            changed.image = ground({8, 6}, blue);
        },
    };
    Annotation annotation = shape(Kind::box, {40, 50}, {160, 110});
    annotation.text = QStringLiteral("Words");
    annotation.label = QStringLiteral("Label");
    annotation.image = ground({8, 6}, amber);
    for (std::size_t i = 0; i < visible.size(); ++i) {
        Annotation changed = annotation;
        EXPECT_TRUE(annotation_renderer::looksSame(annotation, changed));
        visible.at(i)(changed);
        EXPECT_FALSE(annotation_renderer::looksSame(annotation, changed)) << "change " << i;
        EXPECT_FALSE(annotation_renderer::looksSame(changed, annotation)) << "change " << i;
    }
    Annotation unseen = annotation;
    unseen.id = QUuid::createUuid();
    unseen.role = Annotation::Role::agent;
    unseen.removed = true;
    unseen.regionIndex = 3;
    unseen.displayId = 4;
    EXPECT_TRUE(annotation_renderer::looksSame(annotation, unseen));
}

TEST(AnnotationRenderer, PrefersDarkTextOnLightColours) {
    EXPECT_TRUE(annotation_renderer::prefersDarkText(QColor(white)));
    EXPECT_FALSE(annotation_renderer::prefersDarkText(QColor(black)));
    EXPECT_TRUE(annotation_renderer::prefersDarkText(QColor(amber)));
    EXPECT_FALSE(annotation_renderer::prefersDarkText(QColor(blue)));
    // The limit is 0.6, 153 of 255, and each channel has a weight of its own.
    EXPECT_FALSE(annotation_renderer::prefersDarkText(QColor(153, 153, 153)));
    EXPECT_TRUE(annotation_renderer::prefersDarkText(QColor(154, 154, 154)));
    EXPECT_FALSE(annotation_renderer::prefersDarkText(QColor(11, 255, 0)));
    EXPECT_TRUE(annotation_renderer::prefersDarkText(QColor(12, 255, 0)));
    EXPECT_FALSE(annotation_renderer::prefersDarkText(QColor(0, 210, 255)));
    EXPECT_TRUE(annotation_renderer::prefersDarkText(QColor(0, 212, 255)));
    EXPECT_FALSE(annotation_renderer::prefersDarkText(QColor(255, 130, 0)));
    EXPECT_TRUE(annotation_renderer::prefersDarkText(QColor(255, 131, 0)));
}

TEST(AnnotationRenderer, PrefersDarkTextByTheColourAloneInAnyModel) {
    QColor clear(amber);
    clear.setAlpha(0);
    EXPECT_TRUE(annotation_renderer::prefersDarkText(clear));
    EXPECT_TRUE(annotation_renderer::prefersDarkText(QColor::fromHsv(40, 40, 250)));
    EXPECT_FALSE(annotation_renderer::prefersDarkText(QColor::fromHsl(240, 255, 127)));
    EXPECT_TRUE(annotation_renderer::prefersDarkText(QColor::fromCmykF(0, 0, 0.2F, 0)));
    EXPECT_FALSE(annotation_renderer::prefersDarkText(QColor()));
}

TEST(AnnotationRenderer, FitsAPictureIntoTheMiddleOfARectangle) {
    const QRectF rect(10, 20, 200, 100);
    EXPECT_EQ(annotation_renderer::aspectFit({50, 50}, rect), QRectF(60, 20, 100, 100));
    EXPECT_EQ(annotation_renderer::aspectFit({400, 100}, rect), QRectF(10, 45, 200, 50));
    EXPECT_EQ(annotation_renderer::aspectFit({20, 10}, rect), rect);
    EXPECT_EQ(annotation_renderer::aspectFit({1000, 4000}, rect), QRectF(97.5, 20, 25, 100));
}

TEST(AnnotationRenderer, FitsNothingWhereASideIsNotPositive) {
    const QRectF rect(10, 20, 200, 100);
    for (const QSizeF& size : {QSizeF(0, 5), QSizeF(5, 0), QSizeF(0, 0), QSizeF(-4, 5), QSizeF(5, -4)})
        EXPECT_EQ(annotation_renderer::aspectFit(size, rect), rect);
    for (const QRectF& degenerate :
         {QRectF(1, 2, 0, 9), QRectF(1, 2, 9, 0), QRectF(1, 2, -9, 9), QRectF(1, 2, 9, -9), QRectF()})
        EXPECT_EQ(annotation_renderer::aspectFit({5, 7}, degenerate), degenerate);
}

TEST(AnnotationRenderer, HasNoBoundsWithoutStrokes) {
    EXPECT_EQ(annotation_renderer::strokesBounds({}), std::nullopt);
    Annotation removed = shape(Kind::box, {1, 2}, {3, 4});
    removed.removed = true;
    EXPECT_EQ(annotation_renderer::strokesBounds({removed, removed}), std::nullopt);
}

TEST(AnnotationRenderer, BoundsAllStrokesThatAreNotRemoved) {
    Annotation removed = shape(Kind::box, {-900, -900}, {900, 900});
    removed.removed = true;
    const Annotation box = shape(Kind::box, {50, 40}, {30, 60}, 20);
    const Annotation arrow = shape(Kind::arrow, {35, 45}, {70, 20});
    EXPECT_EQ(annotation_renderer::strokesBounds({box}), QRectF(30, 40, 20, 20));
    EXPECT_EQ(annotation_renderer::strokesBounds({removed, box, removed, arrow}), QRectF(30, 20, 40, 40));
}

TEST(AnnotationRenderer, LeavesOutOfTheBoundsWhatIsNotFinite) {
    const Annotation nowhere = shape(Kind::box, {std::nan(""), 40}, {30, 60});
    const Annotation endless = shape(Kind::box, {50, 40}, {std::numeric_limits<qreal>::infinity(), 60});
    const Annotation box = shape(Kind::box, {50, 40}, {30, 60});
    EXPECT_EQ(annotation_renderer::strokesBounds({nowhere, endless}), std::nullopt);
    EXPECT_EQ(annotation_renderer::strokesBounds({nowhere, box, endless}), QRectF(30, 40, 20, 20));
}

TEST(AnnotationRenderer, BoundsWhatHasNoWidthOrHeight) {
    const Annotation dot = textShape(QStringLiteral("counted by its points"), {100, 7});
    EXPECT_EQ(annotation_renderer::strokesBounds({dot}), QRectF(100, 7, 0, 0));
    const Annotation level = shape(Kind::arrow, {10, 50}, {20, 50});
    const Annotation upright = shape(Kind::arrow, {-5, 60}, {-5, 90});
    EXPECT_EQ(annotation_renderer::strokesBounds({level, dot}), QRectF(10, 7, 90, 43));
    EXPECT_EQ(annotation_renderer::strokesBounds({dot, level, upright}), QRectF(-5, 7, 105, 83));
    // That of the origin is one as well.
    EXPECT_EQ(annotation_renderer::strokesBounds({textShape({}, {0, 0}), level}), QRectF(0, 0, 20, 50));
}

} // namespace orvane::test
