#include "OrvaneCore/mcp/http/MCPHTTPRequestReader.h"

#include <algorithm>
#include <utility>

namespace orvane {

MCPHTTPRequestReader::MCPHTTPRequestReader(qsizetype maxBytes)
    : m_maxBytes(maxBytes) {}

MCPHTTPRequestReader::State MCPHTTPRequestReader::append(QByteArrayView piece) {
    m_buffer.append(piece);
    if (m_buffer.size() > m_maxBytes)
        return State::tooLarge;

    if (!m_bodyBegin) {
        const QByteArrayView received(m_buffer);
        const qsizetype headEnd = received.indexOf(MCPHTTPRequest::headEnd, m_searched);
        if (headEnd < 0) {
            // The end may be there in part.
            m_searched = std::max(qsizetype{0}, m_buffer.size() - (MCPHTTPRequest::headEnd.size() - 1));
            return State::incomplete;
        }
        m_bodyBegin = headEnd + MCPHTTPRequest::headEnd.size();
        m_head = MCPHTTPRequest::parseHead(received.first(headEnd));
        if (m_head)
            m_contentLength = m_head->contentLength();
    }
    return m_head && m_buffer.size() - *m_bodyBegin >= m_contentLength ? State::complete : State::incomplete;
}

MCPHTTPRequest MCPHTTPRequestReader::take() {
    MCPHTTPRequest request = std::move(*m_head);
    request.body = m_buffer.sliced(*m_bodyBegin);
    m_buffer = QByteArray();
    return request;
}

} // namespace orvane
