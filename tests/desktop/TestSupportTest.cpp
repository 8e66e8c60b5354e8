// The tests' own helpers do what the other tests take for granted.
#include "tests/desktop/DesktopFixture.h"

#include <QDir>

#include <csignal>

namespace orvane::test {

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
