#pragma once

#include <functional>
#include <optional>

/// The search for a port. Pure; any thread.
namespace orvane::mcp_port {

/// The first of the `range` ports from `preferred` upwards for which `isFree` holds; nothing when it
/// holds for none of them. Numbers that are not TCP ports count as not free without being asked about.
std::optional<int> firstAvailable(int preferred, int range, const std::function<bool(int)>& isFree);

} // namespace orvane::mcp_port
