#include "OrvanePlatform/x11/X11DesktopShell.h"

#include <gtest/gtest.h>

namespace orvane::x11 {

TEST(X11DesktopShell, TellsWhatAWaylandSessionKeepsToItself) {
    X11Session session;
    EXPECT_EQ(X11DesktopShell(session, false).limits(), std::nullopt);
    EXPECT_EQ(
        X11DesktopShell(session, true).limits(),
        u"this is a Wayland session: only the windows of X11 programs can be seen and recorded. Log in to "
        "an X11 session to have all of them");
}

} // namespace orvane::x11
