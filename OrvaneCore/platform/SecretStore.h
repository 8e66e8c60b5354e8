#pragma once

#include <QString>

#include <optional>

namespace orvane {

/// Short secrets of the user, each under a key, kept where only the user can read them. They outlive the
/// process. A call may take some seconds where the system's keyring does not answer. Any thread.
class SecretStore {
public:
    virtual ~SecretStore() = default;

    /// Nothing when there is no such secret or it cannot be read.
    virtual std::optional<QString> get(const QString& key) = 0;

    /// Puts the value in the place of any former one. False when it could not be stored.
    virtual bool set(const QString& key, const QString& value) = 0;

    /// True when there is no such secret afterwards, also when there was none before.
    virtual bool remove(const QString& key) = 0;

protected:
    SecretStore() = default;
    SecretStore(const SecretStore&) = default;
    SecretStore& operator=(const SecretStore&) = default;
};

} // namespace orvane
