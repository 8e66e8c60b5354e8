#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QtGlobal>

#include <optional>

namespace orvane {

class StandardStreams;

/// Cuts what comes in on a stream into lines of any length. The work grows with the number of bytes alone,
/// however they are cut into reads. One thread at a time.
class LineReader {
public:
    /// Bytes that a read asks for at least. A buffer that grew far above this for one line is given back
    /// before the wait for a later one.
    static constexpr qsizetype blockBytes = qsizetype{64} * 1024;

    /// The stream outlives the reader.
    explicit LineReader(StandardStreams& streams);

    /// Waits for the next line and gives it without its "\n" or "\r\n"; valid until the next call. What
    /// stands after the last newline is a line too, unless it is empty. Nothing at the end of input.
    std::optional<QByteArrayView> next();

    /// Bytes of memory held for input.
    qsizetype bufferBytes() const { return m_buffer.size(); }

private:
    /// False at the end of input.
    bool readMore();

    StandardStreams& m_streams;
    QByteArray m_buffer;
    /// Where the next line begins.
    qsizetype m_begin = 0;
    /// No newline stands between `m_begin` and here.
    qsizetype m_searched = 0;
    /// End of the bytes read.
    qsizetype m_end = 0;
};

} // namespace orvane
