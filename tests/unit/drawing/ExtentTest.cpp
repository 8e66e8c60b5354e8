#include "OrvaneCore/drawing/Extent.h"

#include "OrvaneCore/drawing/Identical.h"

#include <QPainterPath>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

using CubicPiece = std::array<QPointF, 4>;

QPointF pointOf(const CubicPiece& piece, qreal part) {
    const qreal rest = 1 - part;
    return rest * rest * rest * piece[0] + 3 * rest * rest * part * piece[1] +
           3 * rest * part * part * piece[2] + part * part * part * piece[3];
}

bool covers(const Extent& extent, const QPointF& point) {
    return std::any_of(extent.parts.begin(), extent.parts.end(),
                       [&point](const QRectF& part) { return part.contains(point); });
}

} // namespace

TEST(Extent, AddsRectanglesWithTheirMargin) {
    Extent extent;
    extent.add({10, 20, 30, 40});
    extent.add({10, 20, 30, 40}, 2.5);
    ASSERT_EQ(extent.parts.size(), 2U);
    EXPECT_EQ(extent.parts[0], QRectF(10, 20, 30, 40));
    EXPECT_EQ(extent.parts[1], QRectF(7.5, 17.5, 35, 45));
    EXPECT_FALSE(extent.plane);
    EXPECT_FALSE(extent.overflows);
}

TEST(Extent, OfAFrameIsItsSides) {
    Extent extent;
    extent.addFrame({10, 20, 100, 80}, 2);
    for (const QPointF& point : {QPointF(8, 60), QPointF(111, 99), QPointF(60, 18), QPointF(60, 101)})
        EXPECT_TRUE(covers(extent, point)) << point.x() << "," << point.y();
    EXPECT_FALSE(covers(extent, {60, 60}));
    EXPECT_FALSE(covers(extent, {7, 60}));
}

TEST(Extent, OfAnEllipseIsItsCurve) {
    const QRectF rect(10, 20, 400, 300);
    Extent extent;
    extent.addEllipse(rect, 2);
    for (int i = 0; i < 360; ++i) {
        const qreal angle = i * std::numbers::pi / 180;
        const QPointF direction(std::cos(angle), std::sin(angle));
        const auto onCurve = [&](qreal growth) {
            return rect.center() + QPointF((rect.width() / 2 + growth) * direction.x(),
                                           (rect.height() / 2 + growth) * direction.y());
        };
        for (const qreal growth : {-1.9, 0.0, 1.9})
            EXPECT_TRUE(covers(extent, onCurve(growth))) << i;
        EXPECT_FALSE(covers(extent, onCurve(-60))) << i;
    }
    Extent large;
    large.addEllipse({0, 0, 5000, 10}, 2);
    EXPECT_EQ(large.parts, std::vector<QRectF>{QRectF(-2, -2, 5004, 14)});
}

TEST(Extent, OfAnEllipseHoldsTheCubicPiecesThatAreDrawn) {
    const QRectF rect(10, 20, 4000, 3990);
    Extent extent;
    extent.addEllipse(rect, 0);
    QPainterPath path;
    path.addEllipse(rect);
    ASSERT_EQ(path.elementCount(), 13);
    for (int piece = 0; piece < 4; ++piece) {
        const auto at = [&](int point) { return QPointF(path.elementAt(3 * piece + point)); };
        const CubicPiece curve{at(0), at(1), at(2), at(3)};
        for (int step = 0; step <= 100; ++step)
            EXPECT_TRUE(covers(extent, pointOf(curve, step / 100.0))) << piece << " at " << step;
    }
}

TEST(Extent, OfALineIsNotTheRectangleAroundIt) {
    Extent extent;
    extent.addLine({300, 10}, {20, 250}, 3);
    for (int i = 0; i <= 100; ++i) {
        const QPointF point = QPointF(300, 10) + i / 100.0 * QPointF(-280, 240);
        EXPECT_TRUE(covers(extent, point)) << i;
        EXPECT_TRUE(covers(extent, point + QPointF(2.9, -2.9))) << i;
    }
    EXPECT_FALSE(covers(extent, {290, 240}));
    EXPECT_FALSE(covers(extent, {30, 20}));
    Extent level;
    level.addLine({300, 10}, {20, 10}, 3);
    EXPECT_EQ(level.parts, std::vector<QRectF>{QRectF(17, 7, 286, 6)});
}

TEST(Extent, OfTypedTextIsMoreThanItsPlate) {
    Extent extent;
    extent.addTypedText({10, 20, 100, 18}, u"gjÅ"_s, 2);
    ASSERT_EQ(extent.parts.size(), 1U);
    EXPECT_EQ(extent.parts[0], QRectF(-18, -8, 156, 74));
    EXPECT_FALSE(extent.overflows);
    extent.addTypedText({10, 20, 100, 18}, u"a\u0301\u0301\u0301"_s, 2);
    EXPECT_TRUE(extent.overflows);
    extent.addTypedText({10, 20, 100, 18}, u"plain"_s, 2);
    EXPECT_TRUE(extent.overflows);
}

TEST(Identical, SmallDifferencesCount) {
    const qreal nearby = std::nextafter(1.0, 2.0);
    EXPECT_TRUE(identical(1.0, 1.0));
    EXPECT_FALSE(identical(1.0, nearby));
    EXPECT_FALSE(identical(QPointF(1, 1), QPointF(1, nearby)));
    EXPECT_FALSE(identical(QSizeF(nearby, 1), QSizeF(1, 1)));
    EXPECT_FALSE(identical(QRectF(1, 1, 1, 1), QRectF(1, 1, 1, nearby)));
    EXPECT_TRUE(identical(QRectF(1, 2, 3, 4), QRectF(1, 2, 3, 4)));
}

TEST(Identical, WhatIsNoNumberIsItself) {
    const qreal notANumber = std::numeric_limits<qreal>::quiet_NaN();
    EXPECT_TRUE(identical(notANumber, notANumber));
    EXPECT_FALSE(identical(notANumber, 0.0));
    EXPECT_TRUE(identical(QPointF(notANumber, 1), QPointF(notANumber, 1)));
    EXPECT_FALSE(identical(QPointF(notANumber, 1), QPointF(1, notANumber)));
}

TEST(Identical, NothingIsOnlyNothing) {
    const std::optional<QPointF> nothing;
    EXPECT_TRUE(identical(nothing, nothing));
    EXPECT_FALSE(identical(nothing, std::optional(QPointF())));
    EXPECT_TRUE(identical(std::optional(QPointF(1, 2)), std::optional(QPointF(1, 2))));
    EXPECT_FALSE(identical(std::optional(QPointF(1, 2)), std::optional(QPointF(2, 1))));
}

} // namespace orvane::test
