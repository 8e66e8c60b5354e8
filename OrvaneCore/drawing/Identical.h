#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>

namespace orvane {

// Qt's own comparisons let small differences pass, which show nevertheless, and take what is no number for
// different from itself. These do neither. Pure; any thread.

bool identical(qreal left, qreal right);
bool identical(const QPointF& left, const QPointF& right);
bool identical(const QSizeF& left, const QSizeF& right);
bool identical(const QRectF& left, const QRectF& right);

template <typename Value>
bool identical(const std::optional<Value>& left, const std::optional<Value>& right) {
    return left && right ? identical(*left, *right) : left.has_value() == right.has_value();
}

} // namespace orvane
