#pragma once

#include <QString>

namespace orvane {

/// What lies in the data folder: files, not sessions, with all that is not a folder counted as a file and
/// hidden entries (named with a leading dot) left out. A symbolic link counts with its own size.
struct StorageUsage {
    qint64 captureCount = 0;
    quint64 captureBytes = 0;
    qint64 sessionCount = 0;
    quint64 sessionBytes = 0;

    quint64 totalBytes() const { return captureBytes + sessionBytes; }
    /// Decimal units in the user's language, for example "1.50 MB".
    QString capturesFormatted() const;
    QString sessionsFormatted() const;
    QString totalFormatted() const;

    bool operator==(const StorageUsage&) const = default;
};

/// Walks both folders; a folder that cannot be read counts as empty. Any thread.
StorageUsage measureUsage(const QString& capturesDir, const QString& sessionsDir);

} // namespace orvane
