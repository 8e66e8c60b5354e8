#include "OrvanePlatform/png/IgzipWriter.h"

#include "tests/support/KnownPicture.h"
#include "tests/unit/png/PngContents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>

namespace orvane::png {

using orvane::test::knownPicture;
using test::Chunk;
using test::chunksOf;
using test::readBySpng;
using test::rowsOf;

namespace {

// As much as is filtered and deflated at a time.
constexpr int stripBytes = 256 * 1024;

QImage noise(const QSize& size, std::uint_fast32_t seed) {
    std::mt19937 random(seed);
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        std::generate_n(row, size.width(), [&random] { return QRgb(random()) | 0xff000000U; });
    }
    return picture;
}

/// Soft colours under noise in their lowest bits, which a filter makes smaller.
QImage photo(const QSize& size, std::uint_fast32_t seed) {
    QImage picture = noise(size, seed);
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const auto soft = [x, y](int noisy) { return (x / 3 + y / 2 + noisy % 8) & 0xff; };
            row[x] = qRgb(soft(qRed(row[x])), soft(qGreen(row[x])), soft(qBlue(row[x])));
        }
    }
    return picture;
}

/// Runs and repetitions of all lengths: what makes deflate's matches and blocks differ from row to row.
QImage patches(const QSize& size, std::uint_fast32_t seed) {
    std::mt19937 random(seed);
    QImage picture(size, QImage::Format_RGB32);
    QRgb color = 0;
    int left = 0;
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        if (y > 0 && random() % 3 == 0) {
            const int earlier = static_cast<int>(random() % static_cast<unsigned>(y));
            std::copy_n(reinterpret_cast<const QRgb*>(picture.constScanLine(earlier)), size.width(), row);
            continue;
        }
        for (int x = 0; x < size.width(); ++x) {
            if (left-- <= 0) {
                color = (random() & 0x00f0f0f0U) | 0xff000000U;
                left = static_cast<int>(random() % 2 == 0 ? random() % 4 : random() % 400);
            }
            row[x] = color;
        }
    }
    return picture;
}

/// What is wrong with the file of a picture; nothing where it is as it should be.
std::string faultOf(const QImage& picture) {
    const QByteArray png = IgzipWriter().encode(picture);
    const bool alpha = picture.hasAlphaChannel();
    const QImage expected = picture.convertToFormat(alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);

    const QList<Chunk> chunks = chunksOf(png);
    if (chunks.size() < 3 || chunks.front().type != "IHDR" || chunks.back().type != "IEND")
        return "has no chunks of a PNG file";
    if (!std::all_of(chunks.begin() + 1, chunks.end() - 1,
                     [](const Chunk& chunk) { return chunk.type == "IDAT" && !chunk.contents.isEmpty(); }))
        return "has a chunk that is no pixels or empty";
    const qsizetype rowBytes = qsizetype(picture.width()) * (alpha ? 4 : 3) + 1;
    const QByteArray rows = rowsOf(chunks, rowBytes * picture.height());
    if (rows.isEmpty())
        return "has a damaged stream or the wrong number of pixels";
    for (qsizetype at = 0; at < rows.size(); at += rowBytes) {
        if (rows[at] != rows[0])
            return "changes its filter";
    }

    const QImage byQt = QImage::fromData(png, "PNG");
    if (byQt.hasAlphaChannel() != alpha || byQt.convertToFormat(expected.format()) != expected)
        return "is another picture to Qt";
    const std::optional<QImage> bySpng = readBySpng(png);
    if (!bySpng || bySpng->convertToFormat(expected.format()) != expected)
        return "is another picture to libspng";
    return {};
}

#define EXPECT_GOOD_FILE(picture)                                                                            \
    EXPECT_EQ(faultOf(picture), "") << (picture).width() << "x" << (picture).height() << " in format "       \
                                    << (picture).format()

} // namespace

TEST(IgzipWriter, WritesOpaquePicturesAsRgb) {
    const QByteArray header = chunksOf(IgzipWriter().encode(knownPicture(301, 199, false))).front().contents;
    // Width, height, eight bits, RGB; deflate, the usual filters, not interlaced.
    EXPECT_EQ(header, QByteArray("\0\0\x01\x2d\0\0\0\xc7\x08\x02\0\0\0", 13));
    EXPECT_GOOD_FILE(knownPicture(301, 199, false));
}

TEST(IgzipWriter, WritesTransparencyStraight) {
    const QByteArray header = chunksOf(IgzipWriter().encode(knownPicture(33, 70, true))).front().contents;
    EXPECT_EQ(header, QByteArray("\0\0\0\x21\0\0\0\x46\x08\x06\0\0\0", 13));
    EXPECT_GOOD_FILE(knownPicture(33, 70, true));
    EXPECT_GOOD_FILE(knownPicture(33, 70, true).convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

TEST(IgzipWriter, IgnoresTheUnusedByteOfOpaquePixels) {
    QImage picture(5, 2, QImage::Format_RGB32);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 5; ++x)
            reinterpret_cast<QRgb*>(picture.scanLine(y))[x] = 0x00123456U;
    }
    const QImage read = QImage::fromData(IgzipWriter().encode(picture));
    EXPECT_EQ(read.pixel(0, 0), 0xff123456U);
    EXPECT_EQ(read.pixel(4, 1), 0xff123456U);
}

