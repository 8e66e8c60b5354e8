// What is seen in a movie, by the pictures that ffmpeg decodes.
#include "tests/unit/media/MovieTest.h"

#include <QPainter>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace orvane::media {
namespace {

using test::picturesOf;
using test::Planes;

class Mp4PictureTest : public MovieTest {
protected:
    static constexpr int tolerance = 3;

    /// By the formulas of BT.709 for the limited range.
    static std::array<double, 3> planesOf(const QColor& colour) {
        const double luma = 0.2126 * colour.redF() + 0.7152 * colour.greenF() + 0.0722 * colour.blueF();
        return {16 + 219 * luma, 128 + 224 * (colour.blueF() - luma) / 1.8556,
                128 + 224 * (colour.redF() - luma) / 1.5748};
    }

    static void expectColour(const Planes& picture, int x, int y, const QColor& colour, const char* what) {
        const std::array<double, 3> expected = planesOf(colour);
        EXPECT_NEAR(picture.y(x, y), expected[0], tolerance) << what;
        EXPECT_NEAR(picture.u(x, y), expected[1], tolerance) << what;
        EXPECT_NEAR(picture.v(x, y), expected[2], tolerance) << what;
    }

    /// Lines one pixel wide: columns in the upper half, rows in the lower one.
    static QImage lines(const QSize& size) {
        QImage frame = plain(size, Qt::black);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                if (isLight(size, x, y))
                    frame.setPixel(x, y, 0xffffffffU);
            }
        }
        return frame;
    }

    static bool isLight(const QSize& size, int x, int y) {
        return y < size.height() / 2 ? x % 2 == 0 : y % 2 == 0;
    }
};

TEST_F(Mp4PictureTest, ColoursAreThoseOfBt709) {
    const std::array colours{QColor(Qt::white),    QColor(Qt::black),  QColor(Qt::red),
                             QColor(Qt::green),    QColor(Qt::blue),   QColor(Qt::gray),
                             QColor(255, 200, 40), QColor(30, 30, 46), QColor(0, 120, 215)};
    std::vector<QImage> frames;
    frames.reserve(colours.size());
    for (const QColor& colour : colours)
        frames.push_back(plain({64, 48}, colour));

    write(formatOf({64, 48}), frames);

    const std::vector<Planes> pictures = picturesOf(path());
    ASSERT_EQ(pictures.size(), colours.size());
    for (std::size_t index = 0; index < colours.size(); ++index)
        expectColour(pictures[index], 31, 23, colours[index], qPrintable(colours[index].name()));
}

