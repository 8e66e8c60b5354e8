// A display as it looks without this program's windows, although they are on the screen.
#include "tests/desktop/DesktopFixture.h"
#include "tests/support/DrawnPixels.h"

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

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

constexpr QRgb wallpaper = 0xff336699U;
constexpr QRgb wallpaperCorner = 0xff996633U;
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
        // With a corner of another colour, so that a shift does not go unseen.
        fill(tile, {0, 0, 64, 64}, wallpaper);
        fill(tile, {0, 0, 32, 16}, wallpaperCorner);
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
    void fill(xcb_pixmap_t tile, const xcb_rectangle_t& place, QRgb color) {
        const xcb_gcontext_t graphics = xcb_generate_id(m_connection);
        const uint32_t foreground = color & 0xffffffU;
        xcb_create_gc(m_connection, graphics, tile, XCB_GC_FOREGROUND, &foreground);
        xcb_poly_fill_rectangle(m_connection, tile, graphics, 1, &place);
    }

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

    QImage withoutOwn() { return capture.captureDisplayExcludingOwnApp(displays.list().front().id); }

    xcb_window_t idOf(const TestWindow& window) { return static_cast<xcb_window_t>(window.id()); }

    int topLevels() {
        const auto connection = session.connection();
        const auto tree =
            connection->reply<xcb_query_tree_reply>(xcb_query_tree(connection->raw(), connection->root()));
        return tree ? xcb_query_tree_children_length(tree.get()) : -1;
    }
};

class OwnWindowsUncomposited : public OwnWindows {
protected:
    OwnWindowsUncomposited()
        : OwnWindows({u"--size"_s, u"1280x800"_s, u"--no-compositor"_s}) {}
};

/// What a second monitor shows, where nothing begins at the screen's corner.
class OwnWindowsTwoMonitors : public OwnWindows {
protected:
    explicit OwnWindowsTwoMonitors(const QStringList& options = {})
        : OwnWindows(QStringList{u"--size"_s, u"2000x1000"_s, u"--monitors"_s,
                                 u"A:1200x1000+0+0,B:800x600+1200+100"_s} +
                     options) {}

    void expectWhatWasThere() {
        const TestWindow below({u"--geometry"_s, u"300x200+1100+300"_s, u"--undecorated"_s});
        ASSERT_TRUE(screenShows({1399, 499}, knownPixel(299, 199)));
        const QImage before = screen().copy(1200, 100, 800, 600);
        const OwnWindow own(false);
        ASSERT_TRUE(screenShows({1250, 200}, white));
        EXPECT_EQ(capture.captureDisplayExcludingOwnApp(x11::ScreenLayout::displayId(u"B"_s)), before);
    }
};

