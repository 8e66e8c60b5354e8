#include "OrvaneCore/mcp/http/MCPHTTPConnection.h"

#include "OrvaneCore/mcp/http/MCPHTTPRoutes.h"

#include <QVariant>

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

constexpr qint64 readBytes = qint64{1024} * 1024;
/// Small enough that one connection's copying does not hold up the others.
constexpr qsizetype writeBytes = qsizetype{256} * 1024;
/// A client that sends on although it has its reply is listened to until it pauses this long.
constexpr std::chrono::milliseconds quietTime(500);

} // namespace

MCPHTTPConnection::MCPHTTPConnection(qintptr socketDescriptor, const Limits& limits, Events events)
    : m_limits(limits)
    , m_events(std::move(events))
    , m_socket(QAbstractSocket::TcpSocket, nullptr)
    , m_reader(limits.requestBytes) {
    connect(&m_socket, &QAbstractSocket::readyRead, this, &MCPHTTPConnection::onReadyRead);
    connect(&m_socket, &QAbstractSocket::bytesWritten, this, &MCPHTTPConnection::sendMore);
    connect(&m_socket, &QAbstractSocket::disconnected, this, &MCPHTTPConnection::end);
    for (QTimer* timer : {&m_life, &m_quiet}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
        connect(timer, &QTimer::timeout, this, &MCPHTTPConnection::end);
    }
    m_life.start(limits.life);

    // Not a QTcpSocket: that one always has a buffer, reads ahead into it, and closes itself when the client
    // has ended its side, although such a client still waits for its reply.
    m_socket.setSocketDescriptor(socketDescriptor, QAbstractSocket::ConnectedState,
                                 QIODevice::ReadWrite | QIODevice::Unbuffered);
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, QVariant(1));
}

MCPHTTPConnection::~MCPHTTPConnection() {
    // The socket's own end would be told to what is left of this object.
    m_socket.disconnect(this);
}

void MCPHTTPConnection::onReadyRead() {
    if (m_state == State::receiving) {
        receive();
    } else if (m_state == State::discarding) {
        discard();
    }
}

void MCPHTTPConnection::receive() {
    using ReaderState = MCPHTTPRequestReader::State;

    // Told that there is something to read, and there is no byte: the end of the client's side. It is left
    // unread, because reading it would close the socket.
    const qint64 available = m_socket.bytesAvailable();
    if (available == 0) {
        m_state = State::answering;
        reply(mcp_http_routes::badRequest().bytes());
        return;
    }
    const QByteArray piece = m_socket.read(std::min(available, readBytes));
    if (piece.isEmpty()) {
        end();
        return;
    }
    switch (m_reader.append(piece)) {
    case ReaderState::incomplete:
        break;
    case ReaderState::complete:
        m_state = State::answering;
        m_events.requested(m_reader.take());
        break;
    case ReaderState::tooLarge:
        m_cutShort = true;
        m_state = State::answering;
        reply(mcp_http_routes::payloadTooLarge().bytes());
        break;
    }
}

void MCPHTTPConnection::reply(const QByteArray& bytes) {
    if (m_state != State::answering)
        return;
    m_state = State::replying;
    m_reply = bytes;
    sendMore();
}

void MCPHTTPConnection::sendMore() {
    while (m_state == State::replying && m_socket.bytesToWrite() == 0) {
        const qsizetype rest = m_reply.size() - m_sent;
        if (rest == 0) {
            replySent();
            return;
        }
        const qint64 count = m_socket.write(m_reply.constData() + m_sent, std::min(rest, writeBytes));
        if (count < 0) {
            end();
            return;
        }
        m_sent += count;
    }
}

void MCPHTTPConnection::replySent() {
    const bool unread = m_socket.bytesAvailable() > 0;
    if (!unread && !m_cutShort) {
        end();
        return;
    }
    // To close a socket with unread input resets the connection, and the client may lose the reply.
    m_state = State::discarding;
    m_quiet.start(quietTime);
    if (unread)
        discard();
}

void MCPHTTPConnection::discard() {
    const qint64 available = m_socket.bytesAvailable();
    m_discarded += available;
    if (available == 0 || m_discarded > m_limits.requestBytes) {
        end();
        return;
    }
    m_socket.read(std::min(available, readBytes));
    m_quiet.start(quietTime);
}

void MCPHTTPConnection::end() {
    if (m_state == State::ended)
        return;
    m_state = State::ended;
    m_life.stop();
    m_quiet.stop();
    m_socket.abort();
    m_reply = QByteArray();
    m_events.ended();
}

} // namespace orvane
