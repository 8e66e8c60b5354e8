#include "OrvaneCore/drawing/GaussianBlur.h"

#include <QColorSpace>
#include <QTransform>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace orvane {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// What rounding to whole levels leaves, and what a coarse grid may add to it.
constexpr double levelTolerance = 0.65;

int channelsOf(const QImage& picture) {
    return picture.depth() / 8;
}

QImage noise(const QSize& size, QImage::Format format) {
    std::mt19937 random(7);
    QImage picture(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y)
        std::generate_n(reinterpret_cast<QRgb*>(picture.scanLine(y)), size.width(), std::ref(random));
    return picture.convertToFormat(format);
}

/// Sampled at whole pixels out to where nothing is left, summing up to 1. The centre is the middle one.
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

/// One pass over `count` lines of `length` values each.
std::vector<double> blurredLines(const std::vector<double>& values, size_t count, size_t lineStep,
                                 size_t length, size_t step, const std::vector<double>& kernel) {
    std::vector<double> result(values.size());
    const size_t radius = kernel.size() / 2;
    for (size_t line = 0; line < count; ++line) {
        for (size_t i = 0; i < length; ++i) {
            double sum = 0;
            for (size_t k = 0; k < kernel.size(); ++k) {
                const size_t at = std::clamp(i + k, radius, radius + length - 1) - radius;
                sum += kernel[k] * values[line * lineStep + at * step];
            }
            result[line * lineStep + i * step] = sum;
        }
    }
    return result;
}

/// The plain definition, for one byte of each pixel, row by row: every pixel asks all its neighbours, and
/// beyond the edges the edge pixels repeat.
std::vector<double> reference(const QImage& picture, int channel, double sigma) {
    const auto width = static_cast<size_t>(picture.width());
    const auto height = static_cast<size_t>(picture.height());
    std::vector<double> values;
    values.reserve(width * height);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            values.push_back(picture.constScanLine(y)[x * channelsOf(picture) + channel]);
    }
    const std::vector<double> kernel = gaussian(sigma);
    values = blurredLines(values, height, width, width, 1, kernel);
    return blurredLines(values, width, 1, height, width, kernel);
}

struct Deviation {
    double largest = 0;
    double psnr = 0;
};

Deviation deviation(const QImage& source, const QImage& blurred, double sigma) {
    Deviation result;
    double squares = 0;
    for (int channel = 0; channel < channelsOf(source); ++channel) {
        const std::vector<double> expected = reference(source, channel, sigma);
        auto next = expected.begin();
        for (int y = 0; y < source.height(); ++y) {
            for (int x = 0; x < source.width(); ++x) {
                const double got = blurred.constScanLine(y)[x * channelsOf(blurred) + channel];
                const double off = got - *next++;
                squares += off * off;
                result.largest = std::max(result.largest, std::abs(off));
            }
        }
    }
    const double values = double(source.width()) * source.height() * channelsOf(source);
    result.psnr = 10 * std::log10(255.0 * 255.0 * values / squares);
    return result;
}

double mean(const QImage& mask) {
    double sum = 0;
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x)
            sum += mask.constScanLine(y)[x];
    }
    return sum / (double(mask.width()) * mask.height());
}

int largestDifference(const QImage& one, const QImage& other) {
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int i = 0; i < one.width() * channelsOf(one); ++i)
            largest = std::max(largest, std::abs(one.constScanLine(y)[i] - other.constScanLine(y)[i]));
    }
    return largest;
}

QImage mask(const QSize& size) {
    QImage picture(size, QImage::Format_Alpha8);
    picture.fill(0);
    return picture;
}

void fillMask(QImage& picture, const QRect& area) {
    for (int y = area.top(); y <= area.bottom(); ++y)
        std::fill_n(picture.scanLine(y) + area.left(), area.width(), uchar{255});
}

QImage transposed(const QImage& picture) {
    return picture.transformed(QTransform(0, 1, 1, 0, 0, 0));
}

class GaussianBlurOfSigma : public testing::TestWithParam<double> {};

INSTANTIATE_TEST_SUITE_P(Sigmas, GaussianBlurOfSigma, testing::Values(0.5, 1.5, 3.0, 4.5, 7.0, 18.0, 41.0));

} // namespace

