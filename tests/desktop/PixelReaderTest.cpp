// Pixels come out alike with and without shared memory.
#include "tests/desktop/DesktopFixture.h"

#include <QFile>

#include <algorithm>
#include <vector>

namespace orvane::test {

namespace {

class Pixels : public DesktopFixture {
protected:
    using DesktopFixture::DesktopFixture;

    QImage readRoot(bool sharedMemory) {
        const auto connection = session.connection();
        x11::PixelReader reader(connection);
        reader.useSharedMemory(sharedMemory);
        return reader
            .read(connection->root(), QRect(90, 90, 301, 203), connection->screen().root_depth,
                  connection->screen().root_visual, x11::Alpha::ignored)
            .value();
    }

    static qsizetype mappedPictures() {
        QFile maps(u"/proc/self/maps"_s);
        EXPECT_TRUE(maps.open(QIODevice::ReadOnly));
        return maps.readAll().count("memfd:orvane-pixels");
    }
};

class PixelsOfABareScreen : public Pixels {
protected:
    PixelsOfABareScreen()
        : Pixels({u"--size"_s, u"640x480"_s, u"--no-window-manager"_s, u"--no-compositor"_s}) {}
};

class PixelsOfDepth16 : public Pixels {
protected:
    PixelsOfDepth16()
        : Pixels({u"--size"_s, u"640x480"_s, u"--depth"_s, u"16"_s, u"--no-window-manager"_s,
                  u"--no-compositor"_s}) {}
};

} // namespace

TEST_F(Pixels, AreTheSameWithoutSharedMemory) {
    const TestWindow window({u"--undecorated"_s});
    ASSERT_TRUE(screenShows({105, 107}, knownPixel(5, 7)));
    ASSERT_TRUE(session.connection()->extensions().sharedMemory);
    const QImage shared = readRoot(true);
    EXPECT_EQ(shared, readRoot(false));
    EXPECT_EQ(shared.pixel(15, 17), knownPixel(5, 7));
}

// Pictures are compared without it, and what draws on them takes it for their alpha.
TEST_F(PixelsOfABareScreen, AreOpaqueInTheByteThatDepth24DoesNotUse) {
    runCommand(u"xsetroot"_s, {u"-solid"_s, u"#336699"_s});
    for (const bool shared : {true, false}) {
        const QImage picture = readRoot(shared);
        ASSERT_EQ(picture.format(), QImage::Format_RGB32);
        for (int y = 0; y < picture.height(); ++y) {
            const auto* const row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
            EXPECT_TRUE(std::all_of(row, row + picture.width(), [](QRgb pixel) {
                return qAlpha(pixel) == 0xff;
            })) << y;
        }
    }
}

TEST_F(Pixels, KeepTheMemoryOfOnePictureAtRest) {
    const auto connection = session.connection();
    x11::PixelReader reader(connection);
    {
        std::vector<QImage> held;
        held.reserve(10);
        for (int i = 0; i < 10; ++i) {
            held.push_back(reader
                               .read(connection->root(), QRect(0, 0, 100, 100),
                                     connection->screen().root_depth, connection->screen().root_visual,
                                     x11::Alpha::ignored)
                               .value());
        }
        EXPECT_EQ(mappedPictures(), 10);
    }
    EXPECT_EQ(mappedPictures(), 1);
}

TEST_F(PixelsOfDepth16, HaveTheColorsOfTheScreen) {
    runCommand(u"xsetroot"_s, {u"-solid"_s, u"#ff0084"_s});
    const auto connection = session.connection();
    ASSERT_EQ(connection->screen().root_depth, 16);
    for (const bool shared : {true, false}) {
        const QImage picture = readRoot(shared);
        EXPECT_EQ(picture.format(), QImage::Format_RGB32);
        EXPECT_EQ(picture.pixel(7, 9), 0xffff0084U);
    }
}

TEST_F(Pixels, OutliveTheReaderAndTheConnection) {
    const TestWindow window({u"--undecorated"_s});
    ASSERT_TRUE(screenShows({105, 107}, knownPixel(5, 7)));
    QImage picture;
    {
        x11::X11Session other;
        x11::PixelReader reader(other.connection());
        picture = reader
                      .read(other.connection()->root(), QRect(100, 100, 300, 200), 24,
                            other.connection()->screen().root_visual, x11::Alpha::ignored)
                      .value();
    }
    EXPECT_EQ(picture, knownPicture(300, 200, false));
}

TEST_F(Pixels, AreRefusedForADrawableThatIsGone) {
    const auto connection = session.connection();
    x11::PixelReader reader(connection);
    const xcb_drawable_t nobody = xcb_generate_id(connection->raw());
    for (const bool shared : {true, false}) {
        reader.useSharedMemory(shared);
        EXPECT_FALSE(reader.read(nobody, QRect(0, 0, 5, 5), 24, connection->screen().root_visual,
                                 x11::Alpha::ignored));
    }
}

} // namespace orvane::test
