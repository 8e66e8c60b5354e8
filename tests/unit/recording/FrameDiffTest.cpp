#include "OrvaneCore/recording/FrameDiff.h"

#include "tests/support/DrawnPixels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <random>

namespace orvane::test {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

/// Cells of 10 by 10 pixels with 3 by 3 samples.
constexpr QSize small(80, 60);
constexpr QSize smallCell(10, 10);
constexpr int smallSamples = 9;

/// Cells of 160 by 100 pixels with 40 by 25 samples.
constexpr QSize large(1280, 600);
constexpr QSize largeCell(160, 100);

constexpr QRgb grey = 0xFF646464;

/// With the first samples of a cell, line by line, set to a colour.
QImage withSamples(QImage picture, const QSize& cell, const QPoint& place, int count, QRgb color) {
    const int perLine = (cell.width() + 3) / 4;
    for (int i = 0; i < count; ++i) {
        picture.setPixel(place.x() * cell.width() + i % perLine * 4,
                         place.y() * cell.height() + i / perLine * 4, color);
    }
    return picture;
}

QImage withPixel(QImage picture, int x, int y, QRgb color = white) {
    picture.setPixel(x, y, color);
    return picture;
}

QImage withPixelAt(const QImage& picture, int index, QRgb color = white) {
    return withPixel(picture, index % picture.width(), index / picture.width(), color);
}

/// The same pixels one after the other in lines of another length; what is left over is black.
QImage rewrapped(const QImage& picture, const QSize& size) {
    QImage result = ground(size, black);
    const int count = std::min(picture.width() * picture.height(), result.width() * result.height());
    for (int i = 0; i < count; ++i) {
        result.setPixel(i % size.width(), i / size.width(),
                        picture.pixel(i % picture.width(), i / picture.width()));
    }
    return result;
}

QImage noise(const QSize& size, unsigned seed, QImage::Format format = QImage::Format_RGB32) {
    std::mt19937 random(seed);
    QImage picture(size, format);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = static_cast<QRgb>(random());
    }
    return picture;
}

/// A picture in memory of its own, whose lines end in bytes that belong to no pixel.
class PaddedPicture {
public:
    explicit PaddedPicture(const QImage& picture)
        : m_bytesPerLine(picture.width() * 4 + 52)
        , m_memory(static_cast<std::size_t>(m_bytesPerLine) * picture.height()) {
        std::mt19937 random(7);
        for (uchar& byte : m_memory)
            byte = static_cast<uchar>(random());
        QImage view(m_memory.data(), picture.width(), picture.height(), m_bytesPerLine, picture.format());
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                view.setPixel(x, y, picture.pixel(x, y));
        }
    }

    QImage image(const QSize& size) const {
        return {m_memory.data(), size.width(), size.height(), m_bytesPerLine, QImage::Format_RGB32};
    }

private:
    int m_bytesPerLine;
    std::vector<uchar> m_memory;
};

/// The red, green and blue of all pixels, one after the other.
std::vector<std::array<int, 3>> channels(const QImage& picture) {
    std::vector<std::array<int, 3>> result;
    result.reserve(static_cast<std::size_t>(picture.width()) * picture.height());
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            result.push_back({qRed(pixel), qGreen(pixel), qBlue(pixel)});
        }
    }
    return result;
}

/// The plain definition, sample by sample.
std::vector<RegionDiff> expectedDiff(const QImage& prev, const QImage& current) {
    const auto before = channels(prev);
    const auto after = channels(current);
    const int cellWidth = prev.width() / 8;
    const int cellHeight = prev.height() / 6;
    std::vector<RegionDiff> regions;
    regions.reserve(gridCells);
    for (int cell = 0; cell < 48; ++cell) {
        const QRect rect(cell % 8 * cellWidth, cell / 8 * cellHeight, cellWidth, cellHeight);
        int changed = 0;
        int counted = 0;
        for (int y = rect.y(); y < rect.y() + cellHeight; y += 4) {
            for (int x = rect.x(); x < rect.x() + cellWidth; x += 4) {
                const std::size_t index = static_cast<std::size_t>(y) * prev.width() + x;
                if (index >= before.size() || index >= after.size())
                    continue;
                ++counted;
                for (std::size_t channel = 0; channel < 3; ++channel) {
                    if (std::abs(before[index][channel] - after[index][channel]) > 20) {
                        ++changed;
                        break;
                    }
                }
            }
        }
        const double percent = counted > 0 ? static_cast<double>(changed) / counted * 100 : 0;
        if (percent > 2.0)
            regions.push_back({cell % 8, cell / 8, percent, rect});
    }
    return regions;
}

} // namespace

