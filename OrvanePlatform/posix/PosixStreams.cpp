#include "OrvanePlatform/posix/PosixStreams.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>

#include <poll.h>
#include <pthread.h>
#include <unistd.h>

namespace orvane::posix {

namespace {

/// Waits until the descriptor has room or bytes, or has failed, which the next call on it then tells.
/// False when it cannot be waited for.
bool waitFor(int fd, short events) {
    pollfd entry{fd, events, 0};
    while (::poll(&entry, 1, -1) < 0) {
        if (errno != EINTR && errno != EAGAIN)
            return false;
    }
    return true;
}

/// True when a call that failed is worth another try, after a wait where the descriptor does not block.
bool mayRetry(int error, int fd, short events) {
    if (error == EINTR)
        return true;
    return (error == EAGAIN || error == EWOULDBLOCK) && waitFor(fd, events);
}

/// Keeps a write to a closed pipe from ending the process, for this thread alone: what the process does with
/// SIGPIPE elsewhere, and what its children inherit, stays as it is.
class SigpipeBlock {
public:
    SigpipeBlock() {
        sigemptyset(&m_sigpipe);
        sigaddset(&m_sigpipe, SIGPIPE);
        sigset_t pending;
        sigemptyset(&pending);
        sigpending(&pending);
        m_pendingBefore = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_sigpipe, &m_previous);
    }

    ~SigpipeBlock() {
        // Taken off here, or it would strike as soon as the mask falls.
        if (!m_pendingBefore) {
            constexpr timespec noWait{0, 0};
            while (sigtimedwait(&m_sigpipe, nullptr, &noWait) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &m_previous, nullptr);
    }

    SigpipeBlock(const SigpipeBlock&) = delete;
    SigpipeBlock& operator=(const SigpipeBlock&) = delete;

private:
    sigset_t m_sigpipe{};
    sigset_t m_previous{};
    bool m_pendingBefore = false;
};

} // namespace

PosixStreams::PosixStreams()
    : PosixStreams(STDIN_FILENO, STDOUT_FILENO) {}

PosixStreams::PosixStreams(int inputFd, int outputFd)
    : m_inputFd(inputFd)
    , m_outputFd(outputFd) {}

void PosixStreams::endInputOnSignals() {
    if (!m_endSignals)
        m_endSignals = std::make_unique<EndSignals>();
}

int PosixStreams::endDescriptor() const {
    return m_endSignals ? m_endSignals->descriptor() : -1;
}

/// Waits for input; false when a signal asked the process to end.
bool PosixStreams::mayRead() {
    if (!m_endSignals)
        return true;
    std::array<pollfd, 2> entries{{{m_endSignals->descriptor(), POLLIN, 0}, {m_inputFd, POLLIN, 0}}};
    while (::poll(entries.data(), entries.size(), -1) < 0) {
        if (errno != EINTR && errno != EAGAIN)
            return true;
    }
    return entries.front().revents == 0;
}

qsizetype PosixStreams::read(std::span<char> buffer) {
    for (;;) {
        if (!mayRead())
            return 0;
        const ssize_t count = ::read(m_inputFd, buffer.data(), buffer.size());
        if (count >= 0)
            return count;
        if (!mayRetry(errno, m_inputFd, POLLIN))
            return 0;
    }
}

bool PosixStreams::write(QByteArrayView bytes) {
    const std::lock_guard lock(m_writing);
    const SigpipeBlock noSigpipe;
    while (!bytes.isEmpty()) {
        const ssize_t count = ::write(m_outputFd, bytes.data(), static_cast<size_t>(bytes.size()));
        if (count >= 0) {
            bytes = bytes.sliced(count);
        } else if (!mayRetry(errno, m_outputFd, POLLOUT)) {
            return false;
        }
    }
    return true;
}

} // namespace orvane::posix
