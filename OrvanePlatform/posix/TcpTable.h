#pragma once

#include <QByteArrayView>
#include <QtGlobal>

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

/// The kernel's tables of TCP sockets as text, /proc/net/tcp and /proc/net/tcp6 (proc(5)).
namespace orvane::posix::tcp_table {

/// Bytes of an IPv6 address in their order; one of IPv4 is mapped, ::ffff:127.0.0.1.
using Address = std::array<quint8, 16>;
/// Where the bytes of IPv4 begin in a mapped one.
constexpr std::size_t mappedPrefix = 12;

Address mappedAddress(const std::array<quint8, 4>& ipv4);

/// Whether it is one of IPv4.
bool isMapped(const Address& address);

/// 127.0.0.0/8 and ::1.
bool isLoopback(const Address& address);

struct End {
    Address address{};
    quint16 port = 0;

    bool operator==(const End&) const = default;
};

struct Row {
    End local;
    End remote;
    bool listens = false;
    /// The user id; tells nothing where no program has the socket.
    quint32 owner = 0;
    /// Whether a program has the socket: it has been accepted, and not closed.
    bool isHeld = false;

    bool operator==(const Row&) const = default;
};

/// The rows of a table of either kind; what is no row is passed over.
std::vector<Row> parse(QByteArrayView table);

/// Whose the other end of a connection is that leads from `ours` to `theirs`, both on this machine, by the
/// rows of both tables: whoever has accepted it, and until then whoever listens there, on that address before
/// any address. Nothing where there is no such socket, or they are several users'.
std::optional<quint32> ownerOfOtherEnd(const std::vector<Row>& rows, const End& ours, const End& theirs);

} // namespace orvane::posix::tcp_table
