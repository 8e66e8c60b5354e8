#pragma once

#include <QImage>
#include <QRect>

namespace orvane::ocr {

/// How large a line is shown to the recogniser.
struct LineShape {
    /// Of the whole picture, in pixels.
    int height = 0;
    /// Above and below the line, as a share of its height.
    double marginAbove = 0;
};

/// For English, Japanese and Korean. Measured on text of 11 to 18 px: margins of 0.3 and more, or letters
/// made narrower, cost more mistakes than they save time.
inline constexpr LineShape lowLine{.height = 40, .marginAbove = 0.2};
/// For Chinese, whose network takes 48 pixels: of both scripts together nothing else that was tried was read
/// with no more mistakes in either.
inline constexpr LineShape tallLine{.height = 48, .marginAbove = 0.1};

/// The line in `box` of `picture` (Format_RGB32) as recognition likes it best: black on white, whatever its
/// colours were, enlarged or reduced to the shape that the recogniser works with. Format_Grayscale8.
QImage linePicture(const QImage& picture, const QRect& box, const LineShape& shape);

} // namespace orvane::ocr
