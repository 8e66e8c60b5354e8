#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace orvane::freedesktop {

/// Why the session's Secret Service cannot store a secret right now without asking the user anything, or
/// nothing when it can. Blocks, at most a few times as long as the time limit for one answer. Any thread.
std::optional<QString> secretServiceProblem(std::chrono::milliseconds timeout);

} // namespace orvane::freedesktop
