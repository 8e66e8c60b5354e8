#pragma once

#include "OrvaneCore/mcp/MCPEndpointInfo.h"

#include <QLatin1String>
#include <QString>

#include <optional>

namespace orvane {

class SecretStore;

/// The bearer token, and the file by which clients find the running application's local HTTP host. The file
/// lies in the home folder whatever the user chose as the data folder. Failures are passed over in silence.
/// Any thread.
class MCPEndpoint {
public:
    /// The first port the host tries.
    static constexpr int defaultPort = 47600;
    /// The token's key among the secrets.
    static constexpr QLatin1String tokenKey{"mcpHttpToken"};

    /// `homeDirectory` is an absolute path. The store outlives this object and is asked for nothing but the
    /// token.
    MCPEndpoint(const QString& homeDirectory, SecretStore& secrets);

    /// The stored token, or a new one that is stored from now on. Where the store takes nothing each call
    /// gives another. 64 lower-case hexadecimal digits, unless something else was stored.
    QString token();

    /// A new token, which takes the place of the former one.
    QString regenerateToken();

    /// ~/.orvane/mcp-endpoint.json.
    QString filePath() const { return m_filePath; }

    /// Makes the file with the folders above it, or replaces it as a whole. No other user can read it at any
    /// moment.
    void write(const MCPEndpointInfo& info) const;

    /// What the file says, whether or not that application still runs. Nothing when there is no such file or
    /// it holds anything else.
    std::optional<MCPEndpointInfo> read() const;

    void remove() const;

private:
    SecretStore& m_secrets;
    QString m_filePath;
};

} // namespace orvane
