#include "OrvanePlatform/posix/SocketDiag.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include <arpa/inet.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvane::posix {

namespace {

using tcp_table::End;

constexpr quint32 allStates = std::numeric_limits<quint32>::max();

struct Request {
    nlmsghdr head;
    inet_diag_req_v2 body;
};

/// What the kernel says of one socket.
struct Found {
    bool exists = false;
    bool listens = false;
    bool isHeld = false;
    quint32 owner = 0;
};

class Netlink {
public:
    Netlink()
        : m_fd(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_SOCK_DIAG)) {}
    ~Netlink() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Netlink(const Netlink&) = delete;
    Netlink& operator=(const Netlink&) = delete;

    /// The connection from `remote` to `local` or, where there is none, who listens for it. Nothing where it
    /// cannot be asked.
    std::optional<Found> find(const End& local, const End& remote) const;

private:
    int m_fd;
};

/// Where an address stands in a request, as the kernel wants it: that of IPv4 alone, not mapped.
void writeAddress(bool isIpv4, const tcp_table::Address& address, __be32* words) {
    const std::size_t begin = isIpv4 ? tcp_table::mappedPrefix : 0;
    std::memcpy(words, address.data() + begin, address.size() - begin);
}

Request requestFor(const End& local, const End& remote) {
    Request request{};
    request.head.nlmsg_len = sizeof request;
    request.head.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    request.head.nlmsg_flags = NLM_F_REQUEST;
    const bool isIpv4 = tcp_table::isMapped(local.address);
    request.body.sdiag_family = isIpv4 ? AF_INET : AF_INET6;
    request.body.sdiag_protocol = IPPROTO_TCP;
    request.body.idiag_states = allStates;
    inet_diag_sockid& id = request.body.id;
    id.idiag_sport = htons(local.port);
    id.idiag_dport = htons(remote.port);
    writeAddress(isIpv4, local.address, &id.idiag_src[0]);
    writeAddress(isIpv4, remote.address, &id.idiag_dst[0]);
    id.idiag_cookie[0] = id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
    return request;
}

std::optional<Found> Netlink::find(const End& local, const End& remote) const {
    const Request request = requestFor(local, remote);
    if (m_fd < 0 || ::send(m_fd, &request, sizeof request, 0) != sizeof request)
        return std::nullopt;
    // The kernel has answered when `send` returns.
    alignas(nlmsghdr) std::array<char, 4096> answer{};
    const ssize_t size = ::recv(m_fd, answer.data(), answer.size(), MSG_DONTWAIT);
    nlmsghdr head{};
    if (size < static_cast<ssize_t>(sizeof head))
        return std::nullopt;
    std::memcpy(&head, answer.data(), sizeof head);
    const char* body = answer.data() + NLMSG_HDRLEN;
    const ssize_t bodySize = size - NLMSG_HDRLEN;
    if (head.nlmsg_type == NLMSG_ERROR) {
        nlmsgerr error{};
        if (bodySize < static_cast<ssize_t>(sizeof error))
            return std::nullopt;
        std::memcpy(&error, body, sizeof error);
        return error.error == -ENOENT ? std::optional(Found{}) : std::nullopt;
    }
    inet_diag_msg socket{};
    if (head.nlmsg_type != SOCK_DIAG_BY_FAMILY || bodySize < static_cast<ssize_t>(sizeof socket))
        return std::nullopt;
    std::memcpy(&socket, body, sizeof socket);
    return Found{.exists = true,
                 .listens = socket.idiag_state == TCP_LISTEN,
                 .isHeld = socket.idiag_inode != 0,
                 .owner = socket.idiag_uid};
}

} // namespace

std::optional<socket_diag::Answer> socket_diag::ownerOfOtherEnd(const End& ours, const End& theirs) {
    const Netlink netlink;
    const std::optional<Found> connection = netlink.find(theirs, ours);
    if (!connection)
        return std::nullopt;
    if (connection->exists && !connection->listens && connection->isHeld)
        return Answer{connection->owner};
    // From nowhere there is no connection, only who listens.
    const End nowhere{
        tcp_table::isMapped(theirs.address) ? tcp_table::mappedAddress({}) : tcp_table::Address{}, 0};
    const std::optional<Found> listener = netlink.find(theirs, nowhere);
    if (!listener)
        return std::nullopt;
    return listener->listens ? Answer{listener->owner} : Answer{};
}

} // namespace orvane::posix
