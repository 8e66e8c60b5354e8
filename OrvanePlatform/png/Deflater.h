#pragma once

#include <QByteArray>

#include <memory>
#include <span>
#include <vector>

struct isal_zstream;

namespace orvane::png {

/// One zlib stream (RFC 1950), as the pixels of a PNG file are stored. One thread at a time.
class Deflater {
public:
    Deflater();
    ~Deflater();
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    /// Appends what has come of the stream with `input` to `output`; some of it may come with the next call,
    /// and all of it has come with the last one. False where igzip fails, and the stream is of no use any
    /// more.
    bool append(std::span<const uchar> input, bool isLast, QByteArray& output);

private:
    std::unique_ptr<isal_zstream> m_stream;
    std::vector<uchar> m_levelMemory;
};

} // namespace orvane::png
