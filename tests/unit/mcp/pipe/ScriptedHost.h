#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvane {

/// A server on a free port of the loopback interface that does to each client what the test says, one client
/// after another. It waits for nobody once it is to go.
class ScriptedHost {
public:
    class Client {
    public:
        Client(int fd, int stopFd)
            : m_fd(fd)
            , m_stopFd(stopFd) {}
        ~Client() { ::close(m_fd); }
        Client(const Client&) = delete;
        Client& operator=(const Client&) = delete;

        /// A whole request: the head, and as much more as it says. What has come, when the client leaves.
        QByteArray request() {
            QByteArray received;
            qsizetype wanted = -1;
            while (wanted < 0 || received.size() < wanted) {
                const QByteArray more = read();
                if (more.isEmpty())
                    break;
                received += more;
                const qsizetype head = received.indexOf("\r\n\r\n");
                if (wanted < 0 && head >= 0)
                    wanted = head + 4 + lengthIn(received.first(head));
            }
            return received;
        }

        void send(QByteArrayView bytes) {
            while (!bytes.isEmpty() && !isOver(POLLOUT)) {
                const ssize_t count =
                    ::send(m_fd, bytes.data(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
                if (count <= 0)
                    return;
                bytes = bytes.sliced(count);
            }
        }

        /// Does nothing until the client leaves.
        void hang() {
            while (!read().isEmpty()) {
            }
        }

        /// Does not even read until the test is over.
        void waitForTheEnd() const {
            pollfd entry{m_stopFd, POLLIN, 0};
            ::poll(&entry, 1, -1);
        }

        /// Ends the connection so that the client sees it break rather than end.
        void breakOff() const {
            const linger atOnce{1, 0};
            ::setsockopt(m_fd, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        }

    private:
        static qsizetype lengthIn(const QByteArray& head) {
            const qsizetype at = head.indexOf("Content-Length: ");
            return at < 0 ? 0 : head.mid(at + 16, head.indexOf("\r\n", at) - at - 16).toLongLong();
        }

        /// Waits; true when the test is over.
        bool isOver(short events) const {
            std::array<pollfd, 2> entries{{{m_stopFd, POLLIN, 0}, {m_fd, events, 0}}};
            ::poll(entries.data(), entries.size(), -1);
            return entries.front().revents != 0;
        }

        QByteArray read() {
            QByteArray bytes(qsizetype{256} * 1024, Qt::Uninitialized);
            const ssize_t count =
                isOver(POLLIN) ? 0 : ::recv(m_fd, bytes.data(), static_cast<size_t>(bytes.size()), 0);
            bytes.truncate(std::max<ssize_t>(count, 0));
            return bytes;
        }

        int m_fd;
        int m_stopFd;
    };

    using Script = std::function<void(Client& client)>;

    explicit ScriptedHost(Script script)
        : m_script(std::move(script)) {
        if (::pipe(m_stop.data()) != 0)
            throw std::runtime_error("no pipe");
        m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
            ::listen(m_listener, 16) != 0 ||
            ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
            throw std::runtime_error("no port");
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { serve(); });
    }

    /// A host that reads each request and answers it with these bytes.
    explicit ScriptedHost(const QByteArray& answer)
        : ScriptedHost([this, answer](Client& client) {
            keep(client.request());
            client.send(answer);
        }) {}

    ~ScriptedHost() {
        ::close(m_stop.back());
        m_thread.join();
        ::close(m_stop.front());
        ::close(m_listener);
    }
    ScriptedHost(const ScriptedHost&) = delete;
    ScriptedHost& operator=(const ScriptedHost&) = delete;

    int port() const { return m_port; }
    /// Connections that came.
    int clients() const { return m_clients; }

    void keep(const QByteArray& request) {
        const std::scoped_lock lock(m_mutex);
        m_requests.push_back(request);
    }
    std::vector<QByteArray> requests() const {
        const std::scoped_lock lock(m_mutex);
        return m_requests;
    }

private:
    void serve() {
        for (;;) {
            std::array<pollfd, 2> entries{{{m_stop.front(), POLLIN, 0}, {m_listener, POLLIN, 0}}};
            ::poll(entries.data(), entries.size(), -1);
            if (entries.front().revents != 0)
                return;
            const int fd = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            if (fd < 0)
                continue;
            ++m_clients;
            Client client(fd, m_stop.front());
            m_script(client);
        }
    }

    Script m_script;
    std::array<int, 2> m_stop{-1, -1};
    int m_listener = -1;
    int m_port = 0;
    std::atomic<int> m_clients = 0;
    mutable std::mutex m_mutex;
    std::vector<QByteArray> m_requests;
    std::thread m_thread;
};

/// A reply as the application's host writes it.
inline QByteArray httpReply(QByteArrayView status, QByteArrayView body,
                            QByteArrayView type = "application/json") {
    return "HTTP/1.1 " + status.toByteArray() + "\r\nContent-Type: " + type.toByteArray() +
           "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" +
           body.toByteArray();
}

} // namespace orvane
