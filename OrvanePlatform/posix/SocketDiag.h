#pragma once

#include "OrvanePlatform/posix/TcpTable.h"

#include <optional>

/// Single TCP sockets, asked of the kernel (sock_diag(7)). Its tables tell the same, but to write them it
/// goes through all the places where a connection could be, hundreds of thousands, which takes it
/// milliseconds.
namespace orvane::posix::socket_diag {

struct Answer {
    /// As tcp_table::ownerOfOtherEnd.
    std::optional<quint32> owner;
};

/// Whose the other end of a connection from `ours` to `theirs` is. Nothing where the kernel cannot be asked:
/// it has been built without this, or a sandbox does not let us.
std::optional<Answer> ownerOfOtherEnd(const tcp_table::End& ours, const tcp_table::End& theirs);

} // namespace orvane::posix::socket_diag
