#include "Orvane/BackgroundTasks.h"
#include "tests/support/EventLoop.h"

#include <gtest/gtest.h>

#include <QThread>

#include <atomic>
#include <future>
#include <latch>

namespace orvane {
namespace {

TEST(BackgroundTasksTest, WorkRunsElsewhereAndWhatFollowsHere) {
    BackgroundTasks tasks;
    QThread* const here = QThread::currentThread();
    std::atomic<QThread*> worker = nullptr;
    QThread* follower = nullptr;
    tasks.run([&]() -> TaskRunner::Continuation {
        worker = QThread::currentThread();
        return [&] { follower = QThread::currentThread(); };
    });
    EXPECT_TRUE(test::eventuallyInLoop([&] { return follower != nullptr; }));
    EXPECT_NE(worker, here);
    EXPECT_EQ(follower, here);
}

TEST(BackgroundTasksTest, NothingNeedsToFollow) {
    std::atomic<bool> ran = false;
    {
        BackgroundTasks tasks;
        tasks.run([&]() -> TaskRunner::Continuation {
            ran = true;
            return {};
        });
    }
    EXPECT_TRUE(ran);
}

TEST(BackgroundTasksTest, NoneWaitsForOthersHoweverManyTheyAre) {
    std::promise<void> gate;
    const std::shared_future<void> opened = gate.get_future().share();
    std::atomic<bool> ran = false;
    BackgroundTasks tasks;
    for (int i = 0; i < 50; ++i) {
        tasks.run([opened]() -> TaskRunner::Continuation {
            opened.wait();
            return {};
        });
    }
    tasks.run([&ran]() -> TaskRunner::Continuation {
        ran = true;
        return {};
    });
    EXPECT_TRUE(test::eventuallyInLoop([&] { return ran.load(); }));
    gate.set_value();
}

TEST(BackgroundTasksTest, IsWaitedForAsLongAsOneLikes) {
    std::latch gate(1);
    BackgroundTasks tasks;
    tasks.run([&]() -> TaskRunner::Continuation {
        gate.wait();
        return {};
    });
    EXPECT_FALSE(tasks.waitForDone(std::chrono::milliseconds(20)));
    EXPECT_FALSE(tasks.waitForDone(std::chrono::milliseconds(-1)));
    gate.count_down();
    EXPECT_TRUE(tasks.waitForDone(std::chrono::hours(1)));
}

TEST(BackgroundTasksTest, TheEndWaitsForWorkAndDropsWhatFollows) {
    std::atomic<int> ran = 0;
    bool followed = false;
    {
        BackgroundTasks tasks;
        for (int i = 0; i < 20; ++i) {
            tasks.run([&]() -> TaskRunner::Continuation {
                ++ran;
                return [&] { followed = true; };
            });
        }
    }
    EXPECT_EQ(ran, 20);
    QCoreApplication::processEvents();
    EXPECT_FALSE(followed);
}

} // namespace
} // namespace orvane
