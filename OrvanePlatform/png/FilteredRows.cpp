#include "OrvanePlatform/png/FilteredRows.h"

#include "OrvanePlatform/png/PixelBytes.h"

#include <algorithm>

namespace orvane::png {

namespace {

constexpr qsizetype bytesOfRgb = 3;
constexpr qsizetype bytesOfRgba = 4;

void filterRow(RowFilter filter, const uchar* row, const uchar* above, qsizetype bytes, qsizetype pixelBytes,
               uchar* __restrict to) {
    const uchar* less = filter == RowFilter::up ? above : row - pixelBytes;
    // The first pixel has none before it.
    const qsizetype begin = filter == RowFilter::up ? 0 : std::min(pixelBytes, bytes);
    std::copy_n(row, begin, to);
    for (qsizetype i = begin; i < bytes; ++i)
        to[i] = static_cast<uchar>(row[i] - less[i]);
}

} // namespace

FilteredRows::FilteredRows(const QImage& image)
    : m_image(image)
    , m_hasAlpha(image.hasAlphaChannel())
    , m_pixelBytes(image.width() * (m_hasAlpha ? bytesOfRgba : bytesOfRgb)) {}

std::span<const uchar> FilteredRows::read(RowRange range, RowFilter filter) {
    const qsizetype size = range.count * bytes();
    m_filtered.resize(static_cast<std::size_t>(size));
    for (qsizetype at = 0; at < size; at += bytes())
        m_filtered[static_cast<std::size_t>(at)] = static_cast<uchar>(filter);
    if (filter == RowFilter::none) {
        copyPixels(range, m_filtered.data() + 1, bytes());
        return m_filtered;
    }
    // The row above comes with them; above the first one it is all zeros.
    const int above = range.first > 0 ? 1 : 0;
    m_plain.resize(static_cast<std::size_t>((range.count + 1) * m_pixelBytes));
    if (above == 0)
        std::fill_n(m_plain.data(), m_pixelBytes, uchar(0));
    copyPixels({.first = range.first - above, .count = range.count + above},
               m_plain.data() + (1 - above) * m_pixelBytes, m_pixelBytes);
    for (int row = 0; row < range.count; ++row) {
        const uchar* over = m_plain.data() + row * m_pixelBytes;
        filterRow(filter, over + m_pixelBytes, over, m_pixelBytes, m_hasAlpha ? bytesOfRgba : bytesOfRgb,
                  m_filtered.data() + row * bytes() + 1);
    }
    return m_filtered;
}

void FilteredRows::copyPixels(RowRange range, uchar* to, qsizetype stride) const {
    if (m_image.format() == QImage::Format_RGB32) {
        for (int row = 0; row < range.count; ++row) {
            const auto* pixels = reinterpret_cast<const QRgb*>(m_image.constScanLine(range.first + row));
            packRgb(pixels, m_image.width(), to + row * stride);
        }
        return;
    }
    QImage view(m_image.constScanLine(range.first), m_image.width(), range.count, m_image.bytesPerLine(),
                m_image.format());
    view.setColorTable(m_image.colorTable());
    const QImage converted =
        view.convertToFormat(m_hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    for (int row = 0; row < range.count; ++row)
        std::copy_n(converted.constScanLine(row), m_pixelBytes, to + row * stride);
}

} // namespace orvane::png
