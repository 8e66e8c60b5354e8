#include "OrvaneCore/mcp/pipe/MCPHTTPClient.h"

#include "OrvaneCore/mcp/MCPEndpointInfo.h"
#include "OrvaneCore/mcp/pipe/MCPHTTPReply.h"
#include "OrvaneCore/platform/PeerOwner.h"

#include <QDeadlineTimer>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QUrl>

#include <algorithm>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int httpPort = 80;
constexpr int okStatus = 200;
constexpr int acceptedStatus = 202;

/// One request and its reply.
class Exchange {
public:
    Exchange(PeerOwner& peerOwner, std::chrono::milliseconds timeout)
        : m_peerOwner(peerOwner)
        , m_deadline(timeout) {
        m_socket.setProxy(QNetworkProxy::NoProxy);
    }

    /// `head`: the request line and headers, without those that tell of the connection.
    /// True when a reply's head has come.
    bool begin(const QUrl& url, const QByteArray& head, QByteArrayView body) {
        m_socket.connectToHost(url.host(QUrl::FullyEncoded), static_cast<quint16>(url.port(httpPort)));
        // Asked when the connection stands: who listened there before may be gone by then.
        if (!m_socket.waitForConnected(remaining()) || !m_peerOwner.isOurs(m_socket.socketDescriptor()))
            return false;
        m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        m_socket.write(head + "Host: " + url.authority(QUrl::FullyEncoded | QUrl::RemoveUserInfo).toLatin1() +
                       "\r\nConnection: close\r\n\r\n");
        m_socket.write(body.data(), body.size());
        while (m_socket.bytesToWrite() > 0) {
            // A host may answer and close before it has read everything.
            if (!m_socket.waitForBytesWritten(remaining()))
                break;
        }
        return readWhile(MCPHTTPReply::State::head);
    }

    /// After `begin`: true when the reply has come whole.
    bool finish() {
        return readWhile(MCPHTTPReply::State::body) && m_reply.state() == MCPHTTPReply::State::complete;
    }

    const MCPHTTPReply& reply() const { return m_reply; }

private:
    int remaining() const { return static_cast<int>(m_deadline.remainingTime()); }

    /// False when the reply gets no further, or is none.
    bool readWhile(MCPHTTPReply::State state) {
        while (m_reply.state() == state) {
            if (m_socket.bytesAvailable() == 0 && !m_socket.waitForReadyRead(remaining()))
                return false;
            // One that never stops sending does not outlast the limit either.
            if (m_deadline.hasExpired())
                return false;
            m_reply.take(m_socket.readAll());
        }
        return m_reply.state() != MCPHTTPReply::State::malformed;
    }

    PeerOwner& m_peerOwner;
    QDeadlineTimer m_deadline;
    QTcpSocket m_socket;
    MCPHTTPReply m_reply;
};

/// Nothing when it is not an address that a message can be posted to.
std::optional<QUrl> addressOf(const MCPEndpointInfo& info) {
    const QUrl url(info.url, QUrl::StrictMode);
    const bool usable = url.isValid() && url.scheme() == u"http"_s && !url.host().isEmpty();
    return usable ? std::optional(url) : std::nullopt;
}

QByteArray targetOf(const QUrl& url) {
    const QString path = url.path(QUrl::FullyEncoded);
    const QString query = url.query(QUrl::FullyEncoded);
    return ((path.isEmpty() ? u"/"_s : path) + (query.isEmpty() ? QString() : u'?' + query)).toLatin1();
}

/// These would end the header, and let the rest pass for headers of its own.
bool fitsHeader(const QByteArray& value) {
    return std::none_of(value.begin(), value.end(),
                        [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

} // namespace

bool MCPHTTPClient::isHealthy(const MCPEndpointInfo& info, std::chrono::milliseconds timeout) {
    std::optional<QUrl> url = addressOf(info);
    if (!url)
        return false;
    url->setPath(u"/health"_s);
    Exchange exchange(m_peerOwner, timeout);
    return exchange.begin(*url, "GET " + targetOf(*url) + " HTTP/1.1\r\n", {}) &&
           exchange.reply().status() / 100 == 2;
}

std::optional<QByteArray> MCPHTTPClient::forward(QByteArrayView line, const MCPEndpointInfo& info,
                                                 std::chrono::milliseconds timeout) {
    const std::optional<QUrl> url = addressOf(info);
    const QByteArray token = info.token.toUtf8();
    if (!url || !fitsHeader(token))
        return std::nullopt;
    Exchange exchange(m_peerOwner, timeout);
    const bool answered = exchange.begin(
        *url,
        "POST " + targetOf(*url) + " HTTP/1.1\r\nContent-Type: application/json\r\nAuthorization: Bearer " +
            token + "\r\nContent-Length: " + QByteArray::number(line.size()) + "\r\n",
        line);
    const int status = exchange.reply().status();
    if (!answered || (status != okStatus && status != acceptedStatus) || !exchange.finish())
        return std::nullopt;
    if (status == acceptedStatus)
        return QByteArray();
    const QByteArray& body = exchange.reply().body();
    return QUtf8StringView(body).isValidUtf8() ? std::optional(body) : std::nullopt;
}

} // namespace orvane
