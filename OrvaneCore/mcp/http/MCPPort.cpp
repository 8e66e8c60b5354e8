#include "OrvaneCore/mcp/http/MCPPort.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace orvane {

std::optional<int> mcp_port::firstAvailable(int preferred, int range,
                                            const std::function<bool(int)>& isFree) {
    constexpr std::int64_t portCount = std::int64_t{std::numeric_limits<std::uint16_t>::max()} + 1;
    const std::int64_t end = std::min(std::int64_t{preferred} + range, portCount);
    for (std::int64_t port = std::max(preferred, 0); port < end; ++port) {
        if (isFree(static_cast<int>(port)))
            return static_cast<int>(port);
    }
    return std::nullopt;
}

} // namespace orvane
