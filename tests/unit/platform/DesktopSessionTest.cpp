#include "OrvanePlatform/DesktopSession.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

DesktopSession session(std::initializer_list<std::pair<QString, QString>> variables) {
    QProcessEnvironment environment;
    for (const auto& [name, value] : variables)
        environment.insert(name, value);
    return desktopSession(environment);
}

} // namespace

TEST(DesktopSession, OfX11) {
    const DesktopSession x11 = session(
        {{u"XDG_SESSION_TYPE"_s, u"x11"_s}, {u"DISPLAY"_s, u":0"_s}, {u"XDG_CURRENT_DESKTOP"_s, u"XFCE"_s}});
    EXPECT_EQ(x11, (DesktopSession{.type = DesktopSession::Type::x11,
                                   .hasX11 = true,
                                   .hasWayland = false,
                                   .desktops = {u"XFCE"_s}}));
    EXPECT_EQ(desktopPorts(x11), DesktopPorts::x11);
}

TEST(DesktopSession, OfWaylandWithXWaylandIsServedThroughThat) {
    const DesktopSession wayland = session({{u"XDG_SESSION_TYPE"_s, u"wayland"_s},
                                            {u"WAYLAND_DISPLAY"_s, u"wayland-0"_s},
                                            {u"DISPLAY"_s, u":1"_s},
                                            {u"XDG_CURRENT_DESKTOP"_s, u"ubuntu:GNOME"_s}});
    EXPECT_EQ(wayland, (DesktopSession{.type = DesktopSession::Type::wayland,
                                       .hasX11 = true,
                                       .hasWayland = true,
                                       .desktops = {u"ubuntu"_s, u"GNOME"_s}}));
    EXPECT_EQ(desktopPorts(wayland), DesktopPorts::x11);
}

TEST(DesktopSession, OfWaylandAloneHasNothingThatServesIt) {
    const DesktopSession wayland =
        session({{u"XDG_SESSION_TYPE"_s, u"wayland"_s}, {u"WAYLAND_DISPLAY"_s, u"wayland-0"_s}});
    EXPECT_TRUE(wayland.hasWayland);
    EXPECT_FALSE(wayland.hasX11);
    EXPECT_EQ(desktopPorts(wayland), DesktopPorts::headless);
}

TEST(DesktopSession, ThatTellsNothingHasNoDisplay) {
    EXPECT_EQ(session({}), DesktopSession());
    EXPECT_EQ(desktopPorts(session({})), DesktopPorts::headless);
    EXPECT_EQ(desktopPorts(session({{u"XDG_SESSION_TYPE"_s, u"tty"_s}})), DesktopPorts::headless);
}

TEST(DesktopSession, GoesByWhatIsThereAndNotByItsType) {
    // Over SSH, in a session of an X server of its own, or where the type is not handed down.
    EXPECT_EQ(desktopPorts(session({{u"DISPLAY"_s, u"localhost:10.0"_s}})), DesktopPorts::x11);
    EXPECT_EQ(desktopPorts(session({{u"XDG_SESSION_TYPE"_s, u"tty"_s}, {u"DISPLAY"_s, u":7"_s}})),
              DesktopPorts::x11);
    EXPECT_EQ(desktopPorts(session({{u"XDG_SESSION_TYPE"_s, u"x11"_s}})), DesktopPorts::headless);
}

TEST(DesktopSession, TakesAnEmptyVariableForNone) {
    const DesktopSession empty = session({{u"XDG_SESSION_TYPE"_s, QString()},
                                          {u"DISPLAY"_s, QString()},
                                          {u"WAYLAND_DISPLAY"_s, QString()},
                                          {u"XDG_CURRENT_DESKTOP"_s, u":"_s}});
    EXPECT_EQ(empty, DesktopSession());
}

TEST(DesktopSession, OfAnotherTypeIsOfNoneThatIsKnown) {
    EXPECT_EQ(session({{u"XDG_SESSION_TYPE"_s, u"mir"_s}}).type, DesktopSession::Type::other);
    EXPECT_EQ(session({{u"XDG_SESSION_TYPE"_s, u"X11"_s}}).type, DesktopSession::Type::other);
}

} // namespace orvane
