#pragma once

#include "OrvaneCore/drawing/Extent.h"

#include <QColor>
#include <QRect>
#include <QRegion>
#include <QSizeF>

#include <optional>
#include <vector>

namespace orvane {

/// Where an item of a view shows: in whole points of the view, with room for what antialiasing and displays
/// with fractions of pixels to the point add. Nothing of it lies outside the view. Any thread.
struct VisualBounds {
    /// A rectangle whose inside has one look all over.
    struct Plane {
        QRect outer;
        /// The inside; between it and `outer` is the edge.
        QRect inner;
        /// What it is painted with; nothing where it shows what lies below it.
        std::optional<QColor> paint;
    };

    /// Around all that shows but the plane.
    std::vector<QRect> parts;
    std::optional<Plane> plane;

    /// Of what shows in an extent that is in points of the view. Coordinates that are far outside count as
    /// the nearest that can be drawn.
    static VisualBounds of(const Extent& extent, const QRect& view);

    QRect boundingRect() const;
    bool touches(const QRegion& region) const;
    /// What may differ between the pictures of an item at one time and at another.
    static QRegion difference(const VisualBounds& before, const VisualBounds& after);
};

/// The whole points of a view of that size; none where it is no size.
QRect pointsOfView(const QSizeF& size);

} // namespace orvane
