#include "OrvanePlatform/headless/NoWindows.h"

#include <gtest/gtest.h>

namespace orvane::headless {

TEST(NoWindows, AreNothingToOffer) {
    NoSurfaces surfaces;
    EXPECT_FALSE(surfaces.canBeTranslucent());
    surfaces.giveKeyboardBack();
    NoShell shell;
    EXPECT_FALSE(shell.hasTrayHost());
    EXPECT_EQ(shell.limits(), std::nullopt);
    EXPECT_EQ(NoKeyboard().keyCode({.scanCode = 38, .virtualKey = u'a'}), std::nullopt);
    NoHotkeys hotkeys;
    const auto first = hotkeys.add({}, {});
    const auto second = hotkeys.add({}, {});
    EXPECT_NE(first, second);
    EXPECT_EQ(hotkeys.state(first), GlobalHotkeys::State::unsupported);
    hotkeys.remove(first);
    EXPECT_EQ(hotkeys.state(second), GlobalHotkeys::State::unsupported);
}

} // namespace orvane::headless
