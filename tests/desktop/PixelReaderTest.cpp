// Pixels come out alike with and without shared memory.
#include "tests/desktop/DesktopFixture.h"

namespace orvane::test {

namespace {

class Pixels : public DesktopFixture {
protected:
    QImage readRoot(bool sharedMemory) {
        const auto connection = session.connection();
        x11::PixelReader reader(connection);
        reader.useSharedMemory(sharedMemory);
        return reader
            .read(connection->root(), QRect(90, 90, 301, 203), connection->screen().root_depth,
                  connection->screen().root_visual, x11::Alpha::ignored)
            .value();
    }
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
