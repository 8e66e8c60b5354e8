#include "OrvanePlatform/ocr/layout/ReadingOrder.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>

namespace orvane::ocr {

namespace {

using Lines = std::vector<FoundLine>;

bool shareRow(const QRect& one, const QRect& other) {
    const int overlap = std::min(one.bottom(), other.bottom()) - std::max(one.top(), other.top()) + 1;
    return 2 * overlap > std::min(one.height(), other.height());
}

Lines byRows(Lines lines) {
    std::sort(lines.begin(), lines.end(), [](const FoundLine& one, const FoundLine& other) {
        return one.box.center().y() < other.box.center().y();
    });
    for (auto row = lines.begin(); row != lines.end();) {
        const QRect first = row->box;
        const auto end = std::find_if(row, lines.end(),
                                      [&first](const FoundLine& line) { return !shareRow(first, line.box); });
        std::sort(row, end, [](const FoundLine& one, const FoundLine& other) {
            return one.box.left() < other.box.left();
        });
        row = end;
    }
    return lines;
}

/// Whether the lines stand on a pane, which has several rows on one background; a cell of a table has one.
bool isPane(const Lines& lines) {
    std::map<int, QRect> firstOfArea;
    for (const FoundLine& line : lines) {
        const auto [first, isNew] = firstOfArea.try_emplace(line.area, line.box);
        if (!isNew && !shareRow(first->second, line.box))
            return true;
    }
    return false;
}

bool shareArea(const Lines& lines, size_t split) {
    std::set<int> areas;
    for (size_t index = 0; index < split; ++index)
        areas.insert(lines[index].area);
    return std::any_of(lines.begin() + static_cast<std::ptrdiff_t>(split), lines.end(),
                       [&areas](const FoundLine& line) { return areas.count(line.area) != 0; });
}

struct Parts {
    Lines first;
    Lines second;
};

/// The first place where a straight cut parts the lines, given sorted by `start`, so that no area has lines
/// on both sides, and both sides satisfy `accept`.
template <class Start, class End, class Accept>
std::optional<Parts> cut(Lines lines, Start start, End end, Accept accept) {
    std::sort(lines.begin(), lines.end(),
              [&](const FoundLine& one, const FoundLine& other) { return start(one) < start(other); });
    int reached = 0;
    for (size_t split = 1; split < lines.size(); ++split) {
        reached = split == 1 ? end(lines[0]) : std::max(reached, end(lines[split - 1]));
        if (start(lines[split]) <= reached || shareArea(lines, split))
            continue;
        const auto middle = lines.begin() + static_cast<std::ptrdiff_t>(split);
        Parts parts{Lines(lines.begin(), middle), Lines(middle, lines.end())};
        if (accept(parts))
            return parts;
    }
    return std::nullopt;
}

std::optional<Parts> cutBetweenPanes(const Lines& lines) {
    return cut(
        lines, [](const FoundLine& line) { return line.box.left(); },
        [](const FoundLine& line) { return line.box.right(); },
        [](const Parts& parts) { return isPane(parts.first) && isPane(parts.second); });
}

std::optional<Parts> cutBetweenRows(const Lines& lines) {
    return cut(
        lines, [](const FoundLine& line) { return line.box.top(); },
        [](const FoundLine& line) { return line.box.bottom(); }, [](const Parts&) { return true; });
}

} // namespace

std::vector<FoundLine> inReadingOrder(std::vector<FoundLine> lines) {
    std::optional<Parts> parts = cutBetweenPanes(lines);
    if (!parts)
        parts = cutBetweenRows(lines);
    if (!parts)
        return byRows(std::move(lines));
    Lines ordered = inReadingOrder(std::move(parts->first));
    Lines rest = inReadingOrder(std::move(parts->second));
    std::move(rest.begin(), rest.end(), std::back_inserter(ordered));
    return ordered;
}

} // namespace orvane::ocr
