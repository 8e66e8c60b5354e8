#include "OrvaneCore/capture/Watchdog.h"

#include <gtest/gtest.h>

#include <QDir>

#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>

namespace orvane {

namespace {

using namespace std::chrono_literals;

void awaitStop(const std::stop_token& stop) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any never;
    never.wait(lock, stop, [] { return false; });
}

qsizetype threadsOfThisProcess() {
    return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

} // namespace

TEST(Watchdog, LeavesACallInTimeAlone) {
    Watchdog watchdog;
    const Watchdog::Watch watch(watchdog, 60s);
    EXPECT_FALSE(watch.isLate());
    EXPECT_FALSE(watch.token().stop_requested());
}

TEST(Watchdog, StopsALateCall) {
    Watchdog watchdog;
    const auto began = std::chrono::steady_clock::now();
    const Watchdog::Watch watch(watchdog, 50ms);
    awaitStop(watch.token());
    EXPECT_TRUE(watch.isLate());
    EXPECT_GE(std::chrono::steady_clock::now() - began, 50ms);
}

TEST(Watchdog, StopsTheShorterOfTwoFirstHoweverTheyCame) {
    Watchdog watchdog;
    const Watchdog::Watch longer(watchdog, 60s);
    {
        const Watchdog::Watch shorter(watchdog, 20ms);
        awaitStop(shorter.token());
        EXPECT_FALSE(longer.isLate());
    }
    const Watchdog::Watch next(watchdog, 20ms);
    awaitStop(next.token());
    EXPECT_FALSE(longer.isLate());
}

TEST(Watchdog, StopsACallThatFollowsManyThatWereInTime) {
    Watchdog watchdog;
    for (int i = 0; i < 1000; ++i)
        const Watchdog::Watch watch(watchdog, 30ms);
    const Watchdog::Watch late(watchdog, 60ms);
    awaitStop(late.token());
    const Watchdog::Watch lateAgain(watchdog, 1ms);
    awaitStop(lateAgain.token());
}

TEST(Watchdog, StopsCallsThatRunSideBySide) {
    Watchdog watchdog;
    std::vector<std::future<bool>> calls;
    calls.reserve(8);
    for (int i = 0; i < 8; ++i) {
        calls.push_back(std::async(std::launch::async, [&watchdog, i] {
            const Watchdog::Watch watch(watchdog, std::chrono::milliseconds(10 + 5 * i));
            awaitStop(watch.token());
            return watch.isLate();
        }));
    }
    for (auto& call : calls)
        EXPECT_TRUE(call.get());
}

TEST(Watchdog, HoldsUpNobodyWhileAStopTakesLong) {
    Watchdog watchdog;
    std::promise<void> stopping;
    std::promise<void> goOn;
    {
        const Watchdog::Watch slow(watchdog, 10ms);
        const std::stop_callback callback(slow.token(), [&] {
            stopping.set_value();
            goOn.get_future().wait();
        });
        stopping.get_future().wait();
        // Others begin and end meanwhile.
        for (int i = 0; i < 10; ++i)
            const Watchdog::Watch other(watchdog, 60s);
        goOn.set_value();
    }
    const Watchdog::Watch next(watchdog, 10ms);
    awaitStop(next.token());
}

TEST(Watchdog, HasOneThreadForAllCallsAndNoneBefore) {
    const qsizetype before = threadsOfThisProcess();
    Watchdog watchdog;
    EXPECT_EQ(threadsOfThisProcess(), before);
    for (int i = 0; i < 20; ++i) {
        const Watchdog::Watch late(watchdog, 1ms);
        awaitStop(late.token());
        const Watchdog::Watch early(watchdog, 60s);
    }
    EXPECT_EQ(threadsOfThisProcess(), before + 1);
}

} // namespace orvane