TEST(FrameDiff, FindsNothingBetweenEqualFrames) {
    const QImage frame = noise({641, 483}, 1);
    EXPECT_THAT(diffFrames(frame, frame), IsEmpty());
    EXPECT_THAT(diffFrames(frame, noise({641, 483}, 1)), IsEmpty());
}

TEST(FrameDiff, ListsCellsRowByRow) {
    const QImage before = ground(small, black);
    QImage after = withSamples(before, smallCell, {0, 5}, smallSamples, white);
    after = withSamples(after, smallCell, {7, 1}, smallSamples, white);
    after = withSamples(after, smallCell, {2, 1}, 3, white);
    EXPECT_THAT(diffFrames(before, after),
                ElementsAre(RegionDiff{2, 1, 3.0 / 9 * 100, {20, 10, 10, 10}},
                            RegionDiff{7, 1, 100, {70, 10, 10, 10}}, RegionDiff{0, 5, 100, {0, 50, 10, 10}}));
    EXPECT_EQ(diffFrames(after, before), diffFrames(before, after));
}

TEST(FrameDiff, ListsAllCellsOfAnotherPicture) {
    const std::vector<RegionDiff> regions = diffFrames(ground(small, black), ground(small, white));
    ASSERT_THAT(regions, SizeIs(gridCells));
    for (int i = 0; i < gridCells; ++i) {
        const int col = i % 8;
        const int row = i / 8;
        EXPECT_EQ(regions[static_cast<std::size_t>(i)],
                  (RegionDiff{col, row, 100, QRectF(col * 10, row * 10, 10, 10)}));
    }
}

TEST(FrameDiff, TakesADifferenceOfAChannelAboveTwenty) {
    const QImage before = ground(small, grey);
    for (const int shift : {0, 8, 16}) {
        const QRgb unit = 1U << shift;
        EXPECT_THAT(diffFrames(before, ground(small, grey + 20 * unit)), IsEmpty()) << shift;
        EXPECT_THAT(diffFrames(before, ground(small, grey - 20 * unit)), IsEmpty()) << shift;
        EXPECT_THAT(diffFrames(before, ground(small, grey + 21 * unit)), SizeIs(48)) << shift;
        EXPECT_THAT(diffFrames(before, ground(small, grey - 21 * unit)), SizeIs(48)) << shift;
    }
}

TEST(FrameDiff, DoesNotAddUpChannels) {
    EXPECT_THAT(diffFrames(ground(small, grey), ground(small, grey + 0x141414)), IsEmpty());
    EXPECT_THAT(diffFrames(ground(small, grey), ground(small, grey + 0x14EC14)), SizeIs(48));
}

TEST(FrameDiff, DoesNotLookAtAlpha) {
    QImage clear(small, QImage::Format_ARGB32_Premultiplied);
    clear.fill(Qt::transparent);
    QImage opaque = clear;
    opaque.fill(Qt::black);
    EXPECT_THAT(diffFrames(clear, opaque), IsEmpty());
    EXPECT_THAT(diffFrames(opaque, clear), IsEmpty());
    EXPECT_THAT(diffFrames(clear, ground(small, black)), IsEmpty());
}

TEST(FrameDiff, DoesNotLookAtTheUnusedByte) {
    QImage frame = ground(small, grey);
    QImage other = frame;
    for (int y = 0; y < small.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(other.scanLine(y));
        for (int x = 0; x < small.width(); ++x)
            line[x] &= 0xFFFFFF;
    }
    EXPECT_THAT(diffFrames(frame, other), IsEmpty());
    EXPECT_THAT(diffFrames(other, frame), IsEmpty());
}

TEST(FrameDiff, TakesMoreThanTwoPercentOfACell) {
    const QImage before = ground(large, black);
    EXPECT_THAT(diffFrames(before, withSamples(before, largeCell, {3, 2}, 20, white)), IsEmpty());
    const auto regions = diffFrames(before, withSamples(before, largeCell, {3, 2}, 21, white));
    ASSERT_THAT(regions, SizeIs(1));
    EXPECT_DOUBLE_EQ(regions.front().diffPercent, 2.1);
    EXPECT_EQ(regions.front().pixelRect, QRectF(480, 200, 160, 100));
}

TEST(FrameDiff, SamplesEachCellFromItsOwnCorner) {
    const QImage before = ground(small, black);
    for (int y = 10; y < 20; ++y) {
        for (int x = 10; x < 20; ++x) {
            const bool isSample = (x - 10) % 4 == 0 && (y - 10) % 4 == 0;
            EXPECT_THAT(diffFrames(before, withPixel(before, x, y)), SizeIs(isSample ? 1 : 0))
                << x << "," << y;
        }
    }
}

