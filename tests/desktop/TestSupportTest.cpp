// The tests' own helpers do what the other tests take for granted.
#include "tests/desktop/DesktopFixture.h"

#include <QDir>
#include <QPainter>

#include <csignal>

namespace orvane::test {

namespace {

class TestWindowCommands : public DesktopFixture {
protected:
    QImage shown(const TestWindow& window) { return capture.captureWindow(window.id(), false).image; }

    static QImage filled(QImage picture, const QRect& rect, const QColor& color) {
        QPainter painter(&picture);
        painter.fillRect(rect, color);
        painter.end();
        return picture;
    }
};

} // namespace

TEST(VirtualDesktop, IsPrivateAndLeavesNothing) {
    const QByteArray homeBefore = qgetenv("HOME");
    QString home;
    qint64 server = 0;
    {
        const VirtualDesktop desktop;
        home = desktop.home();
        server = desktop.xServerPid();
        EXPECT_TRUE(QDir(home).exists());
        EXPECT_EQ(qEnvironmentVariable("HOME"), home);
        EXPECT_NE(home.toLocal8Bit(), homeBefore);
        EXPECT_EQ(::kill(static_cast<pid_t>(server), 0), 0);
        EXPECT_FALSE(qEnvironmentVariableIsEmpty("DISPLAY"));
    }
    EXPECT_TRUE(eventually([&home] { return !QDir(home).exists(); }));
    EXPECT_TRUE(eventually([server] { return ::kill(static_cast<pid_t>(server), 0) != 0; }));
    EXPECT_EQ(qgetenv("HOME"), homeBefore);
}

TEST(VirtualDesktop, RefusesWhatItCannotBringUp) {
    EXPECT_THROW(VirtualDesktop({u"--size"_s, u"none"_s}), std::runtime_error);
}

TEST(VirtualDesktop, StandsBesideAnother) {
    const VirtualDesktop first;
    const QByteArray firstDisplay = qgetenv("DISPLAY");
    const VirtualDesktop second;
    EXPECT_NE(qgetenv("DISPLAY"), firstDisplay);
}

TEST(Eventually, WaitsAndGivesUp) {
    int asked = 0;
    EXPECT_TRUE(eventually([&asked] { return ++asked == 3; }));
    EXPECT_FALSE(eventually([] { return false; }, 20));
}

TEST(RunCommand, GivesTheOutputAndFailsLoudly) {
    EXPECT_EQ(runCommand(u"echo"_s, {u"a b"_s}), "a b\n");
    EXPECT_THROW(runCommand(u"false"_s, {}), std::runtime_error);
}

TEST_F(TestWindowCommands, FillARectangleAndNothingElse) {
    TestWindow window({u"--undecorated"_s});
    window.fill({30, 40, 50, 60}, u"#12ab34"_s);
    const QImage once = filled(knownPicture(300, 200, false), {30, 40, 50, 60}, u"#12ab34"_s);
    EXPECT_EQ(shown(window), once);
    window.fill({299, 199, 1, 1}, Qt::white);
    EXPECT_EQ(shown(window), filled(once, {299, 199, 1, 1}, Qt::white));
}

TEST_F(TestWindowCommands, FillForAsLongAsNothingElseIsShown) {
    TestWindow window({u"--undecorated"_s});
    window.fill({0, 0, 400, 100}, Qt::red);
    window.command(u"resize 350 180"_s);
    const QImage grown = filled(knownPicture(350, 180, false), {0, 0, 400, 100}, Qt::red);
    EXPECT_TRUE(eventually([&] { return shown(window) == grown; }));
    window.command(u"picture"_s);
    EXPECT_EQ(shown(window), knownPicture(350, 180, false));
    window.fill({0, 0, 10, 10}, Qt::red);
    window.command(u"color #0000ff"_s);
    EXPECT_EQ(shown(window).pixelColor(5, 5), QColor(Qt::blue));
}

TEST_F(TestWindowCommands, FillOpaquelyInATransparentWindow) {
    TestWindow window({u"--undecorated"_s, u"--depth"_s, u"32"_s});
    window.fill({30, 40, 50, 60}, u"#12ab34"_s);
    EXPECT_EQ(shown(window).pixel(31, 41), 0xff12ab34U);
    EXPECT_EQ(qAlpha(shown(window).pixel(11, 20)), 0x80);
}

TEST(KnownPicture, HasNoTwoNeighboursAlike) {
    const QImage picture = knownPicture(300, 200, false);
    for (int y = 1; y < 200; ++y) {
        for (int x = 1; x < 300; ++x) {
            ASSERT_NE(picture.pixel(x, y), picture.pixel(x - 1, y));
            ASSERT_NE(picture.pixel(x, y), picture.pixel(x, y - 1));
        }
    }
}

} // namespace orvane::test
