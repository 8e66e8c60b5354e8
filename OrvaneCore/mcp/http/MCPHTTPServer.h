#pragma once

#include <QByteArray>
#include <QString>
#include <QThread>
#include <QThreadPool>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace orvane {

class MCPHTTPListener;
class MCPServer;

/// Offers an MCPServer to the programs of this machine over HTTP/1.1 on the loopback interface: GET /health,
/// and POST /mcp with a bearer token and one message as its body. One request a connection.
/// Messages run side by side on threads of the host's own; more than it has threads wait for one. A message
/// that has come in whole is carried out even when its client does not wait for the reply.
/// Construction, calls and destruction on one thread, and a QCoreApplication exists throughout.
class MCPHTTPServer {
public:
    /// `server` outlives the host. An empty token lets no message in. `maxRequestBytes` limits a request with
    /// its head. A connection is dropped after `connectionTimeoutSeconds`, answered or not.
    MCPHTTPServer(const MCPServer& server, const QString& token, qsizetype maxRequestBytes,
                  double connectionTimeoutSeconds);

    /// Stops, and waits until every tool that still runs has ended, so no tool may wait for this thread.
    ~MCPHTTPServer();

    MCPHTTPServer(const MCPHTTPServer&) = delete;
    MCPHTTPServer& operator=(const MCPHTTPServer&) = delete;

    /// Listens on the first port of `range`, from `preferredPort` upwards, that nobody uses, and gives it;
    /// nothing when there is none. A preferred port of 0 gives any free one. Stops first where it listens
    /// already.
    std::optional<int> start(int preferredPort, int range);

    /// Stops listening, ends all connections and forgets the messages that wait for a thread. Does not wait
    /// for tools: they run to their end, and their replies are dropped. May be followed by another start.
    void stop();

    /// After `stop`: waits for tools that still run, at most that long. False when there are some left.
    bool waitForTools(std::chrono::milliseconds patience);

private:
    /// Returns when the step is done.
    void runOnSocketThread(const std::function<void()>& step);
    void handleMessage(quint64 connectionId, const QByteArray& body);

    const MCPServer& m_server;
    QThreadPool m_workers;
    std::unique_ptr<MCPHTTPListener> m_listener;
    /// Runs the listener and its sockets.
    QThread m_socketThread;
};

} // namespace orvane
