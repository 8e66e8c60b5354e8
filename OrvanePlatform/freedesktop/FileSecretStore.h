#pragma once

#include "OrvaneCore/platform/SecretStore.h"

#include <QJsonObject>
#include <QMutex>
#include <QString>

namespace orvane::freedesktop {

/// Secrets as one flat JSON object in one file, which only the user can read from the moment it is made. It
/// is read at every call and replaced as a whole; a file that holds anything else counts as empty. One
/// process writes at a time; a reader never sees half a file.
class FileSecretStore final : public SecretStore {
public:
    /// Neither the file nor its folder need exist; both are made by the first `set`.
    explicit FileSecretStore(const QString& filePath);

    /// `orvane/secrets.json` in $XDG_DATA_HOME, or in ~/.local/share where that is unset, empty or relative.
    static QString defaultPath();

    QString filePath() const { return m_filePath; }

    std::optional<QString> get(const QString& key) override;
    bool set(const QString& key, const QString& value) override;
    bool remove(const QString& key) override;

private:
    QJsonObject read() const;
    bool write(const QJsonObject& secrets) const;

    QString m_filePath;
    QMutex m_mutex;
};

} // namespace orvane::freedesktop
