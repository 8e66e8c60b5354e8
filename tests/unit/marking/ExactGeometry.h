#pragma once

#include "OrvaneCore/marking/Annotation.h"

#include <QPointF>
#include <QRectF>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

/// Qt's own comparisons of points and rectangles let small differences pass, so the tests bring theirs.
namespace orvane::test {

inline constexpr qreal notANumber = std::numeric_limits<qreal>::quiet_NaN();
inline constexpr qreal infinite = std::numeric_limits<qreal>::infinity();

inline ::testing::AssertionResult isPoint(const QPointF& actual, const QPointF& expected, qreal margin = 0) {
    if (std::abs(actual.x() - expected.x()) <= margin && std::abs(actual.y() - expected.y()) <= margin)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << actual.x() << ", " << actual.y() << ") is not ("
                                         << expected.x() << ", " << expected.y() << ")";
}

inline ::testing::AssertionResult isRect(const QRectF& actual, const QRectF& expected, qreal margin = 0) {
    ::testing::AssertionResult origin = isPoint(actual.topLeft(), expected.topLeft(), margin);
    if (!origin)
        return origin << " as origin";
    return isPoint({actual.width(), actual.height()}, {expected.width(), expected.height()}, margin)
           << " size";
}

inline ::testing::AssertionResult areHandles(const std::vector<Annotation::HandlePoint>& actual,
                                             const std::vector<Annotation::HandlePoint>& expected,
                                             qreal margin = 0) {
    if (actual.size() != expected.size())
        return ::testing::AssertionFailure() << actual.size() << " handles, not " << expected.size();
    for (std::size_t i = 0; i < actual.size(); ++i) {
        if (actual[i].first != expected[i].first)
            return ::testing::AssertionFailure() << "handle " << i << " is another";
        ::testing::AssertionResult place = isPoint(actual[i].second, expected[i].second, margin);
        if (!place)
            return ::testing::AssertionFailure() << "handle " << i << ": " << place.message();
    }
    return ::testing::AssertionSuccess();
}

} // namespace orvane::test
