#include "OrvanePlatform/ocr/layout/InkMap.h"

#include "OrvanePlatform/ocr/layout/Colours.h"

#include <QPainter>

#include <algorithm>
#include <numeric>
#include <unordered_map>

namespace orvane::ocr {

namespace {

// Wide enough for the strip around a single pixel to be background.
constexpr int strip = 5;
// Steps of a gradient and traces of lossy compression are smaller, the edges of letters larger.
constexpr int evenStep = 8;
// Pixels. Less is the inside of a letter or a stroke, more is background whatever its shape. Between the two
// are the faces of buttons and cells and the strokes of large letters.
constexpr int smallestArea = 100;
constexpr int surelyArea = 2500;
// A face fills its box but for the text on it, which on a small wide button may be nearly half of it.
constexpr double leastFilled = 0.8;
constexpr double leastFilledIfWide = 0.55;
constexpr double wide = 1.3;
// How much of the long and of the short sides of its box a wide face covers; the ends may be round.
constexpr double leastLongSide = 0.7;
constexpr double leastShortSide = 0.45;
// A bar is a stroke up to this thickness, if it is not so long that it is a rule.
constexpr int thickestBar = 9;
constexpr int largestBar = 400;
// How much of its box is another area, if a piece is the border of a button or of a cell, and how much of
// each side of the box is ink then: more than of a round letter.
constexpr double leastEnclosed = 0.6;
constexpr double leastBordered = 0.6;
constexpr int smallestFrame = 10;

/// The shares of the sides of a box, the less covered of two opposite ones, that have the wanted pixels. Up
/// to two pixels deep, for antialiasing puts a side a little off.
struct Sides {
    double horizontal = 0;
    double vertical = 0;
};

template <class IsWanted>
Sides sidesCovered(const QRect& box, IsWanted isWanted) {
    int top = 0;
    int bottom = 0;
    int left = 0;
    int right = 0;
    for (int x = box.left(); x <= box.right(); ++x) {
        top += isWanted(x, box.top()) || isWanted(x, box.top() + 1) ? 1 : 0;
        bottom += isWanted(x, box.bottom()) || isWanted(x, box.bottom() - 1) ? 1 : 0;
    }
    for (int y = box.top(); y <= box.bottom(); ++y) {
        left += isWanted(box.left(), y) || isWanted(box.left() + 1, y) ? 1 : 0;
        right += isWanted(box.right(), y) || isWanted(box.right() - 1, y) ? 1 : 0;
    }
    return {static_cast<double>(std::min(top, bottom)) / box.width(),
            static_cast<double>(std::min(left, right)) / box.height()};
}

/// Sets that can be united, as trees in one vector.
class Sets {
public:
    int add() {
        m_parents.push_back(static_cast<int>(m_parents.size()));
        return m_parents.back();
    }

    int root(int set) {
        while (m_parents[set] != set) {
            m_parents[set] = m_parents[m_parents[set]];
            set = m_parents[set];
        }
        return set;
    }

    void unite(int one, int other) {
        one = root(one);
        other = root(other);
        // The older one stays, so that a set's number is never above its members'.
        m_parents[std::max(one, other)] = std::min(one, other);
    }

