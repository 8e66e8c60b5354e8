#pragma once

#include <QImage>
#include <QRgb>

namespace orvane::ocr {

/// The largest difference of a channel, from 0 to 255.
int colourDistance(QRgb one, QRgb other);

/// The colour that most pixels of a picture's edge have, or nearly have. The picture is Format_RGB32.
QRgb dominantEdgeColour(const QImage& picture);

/// The same of the pixels that lie right outside of a box, as far as they are in the picture.
QRgb dominantColourAround(const QImage& picture, const QRect& box);

} // namespace orvane::ocr
