#include "OrvaneCore/mcp/pipe/MCPHTTPReply.h"

#include <QList>

#include <algorithm>

namespace orvane {

namespace {

constexpr QByteArrayView headEnd("\r\n\r\n");
constexpr QByteArrayView lineEnd("\r\n");
/// More cannot overflow 64 bits.
constexpr qsizetype mostDigits = 18;

bool isNumber(QByteArrayView text) {
    return !text.isEmpty() && text.size() <= mostDigits &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool isNamed(QByteArrayView name, QByteArrayView wanted) {
    return name.compare(wanted, Qt::CaseInsensitive) == 0;
}

/// The status of "HTTP/1.1 200 OK", or 0.
int statusOf(QByteArrayView line) {
    // "HTTP/1.1 200", with or without more words.
    constexpr qsizetype statusBegin = 9;
    constexpr qsizetype statusEnd = 12;
    if (!line.startsWith("HTTP/1.") || line.size() < statusEnd || !isNumber(line.sliced(7, 1)) ||
        line[statusBegin - 1] != ' ' || (line.size() > statusEnd && line[statusEnd] != ' '))
        return 0;
    const QByteArrayView status = line.sliced(statusBegin, statusEnd - statusBegin);
    return isNumber(status) ? status.toInt() : 0;
}

} // namespace

void MCPHTTPReply::take(QByteArrayView bytes) {
    if (m_state == State::body) {
        takeBody(bytes);
        return;
    }
    if (m_state != State::head)
        return;

    // The four bytes that end a head may come in two pieces.
    const qsizetype searched = std::max<qsizetype>(0, m_head.size() - (headEnd.size() - 1));
    m_head.append(bytes);
    const qsizetype end = m_head.indexOf(headEnd, searched);
    if ((end < 0 ? m_head.size() : end) > largestHead) {
        m_state = State::malformed;
    } else if (end >= 0) {
        takeHead(QByteArrayView(m_head).first(end));
        if (m_state == State::body)
            takeBody(QByteArrayView(m_head).sliced(end + headEnd.size()));
        m_head.clear();
    }
}

void MCPHTTPReply::takeHead(QByteArrayView head) {
    qsizetype at = head.indexOf(lineEnd);
    const QByteArrayView statusLine = at < 0 ? head : head.first(at);
    m_status = statusOf(statusLine);
    m_state = m_status == 0 ? State::malformed : State::body;
    while (at >= 0 && m_state == State::body) {
        at += lineEnd.size();
        const qsizetype next = head.indexOf(lineEnd, at);
        takeHeader(next < 0 ? head.sliced(at) : head.sliced(at, next - at));
        at = next;
    }
}

void MCPHTTPReply::takeHeader(QByteArrayView line) {
    const qsizetype colon = line.indexOf(':');
    const QByteArrayView name = line.first(std::max<qsizetype>(colon, 0));
    const QByteArrayView value = line.sliced(colon + 1).trimmed();
    if (name.isEmpty()) {
        m_state = State::malformed;
    } else if (isNamed(name, "Transfer-Encoding")) {
        m_encoded = true;
    } else if (isNamed(name, "Content-Length")) {
        if (!isNumber(value) || (m_contentLength && *m_contentLength != value.toLongLong())) {
            m_state = State::malformed;
        } else {
            m_contentLength = value.toLongLong();
        }
    }
}

void MCPHTTPReply::takeBody(QByteArrayView bytes) {
    if (m_encoded || !m_contentLength)
        return;
    m_body.append(bytes.first(std::min<qint64>(*m_contentLength - m_body.size(), bytes.size())));
    if (m_body.size() == *m_contentLength)
        m_state = State::complete;
}

} // namespace orvane
