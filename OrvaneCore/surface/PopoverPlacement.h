#pragma once

#include <QPointF>
#include <QRect>
#include <QSize>

namespace orvane {

/// Where a bubble is that belongs to a point of a view, and where its arrow points. In points, in the view.
struct PopoverPlacement {
    /// The size of the arrow outside the bubble.
    static constexpr int arrowHeight = 8;
    static constexpr int arrowHalfWidth = 9;
    static constexpr qreal cornerRadius = 12;
    /// Kept free between a bubble and the edges of its view.
    static constexpr int margin = 8;

    enum class Side { above, below };

    /// The bubble without its arrow.
    QRect bubble;
    /// Where the bubble is, seen from the point.
    Side side = Side::above;
    /// The end of the arrow.
    QPoint tip;

    bool operator==(const PopoverPlacement&) const = default;

    /// The bubble and its arrow.
    QRect frame() const;
};

/// Above the point where there is room, else below, else on the side with more room; always inside the view,
/// with the left and top ends of the bubble where it is larger than the view. A point outside the view counts
/// as the nearest inside, one that is not finite as the middle. Pure.
PopoverPlacement popoverPlacement(const QSize& bubble, const QPointF& anchor, const QRect& view);

} // namespace orvane
