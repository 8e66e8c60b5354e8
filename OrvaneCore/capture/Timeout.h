#pragma once

#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/capture/Watchdog.h"
#include "OrvaneCore/platform/CaptureConsent.h"

#include <chrono>
#include <stop_token>
#include <type_traits>

namespace orvane {

/// How long a desktop may take to tell what there is on it.
inline constexpr double listingLimitSeconds = 5.0;

/// Runs `operation(std::stop_token)` and gives its result or exception. After `seconds` the operation is
/// asked to stop, which it must do soon; when it has, OrvaneError::permissionDenied is thrown, whatever came
/// of it: a desktop that does not answer is what a missing permission looks like. Only that the human has yet
/// to say whether the screen may be captured, or has refused it, passes unchanged at any time. Any thread;
/// the operation runs on the caller's.
template <typename Operation>
auto withThrowingTimeout(Watchdog& watchdog, double seconds, Operation operation)
    -> std::invoke_result_t<Operation, std::stop_token> {
    const Watchdog::Watch watch(watchdog, std::chrono::duration<double>(seconds));
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Operation, std::stop_token>>) {
            operation(watch.token());
            if (!watch.isLate())
                return;
        } else {
            auto result = operation(watch.token());
            if (!watch.isLate())
                return result;
        }
    } catch (const CaptureConsentMissing&) {
        throw;
    } catch (...) {
        if (!watch.isLate())
            throw;
    }
    throw OrvaneError::permissionDenied();
}

} // namespace orvane
