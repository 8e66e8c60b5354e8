#include "OrvaneCore/recording/WorkQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <vector>

namespace orvane {

TEST(WorkQueueTest, RunsJobsInTheirOrder) {
    std::vector<int> done;
    WorkQueue queue(2);
    for (int i = 0; i < 100; ++i)
        queue.post([&done, i] { done.push_back(i); });
    queue.drain();
    ASSERT_EQ(done.size(), 100U);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(done.at(i), i);
}

TEST(WorkQueueTest, RunsWhatWaitsBeforeItEnds) {
    int done = 0;
    {
        WorkQueue queue(8);
        for (int i = 0; i < 5; ++i)
            queue.post([&done] { ++done; });
    }
    EXPECT_EQ(done, 5);
}

TEST(WorkQueueTest, TakesNoMoreThanItsLimit) {
    std::promise<void> gate;
    std::promise<void> begun;
    WorkQueue queue(1);
    queue.post([&] {
        begun.set_value();
        gate.get_future().wait();
    });
    begun.get_future().wait();
    queue.post([] {});
    std::atomic<bool> posted = false;
    auto third = std::async(std::launch::async, [&] {
        queue.post([] {});
        posted = true;
    });
    EXPECT_EQ(third.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_FALSE(posted);
    gate.set_value();
    third.wait();
    EXPECT_TRUE(posted);
}

TEST(WorkQueueTest, IsDrainedWhenWhatItsJobsHoldIsGone) {
    const auto held = std::make_shared<int>(1);
    WorkQueue queue(2);
    queue.post([copy = held] {});
    queue.drain();
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace orvane
