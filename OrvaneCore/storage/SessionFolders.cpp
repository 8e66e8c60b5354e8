#include "OrvaneCore/storage/SessionFolders.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/storage/FolderEntries.h"
#include "OrvaneCore/storage/Trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <system_error>
#include <utility>

namespace orvane {

namespace fs = std::filesystem;

namespace {

enum class Making { made, taken, impossible };

/// Of all who try to make a folder of one name, in any process, one makes it.
Making makeFolder(const QString& dir) {
    QDir().mkpath(QFileInfo(dir).path());
    std::error_code error;
    if (fs::create_directory(folder_entries::toPath(dir), error))
        return Making::made;
    // A folder that is there already is no error, anything else of that name is.
    return !error || error == std::errc::file_exists ? Making::taken : Making::impossible;
}

QString standardised(const QString& path) {
    return path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

} // namespace

SessionFolders::SessionFolders(const StoragePaths& paths, WallClock clock, Sleep sleep)
    : m_paths(paths)
    , m_clock(std::move(clock))
    , m_sleep(std::move(sleep)) {}

SessionFolder SessionFolders::make() {
    for (;;) {
        if (const auto id = takeId()) {
            const QString dir = m_paths.sessionDir(*id);
            if (makeFolder(dir) != Making::taken)
                return {dir, *id};
        }
        m_sleep(std::chrono::milliseconds(1));
    }
}

/// Nothing when the present millisecond has been given out. Where no folder can be made this alone keeps
/// sessions apart.
std::optional<QString> SessionFolders::takeId() {
    const std::scoped_lock lock(m_mutex);
    const QString id = m_clock().toLocalTime().toString(QStringLiteral("yyyyMMdd-HHmmss.zzz"));
    if (id == m_lastId)
        return std::nullopt;
    m_lastId = id;
    return id;
}

void SessionFolders::updateLatestLink(const QString& target) const {
    const fs::path link = folder_entries::toPath(m_paths.latestSessionLink());
    const fs::path fresh =
        link.parent_path() / (".latest-" + QUuid::createUuid().toString(QUuid::Id128).toStdString());
    std::error_code error;
    fs::create_symlink(folder_entries::toPath(QFileInfo(target).absoluteFilePath()), fresh, error);
    if (error)
        return;
    fs::rename(fresh, link, error);
    if (error) {
        // A folder of that name is in the way: a link cannot be renamed onto it.
        folder_entries::remove(link);
        fs::rename(fresh, link, error);
    }
    if (error)
        folder_entries::remove(fresh);
}

std::optional<QString> SessionFolders::latest() const {
    const QString resolved = QFileInfo(m_paths.latestSessionLink()).canonicalFilePath();
    return resolved.isEmpty() ? std::nullopt : std::optional(resolved);
}

bool SessionFolders::trash(const QString& path) const {
    const QString session = standardised(path);
    const QFileInfo info(session);
    if (session.isEmpty() || info.path() != standardised(m_paths.sessionsDir()) ||
        info.fileName() == QLatin1String("latest")) {
        return false;
    }
    // The standardised path and not the one given: through a link in the middle, ".." may lead elsewhere.
    if (const auto error = moveToTrash(session)) {
        logLine(QStringLiteral("failed to trash session %1: %2").arg(info.fileName(), *error));
        return false;
    }
    const QString link = m_paths.latestSessionLink();
    if (standardised(QFileInfo(link).symLinkTarget()) == session)
        QFile::remove(link);
    return true;
}

} // namespace orvane
