#pragma once

#include <QJsonValue>
#include <QString>

namespace orvane {

/// The user's settings: one flat set of keys (UpperCamelCase) with JSON values.
/// Nothing is cached: a read sees what any process wrote last. Any thread.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    /// QJsonValue::Undefined when the key is absent.
    virtual QJsonValue value(const QString& key) const = 0;

    /// Stores a value; QJsonValue::Undefined removes the key. Other keys keep their values, known or not.
    /// A store that cannot be written logs one line and keeps what it had.
    virtual void setValue(const QString& key, const QJsonValue& value) = 0;

protected:
    SettingsStore() = default;
    SettingsStore(const SettingsStore&) = default;
    SettingsStore& operator=(const SettingsStore&) = default;
};

} // namespace orvane
