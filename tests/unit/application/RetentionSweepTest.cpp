#include "Orvane/RetentionSweep.h"
#include "tests/support/Eventually.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvane {
namespace {

class RetentionSweepTest : public testing::Test {
protected:
    /// A sweep that goes on until it is told to end, and has tried `count` deletions by then.
    std::unique_ptr<RetentionSweep> heldSweep(int count) {
        const auto prepare = [this, count]() -> RetentionSweep::Sweep {
            ++m_prepared;
            // What is held goes with the thread, so that a test can see when that has gone.
            return [this, count, held = m_held](const std::stop_token& stop) {
                m_sweeper = std::this_thread::get_id();
                ++m_sweeps;
                m_sweeps.notify_all();
                m_mayEnd.wait(false);
                m_wasStopped = stop.stop_requested();
                return count;
            };
        };
        return std::make_unique<RetentionSweep>(prepare, [this] {
            EXPECT_EQ(m_sweeps, m_prepared - 1) << "before it sweeps";
            m_gaveWay = std::this_thread::get_id();
        });
    }

    void letItEnd() {
        m_mayEnd = true;
        m_mayEnd.notify_all();
    }

    bool threadsAreGone() const {
        return test::eventually([this] { return m_held.use_count() == 1; });
    }

    std::shared_ptr<int> m_held = std::make_shared<int>(0);
    std::atomic<int> m_prepared = 0;
    std::atomic<int> m_sweeps = 0;
    std::atomic<bool> m_mayEnd = false;
    std::atomic<bool> m_wasStopped = false;
    std::atomic<std::thread::id> m_gaveWay;
    std::atomic<std::thread::id> m_sweeper;
};

TEST_F(RetentionSweepTest, SweepsOnAThreadThatGivesWay) {
    const auto sweep = heldSweep(0);
    sweep->begin();
    m_sweeps.wait(0);
    EXPECT_NE(m_sweeper.load(), std::this_thread::get_id());
    EXPECT_EQ(m_sweeper.load(), m_gaveWay.load());
    letItEnd();
    EXPECT_TRUE(threadsAreGone());
}

TEST_F(RetentionSweepTest, OneIsUnderWayAtATime) {
    const auto sweep = heldSweep(0);
    sweep->begin();
    m_sweeps.wait(0);
    sweep->begin();
    EXPECT_EQ(m_prepared, 1);
    letItEnd();
    EXPECT_TRUE(test::eventually([&] {
        sweep->begin();
        return m_prepared == 2;
    }));
    EXPECT_TRUE(threadsAreGone());
    EXPECT_EQ(m_sweeps, 2);
}

TEST_F(RetentionSweepTest, TheEndStopsItAndDoesNotWait) {
    testing::internal::CaptureStderr();
    auto sweep = heldSweep(5);
    sweep->begin();
    m_sweeps.wait(0);
    sweep.reset();
    letItEnd();
    EXPECT_TRUE(threadsAreGone());
    EXPECT_TRUE(m_wasStopped);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(RetentionSweepTest, TellsHowManyHaveExpired) {
    letItEnd();
    for (const auto& [count, line] :
         std::vector<std::pair<int, std::string>>{{0, ""},
                                                  {1, "orvane: cleaned up 1 expired item(s)\n"},
                                                  {60000, "orvane: cleaned up 60000 expired item(s)\n"}}) {
        testing::internal::CaptureStderr();
        const auto sweep = heldSweep(count);
        m_sweeps = 0;
        m_prepared = 0;
        sweep->begin();
        EXPECT_TRUE(threadsAreGone());
        EXPECT_EQ(testing::internal::GetCapturedStderr(), line);
    }
}

} // namespace
} // namespace orvane
