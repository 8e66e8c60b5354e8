#include "OrvaneCore/send/SendTargets.h"

#include <algorithm>

namespace orvane {

std::optional<SendTarget> SendTargets::step(const std::vector<SendTarget>& targets,
                                            const std::optional<SendTarget>& current, bool forward) {
    if (targets.empty())
        return std::nullopt;
    const auto found = current ? std::find(targets.begin(), targets.end(), *current) : targets.end();
    if (found == targets.end())
        return targets.front();
    const auto index = static_cast<std::size_t>(found - targets.begin());
    return targets[(index + (forward ? 1 : targets.size() - 1)) % targets.size()];
}

} // namespace orvane
