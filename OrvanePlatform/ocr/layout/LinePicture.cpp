#include "OrvanePlatform/ocr/layout/LinePicture.h"

#include "OrvanePlatform/ocr/layout/Colours.h"

#include <algorithm>
#include <array>

namespace orvane::ocr {

namespace {

constexpr double marginBeside = 0.1;
// What differs less from the background is background: gradients, traces of lossy compression.
constexpr int faintest = 8;
// The share of pixels that may be stronger than what becomes black.
constexpr double strongest = 0.02;

using Histogram = std::array<int, 256>;

int strongestDistance(const Histogram& histogram, int pixels) {
    int distance = 255;
    for (int count = histogram[255]; distance > faintest + 1 && count <= strongest * pixels;)
        count += histogram[static_cast<size_t>(--distance)];
    return distance;
}

} // namespace

QImage linePicture(const QImage& picture, const QRect& box, const LineShape& shape) {
    const QRgb background = dominantColourAround(picture, box);
    const int above = std::max(1, qRound(shape.marginAbove * box.height()));
    const int beside = std::max(1, qRound(marginBeside * box.height()));
    QImage line(box.width() + 2 * beside, box.height() + 2 * above, QImage::Format_Grayscale8);
    line.fill(0);
    // How far each pixel is from the background says how much ink it has, whichever of the two is the darker.
    Histogram histogram{};
    for (int y = 0; y < box.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(box.top() + y)) + box.left();
        uchar* distances = line.scanLine(above + y) + beside;
        for (int x = 0; x < box.width(); ++x) {
            const int distance = colourDistance(row[x], background);
            distances[x] = static_cast<uchar>(distance);
            ++histogram[static_cast<size_t>(distance)];
        }
    }

    const int black = strongestDistance(histogram, box.width() * box.height());
    std::array<uchar, 256> shades{};
    for (int distance = 0; distance < 256; ++distance) {
        const int ink = (distance - faintest) * 255 / (black - faintest);
        shades[static_cast<size_t>(distance)] = static_cast<uchar>(255 - std::clamp(ink, 0, 255));
    }
    for (int y = 0; y < line.height(); ++y) {
        uchar* row = line.scanLine(y);
        std::transform(row, row + line.width(), row, [&shades](uchar distance) { return shades[distance]; });
    }

    const int width = std::max(1, qRound(double{1} * line.width() * shape.height / line.height()));
    return line.scaled(width, shape.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_Grayscale8);
}

} // namespace orvane::ocr
