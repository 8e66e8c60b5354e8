#include "OrvaneCore/drawing/DrawingLimits.h"

#include <array>

namespace orvane {

QPointF drawable(const QPointF& point, qreal limit) {
    return {std::clamp(point.x(), -limit, limit), std::clamp(point.y(), -limit, limit)};
}

QRectF drawable(const QRectF& rect) {
    return QRectF(drawable(rect.topLeft()), drawable(rect.bottomRight())).normalized();
}

std::optional<QLineF> clipped(const QLineF& line, const QRectF& area) {
    /// A side of the area: how fast the line goes out through it, and how far inside it starts.
    struct Side {
        qreal outward;
        qreal inside;
    };
    const std::array sides{
        Side{-line.dx(), line.x1() - area.left()},
        Side{line.dx(), area.right() - line.x1()},
        Side{-line.dy(), line.y1() - area.top()},
        Side{line.dy(), area.bottom() - line.y1()},
    };
    qreal first = 0;
    qreal last = 1;
    for (const auto& [outward, inside] : sides) {
        if (outward == 0 && inside < 0)
            return std::nullopt;
        if (outward < 0) {
            first = std::max(first, inside / outward);
        } else if (outward > 0) {
            last = std::min(last, inside / outward);
        }
    }
    if (first > last)
        return std::nullopt;
    return QLineF(line.pointAt(first), line.pointAt(last));
}

} // namespace orvane
