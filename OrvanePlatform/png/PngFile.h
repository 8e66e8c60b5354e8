#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace orvane::png {

/// The bytes of a PNG file (ISO/IEC 15948) while it is made, chunk by chunk.
class PngFile {
public:
    enum class Colors : uchar { rgb = 2, rgba = 6 };

    /// With its header for eight bits a channel; sizes in pixels.
    PngFile(int width, int height, Colors colors);

    /// A chunk of the file's pixels. `write(QByteArray&)` appends what goes into it, at most 2^31 - 1 bytes,
    /// or nothing, and then there is no chunk; what it gives is handed on.
    template <typename Write>
    bool addPixels(Write write) {
        const qsizetype start = beginChunk("IDAT");
        const bool isWritten = write(m_bytes);
        if (m_bytes.size() == start) {
            dropChunk(start);
        } else {
            endChunk(start);
        }
        return isWritten;
    }

    /// The whole file. Nothing can be added any more.
    QByteArray finish();

private:
    /// Where its contents begin.
    qsizetype beginChunk(QByteArrayView type);
    void endChunk(qsizetype start);
    void dropChunk(qsizetype start);
    void appendNumber(quint32 number);

    QByteArray m_bytes;
};

} // namespace orvane::png
