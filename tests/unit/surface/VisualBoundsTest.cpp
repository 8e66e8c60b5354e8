#include "OrvaneCore/surface/VisualBounds.h"
#include "OrvaneCore/surface/ListDamage.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace orvane::test {

namespace {

constexpr QRect wholeView(0, 0, 200, 100);

Extent partAt(const QRectF& rect) {
    Extent extent;
    extent.add(rect);
    return extent;
}

Extent planeAt(const QRectF& outer, const QRectF& inner, const std::optional<QColor>& paint) {
    Extent extent;
    extent.plane = {.outer = outer, .inner = inner, .paint = paint};
    return extent;
}

/// Of boxes that lie in a row, by their places.
QRegion damageOf(const std::vector<int>& before, const std::vector<int>& after) {
    const auto bounds = [](int place) {
        return VisualBounds::of(partAt(QRectF(10 * place, 0, 4, 4)), wholeView);
    };
    return listDamage(
        before, after, [](int left, int right) { return left == right; }, bounds, bounds);
}

QRegion boxes(const std::vector<int>& places) {
    QRegion region;
    for (const int place : places)
        region += QRect(10 * place - 1, 0, 6, 5);
    return region;
}

} // namespace

TEST(VisualBounds, AreWholePointsWithOneMore) {
    const VisualBounds bounds = VisualBounds::of(partAt({10.5, 20.5, 30, 10}), wholeView);
    ASSERT_EQ(bounds.parts.size(), 1U);
    EXPECT_EQ(bounds.parts[0], QRect(9, 19, 33, 13));
    EXPECT_EQ(bounds.boundingRect(), bounds.parts[0]);
}

TEST(VisualBounds, AreInsideTheView) {
    EXPECT_EQ(VisualBounds::of(partAt({190, 90, 30, 30}), wholeView).boundingRect(), QRect(189, 89, 11, 11));
    EXPECT_TRUE(VisualBounds::of(partAt({300, 90, 30, 30}), wholeView).parts.empty());
    EXPECT_FALSE(VisualBounds::of(planeAt({300, 90, 30, 30}, {}, {}), wholeView).plane);
    EXPECT_EQ(VisualBounds::of(partAt({-1e300, -1e300, 2e300, 2e300}), wholeView).boundingRect(), wholeView);
}

TEST(VisualBounds, InsideOfAPlaneIsSmallerThanThatOfItsExtent) {
    const VisualBounds bounds =
        VisualBounds::of(planeAt({10, 10, 100, 60}, {12.5, 12.5, 95, 55}, QColor(Qt::red)), wholeView);
    ASSERT_TRUE(bounds.plane);
    EXPECT_EQ(bounds.plane->outer, QRect(9, 9, 102, 62));
    EXPECT_EQ(bounds.plane->inner, QRect(QPoint(15, 15), QPoint(104, 64)));
    EXPECT_EQ(bounds.plane->paint, QColor(Qt::red));
}

TEST(VisualBounds, PlaneTooSmallForAnInside) {
    for (const QRectF& inner : {QRectF(12, 12, 3, 50), QRectF(12, 12, 4.5, 4.5), QRectF(12.3, 12.3, 4.5, 4.5),
                                QRectF(12, 12, -40, 50), QRectF(12, 12, -40, -50), QRectF()}) {
        const VisualBounds bounds = VisualBounds::of(planeAt({10, 10, 100, 60}, inner, {}), wholeView);
        ASSERT_TRUE(bounds.plane);
        EXPECT_TRUE(bounds.plane->inner.isEmpty()) << inner.width();
    }
}

TEST(VisualBounds, OfWhatOverflowsAreTheRectangleAroundAll) {
    Extent extent = partAt({10, 10, 5, 5});
    extent.add({100, 50, 5, 5});
    EXPECT_FALSE(VisualBounds::of(extent, wholeView).touches(QRect(50, 30, 2, 2)));
    extent.overflows = true;
    EXPECT_TRUE(VisualBounds::of(extent, wholeView).touches(QRect(50, 30, 2, 2)));
    EXPECT_EQ(VisualBounds::of(extent, wholeView).boundingRect(), QRect(9, 9, 97, 47));
    extent.parts = {QRectF(500, 500, 5, 5)};
    EXPECT_TRUE(VisualBounds::of(extent, wholeView).parts.empty());
}

