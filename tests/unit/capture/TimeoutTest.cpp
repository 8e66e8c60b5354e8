#include "OrvaneCore/capture/Timeout.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stdexcept>

namespace orvane {

namespace {

void waitUntilStopped(const std::stop_token& stop) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any never;
    never.wait(lock, stop, [] { return false; });
}

} // namespace

TEST(Timeout, GivesTheResult) {
    Watchdog watchdog;
    EXPECT_EQ(withThrowingTimeout(watchdog, 5.0, [](const std::stop_token&) { return 7; }), 7);
}

TEST(Timeout, PassesAnErrorOnUnchanged) {
    Watchdog watchdog;
    EXPECT_THROW(withThrowingTimeout(watchdog, 5.0,
                                     [](const std::stop_token&) -> int { throw std::out_of_range("far"); }),
                 std::out_of_range);
}

TEST(Timeout, ReportsAMissingPermissionAndCancels) {
    Watchdog watchdog;
    bool cancelled = false;
    const auto operation = [&cancelled](const std::stop_token& stop) {
        waitUntilStopped(stop);
        cancelled = stop.stop_requested();
    };
    const auto started = std::chrono::steady_clock::now();
    std::optional<OrvaneError::Case> thrown;
    try {
        withThrowingTimeout(watchdog, 0.05, operation);
    } catch (const OrvaneError& error) {
        thrown = error.errorCase();
    }
    EXPECT_GE(std::chrono::steady_clock::now() - started, std::chrono::milliseconds(50));
    EXPECT_EQ(thrown, OrvaneError::Case::permissionDenied);
    EXPECT_TRUE(cancelled);
}

TEST(Timeout, AnAnswerAfterTheTimeoutIsStillAMissingPermission) {
    Watchdog watchdog;
    EXPECT_THROW(withThrowingTimeout(watchdog, 0.02,
                                     [](const std::stop_token& stop) {
                                         waitUntilStopped(stop);
                                         return 7;
                                     }),
                 OrvaneError);
}

TEST(Timeout, AnErrorAfterTheTimeoutIsStillAMissingPermission) {
    Watchdog watchdog;
    EXPECT_THROW(withThrowingTimeout(watchdog, 0.02,
                                     [](const std::stop_token& stop) -> int {
                                         waitUntilStopped(stop);
                                         throw std::runtime_error("stopped");
                                     }),
                 OrvaneError);
}

TEST(Timeout, PassesOnThatTheHumanHasNotAllowedIt) {
    Watchdog watchdog;
    const auto awaitAnswer = [](const std::stop_token& stop) -> int {
        waitUntilStopped(stop);
        throw CaptureAwaitsHuman();
    };
    EXPECT_THROW(withThrowingTimeout(watchdog, 0.02, awaitAnswer), CaptureAwaitsHuman);
    const auto refuse = [](const std::stop_token& stop) -> int {
        waitUntilStopped(stop);
        throw CaptureRefused();
    };
    EXPECT_THROW(withThrowingTimeout(watchdog, 0.02, refuse), CaptureRefused);
}

} // namespace orvane
