#pragma once

#include "OrvaneCore/platform/SettingsStore.h"

#include <QJsonObject>
#include <QMutex>
#include <QMutexLocker>

#include <utility>
#include <vector>

namespace orvane::test {

/// Settings in memory that remember every write.
class InMemorySettings : public SettingsStore {
public:
    using Write = std::pair<QString, QJsonValue>;

    InMemorySettings() = default;
    explicit InMemorySettings(QJsonObject values)
        : m_values(std::move(values)) {}

    QJsonValue value(const QString& key) const override {
        const QMutexLocker locked(&m_mutex);
        return m_values.value(key);
    }

    void setValue(const QString& key, const QJsonValue& value) override {
        const QMutexLocker locked(&m_mutex);
        m_values.insert(key, value);
        m_writes.emplace_back(key, value);
    }

    /// All that is stored now.
    QJsonObject values() const {
        const QMutexLocker locked(&m_mutex);
        return m_values;
    }

    /// All calls of `setValue`, in their order.
    std::vector<Write> writes() const {
        const QMutexLocker locked(&m_mutex);
        return m_writes;
    }

private:
    mutable QMutex m_mutex;
    QJsonObject m_values;
    std::vector<Write> m_writes;
};

} // namespace orvane::test
