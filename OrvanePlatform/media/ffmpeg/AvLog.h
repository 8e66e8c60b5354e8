#pragma once

namespace orvane::media {

/// From now on FFmpeg's errors go to the log, the same message at most once a minute, and the rest of what
/// it would say goes nowhere. For the whole process; any thread; more than once is as good as once.
void logAvErrors();

} // namespace orvane::media
