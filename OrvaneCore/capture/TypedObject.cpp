#include "OrvaneCore/capture/TypedObject.h"

namespace orvane {

std::optional<QString> TypedObject::string(QLatin1String name) const {
    const QJsonValue value = m_object.value(name);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<qint64> TypedObject::integer(QLatin1String name) const {
    const QJsonValue value = m_object.value(name);
    // toInteger gives its default for what is no integer, so two defaults tell a real 0 from none.
    const qint64 number = value.toInteger(0);
    return number == value.toInteger(1) ? std::optional(number) : std::nullopt;
}

} // namespace orvane
