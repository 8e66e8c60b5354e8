#include "OrvanePlatform/png/SpngWriter.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include <spng.h>

namespace orvane::png {

namespace {

constexpr int compressionLevel = 3;
// Rows turned into the file's pixel format at a time: enough to be quick, little enough to stay in the cache.
constexpr int stripRows = 32;

struct ContextDeleter {
    void operator()(spng_ctx* context) const { spng_ctx_free(context); }
};

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

bool encodeRows(spng_ctx* context, const QImage& image, QImage::Format fileFormat) {
    const auto rowBytes =
        static_cast<size_t>(image.width()) * (fileFormat == QImage::Format_RGB888 ? 3U : 4U);
    int result = SPNG_OK;
    for (int top = 0; top < image.height() && result == SPNG_OK; top += stripRows) {
        const int rows = std::min(stripRows, image.height() - top);
        const QImage view(image.constScanLine(top), image.width(), rows, image.bytesPerLine(),
                          image.format());
        const QImage strip = view.convertToFormat(fileFormat);
        for (int row = 0; row < rows && result == SPNG_OK; ++row)
            result = spng_encode_row(context, strip.constScanLine(row), rowBytes);
    }
    return result == SPNG_EOI;
}

} // namespace

QByteArray SpngWriter::encode(const QImage& image) const {
    if (image.isNull())
        return {};
    const bool alpha = image.hasAlphaChannel();
    const std::unique_ptr<spng_ctx, ContextDeleter> context(spng_ctx_new(SPNG_CTX_ENCODER));
    if (!context)
        return {};

    spng_ihdr header{};
    header.width = static_cast<uint32_t>(image.width());
    header.height = static_cast<uint32_t>(image.height());
    header.bit_depth = 8;
    header.color_type =
        static_cast<uint8_t>(alpha ? SPNG_COLOR_TYPE_TRUECOLOR_ALPHA : SPNG_COLOR_TYPE_TRUECOLOR);
    int result = spng_set_option(context.get(), SPNG_ENCODE_TO_BUFFER, 1);
    if (result == SPNG_OK)
        result = spng_set_option(context.get(), SPNG_IMG_COMPRESSION_LEVEL, compressionLevel);
    if (result == SPNG_OK)
        result = spng_set_option(context.get(), SPNG_FILTER_CHOICE, SPNG_DISABLE_FILTERING);
    if (result == SPNG_OK)
        result = spng_set_ihdr(context.get(), &header);
    if (result == SPNG_OK) {
        result = spng_encode_image(context.get(), nullptr, 0, SPNG_FMT_PNG,
                                   SPNG_ENCODE_PROGRESSIVE | SPNG_ENCODE_FINALIZE);
    }
    if (result != SPNG_OK ||
        !encodeRows(context.get(), image, alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888))
        return {};

    size_t length = 0;
    const std::unique_ptr<void, FreeDeleter> buffer(spng_get_png_buffer(context.get(), &length, &result));
    if (!buffer || result != SPNG_OK)
        return {};
    return {static_cast<const char*>(buffer.get()), static_cast<qsizetype>(length)};
}

} // namespace orvane::png
