#include "OrvanePlatform/ocr/layout/LineFinder.h"

#include "OrvanePlatform/ocr/layout/InkMap.h"
#include "OrvanePlatform/ocr/layout/ReadingOrder.h"

#include <algorithm>
#include <map>
#include <utility>

namespace orvane::ocr {

namespace {

// Pixels. Less is dust, more is a picture.
constexpr int smallestLetter = 5;
constexpr int largestLetter = 200;
// A stroke that is this many times as long as thick is a rule between cells or rows; bars and dashes are
// stouter.
constexpr int slimness = 20;
// Twice the letters that a screen of 3840x2160 full of the smallest text has. More are the dots of a pattern.
constexpr size_t mostPieces = 150'000;
// In heights of the taller of two neighbours: a wide space, and less than what parts two columns.
constexpr double widestSpace = 1.5;
// How far above or below its line a quotation mark or an underscore may stand, in heights of the line.
constexpr double farthestMark = 0.35;

/// Pieces that stand in one line, and their common box.
struct Group {
    QRect box;
    int area = 0;
    /// The tallest piece's.
    int tallest = 0;
};

int rowsShared(const QRect& one, const QRect& other) {
    return std::min(one.bottom(), other.bottom()) - std::max(one.top(), other.top()) + 1;
}

/// The free columns between two boxes; negative where they overlap.
int gapBetween(const QRect& one, const QRect& other) {
    return std::max(one.left(), other.left()) - std::min(one.right(), other.right()) - 1;
}

bool isBackgroundBetween(const InkMap& map, const Group& left, const Group& right) {
    const int top = std::max(left.box.top(), right.box.top());
    const int bottom = std::min(left.box.bottom(), right.box.bottom());
    return gapBetween(left.box, right.box) <= 0 ||
           map.isClear((top + bottom) / 2, left.box.right() + 1, right.box.left(), left.area);
}

bool areNeighbours(const InkMap& map, const Group& one, const Group& other) {
    if (one.area != other.area)
        return false;
    const int shared = rowsShared(one.box, other.box);
    if (2 * shared < std::min(one.box.height(), other.box.height()))
        return false;
    if (gapBetween(one.box, other.box) > widestSpace * std::max(one.tallest, other.tallest))
        return false;
    return one.box.left() <= other.box.left() ? isBackgroundBetween(map, one, other)
                                              : isBackgroundBetween(map, other, one);
}

bool isMarkOf(const Group& mark, const Group& line) {
    if (mark.area != line.area || 2 * mark.box.height() > line.box.height())
        return false;
    const auto above = static_cast<int>(farthestMark * line.box.height()) + 1;
    const QRect reach = line.box.adjusted(-line.tallest, -above, line.tallest, above);
    return reach.contains(mark.box);
}

bool isLetter(const InkMap& map, const InkPiece& piece) {
    return piece.area != InkMap::ink && piece.box.height() <= largestLetter &&
           piece.box.height() < slimness * piece.box.width() &&
           piece.box.width() < slimness * piece.box.height() && !map.isFrame(piece);
}

/// Unites what `belongs` accepts, until nothing more does. The groups come and go sorted by their left edges.
template <class Belongs>
void unite(std::vector<Group>& groups, Belongs belongs) {
    // What two groups may be apart depends on their letters, and letters do not grow.
    int tallest = 0;
    for (const Group& group : groups)
        tallest = std::max(tallest, group.tallest);
    bool changed = true;
    while (changed) {
        changed = false;
        std::sort(groups.begin(), groups.end(), [](const Group& one, const Group& other) {
            return std::pair(one.box.left(), one.box.top()) < std::pair(other.box.left(), other.box.top());
        });
        for (size_t index = 0; index < groups.size(); ++index) {
            Group& group = groups[index];
            if (group.box.isNull())
                continue;
            for (size_t other = index + 1; other < groups.size(); ++other) {
                Group& next = groups[other];
                if (next.box.left() - group.box.right() > widestSpace * tallest + 1)
                    break;
                if (next.box.isNull() || !belongs(group, next))
                    continue;
                group.box |= next.box;
                group.tallest = std::max(group.tallest, next.tallest);
                next.box = {};
                changed = true;
            }
        }
        groups.erase(std::remove_if(groups.begin(), groups.end(),
                                    [](const Group& group) { return group.box.isNull(); }),
                     groups.end());
    }
}

/// The inside of a large letter is an area of its own, and what was found there is a part of the letter's
/// line.
void removeEnclosed(std::vector<FoundLine>& lines) {
    const std::vector<FoundLine> all = lines;
    const auto isEnclosed = [&all](const FoundLine& line) {
        return std::any_of(all.begin(), all.end(), [&line](const FoundLine& other) {
            return other.area != line.area && other.box.contains(line.box);
        });
    };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isEnclosed), lines.end());
}

/// Before they are compared with each other, which takes too long for more.
void keepTopmost(std::vector<FoundLine>& lines) {
    if (lines.size() <= mostLines)
        return;
    std::stable_sort(lines.begin(), lines.end(), [](const FoundLine& one, const FoundLine& other) {
        return one.box.top() < other.box.top();
    });
    lines.resize(mostLines);
}

} // namespace

std::vector<FoundLine> findLines(const QImage& picture) {
    const InkMap map(picture);
    // By background, so that only what can belong together is compared.
    std::map<int, std::vector<Group>> groups;
    for (const InkPiece& piece : map.pieces()) {
        if (isLetter(map, piece))
            groups[piece.area].push_back({piece.box, piece.area, piece.box.height()});
    }

    std::vector<FoundLine> lines;
    for (auto& [area, ofArea] : groups) {
        if (ofArea.size() > mostPieces)
            continue;
        unite(ofArea,
              [&map](const Group& one, const Group& other) { return areNeighbours(map, one, other); });
        unite(ofArea, [](const Group& one, const Group& other) {
            return isMarkOf(one, other) || isMarkOf(other, one);
        });
        for (const Group& group : ofArea) {
            if (group.box.height() >= smallestLetter)
                lines.push_back({group.box, area});
        }
    }
    keepTopmost(lines);
    removeEnclosed(lines);
    return inReadingOrder(std::move(lines));
}

} // namespace orvane::ocr
