#pragma once

#include <QRectF>
#include <QString>

#include <optional>

namespace orvane {

class TypedObject;

/// A rectangle in an agent's whole numbers, as they came: of any sign and size.
struct IntegerRect {
    qint64 x = 0;
    qint64 y = 0;
    qint64 width = 0;
    qint64 height = 0;

    QRectF toRectF() const;
    /// "(x,y WIDTHxHEIGHT)".
    QString toString() const;
};

/// The rectangle of the members `x`, `y`, `width` and `height`; nothing unless all are integers.
std::optional<IntegerRect> readIntegerRect(const TypedObject& object);

} // namespace orvane