TEST_P(GaussianBlurOfSigma, IsTheGaussianWithRepeatedEdges) {
    for (const QSize& size : {QSize(1, 1), QSize(1, 7), QSize(9, 1), QSize(3, 2), QSize(16, 8), QSize(17, 5),
                              QSize(61, 43), QSize(2, 130)}) {
        const QImage picture = noise(size, QImage::Format_RGB32);
        const QImage blurred = gaussianBlur(picture, GetParam());
        ASSERT_EQ(blurred.size(), size);
        EXPECT_LE(deviation(picture, blurred, GetParam()).largest, levelTolerance)
            << size.width() << "x" << size.height();
    }
}

TEST_P(GaussianBlurOfSigma, IsTheGaussianForMasks) {
    const QImage picture = noise({53, 38}, QImage::Format_Alpha8);
    const QImage blurred = gaussianBlur(picture, GetParam());
    ASSERT_EQ(blurred.format(), QImage::Format_Alpha8);
    EXPECT_LE(deviation(picture, blurred, GetParam()).largest, levelTolerance);
}

TEST_P(GaussianBlurOfSigma, IsTheGaussianOfPremultipliedColours) {
    const QImage picture = noise({47, 29}, QImage::Format_ARGB32);
    const QImage blurred = gaussianBlur(picture, GetParam());
    ASSERT_EQ(blurred.format(), QImage::Format_ARGB32_Premultiplied);
    const QImage premultiplied = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    EXPECT_LE(deviation(premultiplied, blurred, GetParam()).largest, levelTolerance);
}

TEST_P(GaussianBlurOfSigma, LeavesNoColourAboveItsAlpha) {
    const QImage blurred = gaussianBlur(noise({64, 37}, QImage::Format_ARGB32_Premultiplied), GetParam());
    for (int y = 0; y < blurred.height(); ++y) {
        for (int x = 0; x < blurred.width(); ++x) {
            const QRgb pixel = reinterpret_cast<const QRgb*>(blurred.constScanLine(y))[x];
            ASSERT_LE(std::max({qRed(pixel), qGreen(pixel), qBlue(pixel)}), qAlpha(pixel)) << x << "," << y;
        }
    }
}

TEST_P(GaussianBlurOfSigma, TreatsBothDirectionsAndAxesAlike) {
    const QImage picture = noise({50, 75}, QImage::Format_Alpha8);
    const QImage blurred = gaussianBlur(picture, GetParam());
    const QImage turned = gaussianBlur(picture.mirrored(true, true), GetParam()).mirrored(true, true);
    EXPECT_LE(largestDifference(blurred, turned), 1);
    const QImage swapped = transposed(gaussianBlur(transposed(picture), GetParam()));
    ASSERT_EQ(swapped.size(), blurred.size());
    EXPECT_LE(largestDifference(blurred, swapped), 1);
}

TEST_P(GaussianBlurOfSigma, CarriesALineAtAnyEdgeOutward) {
    // Beyond the edge the line goes on, so the pixel on it is lit from there by half and more.
    const std::vector<double> kernel = gaussian(GetParam());
    const auto centre = static_cast<std::ptrdiff_t>(kernel.size() / 2);
    const QSize size(201, 203);
    const std::array<QRect, 4> edges{QRect(0, 0, 1, 203), QRect(200, 0, 1, 203), QRect(0, 0, 201, 1),
                                     QRect(0, 202, 201, 1)};
    for (const QRect& edge : edges) {
        QImage picture = mask(size);
        fillMask(picture, edge);
        const QImage blurred = gaussianBlur(picture, GetParam());
        double share = 0;
        for (std::ptrdiff_t i = centre; i < std::ssize(kernel); ++i)
            share += kernel[static_cast<size_t>(i)];
        for (int away = 0; away < 60; ++away) {
            const int x = edge.width() > 1 ? 77 : std::abs(edge.left() - away);
            const int y = edge.height() > 1 ? 77 : std::abs(edge.top() - away);
            EXPECT_NEAR(blurred.constScanLine(y)[x], 255 * share, levelTolerance) << away;
            if (centre + away < std::ssize(kernel))
                share -= kernel[static_cast<size_t>(centre + away)];
        }
    }
}

TEST_P(GaussianBlurOfSigma, KeepsTheSumOfWhatLiesInside) {
    QImage picture = mask({427, 431});
    fillMask(picture, {180, 185, 64, 60});
    EXPECT_NEAR(mean(gaussianBlur(picture, GetParam())), mean(picture), 0.05);
}

