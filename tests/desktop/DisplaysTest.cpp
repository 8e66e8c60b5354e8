// The displays this program sees are the screens every Qt window sees.
#include "tests/desktop/DesktopFixture.h"

#include <QGuiApplication>
#include <QScreen>

namespace orvane::test {

namespace {

/// What Qt itself says of the screens of this desktop, the primary first.
std::vector<std::pair<QString, QRectF>> qtScreens() {
    int count = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QGuiApplication application(count, arguments);
    std::vector<std::pair<QString, QRectF>> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.emplace_back(screen->name(), QRectF(screen->geometry()));
    return screens;
}

void expectScreensOfQt(const QStringList& options) {
    const VirtualDesktop desktop(options);
    x11::X11Session session;
    std::vector<std::pair<QString, QRectF>> ours;
    for (const Display& display : x11::X11Displays(session).list())
        ours.emplace_back(display.name, display.boundsPoints);
    EXPECT_FALSE(ours.empty());
    EXPECT_EQ(ours, qtScreens());
}

const QStringList twoMonitors{u"--size"_s, u"2000x1000"_s, u"--monitors"_s,
                              u"A:1200x1000+0+0,B:800x600+1200+100"_s};

} // namespace

TEST(DesktopDisplays, AreQtsScreens) {
    expectScreensOfQt({u"--size"_s, u"1280x800"_s});
}

TEST(DesktopDisplays, AreQtsScreensAtScaleTwo) {
    expectScreensOfQt({u"--size"_s, u"1281x801"_s, u"--scale"_s, u"2"_s});
}

TEST(DesktopDisplays, AreQtsScreensWithTwoMonitors) {
    expectScreensOfQt(twoMonitors);
}

TEST(DesktopDisplays, AreQtsScreensWithMixedScales) {
    expectScreensOfQt(twoMonitors + QStringList{u"--scale"_s, u"A=1.5;B=2"_s});
}

TEST(DesktopDisplays, AreQtsScreensWithAFontResolution) {
    const VirtualDesktop desktop(twoMonitors);
    QProcess xrdb;
    xrdb.start(u"xrdb"_s, {u"-merge"_s});
    xrdb.write("Xft.dpi: 144\n");
    xrdb.closeWriteChannel();
    ASSERT_TRUE(xrdb.waitForFinished());
    x11::X11Session session;
    const std::vector<Display> ours = x11::X11Displays(session).list();
    const auto theirs = qtScreens();
    ASSERT_EQ(ours.size(), theirs.size());
    for (size_t i = 0; i < ours.size(); ++i) {
        EXPECT_EQ(ours[i].boundsPoints, theirs[i].second);
        EXPECT_EQ(ours[i].scale, 1.5);
    }
}

TEST(DesktopDisplays, FollowAMonitorThatIsUnplugged) {
    const VirtualDesktop desktop(twoMonitors);
    x11::X11Session session;
    x11::X11Displays displays(session);
    EXPECT_EQ(displays.list().size(), 2U);
    runCommand(u"xrandr"_s, {u"--delmonitor"_s, u"B"_s});
    EXPECT_EQ(displays.list().size(), 1U);
}

} // namespace orvane::test
