#include "OrvanePlatform/png/PngFile.h"

#include "OrvanePlatform/png/UpperHalves.h"

#include <QtEndian>

#include <utility>

#include <isa-l/crc.h>

namespace orvane::png {

namespace {

constexpr qsizetype numberBytes = 4;
constexpr qsizetype typeBytes = 4;

} // namespace

PngFile::PngFile(int width, int height, Colors colors)
    : m_bytes("\x89PNG\r\n\x1a\n") {
    constexpr char bitsOfChannel = 8;
    const qsizetype start = beginChunk("IHDR");
    appendNumber(static_cast<quint32>(width));
    appendNumber(static_cast<quint32>(height));
    m_bytes.append(bitsOfChannel).append(static_cast<char>(colors));
    // Deflate, the five filters, not interlaced: each is the number 0.
    m_bytes.append(3, '\0');
    endChunk(start);
}

QByteArray PngFile::finish() {
    endChunk(beginChunk("IEND"));
    return std::move(m_bytes);
}

qsizetype PngFile::beginChunk(QByteArrayView type) {
    appendNumber(0);
    m_bytes.append(type);
    return m_bytes.size();
}

void PngFile::endChunk(qsizetype start) {
    const qsizetype size = m_bytes.size() - start;
    auto* chunk = reinterpret_cast<uchar*>(m_bytes.data()) + start - typeBytes;
    qToBigEndian(static_cast<quint32>(size), chunk - numberBytes);
    const quint32 ofTypeAndContents = crc32_gzip_refl(0, chunk, static_cast<uint64_t>(typeBytes + size));
    clearUpperHalves();
    appendNumber(ofTypeAndContents);
}

void PngFile::dropChunk(qsizetype start) {
    m_bytes.truncate(start - typeBytes - numberBytes);
}

void PngFile::appendNumber(quint32 number) {
    const quint32 bigEndian = qToBigEndian(number);
    m_bytes.append(reinterpret_cast<const char*>(&bigEndian), numberBytes);
}

} // namespace orvane::png
