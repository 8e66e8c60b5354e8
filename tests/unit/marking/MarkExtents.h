#pragma once

#include "OrvaneCore/drawing/Extent.h"
#include "tests/support/DrawnPixels.h"

#include <QImage>
#include <QPainter>
#include <QRect>
#include <QRectF>
#include <QRegion>

#include <gtest/gtest.h>

#include <algorithm>

/// Extents beside what was painted.
namespace orvane::test {

inline QRect grownToPixels(const QRectF& rect, qreal margin) {
    return rect.adjusted(-margin, -margin, margin, margin).toAlignedRect();
}

/// The pixels of an extent that is in pixels, one more on every side.
inline QRegion pixelsOf(const Extent& extent) {
    QRegion region;
    if (extent.plane)
        region += grownToPixels(extent.plane->outer, 1);
    for (const QRectF& part : extent.parts)
        region += grownToPixels(part, 1);
    return region;
}

/// True when all ink on a white picture lies in the extent, and the inside of its plane has one colour but
/// for what its parts cover.
inline testing::AssertionResult isWithin(const QImage& picture, const Extent& extent) {
    QImage outside = picture;
    QPainter painter(&outside);
    for (const QRect& rect : pixelsOf(extent))
        painter.fillRect(rect, QColor(white));
    painter.end();
    if (const QRect ink = inkBounds(outside); !ink.isEmpty()) {
        return testing::AssertionFailure() << "ink outside, from " << ink.left() << "," << ink.top() << " to "
                                           << ink.right() << "," << ink.bottom();
    }
    const QRectF inner = extent.plane ? extent.plane->inner.adjusted(1, 1, -1, -1) : QRectF();
    if (inner.width() < 1 || inner.height() < 1)
        return testing::AssertionSuccess();
    QRegion inside = picture.rect() & pixelsInside(inner);
    for (const QRectF& part : extent.parts)
        inside -= grownToPixels(part, 1);
    if (inside.isEmpty())
        return testing::AssertionSuccess();
    const QRgb color = picture.pixel(inside.begin()->topLeft());
    for (const QRect& rect : inside) {
        if (const auto filled = isFilled(picture, rect, color, 0); !filled)
            return testing::AssertionFailure() << "inside: " << filled.message();
    }
    return testing::AssertionSuccess();
}

/// True when the rectangle around the extent is nowhere farther than `slack` pixels from that around the ink.
inline testing::AssertionResult isTight(const QImage& picture, const Extent& extent, qreal slack) {
    QRectF around = extent.plane ? extent.plane->outer : extent.parts.at(0);
    for (const QRectF& part : extent.parts) {
        around =
            QRectF(QPointF(std::min(around.left(), part.left()), std::min(around.top(), part.top())),
                   QPointF(std::max(around.right(), part.right()), std::max(around.bottom(), part.bottom())));
    }
    const QRectF ink(inkBounds(picture));
    const qreal free = std::max({ink.left() - around.left(), ink.top() - around.top(),
                                 around.right() - ink.right(), around.bottom() - ink.bottom()});
    if (free <= slack)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << free << " pixels beyond the ink";
}

} // namespace orvane::test
