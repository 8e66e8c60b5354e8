#include "OrvaneCore/base/FixedText.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

namespace orvane {

using namespace Qt::StringLiterals;

TEST(FixedTextTest, RoundsAsCDoes) {
    EXPECT_EQ(fixedText(0, 1), u"0.0");
    EXPECT_EQ(fixedText(1.04, 1), u"1.0");
    EXPECT_EQ(fixedText(1.06, 1), u"1.1");
    // Exact halves go to the even digit; what only looks like one does not.
    EXPECT_EQ(fixedText(0.25, 1), u"0.2");
    EXPECT_EQ(fixedText(0.75, 1), u"0.8");
    EXPECT_EQ(fixedText(0.15, 1), u"0.1");
    EXPECT_EQ(fixedText(0.35, 1), u"0.3");
    EXPECT_EQ(fixedText(2.5, 0), u"2");
    EXPECT_EQ(fixedText(3.5, 0), u"4");
    EXPECT_EQ(fixedText(-0.04, 1), u"-0.0");
}

TEST(FixedTextTest, HasRoomForEveryNumber) {
    const QString largest = fixedText(std::numeric_limits<double>::lowest(), 3);
    EXPECT_EQ(largest.size(), 1 + 309 + 4);
    EXPECT_TRUE(largest.startsWith(u"-17976931348623157"));
}

} // namespace orvane
