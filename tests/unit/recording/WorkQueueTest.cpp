#include "OrvaneCore/recording/WorkQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>
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

TEST(WorkQueueTest, TakesNoMoreThanItsLimitOfWhatIsOffered) {
    std::promise<void> gate;
    std::promise<void> begun;
    int done = 0;
    WorkQueue queue(2);
    EXPECT_TRUE(queue.offer([&] {
        begun.set_value();
        gate.get_future().wait();
    }));
    begun.get_future().wait();
    EXPECT_TRUE(queue.offer([&done] { ++done; }));
    EXPECT_TRUE(queue.offer([&done] { ++done; }));
    EXPECT_FALSE(queue.offer([&done] { done = 100; }));
    // What is posted is taken all the same.
    queue.post([&done] { ++done; });
    EXPECT_FALSE(queue.offer([&done] { done = 100; }));
    gate.set_value();
    queue.drain();
    EXPECT_EQ(done, 3);
    EXPECT_TRUE(queue.offer([&done] { ++done; }));
    queue.drain();
    EXPECT_EQ(done, 4);
}

TEST(WorkQueueTest, IsDrainedHoweverFastOtherJobsCome) {
    std::atomic<int> taken = 0;
    std::atomic<bool> enough = false;
    WorkQueue queue(2);
    // No job is done before the next one waits, so that there is always one that waits or runs.
    const auto bring = [&] {
        while (!enough) {
            const int number = taken;
            const auto job = [&taken, &enough, number] {
                while (!enough && taken <= number + 1)
                    std::this_thread::yield();
            };
            if (queue.offer(job)) {
                ++taken;
            } else {
                std::this_thread::yield();
            }
        }
    };
    auto bringer = std::async(std::launch::async, bring);
    while (taken < 2)
        std::this_thread::yield();
    auto drained = std::async(std::launch::async, [&queue] { queue.drain(); });
    EXPECT_EQ(drained.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    enough = true;
    bringer.wait();
}

TEST(WorkQueueTest, ADrainWaitsForAllThatWasTakenBefore) {
    std::promise<void> gate;
    std::atomic<int> done = 0;
    WorkQueue queue(1);
    queue.post([&] { gate.get_future().wait(); });
    for (int i = 0; i < 5; ++i)
        queue.post([&done] { ++done; });
    auto drained = std::async(std::launch::async, [&] {
        queue.drain();
        return done.load();
    });
    EXPECT_EQ(drained.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    gate.set_value();
    EXPECT_EQ(drained.get(), 5);
}

TEST(WorkQueueTest, IsDrainedWhenWhatItsJobsHoldIsGone) {
    const auto held = std::make_shared<int>(1);
    WorkQueue queue(2);
    queue.post([copy = held] {});
    queue.drain();
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace orvane