    size_t size() const { return m_parents.size(); }

private:
    std::vector<int> m_parents;
};

bool areEven(QRgb one, QRgb other) {
    return one == other || colourDistance(one, other) <= evenStep;
}

QImage withStrip(const QImage& picture) {
    QImage padded(picture.width() + 2 * strip, picture.height() + 2 * strip, QImage::Format_RGB32);
    padded.fill(dominantEdgeColour(picture));
    QPainter painter(&padded);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(strip, strip, picture);
    return padded;
}

} // namespace

InkMap::InkMap(const QImage& picture)
    : m_width(picture.width() + 2 * strip)
    , m_height(picture.height() + 2 * strip)
    , m_labels(static_cast<size_t>(m_width) * m_height) {
    labelAreas(withStrip(picture));
    labelPieces();
}

void InkMap::labelAreas(const QImage& padded) {
    Sets sets;
    std::vector<int> sizes;
    const QRgb* above = nullptr;
    for (int y = 0; y < m_height; ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(padded.constScanLine(y));
        for (int x = 0; x < m_width; ++x) {
            const bool likeLeft = x > 0 && areEven(row[x], row[x - 1]);
            const bool likeAbove = above != nullptr && areEven(row[x], above[x]);
            int set = 0;
            if (likeLeft) {
                set = label(x - 1, y);
                if (likeAbove && label(x, y - 1) != set)
                    sets.unite(set, label(x, y - 1));
            } else if (likeAbove) {
                set = label(x, y - 1);
            } else {
                set = sets.add();
                sizes.push_back(0);
            }
            label(x, y) = set;
            ++sizes[set];
        }
        above = row;
    }
    for (int set = static_cast<int>(sets.size()) - 1; set >= 0; --set) {
        const int root = sets.root(set);
        if (root != set)
            sizes[root] += sizes[set];
    }
    std::unordered_map<int, QRect> boxes;
    for (int y = 0; y < m_height; ++y) {
        for (int x = 0; x < m_width; ++x) {
            const int root = sets.root(label(x, y));
            label(x, y) = root;
            if (sizes[root] >= smallestArea && sizes[root] < surelyArea)
                boxes[root] |= QRect(x, y, 1, 1);
        }
    }
    // The strip is background however little there is of it.
    const int around = label(0, 0);
    std::unordered_map<int, bool> faces;
    for (const auto& [area, box] : boxes)
        faces[area] = area == around || isFace(area, sizes[area], box);
    for (int& label : m_labels) {
        if (sizes[label] < smallestArea || (sizes[label] < surelyArea && !faces[label]))
            label = ink;
    }
}

bool InkMap::isFace(int area, int size, const QRect& box) const {
    if (std::min(box.width(), box.height()) <= thickestBar)
        return size >= largestBar;
    const double filled = static_cast<double>(size) / (box.width() * box.height());
    if (box.width() < wide * box.height())
        return filled >= leastFilled;
    const Sides sides = sidesCovered(box, [&](int x, int y) { return label(x, y) == area; });
    return filled >= leastFilledIfWide && sides.horizontal >= leastLongSide &&
           sides.vertical >= leastShortSide;
}

void InkMap::labelPieces() {
    struct Run {
        int left;
        int right;
        int set;
    };
    struct Bounds {
        int left, top, right, bottom;
    };
    Sets sets;
    std::vector<Bounds> bounds;
    std::vector<Run> above;
    std::vector<Run> current;
    for (int y = 0; y < m_height; ++y) {
        current.clear();
        size_t next = 0;
        for (int x = 0; x < m_width; ++x) {
            if (label(x, y) != ink)
                continue;
            Run run{x, x, -1};
            while (run.right + 1 < m_width && label(run.right + 1, y) == ink)
                ++run.right;
            x = run.right;
            // Pieces also hang together by the corners of their pixels.
            while (next < above.size() && above[next].right < run.left - 1)
                ++next;
            for (size_t index = next; index < above.size() && above[index].left <= run.right + 1; ++index) {
                if (run.set == -1) {
                    run.set = above[index].set;
                } else {
                    sets.unite(run.set, above[index].set);
                }
            }
            if (run.set == -1) {
                run.set = sets.add();
                bounds.push_back({run.left, y, run.right, y});
            }
            Bounds& box = bounds[run.set];
            box = {std::min(box.left, run.left), box.top, std::max(box.right, run.right), y};
            current.push_back(run);
        }
        std::swap(above, current);
    }
    for (int set = static_cast<int>(bounds.size()) - 1; set >= 0; --set) {
        const int root = sets.root(set);
        if (root == set)
            continue;
        Bounds& into = bounds[root];
        const Bounds& from = bounds[set];
        into = {std::min(into.left, from.left), std::min(into.top, from.top),
                std::max(into.right, from.right), std::max(into.bottom, from.bottom)};
    }
    for (int set = 0; set < static_cast<int>(bounds.size()); ++set) {
        if (sets.root(set) != set)
            continue;
        const Bounds& box = bounds[set];
        const QRect padded(QPoint(box.left, box.top), QPoint(box.right, box.bottom));
        m_pieces.push_back({padded.translated(-strip, -strip), areaAround(padded)});
    }
}

int InkMap::areaAround(const QRect& paddedBox) const {
    std::unordered_map<int, int> votes;
    const QRect ring = paddedBox.adjusted(-1, -1, 1, 1);
    const auto vote = [&](int x, int y) {
        if (x >= 0 && y >= 0 && x < m_width && y < m_height && label(x, y) != ink)
            ++votes[label(x, y)];
    };
    for (int x = ring.left(); x <= ring.right(); ++x) {
        vote(x, ring.top());
        vote(x, ring.bottom());
    }
    for (int y = ring.top() + 1; y < ring.bottom(); ++y) {
        vote(ring.left(), y);
        vote(ring.right(), y);
    }
    const auto most = std::max_element(votes.begin(), votes.end(), [](const auto& one, const auto& other) {
        return std::pair(one.second, -one.first) < std::pair(other.second, -other.first);
    });
    return most == votes.end() ? ink : most->first;
}

bool InkMap::isFrame(const InkPiece& piece) const {
    const QRect box = piece.box.translated(strip, strip);
    if (std::min(box.width(), box.height()) < smallestFrame)
        return false;
    int enclosed = 0;
    for (int y = box.top(); y <= box.bottom(); ++y) {
        for (int x = box.left(); x <= box.right(); ++x)
            enclosed += label(x, y) != ink && label(x, y) != piece.area ? 1 : 0;
    }
    const Sides sides = sidesCovered(box, [this](int x, int y) { return label(x, y) == ink; });
    return enclosed >= leastEnclosed * box.width() * box.height() &&
           std::min(sides.horizontal, sides.vertical) >= leastBordered;
}

bool InkMap::isClear(int y, int from, int to, int area) const {
    for (int x = from; x < to; ++x) {
        if (label(x + strip, y + strip) != area)
            return false;
    }
    return true;
}

} // namespace orvane::ocr
