#pragma once

#include <QImage>

namespace orvane {

/// The picture under a Gaussian of standard deviation `sigma`, in pixels whatever the device pixel ratio. The
/// pixels of the edges go on outward for ever, so the edges neither darken nor fade. Size, device pixel
/// ratio, resolution and colour space stay. The result is RGB32, or ARGB32_Premultiplied for a picture with
/// an alpha channel (colours are weighted by their alpha), or Alpha8 for an Alpha8 mask.
///
/// For a sigma that is zero, negative or no number, for a null picture, and where Qt can make no second
/// picture of its size: the picture itself. An infinite sigma is a very large one. Time and memory do not
/// grow with a wide sigma. Any thread; uses one core.
QImage gaussianBlur(const QImage& image, double sigma);

} // namespace orvane
