#pragma once

#include <QDateTime>
#include <QString>

#include <stop_token>

/// Deleting what the data folder holds. Of a link among the entries the link is deleted, never what it leads
/// to. A folder that is itself a link, to another disk say, is the folder it leads to. Failures are passed
/// over: what is counted are the deletions tried. Any thread.
namespace orvane::retention {

/// Deletes every capture and every session last changed more than so many days of 86,400 seconds before
/// `now`. Hidden entries stay, and so do links among the sessions. A folder's date is that of its own list of
/// entries, a link's that of what it leads to. Asked to stop, it finishes the entry that it is at, because
/// half a session would count as new, and leaves the rest.
int removeExpired(const QString& capturesDir, const QString& sessionsDir, const QDateTime& now, int days,
                  const std::stop_token& stop = {});

/// Deletes everything in both folders, hidden entries and `latest` among it.
int removeAll(const QString& capturesDir, const QString& sessionsDir);

} // namespace orvane::retention