TEST(GaussianBlur, SpreadsOnePixelAsTheGaussian) {
    for (const double sigma : {0.5, 1.0, 1.5, 2.0}) {
        const std::vector<double> kernel = gaussian(sigma);
        const int centre = static_cast<int>(kernel.size() / 2);
        QImage picture = mask({41, 41});
        picture.scanLine(20)[20] = 255;
        const QImage blurred = gaussianBlur(picture, sigma);
        for (int y = -3; y <= 3; ++y) {
            for (int x = -3; x <= 3; ++x) {
                EXPECT_NEAR(blurred.constScanLine(20 + y)[20 + x],
                            255 * kernel.at(static_cast<size_t>(centre + x)) *
                                kernel.at(static_cast<size_t>(centre + y)),
                            0.51)
                    << sigma << ": " << x << "," << y;
            }
        }
    }
}

TEST(GaussianBlur, AnswersAStepWithTheErrorFunction) {
    // Much narrower ones are no longer the continuous function when sampled at whole pixels.
    for (const double sigma : {3.0, 4.5, 7.0, 18.0, 41.0}) {
        QImage picture = mask({400, 3});
        fillMask(picture, {200, 0, 200, 3});
        const QImage blurred = gaussianBlur(picture, sigma);
        for (int x = 0; x < 400; ++x) {
            const double expected = 127.5 * (1 + std::erf((x - 199.5) / (sigma * std::sqrt(2.0))));
            EXPECT_NEAR(blurred.constScanLine(1)[x], expected, 1) << sigma << ": " << x;
        }
    }
}

TEST(GaussianBlur, IsAsGoodForSizesThatAreNoMultipleOfAnything) {
    const QImage picture = noise({641, 359}, QImage::Format_Alpha8);
    const Deviation off = deviation(picture, gaussianBlur(picture, 18), 18);
    EXPECT_GE(off.psnr, 55);
    EXPECT_LE(off.largest, levelTolerance);
}

TEST(GaussianBlur, TurnsNoFinePatternIntoACoarseOne) {
    // Stripes of about the size of a cell of the coarse grid, and its halves: all of them blur to plain grey.
    for (const double period : {2.1, 3.9, 7.3, 8.0, 8.85, 9.6, 15.5}) {
        QImage picture = mask({400, 40});
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const double wave = std::sin(x * 2 * M_PI / period);
                picture.scanLine(y)[x] = static_cast<uchar>(std::lround(127.5 + 127.5 * wave));
            }
        }
        EXPECT_LE(deviation(picture, gaussianBlur(picture, 18), 18).largest, 1) << period;
    }
}

TEST(GaussianBlur, LeavesAnEvenPictureAsItIs) {
    for (const double sigma : {0.3, 1.5, 4.3, 4.5, 18.0, 100.0, 1e6, infinity}) {
        for (const QRgb colour : {qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(1, 77, 254), qRgb(128, 127, 3)}) {
            QImage picture(23, 19, QImage::Format_RGB32);
            picture.fill(colour);
            EXPECT_EQ(gaussianBlur(picture, sigma), picture) << sigma << " " << colour;
        }
        QImage translucent(23, 19, QImage::Format_ARGB32_Premultiplied);
        translucent.fill(qRgba(10, 60, 100, 101));
        EXPECT_EQ(gaussianBlur(translucent, sigma), translucent) << sigma;
        QImage shade = mask({23, 19});
        shade.fill(201);
        EXPECT_EQ(gaussianBlur(shade, sigma), shade) << sigma;
    }
}

TEST(GaussianBlur, MixesNoColourOfTransparentPixelsIn) {
    for (const double sigma : {1.5, 18.0}) {
        QImage picture(60, 20, QImage::Format_ARGB32);
        picture.fill(qRgba(0, 255, 0, 0));
        for (int y = 0; y < 20; ++y)
            std::fill_n(reinterpret_cast<QRgb*>(picture.scanLine(y)) + 30, 30, qRgba(255, 0, 0, 255));
        const QImage blurred = gaussianBlur(picture, sigma);
        for (int x = 0; x < 60; ++x) {
            const QRgb pixel = reinterpret_cast<const QRgb*>(blurred.constScanLine(10))[x];
            EXPECT_EQ(qRed(pixel), qAlpha(pixel)) << x;
            EXPECT_EQ(qGreen(pixel), 0) << x;
        }
        EXPECT_GT(qAlpha(blurred.pixel(29, 10)), 60);
        EXPECT_LT(qAlpha(blurred.pixel(29, 10)), 128);
    }
}

