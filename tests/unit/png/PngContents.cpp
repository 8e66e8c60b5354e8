#include "tests/unit/png/PngContents.h"

#include <QtEndian>

#include <array>
#include <memory>

#include <spng.h>

namespace orvane::png::test {

namespace {

constexpr qsizetype numberBytes = 4;

/// By its definition (ISO/IEC 15948, annex D), a byte at a time.
quint32 checksum(QByteArrayView bytes) {
    static const std::array<quint32, 256> table = [] {
        std::array<quint32, 256> made{};
        for (quint32 byte = 0; byte < made.size(); ++byte) {
            made[byte] = byte;
            for (int bit = 0; bit < 8; ++bit)
                made[byte] = (made[byte] >> 1) ^ ((made[byte] & 1U) != 0 ? 0xedb88320U : 0U);
        }
        return made;
    }();
    quint32 sum = 0xffffffffU;
    for (const char byte : bytes)
        sum = table[(sum ^ static_cast<uchar>(byte)) & 0xffU] ^ (sum >> 8);
    return ~sum;
}

quint32 numberAt(QByteArrayView bytes, qsizetype place) {
    return qFromBigEndian<quint32>(bytes.data() + place);
}

} // namespace

QList<Chunk> chunksOf(const QByteArray& png) {
    const QByteArray signature("\x89PNG\r\n\x1a\n");
    if (!png.startsWith(signature))
        return {};
    QList<Chunk> chunks;
    for (qsizetype place = signature.size(); place < png.size();) {
        if (place + 3 * numberBytes > png.size())
            return {};
        const qsizetype size = numberAt(png, place);
        const qsizetype end = place + 2 * numberBytes + size;
        if (end + numberBytes > png.size())
            return {};
        const QByteArrayView summed = QByteArrayView(png).sliced(place + numberBytes, numberBytes + size);
        if (checksum(summed) != numberAt(png, end))
            return {};
        chunks.append({.type = summed.first(numberBytes).toByteArray(),
                       .contents = summed.sliced(numberBytes).toByteArray()});
        place = end + numberBytes;
    }
    return chunks;
}

QByteArray rowsOf(const QList<Chunk>& chunks, qsizetype size) {
    // What Qt wants in front of a zlib stream: how much comes out of it.
    QByteArray stream(numberBytes, '\0');
    qToBigEndian(static_cast<quint32>(size), stream.data());
    for (const Chunk& chunk : chunks) {
        if (chunk.type == "IDAT")
            stream.append(chunk.contents);
    }
    const QByteArray rows = qUncompress(stream);
    return rows.size() == size ? rows : QByteArray();
}

std::optional<QImage> readBySpng(const QByteArray& png) {
    const std::unique_ptr<spng_ctx, decltype(&spng_ctx_free)> context(spng_ctx_new(0), &spng_ctx_free);
    if (!context || spng_set_crc_action(context.get(), SPNG_CRC_ERROR, SPNG_CRC_ERROR) != SPNG_OK ||
        spng_set_png_buffer(context.get(), png.constData(), static_cast<std::size_t>(png.size())) != SPNG_OK)
        return std::nullopt;
    spng_ihdr header{};
    std::size_t size = 0;
    if (spng_get_ihdr(context.get(), &header) != SPNG_OK ||
        spng_decoded_image_size(context.get(), SPNG_FMT_RGBA8, &size) != SPNG_OK)
        return std::nullopt;
    QImage image(static_cast<int>(header.width), static_cast<int>(header.height), QImage::Format_RGBA8888);
    if (static_cast<std::size_t>(image.sizeInBytes()) != size ||
        spng_decode_image(context.get(), image.bits(), size, SPNG_FMT_RGBA8, 0) != SPNG_OK ||
        spng_decode_chunks(context.get()) != SPNG_OK)
        return std::nullopt;
    return image;
}

} // namespace orvane::png::test
