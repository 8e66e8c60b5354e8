#pragma once

#include "OrvaneCore/platform/PeerOwner.h"

#include <sys/types.h>

namespace orvane::posix {

/// Looks a connection up in the kernel's tables of sockets.
class ConnectionPeer final : public PeerOwner {
public:
    /// The user whose process this is.
    ConnectionPeer();
    /// `user` is who counts as "us".
    explicit ConnectionPeer(uid_t user);

    bool isOurs(qintptr socket) override;

private:
    uid_t m_user;
};

} // namespace orvane::posix
