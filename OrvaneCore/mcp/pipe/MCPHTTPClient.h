#pragma once

#include "OrvaneCore/mcp/pipe/HostClient.h"

namespace orvane {

/// Speaks HTTP/1.1 with the host, one exchange a connection, with no proxy between. Follows no redirect and
/// tries nothing again. Where the address names a machine instead of giving its number, finding it may take
/// as long as the system's resolver does.
class MCPHTTPClient final : public HostClient {
public:
    bool isHealthy(const MCPEndpointInfo& info, std::chrono::milliseconds timeout) override;
    std::optional<QByteArray> forward(QByteArrayView line, const MCPEndpointInfo& info,
                                      std::chrono::milliseconds timeout) override;
};

} // namespace orvane
