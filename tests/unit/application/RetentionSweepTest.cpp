#include "Orvane/RetentionSweep.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>

namespace orvane {
namespace {

class RetentionSweepTest : public testing::Test {
protected:
    /// A sweep that goes on until it is told to end or asked to stop, and has tried `count` deletions by
    /// then.
    std::unique_ptr<RetentionSweep> heldSweep(int count) {
        return std::make_unique<RetentionSweep>(
            [this, count](const std::stop_token& stop) {
                ++m_sweeps;
                m_sweeps.notify_all();
                while (!m_mayEnd && !stop.stop_requested())
                    std::this_thread::yield();
                m_wasStopped = stop.stop_requested();
                return count;
            },
            [this] { m_gaveWay = std::this_thread::get_id(); });
    }

    std::atomic<int> m_sweeps = 0;
    std::atomic<bool> m_mayEnd = false;
    std::atomic<bool> m_wasStopped = false;
    std::atomic<std::thread::id> m_gaveWay;
};

TEST_F(RetentionSweepTest, SweepsOnAThreadThatGivesWay) {
    std::promise<std::thread::id> swept;
    RetentionSweep sweep(
        [&](const std::stop_token&) {
            EXPECT_EQ(m_gaveWay.load(), std::this_thread::get_id());
            swept.set_value(std::this_thread::get_id());
            return 0;
        },
        [this] { m_gaveWay = std::this_thread::get_id(); });
    sweep.begin();
    EXPECT_NE(swept.get_future().get(), std::this_thread::get_id());
}

TEST_F(RetentionSweepTest, OneIsUnderWayAtATime) {
    const auto sweep = heldSweep(0);
    sweep->begin();
    m_sweeps.wait(0);
    sweep->begin();
    EXPECT_EQ(m_sweeps, 1);
    m_mayEnd = true;
    // Until the first one has ended nothing begins.
    while (m_sweeps == 1)
        sweep->begin();
    EXPECT_GE(m_sweeps, 2);
}

TEST_F(RetentionSweepTest, TheEndStopsIt) {
    auto sweep = heldSweep(3);
    sweep->begin();
    m_sweeps.wait(0);
    testing::internal::CaptureStderr();
    sweep.reset();
    EXPECT_TRUE(m_wasStopped);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "orvane: cleaned up 3 expired item(s)\n");
}

TEST_F(RetentionSweepTest, SaysNothingWhereNothingHasExpired) {
    testing::internal::CaptureStderr();
    auto sweep = heldSweep(0);
    sweep->begin();
    m_sweeps.wait(0);
    sweep.reset();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace orvane
