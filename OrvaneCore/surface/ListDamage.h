#pragma once

#include "OrvaneCore/surface/VisualBounds.h"

#include <QRegion>

#include <algorithm>
#include <iterator>
#include <vector>

namespace orvane {

/// What the pictures of two lists of items differ by that lie on each other in their order. `isSame` tells
/// whether two items look the same, the other two the VisualBounds of an item of either list; they are asked
/// only for items that differ.
template <typename Item, typename IsSame, typename BoundsBefore, typename BoundsAfter>
QRegion listDamage(const std::vector<Item>& before, const std::vector<Item>& after, IsSame isSame,
                   BoundsBefore boundsBefore, BoundsAfter boundsAfter) {
    const auto [firstBefore, firstAfter] =
        std::mismatch(before.begin(), before.end(), after.begin(), after.end(), isSame);
    // Where one was taken out or put in, those after it are the same again.
    const auto [endBefore, endAfter] =
        std::mismatch(before.rbegin(), std::make_reverse_iterator(firstBefore), after.rbegin(),
                      std::make_reverse_iterator(firstAfter), isSame);
    QRegion region;
    auto left = firstBefore;
    auto right = firstAfter;
    while (left != endBefore.base() && right != endAfter.base()) {
        if (!isSame(*left, *right))
            region += VisualBounds::difference(boundsBefore(*left), boundsAfter(*right));
        ++left;
        ++right;
    }
    for (; left != endBefore.base(); ++left)
        region += VisualBounds::difference(boundsBefore(*left), {});
    for (; right != endAfter.base(); ++right)
        region += VisualBounds::difference({}, boundsAfter(*right));
    return region;
}

} // namespace orvane
