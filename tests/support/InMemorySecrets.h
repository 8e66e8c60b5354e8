#pragma once

#include "OrvaneCore/platform/SecretStore.h"

#include <QMap>

namespace orvane::test {

/// Secrets in memory.
class InMemorySecrets final : public SecretStore {
public:
    std::optional<QString> get(const QString& key) override {
        return values.contains(key) ? std::optional(values.value(key)) : std::nullopt;
    }

    bool set(const QString& key, const QString& value) override {
        if (refuses)
            return false;
        values.insert(key, value);
        return true;
    }

    bool remove(const QString& key) override {
        values.remove(key);
        return true;
    }

    QMap<QString, QString> values;
    /// Stores nothing any more.
    bool refuses = false;
};

} // namespace orvane::test
