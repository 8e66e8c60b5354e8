#include "bench/ocr/ErrorRate.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace orvane::bench {

namespace {

enum class Place { whole, best };

/// The edit distance of `text` to the whole of `read`, or to the part of it that is most like `text`.
qint64 distance(const QString& text, const QString& read, Place place) {
    std::vector<qint64> row(static_cast<size_t>(read.size()) + 1);
    if (place == Place::whole)
        std::iota(row.begin(), row.end(), 0);
    for (qsizetype index = 0; index < text.size(); ++index) {
        qint64 diagonal = row[0];
        row[0] = index + 1;
        for (qsizetype column = 0; column < read.size(); ++column) {
            const qint64 substituted = diagonal + (text[index] == read[column] ? 0 : 1);
            diagonal = row[static_cast<size_t>(column) + 1];
            row[static_cast<size_t>(column) + 1] =
                std::min({substituted, diagonal + 1, row[static_cast<size_t>(column)] + 1});
        }
    }
    return place == Place::whole ? row.back() : *std::min_element(row.begin(), row.end());
}

} // namespace

ErrorRate errorRate(const QStringList& lines, const QString& read) {
    const QString reference = lines.join(u' ').simplified();
    return {distance(reference, read.simplified(), Place::whole), reference.size()};
}

ErrorRate errorRateInAnyOrder(const QStringList& lines, const QString& read) {
    ErrorRate rate;
    for (const QString& line : lines) {
        const QString reference = line.simplified();
        rate += {distance(reference, read.simplified(), Place::best), reference.size()};
    }
    return rate;
}

} // namespace orvane::bench
