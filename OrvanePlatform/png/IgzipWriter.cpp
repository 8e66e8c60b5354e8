#include "OrvanePlatform/png/IgzipWriter.h"

#include "OrvanePlatform/png/Deflater.h"
#include "OrvanePlatform/png/FilterChoice.h"
#include "OrvanePlatform/png/FilteredRows.h"
#include "OrvanePlatform/png/PngFile.h"

#include <algorithm>

namespace orvane::png {

namespace {

// Filtered at a time: much more than the 32 KiB that igzip looks back and copies at each step, and little
// enough for the second level of the cache.
constexpr qsizetype stripBytes = qsizetype(256) * 1024;

} // namespace

QByteArray IgzipWriter::encode(const QImage& image) const {
    if (image.isNull())
        return {};
    FilteredRows rows(image);
    const RowFilter filter = chooseFilter(rows);
    PngFile file(image.width(), image.height(),
                 rows.hasAlpha() ? PngFile::Colors::rgba : PngFile::Colors::rgb);
    Deflater deflater;
    const auto stripRows = static_cast<int>(std::max<qsizetype>(1, stripBytes / rows.bytes()));
    for (int top = 0; top < rows.count(); top += stripRows) {
        const RowRange strip{.first = top, .count = std::min(stripRows, rows.count() - top)};
        const bool isLast = strip.first + strip.count == rows.count();
        if (!file.addPixels(
                [&](QByteArray& bytes) { return deflater.append(rows.read(strip, filter), isLast, bytes); }))
            return {};
    }
    return file.finish();
}

} // namespace orvane::png