TEST(FrameDiff, LeavesOutWhatTheGridDoesNotCover) {
    const QSize size(87, 65);
    const QImage before = ground(size, black);
    QImage after = before;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            if (x >= 80 || y >= 60)
                after.setPixel(x, y, white);
        }
    }
    EXPECT_THAT(diffFrames(before, after), IsEmpty());
    EXPECT_THAT(diffFrames(before, withPixel(before, 78, 58)),
                ElementsAre(RegionDiff{7, 5, 1.0 / 9 * 100, {70, 50, 10, 10}}));
}

TEST(FrameDiff, TruncatesTheCells) {
    const auto regions = diffFrames(ground({87, 65}, black), ground({87, 65}, white));
    ASSERT_THAT(regions, SizeIs(48));
    EXPECT_EQ(regions[9].pixelRect, QRectF(10, 10, 10, 10));
    EXPECT_EQ(regions[47].pixelRect, QRectF(70, 50, 10, 10));
}

TEST(FrameDiff, FindsNothingInFramesSmallerThanTheGrid) {
    for (const QSize size : {QSize(7, 100), QSize(100, 5), QSize(7, 5), QSize(1, 1)})
        EXPECT_THAT(diffFrames(ground(size, black), ground(size, white)), IsEmpty());
    EXPECT_THAT(diffFrames(ground({8, 6}, black), ground({8, 6}, white)), SizeIs(48));
}

TEST(FrameDiff, DoesNotCountSamplesBelowAShorterFrame) {
    // The third row of cells is read to its fifth line, which holds two of its three lines of samples.
    const QImage before = ground(small, black);
    EXPECT_THAT(diffFrames(before, ground({80, 25}, black)), IsEmpty());
    EXPECT_THAT(diffFrames(before, ground({80, 25}, white)), SizeIs(3 * 8));
    EXPECT_THAT(diffFrames(before, withPixel(ground({80, 25}, black), 30, 24)),
                ElementsAre(RegionDiff{3, 2, 1.0 / 6 * 100, {30, 20, 10, 10}}));
    EXPECT_THAT(diffFrames(before, ground({80, 20}, white)), SizeIs(2 * 8));
    EXPECT_THAT(diffFrames(before, ground({80, 21}, white)), SizeIs(3 * 8));
}

TEST(FrameDiff, KeepsTheGridOfTheEarlierFrame) {
    const QImage before = ground(small, black);
    QImage after = ground({80, 120}, black);
    EXPECT_THAT(diffFrames(before, after), IsEmpty());
    for (int y = 60; y < 120; ++y) {
        for (int x = 0; x < 80; ++x)
            after.setPixel(x, y, white);
    }
    EXPECT_THAT(diffFrames(before, after), IsEmpty());
    EXPECT_THAT(diffFrames(before, withPixel(after, 14, 58)),
                ElementsAre(RegionDiff{1, 5, 1.0 / 9 * 100, {10, 50, 10, 10}}));
}

TEST(FrameDiff, FollowsTheBytesOfAFrameOfAnotherWidth) {
    const QImage before = noise(small, 2);
    for (const QSize size : {QSize(40, 120), QSize(96, 50), QSize(4800, 1), QSize(100, 100), QSize(33, 40)})
        EXPECT_THAT(diffFrames(before, rewrapped(before, size)), IsEmpty()) << size.width();
    // The same picture with a margin is skewed.
    EXPECT_THAT(diffFrames(before, before.copy(0, 0, 81, 60)), SizeIs(testing::Gt(40)));

    const QImage changed = withPixelAt(rewrapped(before, {37, 200}), 18 * 80 + 34, ~before.pixel(34, 18));
    EXPECT_THAT(diffFrames(before, changed), ElementsAre(RegionDiff{3, 1, 1.0 / 9 * 100, {30, 10, 10, 10}}));
}

TEST(FrameDiff, CountsTheLastPixelsOfAFrameThatEndsInsideALine) {
    // The third line of samples of the seventh cell in the second row: at 1500, 1504 and 1508.
    const QImage before = ground(small, black);
    const auto percent = [&before](const QSize& size) {
        const auto regions = diffFrames(before, withPixelAt(ground(size, black), 10 * 80 + 60));
        return regions.size() == 1 && regions.front().col == 6 && regions.front().row == 1
                   ? regions.front().diffPercent
                   : -1;
    };
    EXPECT_DOUBLE_EQ(percent({50, 30}), 1.0 / 6 * 100);
    EXPECT_DOUBLE_EQ(percent({79, 19}), 1.0 / 7 * 100);
    EXPECT_DOUBLE_EQ(percent({47, 32}), 1.0 / 7 * 100);
    EXPECT_DOUBLE_EQ(percent({43, 35}), 1.0 / 8 * 100);
    EXPECT_DOUBLE_EQ(percent({1509, 1}), 1.0 / 9 * 100);
    EXPECT_DOUBLE_EQ(percent({1600, 1}), 1.0 / 9 * 100);
}

