#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>

#include <optional>

namespace orvane::png::test {

/// A piece of a PNG file whose checksum is right.
struct Chunk {
    QByteArray type;
    QByteArray contents;
};

/// All chunks of a file in their order; none where the file has anything else in it, or a wrong checksum.
QList<Chunk> chunksOf(const QByteArray& png);

/// The rows with their filters as the file holds them, by zlib, which compares their checksum as well. Empty
/// where they are damaged or more or fewer than `size` bytes.
QByteArray rowsOf(const QList<Chunk>& chunks, qsizetype size);

/// What libspng, which takes no damaged chunk, makes of a file: RGBA8888, or nothing.
std::optional<QImage> readBySpng(const QByteArray& png);

} // namespace orvane::png::test
