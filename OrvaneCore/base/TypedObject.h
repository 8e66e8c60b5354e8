#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>
#include <vector>

namespace orvane {

/// A JSON object read by type: a value of another type counts as missing. Keys nobody asks for are ignored.
/// A view: the object must live as long.
class TypedObject {
public:
    explicit TypedObject(const QJsonObject& object)
        : m_object(object) {}

    std::optional<QString> string(QLatin1String name) const;
    /// A number without a fraction that fits 64 bits.
    std::optional<qint64> integer(QLatin1String name) const;
    /// An array that holds nothing but objects.
    std::optional<std::vector<QJsonObject>> objects(QLatin1String name) const;

private:
    const QJsonObject& m_object;
};

} // namespace orvane
