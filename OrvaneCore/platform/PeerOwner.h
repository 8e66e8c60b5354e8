#pragma once

#include <QtGlobal>

namespace orvane {

/// Tells whose the program at the other end of a connection within this machine is.
class PeerOwner {
public:
    virtual ~PeerOwner() = default;

    /// Whether the other end of a connected TCP socket belongs to the user that this process runs as: the end
    /// itself or, while nobody has accepted it, the socket that listens there. False where it cannot be told,
    /// and for an end that is not on the loopback interface. `socket` is what the system knows it by. Any
    /// thread.
    virtual bool isOurs(qintptr socket) = 0;

protected:
    PeerOwner() = default;
    PeerOwner(const PeerOwner&) = default;
    PeerOwner& operator=(const PeerOwner&) = default;
};

} // namespace orvane
