#pragma once

#include <functional>

namespace orvane::media {

/// Makes the calling thread, and those that it starts from now on, give way to all that has something to do:
/// an encoder can wait for its turn, while the look at the screen and the windows that it looks at cannot.
void giveWay();

/// Runs `work` on a thread that gives way, and waits for its end. Throws what `work` throws.
void runGivingWay(const std::function<void()>& work);

} // namespace orvane::media
