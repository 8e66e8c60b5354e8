#pragma once

#include <QColor>

namespace orvane {

/// Colours that belong to no palette of the human's and are the same on every desktop.
namespace system_colors {

inline constexpr QRgb red = 0xFFFF3B30;
inline constexpr QRgb blue = 0xFF007AFF;
inline constexpr QRgb green = 0xFF34C759;
inline constexpr QRgb orange = 0xFFFF9500;
inline constexpr QRgb purple = 0xFFAF52DE;

} // namespace system_colors

/// A grey from 0, black, to 1, white.
inline QColor gray(float white, float alpha = 1) {
    return QColor::fromRgbF(white, white, white, alpha);
}

inline QColor withAlpha(QColor color, float alpha) {
    color.setAlphaF(alpha);
    return color;
}

} // namespace orvane
