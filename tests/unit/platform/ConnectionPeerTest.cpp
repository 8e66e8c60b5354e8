#include "OrvanePlatform/posix/ConnectionPeer.h"

#include "OrvanePlatform/posix/SocketDiag.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvane::posix {
namespace {

/// A descriptor of its own.
class Socket {
public:
    explicit Socket(int fd)
        : m_fd(fd) {
        if (fd < 0)
            throw std::runtime_error("no socket");
    }
    ~Socket() { close(); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    int fd() const { return m_fd; }
    void close() {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
    }

private:
    int m_fd;
};

in6_addr mapped(in_addr_t address) {
    in6_addr result{};
    result.s6_addr[10] = result.s6_addr[11] = 0xff;
    reinterpret_cast<in_addr_t&>(result.s6_addr[12]) = htonl(address);
    return result;
}

/// Listens on a free port of one address, and connects to it.
/// The parameter is whether the kernel is asked for single sockets, or its tables are read.
class ConnectionPeerTest : public testing::TestWithParam<bool> {
protected:
    Socket listen(in_addr_t address) {
        Socket socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = htonl(address);
        bindAndListen(socket, name);
        m_port = ntohs(name.sin_port);
        return Socket(::fcntl(socket.fd(), F_DUPFD_CLOEXEC, 0));
    }

    /// Takes connections over IPv4 as well.
    Socket listen6(const in6_addr& address) {
        Socket socket(::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const int off = 0;
        ::setsockopt(socket.fd(), IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
        sockaddr_in6 name{};
        name.sin6_family = AF_INET6;
        name.sin6_addr = address;
        bindAndListen(socket, name);
        m_port = ntohs(name.sin6_port);
        return Socket(::fcntl(socket.fd(), F_DUPFD_CLOEXEC, 0));
    }

    Socket connected(in_addr_t address = INADDR_LOOPBACK) const {
        Socket socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = htonl(address);
        name.sin_port = htons(m_port);
        EXPECT_EQ(::connect(socket.fd(), reinterpret_cast<sockaddr*>(&name), sizeof name), 0);
        return Socket(::fcntl(socket.fd(), F_DUPFD_CLOEXEC, 0));
    }

    static bool isOurs(const Socket& socket) {
        return ConnectionPeer(::geteuid(), GetParam()).isOurs(socket.fd());
    }
    static bool isSomebodyElses(const Socket& socket) {
        return ConnectionPeer(::geteuid() + 1, GetParam()).isOurs(socket.fd());
    }

private:
    template <typename Name>
    static void bindAndListen(const Socket& socket, Name& name) {
        socklen_t size = sizeof name;
        ASSERT_EQ(::bind(socket.fd(), reinterpret_cast<sockaddr*>(&name), size), 0);
        ASSERT_EQ(::listen(socket.fd(), 5), 0);
        ASSERT_EQ(::getsockname(socket.fd(), reinterpret_cast<sockaddr*>(&name), &size), 0);
    }

    in_port_t m_port = 0;
};

TEST_P(ConnectionPeerTest, IsWhoListensUntilSomebodyAccepts) {
    Socket listener = listen(INADDR_LOOPBACK);
    const Socket client = connected();
    EXPECT_TRUE(isOurs(client));
    EXPECT_FALSE(isSomebodyElses(client));
    const Socket accepted(::accept(listener.fd(), nullptr, nullptr));
    EXPECT_TRUE(isOurs(client));
    EXPECT_FALSE(isSomebodyElses(client));
    listener.close();
    EXPECT_TRUE(isOurs(client)) << "a host may serve one client only";
    EXPECT_FALSE(isSomebodyElses(client));
}

TEST_P(ConnectionPeerTest, KnowsListenersOnAllAddresses) {
    const Socket listener = listen(INADDR_ANY);
    EXPECT_TRUE(isOurs(connected()));
    EXPECT_TRUE(isOurs(connected(INADDR_LOOPBACK + 1)));
}

TEST_P(ConnectionPeerTest, KnowsListenersOfIpv6) {
    {
        const Socket listener = listen6(in6addr_any);
        const Socket client = connected();
        EXPECT_TRUE(isOurs(client));
        EXPECT_FALSE(isSomebodyElses(client));
        const Socket accepted(::accept(listener.fd(), nullptr, nullptr));
        EXPECT_TRUE(isOurs(client));
    }
    const Socket listener = listen6(mapped(INADDR_LOOPBACK));
    EXPECT_TRUE(isOurs(connected()));
}

TEST_P(ConnectionPeerTest, IsNobodysWhereThereIsNoConnection) {
    const Socket listener = listen(INADDR_LOOPBACK);
    EXPECT_FALSE(isOurs(listener));
    EXPECT_FALSE(ConnectionPeer(::geteuid(), GetParam()).isOurs(-1));
    const Socket file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_FALSE(isOurs(file));
}

TEST_P(ConnectionPeerTest, IsNobodysWhenTheHostIsGone) {
    Socket listener = listen(INADDR_LOOPBACK);
    const Socket client = connected();
    listener.close();
    EXPECT_FALSE(isOurs(client));
}

/// Otherwise half of these tests would test the other half's way.
TEST(SocketDiag, ServesHere) {
    const tcp_table::End nobody{tcp_table::mappedAddress({127, 0, 0, 1}), 1};
    const auto answer = socket_diag::ownerOfOtherEnd(nobody, nobody);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->owner, std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(All, ConnectionPeerTest, testing::Bool());

} // namespace
} // namespace orvane::posix
