#pragma once

#include "OrvaneCore/storage/StoragePaths.h"

#include <QDateTime>
#include <QString>

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

namespace orvane {

struct SessionFolder {
    QString dir;
    QString id;
};

/// The folders of sessions, one for each session whoever makes it, and the link to the one that was finished
/// last. One object for all makers of a process; other processes may make sessions in the same place.
/// Failures of the file system are passed over in silence unless a function says otherwise. Any thread.
class SessionFolders {
public:
    /// Gives the present moment; any thread.
    using WallClock = std::function<QDateTime()>;
    /// Returns when the time has passed, by that clock too; any thread.
    using Sleep = std::function<void(std::chrono::milliseconds)>;

    /// The paths must outlive this object.
    SessionFolders(const StoragePaths& paths, WallClock clock, Sleep sleep);

    /// Makes a folder for a new session, named by the local time to the millisecond ("20261115-092611.482").
    /// It is nobody else's: where the name is taken the next millisecond is waited for. The answer comes
    /// whether or not the folder could be made, with an id of its own all the same.
    SessionFolder make();

    /// Makes `latest` point to a session; the link is there for readers at every moment.
    void updateLatestLink(const QString& target) const;

    /// The session `latest` leads to, with every link in the path resolved; nothing when it leads nowhere.
    std::optional<QString> latest() const;

    /// Moves a session to the trash, and removes `latest` when it pointed there. False, and nothing touched,
    /// for a path that is not directly in the sessions folder and for `latest`; false with a log line when
    /// the trash does not take it.
    bool trash(const QString& path) const;

private:
    std::optional<QString> takeId();

    const StoragePaths& m_paths;
    WallClock m_clock;
    Sleep m_sleep;
    std::mutex m_mutex;
    /// Given out last.
    QString m_lastId;
};

} // namespace orvane
