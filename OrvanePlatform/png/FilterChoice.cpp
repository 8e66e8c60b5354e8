#include "OrvanePlatform/png/FilterChoice.h"

#include "OrvanePlatform/png/Deflater.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace orvane::png {

namespace {

// A sample is so many groups of rows. A group is high enough to tell whether a row is like the one above it,
// and long enough to fill the 32 KiB that deflate looks back.
constexpr int groups = 8;
constexpr int leastGroupRows = 8;
constexpr qsizetype leastGroupBytes = qsizetype(32) * 1024;

std::vector<RowRange> sampleOf(const FilteredRows& rows) {
    const auto groupRows =
        static_cast<int>(std::max<qsizetype>(leastGroupRows, leastGroupBytes / rows.bytes() + 1));
    const int distance = rows.count() / groups;
    if (distance <= groupRows)
        return {{.first = 0, .count = rows.count()}};
    std::vector<RowRange> sample;
    sample.reserve(groups);
    for (int group = 0; group < groups; ++group)
        sample.push_back({.first = group * distance + (distance - groupRows) / 2, .count = groupRows});
    return sample;
}

/// In bytes; nothing where they cannot be deflated.
std::optional<qsizetype> deflatedSize(FilteredRows& rows, const std::vector<RowRange>& sample,
                                      RowFilter filter) {
    Deflater deflater;
    QByteArray deflated;
    for (const RowRange& range : sample) {
        const bool isLast = &range == &sample.back();
        if (!deflater.append(rows.read(range, filter), isLast, deflated))
            return std::nullopt;
    }
    return deflated.size();
}

} // namespace

RowFilter chooseFilter(FilteredRows& rows) {
    constexpr qsizetype worthPercent = 5;
    const std::vector<RowRange> sample = sampleOf(rows);
    RowFilter best = RowFilter::none;
    const auto plain = deflatedSize(rows, sample, best);
    if (!plain)
        return best;
    qsizetype least = *plain - *plain * worthPercent / 100;
    for (const RowFilter filter : {RowFilter::up, RowFilter::sub}) {
        const auto size = deflatedSize(rows, sample, filter);
        if (size && *size < least) {
            least = *size;
            best = filter;
        }
    }
    return best;
}

} // namespace orvane::png