TEST(FrameDiff, AgreesWithThePlainDefinition) {
    std::mt19937 random(20'260'102);
    std::uniform_int_distribution<int> side(1, 130);
    std::uniform_int_distribution<int> step(-24, 24);
    int found = 0;
    for (unsigned round = 0; round < 300; ++round) {
        const QImage before = noise({side(random), side(random)}, round);
        const bool sameWidth = round % 3 == 0;
        QImage after = rewrapped(before, {sameWidth ? before.width() : side(random), side(random)});
        // Small differences, so that most cells lie near the limits.
        for (int y = 0; y < after.height(); ++y) {
            for (int x = 0; x < after.width(); ++x) {
                const QRgb pixel = after.pixel(x, y);
                if (random() % 16 == 0) {
                    after.setPixel(x, y,
                                   qRgb(std::clamp(qRed(pixel) + step(random), 0, 255),
                                        std::clamp(qGreen(pixel) + step(random), 0, 255),
                                        std::clamp(qBlue(pixel) + step(random), 0, 255)));
                }
            }
        }
        const std::vector<RegionDiff> expected = expectedDiff(before, after);
        EXPECT_EQ(diffFrames(before, after), expected)
            << before.width() << "x" << before.height() << ", " << after.width() << "x" << after.height();
        found += static_cast<int>(expected.size());
    }
    EXPECT_GT(found, 1000);
}

TEST(FrameDiff, ReadsLinesWithGaps) {
    const QImage before = noise(small, 3);
    const PaddedPicture memory(before);
    const QImage padded = memory.image(small);
    ASSERT_NE(padded.bytesPerLine(), before.bytesPerLine());
    EXPECT_THAT(diffFrames(before, padded), IsEmpty());
    EXPECT_THAT(diffFrames(padded, before), IsEmpty());
    EXPECT_THAT(diffFrames(padded, padded), IsEmpty());
    EXPECT_THAT(diffFrames(padded, rewrapped(before, {96, 50})), IsEmpty());
}

TEST(FrameDiff, DoesNotReadTheGapsOfAFrameOfAnotherWidth) {
    const QImage before = noise(small, 3);
    const PaddedPicture memory(rewrapped(before, {96, 50}));
    EXPECT_THAT(diffFrames(before, memory.image({96, 50})), IsEmpty());
    const PaddedPicture shorter(rewrapped(before, {33, 40}));
    EXPECT_THAT(diffFrames(before, shorter.image({33, 40})), IsEmpty());
}

TEST(FrameDiff, ComparesPremultipliedColours) {
    QImage before(small, QImage::Format_ARGB32);
    before.fill(qRgba(0, 0, 0, 24));
    QImage after(small, QImage::Format_ARGB32);
    after.fill(qRgba(200, 200, 200, 24));
    EXPECT_THAT(diffFrames(before, after), IsEmpty());
    after.fill(qRgba(255, 255, 255, 24));
    EXPECT_THAT(diffFrames(before, after), SizeIs(48));
}

TEST(FrameDiff, TakesFramesOfEveryFormat) {
    const QImage before = noise(small, 4, QImage::Format_RGB32);
    for (const auto format :
         {QImage::Format_RGB888, QImage::Format_BGR888, QImage::Format_RGBA8888, QImage::Format_RGBX64,
          QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB16}) {
        EXPECT_THAT(diffFrames(before, before.convertToFormat(format)), IsEmpty()) << format;
        EXPECT_THAT(diffFrames(before.convertToFormat(format), withPixel(before, 0, 0, ~before.pixel(0, 0))),
                    ElementsAre(RegionDiff{0, 0, 1.0 / 9 * 100, {0, 0, 10, 10}}))
            << format;
    }
    EXPECT_THAT(diffFrames(ground(small, black).convertToFormat(QImage::Format_Mono),
                           ground(small, white).convertToFormat(QImage::Format_Grayscale8)),
                SizeIs(48));
}

TEST(FrameDiff, FindsNothingWithoutAFrame) {
    EXPECT_THAT(diffFrames({}, ground(small)), IsEmpty());
    EXPECT_THAT(diffFrames(ground(small), {}), IsEmpty());
    EXPECT_THAT(diffFrames({}, {}), IsEmpty());
}

} // namespace orvane::test
