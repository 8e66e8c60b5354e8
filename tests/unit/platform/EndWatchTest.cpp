#include "OrvanePlatform/posix/EndWatch.h"

#include "tests/support/Eventually.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>

#include <unistd.h>

namespace orvane::posix {
namespace {

using test::eventually;

class EndWatchTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(::pipe(m_ends.data()), 0); }
    void TearDown() override {
        ::close(m_ends.front());
        ::close(m_ends.back());
    }

    int descriptor() const { return m_ends.front(); }
    void makeReadable() const { EXPECT_EQ(::write(m_ends.back(), "x", 1), 1); }

private:
    std::array<int, 2> m_ends{-1, -1};
};

TEST_F(EndWatchTest, CallsOnceOnAThreadOfItsOwn) {
    std::atomic<int> calls = 0;
    std::thread::id caller;
    {
        const EndWatch watch(descriptor(), [&] {
            caller = std::this_thread::get_id();
            ++calls;
        });
        makeReadable();
        EXPECT_TRUE(eventually([&] { return calls == 1; }));
        makeReadable();
    }
    EXPECT_EQ(calls, 1);
    EXPECT_NE(caller, std::this_thread::get_id());
}

TEST_F(EndWatchTest, NeverCallsWhereNothingComes) {
    bool called = false;
    {
        const EndWatch watch(descriptor(), [&] { called = true; });
        const EndWatch none(-1, [&] { called = true; });
    }
    EXPECT_FALSE(called);
}

} // namespace
} // namespace orvane::posix
