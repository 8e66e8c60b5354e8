#pragma once

#include <QRect>

#include <vector>

namespace orvane {

/// One of the things that stand side by side in the overlay's bar.
struct OverlayBarPart {
    enum class Kind { button, divider, label };

    Kind kind = Kind::button;
    /// What a button or a label takes to show all of its text, in points.
    int contentWidth = 0;
};

/// Where the bar and its parts are, in points.
struct OverlayBarLayout {
    /// The view's coordinates.
    QRect bar;
    /// The bar's coordinates, in the order in which they were given.
    std::vector<QRect> parts;
    /// What a button keeps free on both sides of its title.
    int padding = 0;
};

/// Centred at the bottom of the view and never wider than it. Where room is short first the paddings shrink,
/// then labels, and then the longest titles. Pure.
OverlayBarLayout overlayBarLayout(const std::vector<OverlayBarPart>& parts, const QRect& viewRect);

} // namespace orvane
