// A display as it looks without this program's windows, although they are on the screen.
#include "tests/desktop/DesktopFixture.h"

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace orvane::test {

namespace {

/// A white window of this very process that covers everything.
class OwnWindow {
public:
    explicit OwnWindow(bool managed)
        : m_connection(xcb_connect(nullptr, nullptr)) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        const uint32_t values[] = {0xffffff, managed ? 0U : 1U};
        const xcb_window_t window = xcb_generate_id(m_connection);
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1280, 800, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(m_connection, window);
        xcb_flush(m_connection);
    }
    ~OwnWindow() { xcb_disconnect(m_connection); }
    OwnWindow(const OwnWindow&) = delete;
    OwnWindow& operator=(const OwnWindow&) = delete;

private:
    xcb_connection_t* m_connection;
};

constexpr QRgb white = 0xffffffffU;
constexpr QRgb wallpaper = 0xff336699U;
const QPoint wallpaperPlace(1000, 700);
// Below the own window, and not below the window that stays above it.
const QPoint coveredPlace(300, 250);

/// A wallpaper as desktops set it: a pixmap that a property of the root window names, here a tile.
class Wallpaper {
public:
    Wallpaper()
        : m_connection(xcb_connect(nullptr, nullptr)) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        const xcb_pixmap_t tile = xcb_generate_id(m_connection);
        xcb_create_pixmap(m_connection, screen->root_depth, tile, screen->root, 64, 64);
        const xcb_gcontext_t graphics = xcb_generate_id(m_connection);
        const uint32_t foreground = wallpaper & 0xffffffU;
        xcb_create_gc(m_connection, graphics, tile, XCB_GC_FOREGROUND, &foreground);
        const xcb_rectangle_t all{0, 0, 64, 64};
        xcb_poly_fill_rectangle(m_connection, tile, graphics, 1, &all);
        xcb_change_window_attributes(m_connection, screen->root, XCB_CW_BACK_PIXMAP, &tile);
        xcb_clear_area(m_connection, 0, screen->root, 0, 0, 0, 0);
        const auto atom = std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)>(
            xcb_intern_atom_reply(m_connection, xcb_intern_atom(m_connection, 0, 13, "_XROOTPMAP_ID"),
                                  nullptr),
            &std::free);
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, screen->root, atom->atom, XCB_ATOM_PIXMAP,
                            32, 1, &tile);
        xcb_flush(m_connection);
    }
    ~Wallpaper() { xcb_disconnect(m_connection); }
    Wallpaper(const Wallpaper&) = delete;
    Wallpaper& operator=(const Wallpaper&) = delete;

private:
    xcb_connection_t* m_connection;
};

class OwnWindows : public DesktopFixture {
protected:
    using DesktopFixture::DesktopFixture;

    void expectSeeThrough(bool managed) {
        ASSERT_TRUE(screenShows(wallpaperPlace, wallpaper));
        const TestWindow below({u"--undecorated"_s});
        const auto above = colorWindow(u"60x60+150+150"_s, u"red"_s, {u"--override-redirect"_s});
        ASSERT_TRUE(screenShows({160, 160}, 0xffff0000U));
        const OwnWindow own(managed);
        ASSERT_TRUE(screenShows(coveredPlace, white));

        const QImage picture = capture.captureDisplayExcludingOwnApp(displays.list().front().id);
        EXPECT_EQ(picture.size(), QSize(1280, 800));
        EXPECT_EQ(picture.pixel(105, 107), knownPixel(5, 7));
        EXPECT_EQ(picture.pixel(399, 299), knownPixel(299, 199));
        EXPECT_EQ(picture.pixel(160, 160), 0xffff0000U);
        EXPECT_EQ(picture.pixel(wallpaperPlace), wallpaper);
        EXPECT_TRUE(screenShows(coveredPlace, white)) << "the screen itself has changed";
    }
};

class OwnWindowsUncomposited : public OwnWindows {
protected:
    OwnWindowsUncomposited()
        : OwnWindows({u"--size"_s, u"1280x800"_s, u"--no-compositor"_s}) {}
};

} // namespace

TEST_F(OwnWindows, AreLeftOut) {
    const Wallpaper tile;
    expectSeeThrough(false);
}

TEST_F(OwnWindows, AreLeftOutWhenManaged) {
    const Wallpaper tile;
    expectSeeThrough(true);
}

TEST_F(OwnWindowsUncomposited, AreLeftOut) {
    // A plain background that no property names.
    runCommand(u"xsetroot"_s, {u"-solid"_s, u"#336699"_s});
    expectSeeThrough(false);
}

TEST_F(OwnWindowsUncomposited, AreLeftOutWhenManaged) {
    const Wallpaper tile;
    expectSeeThrough(true);
}

TEST_F(OwnWindows, AreNotMissedWhereThereAreNone) {
    const TestWindow window({u"--undecorated"_s});
    ASSERT_TRUE(screenShows({105, 107}, knownPixel(5, 7)));
    EXPECT_EQ(capture.captureDisplayExcludingOwnApp(displays.list().front().id), screen());
}

} // namespace orvane::test