TEST(GaussianBlur, StaysOpaqueWhateverTheUnusedByteHolds) {
    for (const double sigma : {1.5, 18.0}) {
        QImage picture(20, 20, QImage::Format_RGB32);
        for (int y = 0; y < 20; ++y)
            std::fill_n(reinterpret_cast<QRgb*>(picture.scanLine(y)), 20, 0x00204060U);
        const QImage blurred = gaussianBlur(picture, sigma);
        EXPECT_EQ(blurred.format(), QImage::Format_RGB32);
        EXPECT_EQ(reinterpret_cast<const QRgb*>(blurred.constScanLine(7))[7], 0xff204060U);
    }
}

TEST(GaussianBlur, TakesOtherFormats) {
    const QImage picture = noise({30, 20}, QImage::Format_RGB32);
    for (const QImage::Format format : {QImage::Format_Indexed8, QImage::Format_Grayscale8,
                                        QImage::Format_RGB16, QImage::Format_RGB888, QImage::Format_RGBX64}) {
        const QImage other = picture.convertToFormat(format);
        const QImage blurred = gaussianBlur(other, 3);
        EXPECT_EQ(blurred.format(), QImage::Format_RGB32) << format;
        EXPECT_EQ(blurred, gaussianBlur(other.convertToFormat(QImage::Format_RGB32), 3)) << format;
    }
    const QImage clear = noise({30, 20}, QImage::Format_ARGB32).convertToFormat(QImage::Format_RGBA8888);
    EXPECT_EQ(gaussianBlur(clear, 3).format(), QImage::Format_ARGB32_Premultiplied);
}

TEST(GaussianBlur, KeepsWhatThePictureSaysOfItself) {
    QImage picture = noise({40, 30}, QImage::Format_RGB32);
    picture.setDevicePixelRatio(1.5);
    picture.setDotsPerMeterX(3000);
    picture.setDotsPerMeterY(4000);
    picture.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    for (const double sigma : {1.5, 18.0}) {
        const QImage blurred = gaussianBlur(picture, sigma);
        EXPECT_EQ(blurred.devicePixelRatio(), 1.5);
        EXPECT_EQ(blurred.dotsPerMeterX(), 3000);
        EXPECT_EQ(blurred.dotsPerMeterY(), 4000);
        EXPECT_EQ(blurred.colorSpace(), QColorSpace(QColorSpace::DisplayP3));
        // Sigma counts pixels, so the ratio changes none of them.
        QImage plain = picture;
        plain.setDevicePixelRatio(1);
        EXPECT_EQ(largestDifference(blurred, gaussianBlur(plain, sigma)), 0);
    }
}

TEST(GaussianBlur, GivesThePictureBackWhereThereIsNothingToBlur) {
    const QImage picture = noise({12, 9}, QImage::Format_ARGB32);
    for (const double sigma : {0.0, -0.0, -1.0, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        const QImage result = gaussianBlur(picture, sigma);
        EXPECT_EQ(result.format(), picture.format()) << sigma;
        EXPECT_EQ(result, picture) << sigma;
    }
    EXPECT_EQ(gaussianBlur(noise({12, 9}, QImage::Format_RGB32), std::numeric_limits<double>::denorm_min()),
              noise({12, 9}, QImage::Format_RGB32));
    EXPECT_TRUE(gaussianBlur(QImage(), 18).isNull());
}

TEST(GaussianBlur, EndsAsTheMeanOfTheCorners) {
    for (const QSize& size : {QSize(3, 2), QSize(37, 23), QSize(1, 300)}) {
        QImage picture = noise(size, QImage::Format_Alpha8);
        const int right = size.width() - 1;
        const int bottom = size.height() - 1;
        const double expected = (picture.constScanLine(0)[0] + picture.constScanLine(0)[right] +
                                 picture.constScanLine(bottom)[0] + picture.constScanLine(bottom)[right]) /
                                4.0;
        for (const double sigma : {1e7, 1e18, std::numeric_limits<double>::max(), infinity}) {
            const QImage blurred = gaussianBlur(picture, sigma);
            for (int y = 0; y < size.height(); ++y) {
                for (int x = 0; x < size.width(); ++x)
                    ASSERT_NEAR(blurred.constScanLine(y)[x], expected, 1) << sigma;
            }
        }
    }
}

TEST(GaussianBlur, NeverTouchesItsInput) {
    for (const double sigma : {1.5, 18.0}) {
        for (const QImage::Format format :
             {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_Alpha8}) {
            const QImage picture = noise({33, 21}, format);
            const QImage before = picture.copy();
            const QImage blurred = gaussianBlur(picture, sigma);
            EXPECT_NE(blurred, picture);
            ASSERT_EQ(picture.sizeInBytes(), before.sizeInBytes());
            EXPECT_EQ(largestDifference(picture, before), 0);
        }
    }
}

} // namespace orvane
