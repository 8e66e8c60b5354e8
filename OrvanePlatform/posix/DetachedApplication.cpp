#include "OrvanePlatform/posix/DetachedApplication.h"

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace orvane::posix {

using namespace Qt::StringLiterals;

namespace {

/// Whether another process holds the lock. Asks with a shared lock, which is gone again at once and never in
/// the way of another one that asks.
bool isLocked(const QString& lockPath) {
    const int fd = ::open(QFile::encodeName(lockPath).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    const bool locked = ::flock(fd, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(fd);
    return locked;
}

} // namespace

DetachedApplication::DetachedApplication(QString executable, QString homeDirectory,
                                         DisplayCheck isDisplayReachable)
    : m_executable(std::move(executable))
    , m_homeDirectory(std::move(homeDirectory))
    , m_isDisplayReachable(std::move(isDisplayReachable)) {}

DetachedApplication::Outcome DetachedApplication::start() {
    if (isLocked(m_homeDirectory + u"/.orvane/.gui.lock"_s))
        return Outcome::notNeeded;
    if (!m_isDisplayReachable())
        return Outcome::impossible;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(startedByLauncherVariable), u"1"_s);
    process.setProcessEnvironment(environment);
    process.setProgram(m_executable);
    process.setWorkingDirectory(m_homeDirectory);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    // Somebody may wait for the end of what the agent's program left open here, and the application would
    // keep it open. Here and not in the child, where QProcess has no place for it when the child is detached.
    constexpr unsigned firstAfterStandardStreams = 3;
    ::close_range(firstAfterStandardStreams, ~0U, CLOSE_RANGE_CLOEXEC);
    return process.startDetached() ? Outcome::started : Outcome::impossible;
}

} // namespace orvane::posix
