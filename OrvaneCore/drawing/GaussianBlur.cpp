#include "OrvaneCore/drawing/GaussianBlur.h"

#include <QColorSpace>
#include <QSize>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace orvane {

namespace {

// A wide Gaussian is made on a coarse grid: the picture is averaged down by a power of two, blurred there and
// interpolated up again. All three steps widen, and the variances of independent steps add up, so the blur in
// the middle gets what the other two leave. With at least this many cells to a sigma, what the coarse grid
// cannot show is what the Gaussian wipes out anyway, and the sum is a Gaussian to within a rounded grey
// level.
constexpr double fewestCellsPerSigma = 2.2;

// More than these, and the sums of reduce() outgrow sixteen bits.
constexpr int largestFirstStep = 8;

// Beyond the picture on each side. The outermost cell then lies wholly among the repeated edge pixels, so
// that repeating it is the same as averaging more of them.
constexpr int margin = 2;

// The interpolation is a cubic B-spline.
constexpr double splineVariance = 1.0 / 3;
constexpr int splineTaps = 4;

// From here on the result does not change by a grey level any more: the mean of the four corners.
constexpr double widestSigmaPerSide = 1024;

constexpr double kernelSigmas = 4;

/// Interleaved channels as the picture has them.
struct Grid {
    int width = 0;
    int height = 0;
    int channels = 0;
    std::vector<float> values;

    Grid(int gridWidth, int gridHeight, int channelCount)
        : width(gridWidth)
        , height(gridHeight)
        , channels(channelCount)
        , values(rowLength() * static_cast<size_t>(gridHeight)) {}

