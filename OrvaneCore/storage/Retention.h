#pragma once

#include <QDateTime>
#include <QString>

/// Deleting what the data folder holds. A link is deleted, never what it leads to, and a folder that is
/// itself a link is left as it is. Failures are passed over: what is counted are the deletions tried. Any
/// thread.
namespace orvane::retention {

/// Deletes every capture and every session last changed more than so many days of 86,400 seconds before
/// `now`. Hidden entries stay, and so do links among the sessions. A folder's date is that of its own list of
/// entries, a link's that of what it leads to.
int removeExpired(const QString& capturesDir, const QString& sessionsDir, const QDateTime& now, int days);

/// Deletes everything in both folders, hidden entries and `latest` among it.
int removeAll(const QString& capturesDir, const QString& sessionsDir);

} // namespace orvane::retention
