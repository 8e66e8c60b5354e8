#pragma once

#include <QImage>

#include <span>
#include <vector>

namespace orvane::png {

/// How a row is stored, with the numbers that a PNG file has for it (ISO/IEC 15948, filter types): as it is,
/// as what each byte has more than that of the pixel before it, or than that of the pixel above it.
enum class RowFilter : uchar { none = 0, sub = 1, up = 2 };

struct RowRange {
    int first;
    int count;
};

/// The rows of a picture as they go into a PNG file: red, green, blue and, where the picture has
/// transparency, alpha that is not multiplied in, eight bits each, behind a byte that tells the filter. The
/// image outlives this object. One thread at a time.
class FilteredRows {
public:
    explicit FilteredRows(const QImage& image);

    int count() const { return m_image.height(); }
    /// Of one row with the byte for its filter.
    qsizetype bytes() const { return m_pixelBytes + 1; }
    bool hasAlpha() const { return m_hasAlpha; }

    /// All rows of a range, one behind the other. They stay until the next call.
    std::span<const uchar> read(RowRange range, RowFilter filter);

private:
    /// Rows of the picture in RGB32, or as the file has them.
    QImage sourceOf(RowRange range) const;
    void copyPixels(const QImage& source, int row, uchar* to) const;

    const QImage& m_image;
    bool m_hasAlpha;
    qsizetype m_pixelBytes;
    std::vector<uchar> m_row;
    std::vector<uchar> m_above;
    std::vector<uchar> m_filtered;
};

} // namespace orvane::png
