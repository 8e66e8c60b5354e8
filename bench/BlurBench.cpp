#include "OrvaneCore/drawing/GaussianBlur.h"
#include "OrvaneCore/drawing/SpotlightBlur.h"
#include "bench/DesktopPicture.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using orvane::blurOutside;
using orvane::gaussianBlur;

constexpr QSize fourK(3840, 2160);
constexpr double spotlightSigma = 18;
constexpr size_t channels = 3;

// The reference takes far longer than the blur. No power of two divides the step, so the sampled rows stand
// in all places of the blur's coarse grid.
constexpr int rowStep = 37;

std::vector<double> gaussian(double sigma) {
    const auto radius = static_cast<size_t>(std::ceil(6 * sigma));
    std::vector<double> weights(2 * radius + 1);
    double sum = 0;
    for (size_t i = 0; i < weights.size(); ++i) {
        const double distance = (static_cast<double>(i) - static_cast<double>(radius)) / sigma;
        weights[i] = std::exp(-0.5 * distance * distance);
        sum += weights[i];
    }
    for (double& weight : weights)
        weight /= sum;
    return weights;
}

/// A row of the picture blurred by the plain definition: red, green and blue of each pixel.
std::vector<double> referenceRow(const QImage& picture, int y, const std::vector<double>& kernel) {
    const size_t radius = kernel.size() / 2;
    const auto width = static_cast<size_t>(picture.width());
    std::vector<double> column((width + 2 * radius) * channels);
    for (size_t k = 0; k < kernel.size(); ++k) {
        const int above =
            std::clamp(y + static_cast<int>(k) - static_cast<int>(radius), 0, picture.height() - 1);
        const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(above));
        for (size_t i = 0; i < width + 2 * radius; ++i) {
            const QRgb pixel = row[std::clamp(i, radius, radius + width - 1) - radius];
            column[i * channels] += kernel[k] * qRed(pixel);
            column[i * channels + 1] += kernel[k] * qGreen(pixel);
            column[i * channels + 2] += kernel[k] * qBlue(pixel);
        }
    }
    std::vector<double> result(width * channels);
    for (size_t k = 0; k < kernel.size(); ++k) {
        for (size_t i = 0; i < result.size(); ++i)
            result[i] += kernel[k] * column[k * channels + i];
    }
    return result;
}

double psnr(const QImage& picture, const QImage& blurred, double sigma) {
    const std::vector<double> kernel = gaussian(sigma);
    double squares = 0;
    size_t values = 0;
    for (int y = 0; y < picture.height(); y += rowStep) {
        const std::vector<double> expected = referenceRow(picture, y, kernel);
        const auto* row = reinterpret_cast<const QRgb*>(blurred.constScanLine(y));
        for (size_t i = 0; i < expected.size(); i += channels) {
            const QRgb pixel = row[i / channels];
            squares += std::pow(qRed(pixel) - expected[i], 2) + std::pow(qGreen(pixel) - expected[i + 1], 2) +
                       std::pow(qBlue(pixel) - expected[i + 2], 2);
        }
        values += expected.size();
    }
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(values) / squares);
}

/// The argument is sigma in tenths of a pixel.
void blurDesktop(benchmark::State& state) {
    const double sigma = static_cast<double>(state.range(0)) / 10;
    const QImage picture = orvane::bench::desktopPicture(fourK);
    QImage blurred;
    for ([[maybe_unused]] auto iteration : state) {
        blurred = gaussianBlur(picture, sigma);
        benchmark::DoNotOptimize(blurred);
    }
    state.SetBytesProcessed(state.iterations() * picture.sizeInBytes());
    state.counters["psnrDb"] = psnr(picture, blurred, sigma);
}

void blurAroundSpotlight(benchmark::State& state) {
    const QImage picture = orvane::bench::desktopPicture(fourK);
    const std::vector<QRectF> clear{{300.5, 200, 1200, 800}, {2500, 1500, 640, 480}};
    for ([[maybe_unused]] auto iteration : state)
        benchmark::DoNotOptimize(blurOutside(picture, clear, spotlightSigma));
    state.SetBytesProcessed(state.iterations() * picture.sizeInBytes());
}

BENCHMARK(blurDesktop)->Arg(180)->Arg(5)->Arg(15)->Arg(40)->Arg(80)->Arg(600)->Unit(benchmark::kMillisecond);
BENCHMARK(blurAroundSpotlight)->Unit(benchmark::kMillisecond);

} // namespace
