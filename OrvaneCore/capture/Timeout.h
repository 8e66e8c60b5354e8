#pragma once

#include "OrvaneCore/capture/OrvaneError.h"

#include <chrono>
#include <future>
#include <stop_token>
#include <thread>
#include <type_traits>
#include <utility>

namespace orvane {

/// How long a desktop may take to tell what there is on it.
inline constexpr double listingLimitSeconds = 5.0;

/// Runs `operation(std::stop_token)` on a thread of its own and gives its result or exception. After
/// `seconds` the operation is asked to stop, which it must do soon; when it has,
/// OrvaneError::permissionDenied is thrown: a desktop that does not answer is what a missing permission looks
/// like. Any thread; the caller waits.
template <typename Operation>
auto withThrowingTimeout(double seconds, Operation operation) {
    using Result = std::invoke_result_t<Operation, std::stop_token>;
    std::packaged_task<Result(std::stop_token)> task(std::move(operation));
    std::future<Result> result = task.get_future();
    std::jthread worker(std::move(task));
    if (result.wait_for(std::chrono::duration<double>(seconds)) != std::future_status::ready) {
        worker.request_stop();
        worker.join();
        throw OrvaneError::permissionDenied();
    }
    return result.get();
}

} // namespace orvane
