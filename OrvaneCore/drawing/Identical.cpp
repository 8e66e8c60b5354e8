#include "OrvaneCore/drawing/Identical.h"

#include <cmath>

namespace orvane {

bool identical(qreal left, qreal right) {
    return left == right || (std::isnan(left) && std::isnan(right));
}

bool identical(const QPointF& left, const QPointF& right) {
    return identical(left.x(), right.x()) && identical(left.y(), right.y());
}

bool identical(const QSizeF& left, const QSizeF& right) {
    return identical(left.width(), right.width()) && identical(left.height(), right.height());
}

bool identical(const QRectF& left, const QRectF& right) {
    return identical(left.topLeft(), right.topLeft()) && identical(left.size(), right.size());
}

} // namespace orvane
