#pragma once

#include "OrvaneCore/mcp/http/MCPHTTPConnection.h"

#include <QByteArray>
#include <QTcpServer>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>

namespace orvane {

/// The socket side of the local host: the listening socket and all connections. Lives in a thread with an
/// event loop; all calls but `post` are made there.
class MCPHTTPListener final : public QTcpServer {
public:
    /// Connections beyond these wait in the kernel until one ends. Well below the number of descriptors that
    /// a process usually may have, because a process without any more has no way to turn a connection down.
    static constexpr std::size_t maxConnections = 800;

    using ConnectionId = quint64;
    /// Takes a message that is to be handled; `reply` is to be called for it, then or later.
    using MessageHandler = std::function<void(ConnectionId, const QByteArray& body)>;

    MCPHTTPListener(const MCPHTTPConnection::Limits& limits, const QByteArray& token,
                    MessageHandler handleMessage);

    /// Runs the step in the listener's thread, soon. Any thread.
    void post(std::function<void()> step);

    /// Stops and then listens on the IPv4 loopback interface, on the first port of `range`, from
    /// `preferredPort` upwards, that can be had, and gives it; nothing when there is none. Port 0 is any free
    /// one.
    std::optional<int> start(int preferredPort, int range);

    /// Stops listening and ends every connection.
    void stop();

    /// Sends a reply; one for a connection that has gone is dropped.
    void reply(ConnectionId id, const QByteArray& bytes);

protected:
    void customEvent(QEvent* event) override;
    void incomingConnection(qintptr socketDescriptor) override;

private:
    void onRequest(ConnectionId id, const MCPHTTPRequest& request);
    void onEnded(ConnectionId id);

    const MCPHTTPConnection::Limits m_limits;
    const QByteArray m_token;
    const MessageHandler m_handleMessage;
    ConnectionId m_lastId = 0;
    std::unordered_map<ConnectionId, std::unique_ptr<MCPHTTPConnection>> m_connections;
};

} // namespace orvane
