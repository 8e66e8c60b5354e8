#pragma once

#include "OrvaneCore/mcp/http/MCPHTTPRequestReader.h"

#include <QAbstractSocket>
#include <QByteArray>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>

namespace orvane {

struct MCPHTTPRequest;
struct MCPHTTPResponse;

/// One connection of the local host, from its first byte to its end: a request, a reply, and nothing after
/// it. Lives in the thread of the sockets.
class MCPHTTPConnection final : public QObject {
public:
    struct Limits {
        /// A whole request's, head and body.
        qsizetype requestBytes;
        /// After this long the connection ends, whatever it is doing.
        std::chrono::milliseconds life;
    };

    /// What the connection tells its owner. Neither call may destroy the connection (deleteLater may).
    struct Events {
        /// At most once; to be answered with `reply`, then or later.
        std::function<void(MCPHTTPRequest)> requested;
        /// Once, last.
        std::function<void()> ended;
    };

    /// Takes over an accepted socket.
    MCPHTTPConnection(qintptr socketDescriptor, const Limits& limits, Events events);
    /// Ends the connection without telling the owner.
    ~MCPHTTPConnection() override;

    /// Sends the reply's bytes, of any number, and ends the connection.
    void reply(const QByteArray& bytes);

private:
    enum class State { receiving, answering, replying, discarding, ended };

    void onReadyRead();
    void receive();
    void sendMore();
    void replySent();
    void discard();
    void end();

    const Limits m_limits;
    const Events m_events;
    QAbstractSocket m_socket;
    QTimer m_life;
    QTimer m_quiet;
    MCPHTTPRequestReader m_reader;
    State m_state = State::receiving;
    QByteArray m_reply;
    qsizetype m_sent = 0;
    /// The reply goes out while the request is still coming in.
    bool m_cutShort = false;
    qsizetype m_discarded = 0;
};

} // namespace orvane
