#include "OrvaneCore/marking/Palettes.h"

namespace orvane {

namespace {

/// Unsigned numbers wrap at a multiple of the number of colours, so that the colours repeat below zero as
/// well.
QRgb colorOfMarker(const std::array<QRgb, 8>& colors, int index) {
    return colors[(static_cast<unsigned>(index) - 1U) % colors.size()];
}

} // namespace

QColor marker_palette::border(int index) {
    return QColor(colorOfMarker(borders, index));
}

QColor marker_palette::dot(int index) {
    return QColor(colorOfMarker(dots, index));
}

QColor marker_palette::badgeRing() {
    return QColor(0x0B, 0x12, 0x20);
}

QColor marker_palette::labelFill() {
    QColor color(18, 20, 26);
    color.setAlphaF(0.9F);
    return color;
}

} // namespace orvane
