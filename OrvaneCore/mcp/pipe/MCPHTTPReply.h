#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QtGlobal>

#include <optional>

namespace orvane {

/// One HTTP/1 reply, taken in as it arrives. Its body has the length that the head tells, as every reply of
/// the host does; one that ends with the connection, or comes in chunks, is never complete.
class MCPHTTPReply {
public:
    enum class State { head, body, complete, malformed };

    /// A head that grows above this is malformed. A body may have any size.
    static constexpr qsizetype largestHead = qsizetype{64} * 1024;

    /// The next bytes, however they are cut. What follows a complete reply is passed over.
    void take(QByteArrayView bytes);

    State state() const { return m_state; }

    /// Known once the head is complete, else 0.
    int status() const { return m_status; }

    /// What has come of the body.
    const QByteArray& body() const { return m_body; }

private:
    void takeHead(QByteArrayView head);
    void takeHeader(QByteArrayView line);
    void takeBody(QByteArrayView bytes);

    State m_state = State::head;
    int m_status = 0;
    /// The number that the head says.
    std::optional<qint64> m_contentLength;
    /// The body's bytes are not what was sent.
    bool m_encoded = false;
    /// Until it is complete.
    QByteArray m_head;
    QByteArray m_body;
};

} // namespace orvane
