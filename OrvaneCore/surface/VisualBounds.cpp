#include "OrvaneCore/surface/VisualBounds.h"

#include "OrvaneCore/drawing/DrawingLimits.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

// What antialiasing adds at an edge, and what rounding to the pixels of a display moves it by.
constexpr qreal edge = 1;

QRect covering(const QRectF& rect, qreal margin) {
    return drawable(rect).adjusted(-margin, -margin, margin, margin).toAlignedRect();
}

/// The whole points inside a rectangle after it has shrunk; none where it is too small for that.
QRect within(const QRectF& rect, qreal inset) {
    // Not even an inverted one, which would be normalised to a rectangle that is not there.
    if (rect.width() <= 0 || rect.height() <= 0)
        return {};
    const QRectF shrunk = drawable(rect).adjusted(inset, inset, -inset, -inset);
    if (shrunk.width() <= 0 || shrunk.height() <= 0)
        return {};
    const QPoint first(static_cast<int>(std::ceil(shrunk.left())), static_cast<int>(std::ceil(shrunk.top())));
    const QPoint end(static_cast<int>(std::floor(shrunk.right())),
                     static_cast<int>(std::floor(shrunk.bottom())));
    const QRect inside(first, end - QPoint(1, 1));
    // Not even an inverted one, with which Qt would go on to count.
    return inside.isValid() ? inside : QRect();
}

} // namespace

VisualBounds VisualBounds::of(const Extent& extent, const QRect& view) {
    VisualBounds bounds;
    if (extent.plane) {
        const QRect outer = covering(extent.plane->outer, edge) & view;
        if (!outer.isEmpty()) {
            bounds.plane = {.outer = outer,
                            .inner = within(extent.plane->inner, 2 * edge) & view,
                            .paint = extent.plane->paint};
        }
    }
    for (const QRectF& part : extent.parts) {
        const QRect shown = covering(part, edge) & view;
        if (!shown.isEmpty())
            bounds.parts.push_back(shown);
    }
    if (const QRect around = bounds.boundingRect(); extent.overflows && !around.isEmpty())
        bounds.parts.push_back(around);
    return bounds;
}

QRect VisualBounds::boundingRect() const {
    QRect bounds = plane ? plane->outer : QRect();
    for (const QRect& part : parts)
        bounds |= part;
    return bounds;
}

bool VisualBounds::touches(const QRegion& region) const {
    if (plane) {
        const bool isTouched = region.intersects(plane->outer);
        if (isTouched && (plane->paint || !(region & plane->outer).subtracted(plane->inner).isEmpty()))
            return true;
    }
    return std::any_of(parts.begin(), parts.end(),
                       [&region](const QRect& part) { return region.intersects(part); });
}

QRegion VisualBounds::difference(const VisualBounds& before, const VisualBounds& after) {
    QRegion region;
    for (const VisualBounds* bounds : {&before, &after}) {
        if (bounds->plane)
            region += bounds->plane->outer;
    }
    if (before.plane && after.plane && before.plane->paint == after.plane->paint)
        region -= before.plane->inner & after.plane->inner;
    for (const VisualBounds* bounds : {&before, &after}) {
        for (const QRect& part : bounds->parts)
            region += part;
    }
    return region;
}

QRect pointsOfView(const QSizeF& size) {
    if (!isFinite(QPointF(size.width(), size.height())) || size.width() <= 0 || size.height() <= 0)
        return {};
    return QRectF({0, 0}, size.boundedTo({drawingLimit, drawingLimit})).toAlignedRect();
}

} // namespace orvane
