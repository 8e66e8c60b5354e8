#pragma once

#include "OrvaneCore/platform/SecretStore.h"
#include "OrvanePlatform/freedesktop/FileSecretStore.h"

#include <QMutex>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

namespace orvane::freedesktop {

/// Secrets in the desktop's keyring (the Secret Service on the session bus), and in a file where there is
/// none that serves at once: no session bus, no service, one that does not answer within the time limit, or
/// one that would have to ask the user to unlock it. From the first such moment on, which is logged, this
/// object leaves the keyring alone.
///
/// A secret that only the file has, because the keyring did not serve when it was stored, is found there. A
/// call blocks its thread and runs no event loop on it. Needs a QCoreApplication in the process.
class KeyringSecretStore final : public SecretStore {
public:
    /// How long one call may wait for the keyring.
    static constexpr std::chrono::milliseconds defaultTimeout{2000};

    /// What the keyring said.
    struct Answer {
        enum class Kind { done, noSuchSecret, doesNotServe };

        Kind kind = Kind::done;
        /// The secret that was asked for.
        QString value;
        /// Why it does not serve.
        QString problem;
    };

    /// `service` names the program in the keyring; `filePath` is where the secrets lie that it does not take.
    KeyringSecretStore(QString service, const QString& filePath,
                       std::chrono::milliseconds timeout = defaultTimeout);

    std::optional<QString> get(const QString& key) override;
    bool set(const QString& key, const QString& value) override;
    bool remove(const QString& key) override;

private:
    using Told = std::function<void(const Answer&)>;
    /// Begins something on the keyring's thread, and tells there how it ended.
    using Errand = std::function<void(const Told& told)>;

    /// Nothing when the keyring does not serve.
    std::optional<Answer> run(const Errand& errand);

    QString m_service;
    FileSecretStore m_file;
    std::chrono::milliseconds m_timeout;
    QMutex m_mutex;
    bool m_keyringServes = true;
};

} // namespace orvane::freedesktop
