#include "OrvaneCore/mcp/http/MCPHTTPServer.h"

#include "OrvaneCore/mcp/http/MCPHTTPListener.h"
#include "OrvaneCore/mcp/http/MCPHTTPRoutes.h"

#include <QSemaphore>

#include <algorithm>
#include <chrono>
#include <limits>

namespace orvane {

namespace {

/// Tools wait far more than they work, so this is about how many agents may wait at once.
constexpr int workerCount = 32;

std::chrono::milliseconds millisecondsOf(double seconds) {
    constexpr double longest = std::numeric_limits<int>::max();
    return std::chrono::milliseconds(static_cast<int>(std::clamp(seconds * 1000, 0.0, longest)));
}

} // namespace

MCPHTTPServer::MCPHTTPServer(const MCPServer& server, const QString& token, qsizetype maxRequestBytes,
                             double connectionTimeoutSeconds)
    : m_server(server)
    , m_listener(std::make_unique<MCPHTTPListener>(
          MCPHTTPConnection::Limits{maxRequestBytes, millisecondsOf(connectionTimeoutSeconds)},
          token.toUtf8(), [this](quint64 id, const QByteArray& body) { handleMessage(id, body); })) {
    m_workers.setMaxThreadCount(workerCount);
    m_socketThread.setObjectName("com.orvane.mcp.http");
    m_listener->moveToThread(&m_socketThread);
    m_socketThread.start();
}

MCPHTTPServer::~MCPHTTPServer() {
    stop();
    m_workers.waitForDone();
    m_socketThread.quit();
    m_socketThread.wait();
}

std::optional<int> MCPHTTPServer::start(int preferredPort, int range) {
    std::optional<int> bound;
    runOnSocketThread([&] { bound = m_listener->start(preferredPort, range); });
    return bound;
}

void MCPHTTPServer::stop() {
    runOnSocketThread([this] {
        m_listener->stop();
        m_workers.clear();
    });
}

bool MCPHTTPServer::waitForTools(std::chrono::milliseconds patience) {
    return m_workers.waitForDone(static_cast<int>(std::max<qint64>(0, patience.count())));
}

void MCPHTTPServer::runOnSocketThread(const std::function<void()>& step) {
    QSemaphore done;
    m_listener->post([&] {
        step();
        done.release();
    });
    done.acquire();
}

void MCPHTTPServer::handleMessage(quint64 connectionId, const QByteArray& body) {
    m_workers.start([this, connectionId, body] {
        const QByteArray bytes = mcp_http_routes::answer(m_server, body).bytes();
        m_listener->post([this, connectionId, bytes] { m_listener->reply(connectionId, bytes); });
    });
}

} // namespace orvane
