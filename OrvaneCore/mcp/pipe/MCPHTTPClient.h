#pragma once

#include "OrvaneCore/mcp/pipe/HostClient.h"

namespace orvane {

class PeerOwner;

/// Speaks HTTP/1.1 with the host, one exchange a connection, with no proxy between. Follows no redirect and
/// tries nothing again. A host that is not our own user's gets no byte and counts as none: the address may be
/// an old one, at which somebody else has come to listen. Where the address names a machine instead of giving
/// its number, finding it may take as long as the system's resolver does.
class MCPHTTPClient final : public HostClient {
public:
    /// `peerOwner` outlives the client and is asked on each connection.
    explicit MCPHTTPClient(PeerOwner& peerOwner)
        : m_peerOwner(peerOwner) {}

    bool isHealthy(const MCPEndpointInfo& info, std::chrono::milliseconds timeout) override;
    std::optional<QByteArray> forward(QByteArrayView line, const MCPEndpointInfo& info,
                                      std::chrono::milliseconds timeout) override;

private:
    PeerOwner& m_peerOwner;
};

} // namespace orvane
