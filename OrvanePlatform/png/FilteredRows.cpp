#include "OrvanePlatform/png/FilteredRows.h"

#include "OrvanePlatform/png/PixelBytes.h"

#include <algorithm>

namespace orvane::png {

namespace {

constexpr int bytesOfRgb = 3;
constexpr int bytesOfRgba = 4;

/// `pixelBytes`: of one pixel.
void filterRow(RowFilter filter, std::span<const uchar> row, std::span<const uchar> above,
               std::size_t pixelBytes, uchar* __restrict to) {
    // The first pixel has none before it.
    const std::size_t begin = filter == RowFilter::up ? 0 : pixelBytes;
    std::copy_n(row.data(), begin, to);
    const uchar* less = filter == RowFilter::up ? above.data() : row.data() - begin;
    for (std::size_t i = begin; i < row.size(); ++i)
        to[i] = static_cast<uchar>(row[i] - less[i]);
}

} // namespace

FilteredRows::FilteredRows(const QImage& image)
    : m_image(image)
    , m_hasAlpha(image.hasAlphaChannel())
    , m_pixelBytes(qsizetype(image.width()) * (m_hasAlpha ? bytesOfRgba : bytesOfRgb)) {}

std::span<const uchar> FilteredRows::read(RowRange range, RowFilter filter) {
    m_filtered.resize(static_cast<std::size_t>(range.count * bytes()));
    // The row above the first one comes with them.
    const int above = filter == RowFilter::none || range.first == 0 ? 0 : 1;
    const QImage source = sourceOf({.first = range.first - above, .count = range.count + above});
    uchar* to = m_filtered.data();
    if (filter == RowFilter::none) {
        for (int row = 0; row < range.count; ++row, to += bytes()) {
            *to = static_cast<uchar>(filter);
            copyPixels(source, row, to + 1);
        }
        return m_filtered;
    }
    // Above the first row of a picture all is zero.
    m_above.assign(static_cast<std::size_t>(m_pixelBytes), 0);
    m_row.resize(m_above.size());
    if (above > 0)
        copyPixels(source, 0, m_above.data());
    for (int row = 0; row < range.count; ++row, to += bytes()) {
        *to = static_cast<uchar>(filter);
        copyPixels(source, row + above, m_row.data());
        filterRow(filter, m_row, m_above, m_hasAlpha ? bytesOfRgba : bytesOfRgb, to + 1);
        m_row.swap(m_above);
    }
    return m_filtered;
}

QImage FilteredRows::sourceOf(RowRange range) const {
    QImage view(m_image.constScanLine(range.first), m_image.width(), range.count, m_image.bytesPerLine(),
                m_image.format());
    if (m_image.format() == QImage::Format_RGB32)
        return view;
    view.setColorTable(m_image.colorTable());
    return view.convertToFormat(m_hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
}

void FilteredRows::copyPixels(const QImage& source, int row, uchar* to) const {
    const uchar* pixels = source.constScanLine(row);
    if (source.format() == QImage::Format_RGB32) {
        packRgb(reinterpret_cast<const QRgb*>(pixels), source.width(), to);
    } else {
        std::copy_n(pixels, m_pixelBytes, to);
    }
}

} // namespace orvane::png
