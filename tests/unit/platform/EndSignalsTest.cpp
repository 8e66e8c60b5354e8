#include "OrvanePlatform/posix/EndSignals.h"

#include <gtest/gtest.h>

#include <csignal>

#include <poll.h>

namespace orvane::posix {
namespace {

bool isReadable(int descriptor) {
    pollfd entry{descriptor, POLLIN, 0};
    return ::poll(&entry, 1, 0) == 1;
}

class EndSignalsTest : public testing::TestWithParam<int> {};

TEST_P(EndSignalsTest, MakesTheFirstSomethingToWaitFor) {
    const EndSignals endSignals;
    EXPECT_FALSE(isReadable(endSignals.descriptor()));
    ::raise(GetParam());
    EXPECT_TRUE(isReadable(endSignals.descriptor()));
}

TEST_P(EndSignalsTest, LetsTheSecondEndTheProcess) {
    EXPECT_EXIT(
        {
            const EndSignals endSignals;
            ::raise(SIGTERM);
            ::raise(GetParam());
        },
        testing::KilledBySignal(GetParam()), "");
}

TEST_P(EndSignalsTest, LeavesAnIgnoredSignalIgnored) {
    EXPECT_EXIT(
        {
            ::signal(GetParam(), SIG_IGN);
            {
                const EndSignals endSignals;
                ::raise(GetParam());
                if (isReadable(endSignals.descriptor()))
                    std::exit(1);
                ::raise(GetParam() == SIGTERM ? SIGINT : SIGTERM);
                ::raise(GetParam());
            }
            ::raise(GetParam());
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_P(EndSignalsTest, GivesTheSignalBack) {
    EXPECT_EXIT(
        {
            { const EndSignals endSignals; }
            ::raise(GetParam());
        },
        testing::KilledBySignal(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(All, EndSignalsTest, testing::Values(SIGTERM, SIGINT, SIGHUP));

} // namespace
} // namespace orvane::posix
