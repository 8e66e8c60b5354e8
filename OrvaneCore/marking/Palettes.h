#pragma once

#include <QColor>

#include <array>

namespace orvane {

/// What shapes can be drawn with.
namespace markup_colors {

inline constexpr std::array<QRgb, 6> presets{0xFFEF4444, 0xFFF59E0B, 0xFF3B82F6,
                                             0xFF10B981, 0xFFFFFFFF, 0xFF000000};
inline constexpr QRgb defaultColor = presets[0];
/// Points.
inline constexpr std::array<qreal, 3> strokePresets{3, 6, 11};

} // namespace markup_colors

/// What markers are drawn with. Marker n, counted from 1, has the n-th colour, and they repeat.
namespace marker_palette {

inline constexpr std::array<QRgb, 8> borders{0xFF3B82F6, 0xFF8B5CF6, 0xFF10B981, 0xFFF59E0B,
                                             0xFFF43F5E, 0xFF0EA5E9, 0xFFF97316, 0xFFEC4899};
inline constexpr std::array<QRgb, 8> dots{0xFF60A5FA, 0xFFA78BFA, 0xFF34D399, 0xFFFBBF24,
                                          0xFFFB7185, 0xFF38BDF8, 0xFFFB923C, 0xFFF472B6};

/// `index` is any number; that of a marker starts at 1.
QColor border(int index);
QColor dot(int index);
/// The ring around a badge.
QColor badgeRing();
/// The ground of a label's capsule.
QColor labelFill();

} // namespace marker_palette

} // namespace orvane