TEST(VisualBounds, TouchTheInsideOnlyWhereItIsPainted) {
    const QRect inside(50, 30, 4, 4);
    const QRectF rect(10, 10, 100, 60);
    EXPECT_TRUE(VisualBounds::of(planeAt(rect, rect, QColor(Qt::red)), wholeView).touches(inside));
    EXPECT_FALSE(VisualBounds::of(planeAt(rect, rect, {}), wholeView).touches(inside));
    EXPECT_TRUE(VisualBounds::of(planeAt(rect, rect, {}), wholeView).touches(QRect(8, 30, 4, 4)));
    EXPECT_FALSE(
        VisualBounds::of(planeAt(rect, rect, QColor(Qt::red)), wholeView).touches(QRect(120, 30, 4, 4)));
}

TEST(VisualBounds, DifferenceLeavesOutWhatIsInsideBoth) {
    const auto planeFrom = [](qreal left, QColor paint) {
        const QRectF rect(left, 10, 100, 60);
        return VisualBounds::of(planeAt(rect, rect, paint), wholeView);
    };
    const QRegion moved =
        VisualBounds::difference(planeFrom(10, QColor(Qt::red)), planeFrom(20, QColor(Qt::red)));
    EXPECT_FALSE(moved.contains(QPoint(60, 40)));
    EXPECT_TRUE(moved.contains(QPoint(15, 40)));
    EXPECT_TRUE(moved.contains(QPoint(115, 40)));
    const QRegion recoloured =
        VisualBounds::difference(planeFrom(10, QColor(Qt::red)), planeFrom(10, QColor(Qt::blue)));
    EXPECT_TRUE(recoloured.contains(QPoint(60, 40)));
    EXPECT_TRUE(VisualBounds::difference({}, planeFrom(10, QColor(Qt::red))).contains(QPoint(60, 40)));
    EXPECT_TRUE(VisualBounds::difference({}, {}).isEmpty());
}

TEST(VisualBounds, PointsOfAView) {
    EXPECT_EQ(pointsOfView({100, 50.5}), QRect(0, 0, 100, 51));
    constexpr qreal infinite = std::numeric_limits<qreal>::infinity();
    for (const QSizeF& size : {QSizeF(0, 10), QSizeF(-5, 5), QSizeF(infinite, 5),
                               QSizeF(5, std::numeric_limits<qreal>::quiet_NaN())})
        EXPECT_TRUE(pointsOfView(size).isEmpty());
    EXPECT_EQ(pointsOfView({1e300, 10}), QRect(0, 0, 1'000'000, 10));
}

TEST(ListDamage, IsOfTheItemsThatDiffer) {
    EXPECT_TRUE(damageOf({1, 2, 3}, {1, 2, 3}).isEmpty());
    EXPECT_TRUE(damageOf({}, {}).isEmpty());
    EXPECT_EQ(damageOf({1, 2, 3}, {1, 7, 3}), boxes({2, 7}));
    EXPECT_EQ(damageOf({1, 2, 3, 4}, {5, 2, 3, 6}), boxes({1, 4, 5, 6}));
}

TEST(ListDamage, OfOneMoreOrLessIsThatOne) {
    EXPECT_EQ(damageOf({1, 2, 3}, {1, 3}), boxes({2}));
    EXPECT_EQ(damageOf({2, 3}, {1, 2, 3}), boxes({1}));
    EXPECT_EQ(damageOf({1, 2}, {1, 2, 3}), boxes({3}));
    EXPECT_EQ(damageOf({1, 2, 3}, {}), boxes({1, 2, 3}));
    EXPECT_EQ(damageOf({}, {4}), boxes({4}));
}

TEST(ListDamage, OfAnotherOrderIsThatOfAllBetween) {
    EXPECT_EQ(damageOf({1, 2, 3, 4}, {1, 3, 2, 4}), boxes({2, 3}));
}

} // namespace orvane::test
