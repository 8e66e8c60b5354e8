#pragma once

#include <QRgb>

namespace orvane::png {

/// Writes the red, green and blue of each pixel, three bytes a pixel, and nothing behind them. The fourth
/// byte of a pixel does not count.
void packRgb(const QRgb* pixels, int count, uchar* to);

} // namespace orvane::png
