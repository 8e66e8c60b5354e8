#include "OrvaneCore/capture/CaptureFailure.h"

#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "tests/support/MacWords.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace orvane::test {

using namespace Qt::StringLiterals;

TEST(CaptureFailureText, IsTheErrorsOwnSentence) {
    const PlatformWords words = macWords();
    EXPECT_EQ(captureFailureText(PlatformError(u"The screen is locked – now."_s), words),
              u"The screen is locked – now."_s);
    EXPECT_EQ(captureFailureText(OrvaneError::windowNotFound(3), words),
              OrvaneError::windowNotFound(3).description());
    EXPECT_EQ(captureFailureText(std::runtime_error("out of luck"), words), u"out of luck"_s);
}

TEST(CaptureFailureText, TellsInThePlatformsWordsThatTheDesktopDidNotAnswer) {
    PlatformWords words = macWords();
    words.remedies.screen = u"Knock twice"_s;
    EXPECT_EQ(captureFailureText(OrvaneError::permissionDenied(), words), u"Knock twice"_s);
}

} // namespace orvane::test
