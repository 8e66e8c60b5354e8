#include "OrvanePlatform/posix/SingleInstanceGuard.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace orvane::posix {

FileInstanceLock::~FileInstanceLock() {
    if (m_fd < 0)
        return;
    ::flock(m_fd, LOCK_UN);
    ::close(m_fd);
}

std::unique_ptr<FileInstanceLock> SingleInstanceGuard::acquire(const QString& lockPath) {
    constexpr mode_t mode = 0644;
    // A program started from here must not go on holding the lock.
    const int fd = ::open(QFile::encodeName(lockPath).constData(), O_RDWR | O_CREAT | O_CLOEXEC, mode);
    if (fd < 0)
        return std::make_unique<FileInstanceLock>(-1);
    while (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR)
            continue;
        ::close(fd);
        return nullptr;
    }
    return std::make_unique<FileInstanceLock>(fd);
}

} // namespace orvane::posix
