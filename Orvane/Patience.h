#pragma once

#include <chrono>

/// How long a process that was asked to end waits for what is going on in it.
namespace orvane::patience {

/// For tools, so that the process has ended after two seconds whatever they do.
constexpr std::chrono::milliseconds tools{1500};
/// For what would be lost otherwise, a recording or a submission: far longer than either takes where nothing
/// hangs.
constexpr std::chrono::milliseconds saving{10'000};

} // namespace orvane::patience
