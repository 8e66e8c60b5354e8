#include "OrvaneCore/base/TypedObject.h"

#include <QJsonArray>

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

std::optional<std::vector<QJsonObject>> TypedObject::objects(QLatin1String name) const {
    const QJsonValue value = m_object.value(name);
    if (!value.isArray())
        return std::nullopt;
    const QJsonArray array = value.toArray();
    std::vector<QJsonObject> objects;
    objects.reserve(static_cast<std::size_t>(array.size()));
    for (const auto& element : array) {
        if (!element.isObject())
            return std::nullopt;
        objects.push_back(element.toObject());
    }
    return objects;
}

} // namespace orvane
