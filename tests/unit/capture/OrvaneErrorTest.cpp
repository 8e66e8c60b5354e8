#include "OrvaneCore/capture/OrvaneError.h"

#include <gtest/gtest.h>

namespace orvane {

TEST(OrvaneError, DescribesEveryCase) {
    EXPECT_EQ(OrvaneError::windowNotFound(42).description(),
              u"Window with ID 42 not found. Use list_windows to see available windows.");
    EXPECT_EQ(OrvaneError::invalidArguments(QStringLiteral("x is odd")).description(),
              u"Invalid arguments: x is odd");
    EXPECT_EQ(OrvaneError::displayNotFound().description(), u"No display found for the specified region.");
    EXPECT_EQ(OrvaneError::captureEncodingFailed().description(), u"Failed to encode screenshot as PNG.");
    EXPECT_EQ(OrvaneError::permissionDenied().description(),
              u"Screen Recording permission required. Open System Settings > Privacy & Security > Screen "
              u"Recording and enable Orvane.");
}

TEST(OrvaneError, NumbersTheCasesInOrder) {
    const OrvaneError errors[] = {OrvaneError::windowNotFound(1), OrvaneError::invalidArguments(QString()),
                                  OrvaneError::displayNotFound(), OrvaneError::captureEncodingFailed(),
                                  OrvaneError::permissionDenied()};
    int number = 0;
    for (const OrvaneError& error : errors) {
        EXPECT_EQ(
            error.localizedDescription(),
            QStringLiteral("The operation could not be completed. (OrvaneError error %1.)").arg(number));
        ++number;
    }
}

TEST(OrvaneError, IsAnOrdinaryException) {
    EXPECT_STREQ(static_cast<const std::exception&>(OrvaneError::displayNotFound()).what(),
                 "No display found for the specified region.");
}

} // namespace orvane
