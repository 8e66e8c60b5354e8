#pragma once

#include "OrvaneCore/platform/InstanceLock.h"

#include <QString>

#include <memory>

namespace orvane::posix {

/// Holds an advisory lock (flock(2)) by an open descriptor; the kernel frees it with the process, so that one
/// that died leaves nothing behind. A descriptor of -1 holds nothing.
class FileInstanceLock final : public InstanceLock {
public:
    explicit FileInstanceLock(int fd)
        : m_fd(fd) {}
    ~FileInstanceLock() override;

    bool holds() const { return m_fd >= 0; }

private:
    int m_fd;
};

/// Lets one copy of the application run. Any thread.
class SingleInstanceGuard {
public:
    /// The lock, or nothing while another process holds it. The file is made where there is none, and never
    /// written or removed. One that cannot be opened keeps nobody out: then the lock holds nothing.
    static std::unique_ptr<FileInstanceLock> acquire(const QString& lockPath);
};

} // namespace orvane::posix
