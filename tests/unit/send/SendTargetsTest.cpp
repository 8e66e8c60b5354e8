#include "OrvaneCore/send/SendTargets.h"

#include <gtest/gtest.h>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

const SendTarget first{.name = u"First"_s, .bundleID = u"a"_s, .kind = SendTargetKind::ai};
const SendTarget second{.name = u"Second"_s, .bundleID = u"b"_s, .kind = SendTargetKind::comms};
const SendTarget third{.name = u"Third"_s, .bundleID = u"c"_s, .kind = SendTargetKind::custom};

} // namespace

TEST(SendTargetStep, GoesAroundTheEnds) {
    EXPECT_EQ(SendTargets::step({first, second, third}, first, true), second);
    EXPECT_EQ(SendTargets::step({first, second, third}, third, true), first);
    EXPECT_EQ(SendTargets::step({first, second, third}, second, false), first);
    EXPECT_EQ(SendTargets::step({first, second, third}, first, false), third);
}

TEST(SendTargetStep, StaysWithTheOnlyOne) {
    EXPECT_EQ(SendTargets::step({second}, second, true), second);
    EXPECT_EQ(SendTargets::step({second}, second, false), second);
}

TEST(SendTargetStep, BeginsWithTheFirst) {
    EXPECT_EQ(SendTargets::step({second, third}, std::nullopt, true), second);
    EXPECT_EQ(SendTargets::step({second, third}, std::nullopt, false), second);
    EXPECT_EQ(SendTargets::step({second, third}, first, false), second);
    SendTarget renamed = third;
    renamed.name = u"3"_s;
    EXPECT_EQ(SendTargets::step({second, third}, renamed, true), second);
}

TEST(SendTargetStep, HasNowhereToGoInAnEmptyList) {
    EXPECT_EQ(SendTargets::step({}, first, true), std::nullopt);
    EXPECT_EQ(SendTargets::step({}, std::nullopt, false), std::nullopt);
}

} // namespace orvane