TEST(IgzipWriter, WritesEverySmallSize) {
    for (int width = 1; width <= 18; ++width) {
        for (int height = 1; height <= 9; ++height) {
            EXPECT_GOOD_FILE(knownPicture(width, height, (width + height) % 2 == 0));
            EXPECT_GOOD_FILE(noise({width, height}, 1));
        }
    }
}

TEST(IgzipWriter, WritesSizesAroundTheEndsOfStrips) {
    for (const int width : {100, 341, 1000, 4097, stripBytes / 3 - 1, stripBytes / 3, stripBytes / 3 + 1}) {
        const int stripRows = std::max(1, stripBytes / (3 * width + 1));
        for (const int height : {stripRows - 1, stripRows, stripRows + 1, 2 * stripRows, 2 * stripRows + 1}) {
            if (height > 0) {
                EXPECT_GOOD_FILE(patches({width, height}, static_cast<unsigned>(height)));
                EXPECT_GOOD_FILE(photo({width, height}, static_cast<unsigned>(width)));
            }
        }
    }
}

TEST(IgzipWriter, WritesExtremeSizes) {
    EXPECT_GOOD_FILE(noise({1, 16384}, 2));
    EXPECT_GOOD_FILE(noise({16384, 1}, 3));
    EXPECT_GOOD_FILE(patches({16384, 40}, 4));
    EXPECT_GOOD_FILE(photo({400'000, 2}, 5));
}

TEST(IgzipWriter, WritesNoiseThatNothingShrinks) {
    const QImage picture = noise({1400, 1000}, 6);
    EXPECT_GOOD_FILE(picture);
    constexpr qsizetype pixelBytes = qsizetype(3) * 1400 * 1000;
    EXPECT_LT(IgzipWriter().encode(picture).size(), pixelBytes + pixelBytes / 500);
}

TEST(IgzipWriter, WritesEverythingAndNothingMixed) {
    std::mt19937 random(20'260'701);
    const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
    for (int round = 0; round < 60; ++round) {
        const QSize size(1 + below(700), 1 + below(700));
        QImage picture = patches(size, random());
        // Pieces of another kind, so that blocks that shrink and blocks that do not come behind each other.
        for (int piece = below(4); piece > 0; --piece) {
            const QImage other = round % 2 == 0 ? noise(size, random()) : photo(size, random());
            const int top = below(static_cast<unsigned>(size.height()));
            for (int y = top; y < std::min(size.height(), top + 1 + below(300)); ++y)
                std::copy_n(other.constScanLine(y), other.bytesPerLine(), picture.scanLine(y));
        }
        EXPECT_GOOD_FILE(picture);
    }
}

TEST(IgzipWriter, WritesEveryFormatOfAPicture) {
    const QImage known = knownPicture(120, 70, true);
    for (int format = QImage::Format_Mono; format < QImage::NImageFormats; ++format) {
        const QImage picture = known.convertToFormat(static_cast<QImage::Format>(format));
        ASSERT_FALSE(picture.isNull()) << format;
        EXPECT_GOOD_FILE(picture);
    }
}

TEST(IgzipWriter, WritesTheColorsOfATable) {
    QImage picture(50, 40, QImage::Format_Indexed8);
    picture.setColorTable({0xff102030U, 0xff80c0e0U, 0xfff0e010U});
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 50; ++x)
            picture.setPixel(x, y, static_cast<uint>((x + y) % 3));
    }
    EXPECT_GOOD_FILE(picture);
    EXPECT_EQ(QImage::fromData(IgzipWriter().encode(picture)).pixel(1, 0), 0xff80c0e0U);
    picture.setColor(1, 0x8080c0e0U);
    EXPECT_GOOD_FILE(picture);
    EXPECT_EQ(QImage::fromData(IgzipWriter().encode(picture)).pixel(1, 0), 0x8080c0e0U);
}

TEST(IgzipWriter, WritesAPartOfALargerPicture) {
    const QImage whole = knownPicture(100, 100, false);
    const QImage part(whole.constScanLine(10) + ptrdiff_t(20) * 4, 30, 40, whole.bytesPerLine(),
                      whole.format());
    EXPECT_EQ(QImage::fromData(IgzipWriter().encode(part)), whole.copy(20, 10, 30, 40));
}

TEST(IgzipWriter, MakesASoftPictureSmallerByAFilter) {
    const QImage picture = photo({1200, 900}, 7);
    const QByteArray png = IgzipWriter().encode(picture);
    EXPECT_NE(rowsOf(chunksOf(png), qsizetype(900) * (3 * 1200 + 1))[0], 0);
    // Three of eight bits are noise.
    EXPECT_LT(png.size(), qsizetype(900) * 1200 * 3 * 5 / 8);
}

TEST(IgzipWriter, HasNothingForANullPicture) {
    EXPECT_TRUE(IgzipWriter().encode(QImage()).isEmpty());
}

} // namespace orvane::png
