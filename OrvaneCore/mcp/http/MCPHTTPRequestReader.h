#pragma once

#include "OrvaneCore/mcp/http/MCPHTTPRequest.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace orvane {

/// Puts a request together from the pieces that it comes in by. The work grows with the number of bytes
/// alone, however small the pieces are. One thread at a time.
class MCPHTTPRequestReader {
public:
    enum class State {
        /// More has to come. A head that is no request's stays so for ever.
        incomplete,
        /// The head is there and as much of the body as Content-Length announces.
        complete,
        /// More bytes than the limit.
        tooLarge,
    };

    explicit MCPHTTPRequestReader(qsizetype maxBytes);

    /// Adds a piece and tells what that makes. Nothing may be added once the state is another than
    /// incomplete.
    State append(QByteArrayView piece);

    /// The request, once it is complete, with everything behind its head as its body. Call once.
    MCPHTTPRequest take();

private:
    const qsizetype m_maxBytes;
    QByteArray m_buffer;
    /// The head does not end before here.
    qsizetype m_searched = 0;
    /// Where the body begins, once the head is there.
    std::optional<qsizetype> m_bodyBegin;
    /// Nothing where the head is no request's.
    std::optional<MCPHTTPRequest> m_head;
    qint64 m_contentLength = 0;
};

} // namespace orvane
