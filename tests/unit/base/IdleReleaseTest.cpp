#include "OrvaneCore/base/IdleRelease.h"

#include "tests/support/Eventually.h"
#include "tests/support/FakeClock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>

using namespace std::chrono_literals;

namespace orvane {
namespace {

class IdleReleaseTest : public testing::Test {
protected:
    void use() { const IdleRelease::Use use(m_idle); }

    /// Moves to a moment at which the watcher wakes and finds that it has to sleep on.
    void passUnreleased(std::chrono::milliseconds time) {
        m_clock.awaitSleeper();
        m_clock.advance(time);
        m_clock.awaitSleeper();
        EXPECT_EQ(m_releases, 0);
    }

    bool releasedAfter(std::chrono::milliseconds time) {
        m_clock.awaitSleeper();
        m_clock.jump(time);
        return test::eventually([this] { return m_releases == 1; });
    }

    test::FakeClock m_clock;
    std::atomic<int> m_releases = 0;
    IdleRelease m_idle{m_clock, 2min, [this] { ++m_releases; }};
};

TEST_F(IdleReleaseTest, ReleasesWhenNothingWasUsedForTheTime) {
    use();
    passUnreleased(119'999ms);
    EXPECT_TRUE(releasedAfter(1ms));
}

TEST_F(IdleReleaseTest, TheLastUseCounts) {
    use();
    passUnreleased(90s);
    use();
    // The watcher wakes two minutes after the first use.
    passUnreleased(119'999ms);
    EXPECT_TRUE(releasedAfter(1ms));
}

TEST_F(IdleReleaseTest, WhatIsInUseStaysHoweverLong) {
    std::optional<IdleRelease::Use> longUse(m_idle);
    use();
    passUnreleased(10min);
    longUse.reset();
    passUnreleased(119'999ms);
    EXPECT_TRUE(releasedAfter(1ms));
}

TEST_F(IdleReleaseTest, WhatWasReleasedAndUsedAgainIsReleasedAgain) {
    use();
    EXPECT_TRUE(releasedAfter(2min));
    m_releases = 0;
    use();
    passUnreleased(119'999ms);
    EXPECT_TRUE(releasedAfter(1ms));
}

TEST(IdleReleaseEnd, NothingIsReleasedByTheEnd) {
    test::FakeClock clock;
    int releases = 0;
    {
        IdleRelease idle(clock, 2min, [&releases] { ++releases; });
        const IdleRelease::Use use(idle);
    }
    {
        IdleRelease idle(clock, 2min, [&releases] { ++releases; });
        { const IdleRelease::Use use(idle); }
        clock.awaitSleeper();
    }
    EXPECT_EQ(releases, 0);
}

} // namespace
} // namespace orvane
