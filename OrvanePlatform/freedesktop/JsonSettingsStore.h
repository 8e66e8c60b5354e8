#pragma once

#include "OrvaneCore/platform/SettingsStore.h"

#include <QMutex>
#include <QString>

namespace orvane::freedesktop {

/// Settings as one flat JSON object in one file of mode 600, read at every call and replaced as a whole.
///
/// Writers of any number of threads and processes take turns by a lock file beside it (`<file>.lock`) and
/// keep the keys they do not write. A write that does not get its turn within three seconds is given up with
/// a log line; the lock of a process that died is cleared away. A file that is not a JSON object (or is
/// larger than 16 MiB) is renamed to `<file>.damaged-<time>` with a log line, and counts as empty. A file
/// that cannot be read counts as empty too and is never written over.
class JsonSettingsStore : public SettingsStore {
public:
    /// Neither the file nor its folder need exist; both are made by the first write.
    explicit JsonSettingsStore(const QString& filePath);

    /// `orvane/settings.json` in $XDG_CONFIG_HOME, or in ~/.config where that is unset, empty or relative.
    static QString defaultPath();

    QJsonValue value(const QString& key) const override;
    void setValue(const QString& key, const QJsonValue& value) override;

private:
    void reportReadFailure(const QString& failure) const;

    QString m_filePath;
    /// Orders the writers of this process, so that they do not have to poll for the lock file.
    mutable QMutex m_writing;
    mutable QMutex m_reporting;
    /// What the last read failed with: a lasting trouble is told once, not at every read.
    mutable QString m_reportedFailure;
};

} // namespace orvane::freedesktop