class OwnWindowsTwoMonitorsUncomposited : public OwnWindowsTwoMonitors {
protected:
    OwnWindowsTwoMonitorsUncomposited()
        : OwnWindowsTwoMonitors({u"--no-compositor"_s}) {}
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

TEST_F(OwnWindowsTwoMonitors, AreLeftOutOverATile) {
    const Wallpaper tile;
    ASSERT_TRUE(screenShows({1290, 650}, wallpaperCorner));
    expectWhatWasThere();
}

TEST_F(OwnWindowsTwoMonitorsUncomposited, AreLeftOutOverABackgroundThatNobodyNames) {
    runCommand(u"xsetroot"_s, {u"-mod"_s, u"7"_s, u"5"_s, u"-fg"_s, u"#996633"_s, u"-bg"_s, u"#336699"_s});
    expectWhatWasThere();
}

TEST_F(OwnWindowsUncomposited, AreLeftOutAndNothingStaysBehind) {
    const OwnWindow own(false);
    ASSERT_TRUE(screenShows(coveredPlace, white));
    const int before = topLevels();
    withoutOwn();
    withoutOwn();
    session.connection()->sync();
    EXPECT_EQ(topLevels(), before);
}

// ---- what the windows below look like

TEST_F(OwnWindows, ShowAWindowBelowInItsShape) {
    const TestWindow below({u"--undecorated"_s});
    const auto shaped = colorWindow(u"60x60+150+150"_s, u"red"_s, {u"--override-redirect"_s});
    const auto connection = session.connection();
    const xcb_xfixes_region_t half = xcb_generate_id(connection->raw());
    const xcb_rectangle_t rectangle{0, 0, 30, 60};
    xcb_xfixes_create_region(connection->raw(), half, 1, &rectangle);
    xcb_xfixes_set_window_shape_region(connection->raw(), idOf(*shaped), XCB_SHAPE_SK_BOUNDING, 0, 0, half);
    ASSERT_TRUE(screenShows({160, 160}, 0xffff0000U));
    ASSERT_TRUE(screenShows({200, 160}, knownPixel(100, 60)));
    const OwnWindow own(false);
    ASSERT_TRUE(screenShows(coveredPlace, white));
    const QImage picture = withoutOwn();
    EXPECT_EQ(picture.pixel(179, 160), 0xffff0000U);
    EXPECT_EQ(picture.pixel(180, 160), knownPixel(80, 60));
}

TEST_F(OwnWindowsUncomposited, ShowAWindowBelowWithItsBorder) {
    constexpr QRgb lime = 0xff00ff00U;
    const TestWindow below({u"--undecorated"_s});
    const auto bordered = colorWindow(u"60x60+150+150"_s, u"red"_s, {u"--override-redirect"_s});
    const auto connection = session.connection();
    const uint32_t color = lime & 0xffffffU;
    const uint32_t width = 6;
    xcb_change_window_attributes(connection->raw(), idOf(*bordered), XCB_CW_BORDER_PIXEL, &color);
    xcb_configure_window(connection->raw(), idOf(*bordered), XCB_CONFIG_WINDOW_BORDER_WIDTH, &width);
    ASSERT_TRUE(screenShows({221, 221}, lime));
    ASSERT_TRUE(screenShows({156, 156}, 0xffff0000U));
    const QImage before = screen().copy(100, 100, 300, 200);
    const OwnWindow own(false);
    ASSERT_TRUE(screenShows(coveredPlace, white));
    EXPECT_EQ(withoutOwn().copy(100, 100, 300, 200), before);
}

TEST_F(OwnWindows, ShowAWindowBelowAsOpaqueAsTheCompositorDoes) {
    const TestWindow below({u"--undecorated"_s});
    const auto faint = colorWindow(u"60x60+150+150"_s, u"red"_s, {u"--override-redirect"_s});
    const auto connection = session.connection();
    const uint32_t quarter = 0x40000000U;
    xcb_change_property(connection->raw(), XCB_PROP_MODE_REPLACE, idOf(*faint),
                        connection->atoms().netWmWindowOpacity, XCB_ATOM_CARDINAL, 32, 1, &quarter);
    connection->sync();
    const QRgb expected = blended(0xffff0000U, 0.25, knownPixel(70, 60));
    ASSERT_TRUE(eventually([&] { return colorDistance(screen().pixel(170, 160), expected) <= 2; }));
    const OwnWindow own(false);
    ASSERT_TRUE(screenShows(coveredPlace, white));
    EXPECT_LE(colorDistance(withoutOwn().pixel(170, 160), expected), 2);
}

TEST_F(OwnWindowsUncomposited, ShowAWindowBelowOpaqueWhereNobodyComposes) {
    const auto faint = colorWindow(u"60x60+150+150"_s, u"red"_s, {u"--override-redirect"_s});
    const auto connection = session.connection();
    const uint32_t quarter = 0x40000000U;
    xcb_change_property(connection->raw(), XCB_PROP_MODE_REPLACE, idOf(*faint),
                        connection->atoms().netWmWindowOpacity, XCB_ATOM_CARDINAL, 32, 1, &quarter);
    const OwnWindow own(false);
    ASSERT_TRUE(screenShows(coveredPlace, white));
    EXPECT_EQ(withoutOwn().pixel(170, 160), 0xffff0000U);
}

TEST_F(OwnWindows, AreNotMissedWhereThereAreNone) {
    const TestWindow window({u"--undecorated"_s});
    ASSERT_TRUE(screenShows({105, 107}, knownPixel(5, 7)));
    EXPECT_EQ(capture.captureDisplayExcludingOwnApp(displays.list().front().id), screen());
}

} // namespace orvane::test
