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
}

} // namespace orvane::headless
