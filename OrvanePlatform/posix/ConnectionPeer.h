#pragma once

#include "OrvaneCore/platform/PeerOwner.h"

#include <sys/types.h>

namespace orvane::posix {

/// Asks the kernel about the connection and, where that is not possible, looks it up in its tables.
class ConnectionPeer final : public PeerOwner {
public:
    /// The user whose process this is.
    ConnectionPeer();
    /// `user` is who counts as "us". `kernelAnswers` is whether single sockets may be asked for.
    explicit ConnectionPeer(uid_t user, bool kernelAnswers = true);

    bool isOurs(qintptr socket) override;

private:
    uid_t m_user;
    bool m_kernelAnswers;
};

} // namespace orvane::posix