TEST_F(Mp4PictureTest, EachFrameIsShownAtItsTime) {
    std::vector<QImage> frames;
    frames.reserve(90);
    for (int index = 0; index < 90; ++index)
        frames.push_back(plain({64, 48}, QColor::fromHsv(index * 4, 200, 200)));

    write(formatOf({64, 48}), frames, Microseconds(40'000));

    const std::vector<Planes> pictures = picturesOf(path());
    const std::vector<qint64> ticks = test::ticksOf(path());
    ASSERT_EQ(pictures.size(), frames.size());
    ASSERT_EQ(ticks.size(), frames.size());
    for (std::size_t index = 0; index < frames.size(); ++index) {
        EXPECT_EQ(ticks[index], static_cast<qint64>(index) * 3600);
        expectColour(pictures[index], 10, 10, frames[index].pixelColor(0, 0), "hue of the frame");
    }
}

TEST_F(Mp4PictureTest, AlphaIsIgnored) {
    QImage clear(64, 48, QImage::Format_ARGB32);
    clear.fill(QColor(200, 40, 40, 0));
    QImage half(64, 48, QImage::Format_ARGB32);
    half.fill(QColor(40, 200, 40, 128));

    write(formatOf({64, 48}), {clear, half});

    const std::vector<Planes> pictures = picturesOf(path());
    ASSERT_EQ(pictures.size(), 2U);
    expectColour(pictures[0], 5, 5, QColor(200, 40, 40), "clear");
    expectColour(pictures[1], 5, 5, QColor(40, 200, 40), "half clear");
}

TEST_F(Mp4PictureTest, FramesMayHaveAnyPixelFormat) {
    const QColor colour(200, 120, 40);
    const std::array formats{QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB888,
                             QImage::Format_RGBA8888, QImage::Format_RGB16, QImage::Format_RGBA64};
    std::vector<QImage> frames;
    frames.reserve(formats.size());
    for (const QImage::Format format : formats)
        frames.push_back(plain({64, 48}, colour).convertToFormat(format));

    write(formatOf({64, 48}), frames);

    const std::vector<Planes> pictures = picturesOf(path());
    ASSERT_EQ(pictures.size(), formats.size());
    for (std::size_t index = 0; index < formats.size(); ++index)
        expectColour(pictures[index], 20, 20, frames[index].pixelColor(0, 0), "pixel format");
}

TEST_F(Mp4PictureTest, OddSizesHaveTheirLastColumnAndRowTwiceAndStaySharp) {
    for (const QSize size : {QSize(3, 5), QSize(641, 479), QSize(640, 479), QSize(641, 480), QSize(1, 7)}) {
        const std::string name = std::to_string(size.width()) + "x" + std::to_string(size.height());
        write(formatOf(size, 60'000'000), {lines(size), lines(size), lines(size)});

        const std::vector<Planes> pictures = picturesOf(path());
        ASSERT_EQ(pictures.size(), 3U) << name;
        const Planes& picture = pictures.back();
        ASSERT_EQ(picture.size, QSize((size.width() + 1) / 2 * 2, (size.height() + 1) / 2 * 2)) << name;
        int wrong = 0;
        for (int y = 0; y < picture.size.height(); ++y) {
            for (int x = 0; x < picture.size.width(); ++x) {
                const bool expected =
                    isLight(size, std::min(x, size.width() - 1), std::min(y, size.height() - 1));
                wrong += std::abs(picture.y(x, y) - (expected ? 235 : 16)) > 40 ? 1 : 0;
            }
        }
        EXPECT_EQ(wrong, 0) << name;
    }
}

TEST_F(Mp4PictureTest, TheColourAtAnOddEdgeIsThatOfTheEdge) {
    QImage frame = plain({33, 17}, Qt::white);
    QPainter painter(&frame);
    painter.fillRect(32, 0, 1, 17, Qt::red);
    painter.fillRect(0, 16, 33, 1, Qt::blue);
    painter.end();

    write(formatOf({33, 17}, 60'000'000), {frame, frame, frame});

    const Planes picture = picturesOf(path()).back();
    constexpr int loose = 12;
    EXPECT_NEAR(picture.v(33, 4), planesOf(Qt::red)[2], loose);
    EXPECT_NEAR(picture.u(4, 17), planesOf(Qt::blue)[1], loose);
    EXPECT_NEAR(picture.v(28, 4), 128, loose);
}

TEST_F(Mp4PictureTest, AMovieOfOnePixelHasItFourTimes) {
    write(formatOf({1, 1}, 2), {plain({1, 1}, Qt::white), plain({1, 1}, Qt::white)});

    const std::vector<Planes> pictures = picturesOf(path());
    ASSERT_EQ(pictures.size(), 2U);
    ASSERT_EQ(pictures[0].size, QSize(2, 2));
    for (const QPoint pixel : {QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(1, 1)})
        EXPECT_NEAR(pictures[0].y(pixel.x(), pixel.y()), 235, 2 * tolerance);
}

TEST_F(Mp4PictureTest, FramesOfAnotherSizeAreScaledToTheMovies) {
    std::vector<QImage> frames;
    for (const QSize size : {QSize(200, 101), QSize(400, 300), QSize(51, 40), QSize(1, 1), QSize(200, 101)}) {
        QImage frame = plain(size, Qt::red);
        QPainter(&frame).fillRect(size.width() / 2, 0, size.width(), size.height(), Qt::blue);
        frames.push_back(frame);
    }

    write(formatOf({200, 101}), frames);

    const std::vector<Planes> pictures = picturesOf(path());
    ASSERT_EQ(pictures.size(), frames.size());
    for (std::size_t index = 0; index < frames.size(); ++index) {
        ASSERT_EQ(pictures[index].size, QSize(200, 102));
        expectColour(pictures[index], 50, 50, index == 3 ? Qt::blue : Qt::red, "left half");
        expectColour(pictures[index], 150, 50, Qt::blue, "right half");
        expectColour(pictures[index], 199, 101, Qt::blue, "corner");
    }
}

TEST_F(Mp4PictureTest, DetailsThatAreTooSmallAreAveraged) {
    QImage fine = plain({256, 128}, Qt::black);
    for (int x = 0; x < 256; x += 2)
        QPainter(&fine).fillRect(x, 0, 1, 128, Qt::white);

    write(formatOf({64, 32}), {fine, fine});

    const Planes picture = picturesOf(path()).back();
    for (int x = 2; x < 62; ++x)
        EXPECT_NEAR(picture.y(x, 16), (16 + 235) / 2.0, 12) << x;
}

TEST_F(Mp4PictureTest, AFrameThatIsChangedAfterwardsIsInTheMovieAsItWas) {
    const std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}));
    QImage frame = plain({64, 48}, Qt::white);
    append(*writer, frame, Microseconds(0));
    frame.fill(Qt::black);
    append(*writer, frame, Microseconds(100'000));
    frame.fill(Qt::red);
    writer->finish();

    const std::vector<Planes> pictures = picturesOf(path());
    ASSERT_EQ(pictures.size(), 2U);
    expectColour(pictures[0], 5, 5, Qt::white, "first");
    expectColour(pictures[1], 5, 5, Qt::black, "second");
}

} // namespace
} // namespace orvane::media
