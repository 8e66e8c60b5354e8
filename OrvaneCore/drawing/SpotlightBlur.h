#pragma once

#include <QImage>
#include <QRectF>

#include <vector>

namespace orvane {

/// The picture blurred (see gaussianBlur) but for the given rectangles, which keep the pixels they have.
/// Rectangles are in points of the picture, that is in pixels divided by its device pixel ratio, y down;
/// sigma is in pixels. Each rectangle grows to whole pixels and is clipped to the picture. One of negative
/// size means the same area as its positive twin; one without area, or with a number that is not finite,
/// clears nothing.
///
/// The result has a format that holds every sharp pixel exactly: the picture's own one where a pixel has 32
/// bits or more and for Alpha8 and Grayscale16, else one of 32 bits. Where there is nothing to blur (sigma
/// zero, negative or no number, a null picture), or Qt can make no second picture: the picture itself.
/// Any thread.
QImage blurOutside(const QImage& image, const std::vector<QRectF>& clearRects, double sigma);

} // namespace orvane
