#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <chrono>
#include <optional>

namespace orvane {

struct MCPEndpointInfo;

/// The way to the running application's local HTTP host. Calls block, at most as long as their time limit for
/// the whole exchange; a failure of any kind is the same as no host. One thread at a time.
class HostClient {
public:
    virtual ~HostClient() = default;

    /// True when a host answers there and is well.
    virtual bool isHealthy(const MCPEndpointInfo& info, std::chrono::milliseconds timeout) = 0;

    /// Hands one JSON-RPC message in UTF-8 to the host and gives its reply in UTF-8, which is empty where
    /// there is none to give. Nothing when the host is lost; the message may have arrived all the same. A
    /// message is never sent twice.
    virtual std::optional<QByteArray> forward(QByteArrayView line, const MCPEndpointInfo& info,
                                              std::chrono::milliseconds timeout) = 0;

protected:
    HostClient() = default;
    HostClient(const HostClient&) = default;
    HostClient& operator=(const HostClient&) = default;
};

} // namespace orvane
