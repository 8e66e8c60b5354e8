#pragma once

#include <functional>

namespace orvane::posix {

/// Makes the calling thread, and those that it starts from now on, give way to all others, for the processor
/// and for the disk. Where that cannot be had, it goes on as before.
void giveWay();

/// Runs `work` on a thread that gives way, and waits for its end. Throws what `work` throws.
void runGivingWay(const std::function<void()>& work);

} // namespace orvane::posix