    size_t rowLength() const { return static_cast<size_t>(width) * static_cast<size_t>(channels); }
    float* row(int y) { return values.data() + static_cast<size_t>(y) * rowLength(); }
    const float* row(int y) const { return values.data() + static_cast<size_t>(y) * rowLength(); }
};

/// The Gaussian at 0, 1, 2 ... steps from its centre; both halves together sum up to 1.
std::vector<float> halfKernel(double sigma) {
    const auto radius = static_cast<size_t>(std::ceil(kernelSigmas * sigma));
    std::vector<double> weights(radius + 1);
    double sum = 0;
    for (size_t i = 0; i <= radius; ++i) {
        const double distance = static_cast<double>(i) / sigma;
        weights[i] = std::exp(-0.5 * distance * distance);
        sum += (i == 0 ? 1 : 2) * weights[i];
    }
    std::vector<float> kernel(weights.size());
    std::transform(weights.begin(), weights.end(), kernel.begin(),
                   [sum](double weight) { return static_cast<float>(weight / sum); });
    return kernel;
}

/// Each of `length` values is the sum over the rows, weighted by the symmetric kernel whose centre is the
/// middle row.
void weightedSum(const std::vector<const float*>& rows, const std::vector<float>& kernel, size_t length,
                 float* out) {
    // A block stays in registers while all rows pass.
    constexpr size_t block = 16;
    const size_t radius = kernel.size() - 1;
    size_t begin = 0;
    for (; begin + block <= length; begin += block) {
        std::array<float, block> sums;
        for (size_t i = 0; i < block; ++i)
            sums[i] = kernel[0] * rows[radius][begin + i];
        for (size_t k = 1; k <= radius; ++k) {
            const float weight = kernel[k];
            const float* before = rows[radius - k] + begin;
            const float* after = rows[radius + k] + begin;
            for (size_t i = 0; i < block; ++i)
                sums[i] += weight * (before[i] + after[i]);
        }
        std::memcpy(out + begin, sums.data(), sizeof sums);
    }
    for (size_t i = begin; i < length; ++i) {
        float sum = kernel[0] * rows[radius][i];
        for (size_t k = 1; k <= radius; ++k)
            sum += kernel[k] * (rows[radius - k][i] + rows[radius + k][i]);
        out[i] = sum;
    }
}

/// A Gaussian of that sigma, in cells, by the sum over all neighbours. `load(y, row)` writes a row and is
/// called once for each, in order; `store(y, row)` takes a finished one, after `load` for the same y.
template <typename Load, typename Store>
void convolve(const QSize& size, int channels, double sigma, Load load, Store store) {
    const std::vector<float> kernel = halfKernel(sigma);
    const int radius = static_cast<int>(kernel.size()) - 1;
    const int taps = 2 * radius + 1;
    const int height = size.height();
    const size_t length = static_cast<size_t>(size.width()) * static_cast<size_t>(channels);
    const size_t side = static_cast<size_t>(radius) * static_cast<size_t>(channels);

    std::vector<float> padded(side + length + side);
    std::vector<const float*> shifted(static_cast<size_t>(taps));
    for (size_t tap = 0; tap < shifted.size(); ++tap)
        shifted[tap] = padded.data() + tap * static_cast<size_t>(channels);

    // Rows, blurred along x, as many as one row of the result needs.
    const int held = std::min(height, taps);
    std::vector<float> ring(static_cast<size_t>(held) * length);
    const auto heldRow = [&](int y) { return ring.data() + static_cast<size_t>(y % held) * length; };
    std::vector<const float*> rows(static_cast<size_t>(taps));
    std::vector<float> finished(length);

    int loaded = 0;
    for (int y = 0; y < height; ++y) {
        for (; loaded < std::min(height, y + radius + 1); ++loaded) {
            float* first = padded.data() + side;
            load(loaded, first);
            const float* last = first + length - static_cast<size_t>(channels);
            for (size_t i = 0; i < side; ++i) {
                padded[i] = first[i % static_cast<size_t>(channels)];
                padded[side + length + i] = last[i % static_cast<size_t>(channels)];
            }
            weightedSum(shifted, kernel, length, heldRow(loaded));
        }
        for (int tap = 0; tap < taps; ++tap)
            rows[static_cast<size_t>(tap)] = heldRow(std::clamp(y + tap - radius, 0, height - 1));
        weightedSum(rows, kernel, length, finished.data());
        store(y, finished.data());
    }
}

int reducedLength(int length, int step) {
    return (length - 1) / step + 1 + 2 * margin;
}

/// Averages down: every `step` cells become one. Neighbours share their outer halves (the weights are
/// 1 3 5 ... 5 3 1), since a plain mean would turn fine patterns of nearly the cell's size into coarse ones.
/// Of `Sum` it needs that the largest value times 2 * step * step fits in.
template <int channels, typename Sum, typename RowAt>
Grid reduce(const QSize& size, int step, RowAt rowAt) {
    Grid grid(reducedLength(size.width(), step), reducedLength(size.height(), step), channels);
    const int taps = 2 * step;
    const size_t length = static_cast<size_t>(size.width()) * channels;
    std::vector<Sum> column(length);
    const float share = 1.0F / static_cast<float>(4 * step * step * step * step);
    for (int y = 0; y < grid.height; ++y) {
        const int top = (y - margin) * step - step / 2;
        std::fill(column.begin(), column.end(), Sum{0});
        for (int tap = 0; tap < step; ++tap) {
            const auto* upper = rowAt(std::clamp(top + tap, 0, size.height() - 1));
            const auto* lower = rowAt(std::clamp(top + taps - 1 - tap, 0, size.height() - 1));
            const auto weight = static_cast<Sum>(2 * tap + 1);
            Sum* sums = column.data();
            for (size_t i = 0; i < length; ++i)
                sums[i] = static_cast<Sum>(sums[i] + weight * (upper[i] + lower[i]));
        }
        float* out = grid.row(y);
        for (int x = 0; x < grid.width; ++x) {
            const int left = (x - margin) * step - step / 2;
            std::array<float, channels> sums{};
            for (int tap = 0; tap < taps; ++tap) {
                const int at = std::clamp(left + tap, 0, size.width() - 1);
                const auto weight = static_cast<float>(2 * std::min(tap, taps - 1 - tap) + 1);
                const Sum* pixel = column.data() + static_cast<size_t>(at) * channels;
                for (size_t c = 0; c < channels; ++c)
                    sums[c] += weight * static_cast<float>(pixel[c]);
            }
            for (size_t c = 0; c < channels; ++c)
                *out++ = share * sums[c];
        }
    }
    return grid;
}

/// Squared cells of the finer grid.
double reduceVariance(double step) {
    return (step * step - 1) / 6 + 0.25;
}

/// The part that four neighbouring cells have in a pixel.
struct Blend {
    size_t first = 0;
    std::array<float, splineTaps> weights{};
};

/// For each pixel along one side; cell 0 lies at pixel `origin`, and the next one `scale` pixels on.
std::vector<Blend> blends(int length, double origin, double scale) {
    std::vector<Blend> result(static_cast<size_t>(length));
    for (size_t i = 0; i < result.size(); ++i) {
        const double at = (static_cast<double>(i) - origin) / scale;
        const double cell = std::floor(at);
        const double t = at - cell;
        const double s = 1 - t;
        result[i] = {
            static_cast<size_t>(cell) - 1,
            {static_cast<float>(s * s * s / 6), static_cast<float>((3 * t * t * t - 6 * t * t + 4) / 6),
             static_cast<float>((3 * s * s * s - 6 * s * s + 4) / 6), static_cast<float>(t * t * t / 6)}};
    }
    return result;
}

/// Values from 0 to 255 become the bytes of a row.
void storeRow(const float* values, int channels, int y, QImage& picture) {
    const size_t width = static_cast<size_t>(picture.width());
    const size_t length = width * static_cast<size_t>(channels);
    uchar* bytes = picture.scanLine(y);
    for (size_t i = 0; i < length; ++i) {
        const float roundedWhenCut = values[i] + 0.5F;
        bytes[i] = static_cast<uchar>(static_cast<int>(roundedWhenCut));
    }
    if (picture.format() != QImage::Format_RGB32)
        return;
    auto* pixels = reinterpret_cast<QRgb*>(bytes);
    for (size_t x = 0; x < width; ++x)
        pixels[x] |= 0xff000000U;
}

template <int channels>
void expand(const Grid& grid, double origin, double scale, QImage& picture) {
    const std::vector<Blend> across = blends(picture.width(), origin, scale);
    const std::vector<Blend> down = blends(picture.height(), origin, scale);
    std::vector<float> cells(grid.rowLength());
    std::vector<float> pixels(across.size() * channels);
    for (int y = 0; y < picture.height(); ++y) {
        const Blend& rows = down[static_cast<size_t>(y)];
        const float* row = grid.row(static_cast<int>(rows.first));
        const size_t next = grid.rowLength();
        for (size_t i = 0; i < next; ++i) {
            cells[i] = rows.weights[0] * row[i] + rows.weights[1] * row[next + i] +
                       rows.weights[2] * row[2 * next + i] + rows.weights[3] * row[3 * next + i];
        }
        float* pixel = pixels.data();
        for (const Blend& blend : across) {
            const float* cell = cells.data() + blend.first * channels;
            std::array<float, channels> sums{};
            for (size_t tap = 0; tap < splineTaps; ++tap) {
                for (size_t c = 0; c < channels; ++c)
                    sums[c] += blend.weights[tap] * cell[tap * channels + c];
            }
            std::copy(sums.begin(), sums.end(), pixel);
            pixel += channels;
        }
        storeRow(pixels.data(), channels, y, picture);
    }
}

void blurFinely(const QImage& source, int channels, double sigma, QImage& result) {
    const size_t length = static_cast<size_t>(source.width()) * static_cast<size_t>(channels);
    convolve(
        source.size(), channels, sigma,
        [&](int y, float* row) { std::copy_n(source.constScanLine(y), length, row); },
        [&](int y, const float* row) { storeRow(row, channels, y, result); });
}

template <int channels>
void blurCoarsely(const QImage& source, double sigma, double scale, QImage& result) {
    const int firstStep = static_cast<int>(std::min<double>(scale, largestFirstStep));
    Grid grid = reduce<channels, quint16>(source.size(), firstStep,
                                          [&source](int y) { return source.constScanLine(y); });
    double cell = firstStep;
    double origin = (cell - 1) / 2 - margin * cell;
    double variance = reduceVariance(cell);
    while (cell < scale) {
        grid = reduce<channels, float>({grid.width, grid.height}, 2,
                                       [&grid](int y) { return std::as_const(grid).row(y); });
        variance += reduceVariance(2) * cell * cell;
        origin += (0.5 - margin * 2) * cell;
        cell *= 2;
    }
    const double rest = (sigma * sigma - variance) / (cell * cell) - splineVariance;
    convolve(
        {grid.width, grid.height}, channels, std::sqrt(rest),
        [&](int y, float* row) { std::copy_n(grid.row(y), grid.rowLength(), row); },
        [&](int y, const float* row) { std::copy_n(row, grid.rowLength(), grid.row(y)); });
    expand<channels>(grid, origin, cell, result);
}

QImage::Format workingFormat(const QImage& image) {
    if (image.format() == QImage::Format_Alpha8)
        return QImage::Format_Alpha8;
    return image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
}

} // namespace

QImage gaussianBlur(const QImage& image, double sigma) {
    if (image.isNull() || !(sigma > 0))
        return image;
    const QImage source = image.convertToFormat(workingFormat(image));
    QImage result(source.size(), source.format());
    if (source.isNull() || result.isNull())
        return image;
    result.setDevicePixelRatio(image.devicePixelRatio());
    result.setDotsPerMeterX(image.dotsPerMeterX());
    result.setDotsPerMeterY(image.dotsPerMeterY());
    result.setColorSpace(image.colorSpace());

    const double width = std::min(sigma, widestSigmaPerSide * std::max(image.width(), image.height()));
    double scale = 1;
    while (width / (2 * scale) >= fewestCellsPerSigma)
        scale *= 2;
    const bool isMask = source.format() == QImage::Format_Alpha8;
    if (scale == 1) {
        blurFinely(source, isMask ? 1 : 4, width, result);
    } else if (isMask) {
        blurCoarsely<1>(source, width, scale, result);
    } else {
        blurCoarsely<4>(source, width, scale, result);
    }
    return result;
}

} // namespace orvane
