#pragma once

#include <functional>
#include <optional>

namespace orvane {

/// The search for a port. Pure; any thread.
class MCPPort {
public:
    MCPPort() = delete;

    /// The first of the `range` ports from `preferred` upwards for which `isFree` holds; nothing when it
    /// holds for none of them. Numbers that are not TCP ports count as not free without being asked about.
    static std::optional<int> firstAvailable(int preferred, int range,
                                             const std::function<bool(int)>& isFree);
};

} // namespace orvane
