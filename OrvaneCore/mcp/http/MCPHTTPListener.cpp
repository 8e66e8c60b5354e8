#include "OrvaneCore/mcp/http/MCPHTTPListener.h"

#include "OrvaneCore/base/PostedCall.h"
#include "OrvaneCore/mcp/http/MCPHTTPRoutes.h"
#include "OrvaneCore/mcp/http/MCPPort.h"

#include <QHostAddress>

#include <utility>

namespace orvane {

namespace {

/// Connections that the kernel keeps until they are accepted.
constexpr int listenBacklog = 1024;
/// None is ever pending, each is taken at once. So this is for accepting, and 0 for not accepting.
constexpr int accepting = 1;

} // namespace

MCPHTTPListener::MCPHTTPListener(const MCPHTTPConnection::Limits& limits, const QByteArray& token,
                                 MessageHandler handleMessage)
    : m_limits(limits)
    , m_token(token)
    , m_handleMessage(std::move(handleMessage)) {
    setListenBacklogSize(listenBacklog);
}

void MCPHTTPListener::post(std::function<void()> step) {
    PostedCall::post(*this, std::move(step));
}

void MCPHTTPListener::customEvent(QEvent* event) {
    PostedCall::run(*event);
}

std::optional<int> MCPHTTPListener::start(int preferredPort, int range) {
    stop();
    const auto listensOn = [this](int port) {
        return listen(QHostAddress(QHostAddress::LocalHost), static_cast<quint16>(port));
    };
    if (!mcp_port::firstAvailable(preferredPort, range, listensOn))
        return std::nullopt;
    return serverPort();
}

void MCPHTTPListener::stop() {
    close();
    m_connections.clear();
    setMaxPendingConnections(accepting);
}

void MCPHTTPListener::reply(ConnectionId id, const QByteArray& bytes) {
    const auto found = m_connections.find(id);
    if (found != m_connections.end())
        found->second->reply(bytes);
}

void MCPHTTPListener::incomingConnection(qintptr socketDescriptor) {
    const ConnectionId id = ++m_lastId;
    m_connections.emplace(id, std::make_unique<MCPHTTPConnection>(
                                  socketDescriptor, m_limits,
                                  MCPHTTPConnection::Events{
                                      [this, id](const MCPHTTPRequest& request) { onRequest(id, request); },
                                      [this, id] { onEnded(id); },
                                  }));
    if (m_connections.size() >= maxConnections)
        setMaxPendingConnections(0);
}

void MCPHTTPListener::onRequest(ConnectionId id, const MCPHTTPRequest& request) {
    const std::optional<MCPHTTPResponse> response = mcp_http_routes::answerAtOnce(request, m_token);
    if (response) {
        reply(id, response->bytes());
    } else {
        m_handleMessage(id, request.body);
    }
}

void MCPHTTPListener::onEnded(ConnectionId id) {
    const auto found = m_connections.find(id);
    // It ends inside a call of its own.
    found->second.release()->deleteLater();
    m_connections.erase(found);
    if (m_connections.size() + 1 == maxConnections) {
        setMaxPendingConnections(accepting);
        resumeAccepting();
    }
}

} // namespace orvane
