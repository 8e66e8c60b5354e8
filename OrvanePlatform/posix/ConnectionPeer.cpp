#include "OrvanePlatform/posix/ConnectionPeer.h"

#include "OrvanePlatform/posix/SocketDiag.h"
#include "OrvanePlatform/posix/TcpTable.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <bit>
#include <optional>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvane::posix {

using namespace Qt::StringLiterals;

namespace {

using tcp_table::End;
using tcp_table::Row;

std::optional<End> endOf(const sockaddr_storage& name) {
    if (name.ss_family == AF_INET) {
        const auto& ipv4 = reinterpret_cast<const sockaddr_in&>(name);
        return End{tcp_table::mappedAddress(std::bit_cast<std::array<quint8, 4>>(ipv4.sin_addr)),
                   ntohs(ipv4.sin_port)};
    }
    if (name.ss_family == AF_INET6) {
        const auto& ipv6 = reinterpret_cast<const sockaddr_in6&>(name);
        return End{std::bit_cast<tcp_table::Address>(ipv6.sin6_addr), ntohs(ipv6.sin6_port)};
    }
    return std::nullopt;
}

/// `ask` is getsockname or getpeername.
template <typename Ask>
std::optional<End> nameOf(int socket, Ask ask) {
    sockaddr_storage name{};
    socklen_t size = sizeof name;
    return ask(socket, reinterpret_cast<sockaddr*>(&name), &size) == 0 ? endOf(name) : std::nullopt;
}

std::vector<Row> readTable(const QString& path) {
    QFile file(path);
    // Its size is told as 0, and all of it is read all the same.
    return file.open(QIODevice::ReadOnly) ? tcp_table::parse(file.readAll()) : std::vector<Row>();
}

} // namespace

ConnectionPeer::ConnectionPeer()
    : ConnectionPeer(::geteuid()) {}

ConnectionPeer::ConnectionPeer(uid_t user, bool kernelAnswers)
    : m_user(user)
    , m_kernelAnswers(kernelAnswers) {}

bool ConnectionPeer::isOurs(qintptr socket) {
    const auto descriptor = static_cast<int>(socket);
    const std::optional<End> ours = nameOf(descriptor, ::getsockname);
    const std::optional<End> theirs = nameOf(descriptor, ::getpeername);
    if (!ours || !theirs || !tcp_table::isLoopback(theirs->address))
        return false;
    const std::optional<socket_diag::Answer> answer =
        m_kernelAnswers ? socket_diag::ownerOfOtherEnd(*ours, *theirs) : std::nullopt;
    if (answer)
        return answer->owner == m_user;
    std::vector<Row> rows = readTable(u"/proc/net/tcp"_s);
    // A socket of IPv6 can take connections over IPv4.
    const std::vector<Row> ipv6Rows = readTable(u"/proc/net/tcp6"_s);
    rows.insert(rows.end(), ipv6Rows.begin(), ipv6Rows.end());
    return tcp_table::ownerOfOtherEnd(rows, *ours, *theirs) == m_user;
}

} // namespace orvane::posix
