#pragma once

#include "OrvaneCore/marking/Annotation.h"

#include <QPointF>
#include <QRectF>

#include <optional>
#include <vector>

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

    /// In the order of `Annotation::Handle`.
    std::vector<Annotation::HandlePoint> corners() const;
    /// What stays where it is while a corner is dragged. A handle that is no corner counts as the bottom
    /// right one.
    QPointF cornerOpposite(Annotation::Handle handle) const;
};

bool isFinite(const QPointF& point);
bool isFinite(const QRectF& rect);

/// The first of those that are nearest to the point, when it is no farther than `tolerance`.
std::optional<Annotation::Handle> nearestHandle(const std::vector<Annotation::HandlePoint>& handles,
                                                const QPointF& point, qreal tolerance);

} // namespace orvane
