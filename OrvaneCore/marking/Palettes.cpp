#include "OrvaneCore/marking/Palettes.h"

namespace orvane {

namespace {

/// Unsigned numbers wrap at a multiple of the number of colours, so that the colours repeat below zero as
/// well.
QRgb colorOfMarker(const std::array<QRgb, 8>& colors, int index) {
    return colors[(static_cast<unsigned>(index) - 1U) % colors.size()];
}

} // namespace

QColor MarkerPalette::border(int index) {
    return QColor(colorOfMarker(borders, index));
}

QColor MarkerPalette::dot(int index) {
    return QColor(colorOfMarker(dots, index));
}

QColor MarkerPalette::badgeRing() {
    return QColor(0x0B, 0x12, 0x20);
}

QColor MarkerPalette::labelFill() {
    QColor color(18, 20, 26);
    color.setAlphaF(0.9F);
    return color;
}

} // namespace orvane
