#include "OrvaneCore/surface/RepaintRegion.h"

#include <cmath>

namespace orvane {

namespace {

/// Whether painters have the very scale that their display has.
bool isExactForPainters(qreal scale) {
    const qreal parts = scale * 65536;
    return parts == std::floor(parts);
}

/// Whether what painters lose of the scale cannot move an edge to another pixel, however large the display.
bool isFarFromHalfAPixel(int place, qreal scale) {
    constexpr qreal room = 0.08;
    const qreal pixels = place * scale;
    return std::abs(pixels - std::floor(pixels) - 0.5) > room;
}

int edgeBefore(int place, qreal scale) {
    while (place > 0 && !isFarFromHalfAPixel(place, scale))
        --place;
    return place;
}

int edgeAfter(int place, int end, qreal scale) {
    while (place < end && !isFarFromHalfAPixel(place, scale))
        ++place;
    return place;
}

} // namespace

QRegion repaintRegion(const QRegion& changed, const QRect& view, qreal scale) {
    QRegion shown = changed & view;
    if (isExactForPainters(scale))
        return shown;
    QRegion region;
    for (const QRect& rect : shown) {
        const QPoint first(edgeBefore(rect.x(), scale), edgeBefore(rect.y(), scale));
        const QPoint end(edgeAfter(rect.x() + rect.width(), view.width(), scale),
                         edgeAfter(rect.y() + rect.height(), view.height(), scale));
        region += QRect(first, end - QPoint(1, 1));
    }
    return region;
}

} // namespace orvane
