#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QDeadlineTimer>

#include <array>
#include <cerrno>
#include <optional>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvane::test {

/// A TCP connection to a port of 127.0.0.1, for what a proper HTTP client would not do.
class RawConnection {
public:
    explicit RawConnection(int port, int receiveBufferBytes = 0)
        : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        if (receiveBufferBytes > 0)
            ::setsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &receiveBufferBytes, sizeof receiveBufferBytes);
        const sockaddr_in address = addressOf(port);
        m_connected = ::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    ~RawConnection() { close(); }
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    static sockaddr_in addressOf(int port) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        return address;
    }

    bool connected() const { return m_connected; }

    /// False when the other side takes no more.
    bool send(const QByteArray& bytes) {
        qsizetype sent = 0;
        while (sent < bytes.size()) {
            const ssize_t count = ::send(m_socket, bytes.constData() + sent,
                                         static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
            if (count <= 0)
                return false;
            sent += count;
        }
        return true;
    }

    /// Ends this side; the other may still send.
    void endSending() { ::shutdown(m_socket, SHUT_WR); }

    void close() {
        if (m_socket >= 0)
            ::close(m_socket);
        m_socket = -1;
    }

    /// Closes with a reset, as when a process is killed with unread input.
    void reset() {
        const linger noWait{1, 0};
        ::setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &noWait, sizeof noWait);
        close();
    }

    /// What comes next, at most `maxBytes`: empty at the end, nothing when nothing comes in time.
    std::optional<QByteArray> read(int maxBytes = 65536, int deadlineMs = 30000) {
        pollfd waiting{m_socket, POLLIN, 0};
        if (::poll(&waiting, 1, deadlineMs) != 1)
            return std::nullopt;
        QByteArray bytes(maxBytes, Qt::Uninitialized);
        const ssize_t count = ::recv(m_socket, bytes.data(), static_cast<size_t>(maxBytes), 0);
        m_wasReset = count < 0 && errno == ECONNRESET;
        bytes.resize(count < 0 ? 0 : count);
        return bytes;
    }

    /// Everything until the other side ends the connection; nothing when it does not in time.
    std::optional<QByteArray> readToEnd(int deadlineMs = 30000) {
        const QDeadlineTimer deadline(deadlineMs);
        QByteArray all;
        for (;;) {
            const std::optional<QByteArray> piece =
                read(1024 * 1024, static_cast<int>(deadline.remainingTime()));
            if (!piece)
                return std::nullopt;
            if (piece->isEmpty())
                return all;
            all += *piece;
        }
    }

    /// Whether the last read ended with a reset.
    bool wasReset() const { return m_wasReset; }

private:
    int m_socket;
    bool m_connected = false;
    bool m_wasReset = false;
};

} // namespace orvane::test
