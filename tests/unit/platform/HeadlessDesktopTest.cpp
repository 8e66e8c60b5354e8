#include "OrvanePlatform/headless/HeadlessDesktop.h"

#include "OrvaneCore/platform/PlatformError.h"

#include <gtest/gtest.h>

namespace orvane::headless {

TEST(HeadlessDesktop, HasNoDisplaysAndNoWindows) {
    HeadlessDesktop desktop;
    EXPECT_TRUE(desktop.list().empty());
    EXPECT_TRUE(desktop.snapshot({}).applications.empty());
    EXPECT_TRUE(desktop.snapshot({}).onScreen.empty());
    EXPECT_EQ(desktop.bounds(1), std::nullopt);
}

TEST(HeadlessDesktop, SaysWhatIsMissing) {
    HeadlessDesktop desktop;
    ASSERT_TRUE(desktop.unavailableReason());
    EXPECT_TRUE(desktop.unavailableReason()->contains(QStringLiteral("DISPLAY")));
    EXPECT_THROW(desktop.listContent({1}, {}), PlatformError);
    EXPECT_THROW(desktop.captureWindow({.windowId = 1}, false), PlatformError);
    EXPECT_THROW(desktop.captureRegion({}, {}, false), PlatformError);
    EXPECT_THROW(desktop.captureDisplay({}, false), PlatformError);
    EXPECT_THROW(desktop.captureWithoutOwnWindows({}), PlatformError);
}

} // namespace orvane::headless
