#pragma once

#include <QPointF>
#include <QRectF>

namespace orvane {

/// A rectangle by its edges, sorted. QRectF keeps a width and a height, by which the far edges are rounded.
struct RectEdges {
    qreal left = 0;
    qreal top = 0;
    qreal right = 0;
    qreal bottom = 0;

    static RectEdges between(const QPointF& corner, const QPointF& otherCorner);

    qreal width() const { return right - left; }
    qreal height() const { return bottom - top; }
    QPointF center() const;
    QRectF toRect() const;

    /// True when it contains the point after growing by `margin` on every side. A negative margin shrinks it,
    /// at last to nothing.
    bool contains(const QPointF& point, qreal margin) const;
    /// True up to `tolerance` on either side of its outline.
    bool outlineContains(const QPointF& point, qreal tolerance) const;
};

/// The rectangle moved to where all of it is in some bounds, as little as that takes; one that is there
/// already is given back as it is. Of one that is larger the beginning is in them.
QRectF movedInto(const QRectF& rect, const QRectF& bounds);

bool isFinite(const QPointF& point);
bool isFinite(const QRectF& rect);

} // namespace orvane
