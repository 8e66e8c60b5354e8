#include "OrvanePlatform/ocr/layout/Colours.h"

#include <QRect>

#include <algorithm>
#include <cstdlib>
#include <unordered_map>

namespace orvane::ocr {

namespace {

/// Counts colours by their upper four bits, so that a gradient or noise does not scatter a colour's votes.
class ColourVotes {
public:
    void add(QRgb colour) {
        Votes& votes = m_votes[colour & 0xF0F0F0U];
        ++votes.count;
        votes.red += qRed(colour);
        votes.green += qGreen(colour);
        votes.blue += qBlue(colour);
    }

    /// The mean colour of the largest group; white when nothing was counted.
    QRgb winner() const {
        const Votes* most = nullptr;
        for (const auto& [key, votes] : m_votes) {
            if (most == nullptr || votes.count > most->count)
                most = &votes;
        }
        if (most == nullptr)
            return qRgb(255, 255, 255);
        return qRgb(most->red / most->count, most->green / most->count, most->blue / most->count);
    }

private:
    struct Votes {
        int count = 0;
        int red = 0;
        int green = 0;
        int blue = 0;
    };
    std::unordered_map<QRgb, Votes> m_votes;
};

} // namespace

int colourDistance(QRgb one, QRgb other) {
    return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                     std::abs(qBlue(one) - qBlue(other))});
}

QRgb dominantEdgeColour(const QImage& picture) {
    return dominantColourAround(picture, picture.rect().adjusted(1, 1, -1, -1));
}

QRgb dominantColourAround(const QImage& picture, const QRect& box) {
    ColourVotes votes;
    const auto vote = [&](int x, int y) {
        if (picture.rect().contains(x, y))
            votes.add(picture.pixel(x, y));
    };
    for (int x = box.left() - 1; x <= box.right() + 1; ++x) {
        vote(x, box.top() - 1);
        vote(x, box.bottom() + 1);
    }
    for (int y = box.top(); y <= box.bottom(); ++y) {
        vote(box.left() - 1, y);
        vote(box.right() + 1, y);
    }
    return votes.winner();
}

} // namespace orvane::ocr
