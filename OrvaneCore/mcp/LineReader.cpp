#include "OrvaneCore/mcp/LineReader.h"

#include "OrvaneCore/platform/StandardStreams.h"

#include <cstring>
#include <span>
#include <utility>

namespace orvane {

namespace {

/// A buffer above this size is given back once the line that needed it has been served.
constexpr qsizetype keptBytes = 16 * LineReader::blockBytes;

} // namespace

LineReader::LineReader(StandardStreams& streams)
    : m_streams(streams)
    , m_buffer(blockBytes, Qt::Uninitialized) {}

std::optional<QByteArrayView> LineReader::next() {
    for (;;) {
        const QByteArrayView fresh(m_buffer.constData() + m_searched, m_end - m_searched);
        const qsizetype newline = fresh.indexOf('\n');
        if (newline >= 0) {
            QByteArrayView line(m_buffer.constData() + m_begin, m_searched + newline - m_begin);
            m_searched += newline + 1;
            m_begin = m_searched;
            if (line.endsWith('\r'))
                line.chop(1);
            return line;
        }
        m_searched = m_end;
        if (!readMore()) {
            const QByteArrayView rest(m_buffer.constData() + m_begin, m_end - m_begin);
            m_begin = m_end;
            return rest.isEmpty() ? std::nullopt : std::optional(rest);
        }
    }
}

bool LineReader::readMore() {
    const qsizetype pending = m_end - m_begin;
    if (m_buffer.size() > keptBytes && pending * 2 < keptBytes) {
        QByteArray smaller(pending + blockBytes, Qt::Uninitialized);
        std::memcpy(smaller.data(), m_buffer.constData() + m_begin, static_cast<size_t>(pending));
        m_buffer = std::move(smaller);
    } else if (m_begin > 0) {
        std::memmove(m_buffer.data(), m_buffer.constData() + m_begin, static_cast<size_t>(pending));
    }
    m_begin = 0;
    m_searched = m_end = pending;

    // Doubling keeps the copying of a huge line in proportion to its length.
    if (m_buffer.size() - m_end < blockBytes)
        m_buffer.resize(qMax(m_buffer.size() * 2, m_end + blockBytes));

    const qsizetype count =
        m_streams.read(std::span(m_buffer.data() + m_end, static_cast<size_t>(m_buffer.size() - m_end)));
    m_end += count;
    return count > 0;
}

} // namespace orvane
