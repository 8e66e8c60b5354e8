#include "OrvaneCore/tools/IntegerRect.h"

#include "OrvaneCore/base/TypedObject.h"

namespace orvane {

using namespace Qt::StringLiterals;

QRectF IntegerRect::toRectF() const {
    return {static_cast<qreal>(x), static_cast<qreal>(y), static_cast<qreal>(width),
            static_cast<qreal>(height)};
}

QString IntegerRect::toString() const {
    return u"("_s + QString::number(x) + u","_s + QString::number(y) + u" "_s + QString::number(width) +
           u"x"_s + QString::number(height) + u")"_s;
}

std::optional<IntegerRect> readIntegerRect(const TypedObject& object) {
    const auto x = object.integer(QLatin1String("x"));
    const auto y = object.integer(QLatin1String("y"));
    const auto width = object.integer(QLatin1String("width"));
    const auto height = object.integer(QLatin1String("height"));
    if (!x || !y || !width || !height)
        return std::nullopt;
    return IntegerRect{*x, *y, *width, *height};
}

} // namespace orvane
