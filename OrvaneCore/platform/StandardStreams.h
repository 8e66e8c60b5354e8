#pragma once

#include <QByteArrayView>
#include <QtGlobal>

#include <span>

namespace orvane {

/// The two standard streams a tool server speaks on.
class StandardStreams {
public:
    virtual ~StandardStreams() = default;

    /// Waits until there is something to read and gives what is there, at most the buffer's size.
    /// 0 at the end of input; a stream that fails counts as ended. One thread at a time.
    virtual qsizetype read(std::span<char> buffer) = 0;

    /// Writes all bytes, in one call as far as the system takes them, never mixed with another thread's.
    /// False when the reader is gone. Any thread.
    virtual bool write(QByteArrayView bytes) = 0;

protected:
    StandardStreams() = default;
    StandardStreams(const StandardStreams&) = default;
    StandardStreams& operator=(const StandardStreams&) = default;
};

} // namespace orvane
