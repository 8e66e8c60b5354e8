#pragma once

#include <QImage>
#include <QRect>

namespace orvane::ocr {

/// The line in `box` of `picture` (Format_RGB32) as recognition likes it best: black on white, whatever its
/// colours were, enlarged or reduced to the height that the recogniser works with, with a margin.
/// Format_Grayscale8.
QImage linePicture(const QImage& picture, const QRect& box);

} // namespace orvane::ocr
