#pragma once

#include "OrvaneCore/send/SendTarget.h"

#include <optional>
#include <utility>
#include <vector>

namespace orvane {

/// The applications that marks can be sent to and that run now. Main thread.
class SendTargets {
public:
    explicit SendTargets(std::vector<SendTarget> running = {})
        : m_running(std::move(running)) {}

    /// The order is that of the list of applications that are allowed.
    const std::vector<SendTarget>& runningAllowed() const { return m_running; }

    /// The one the user means most likely first.
    const std::vector<SendTarget>& runningTargetsOrdered() const { return m_running; }

    /// The one after or before `current`, around the end of the list. The first when there is no current one
    /// or it is not in the list; nothing when the list is empty. Pure.
    static std::optional<SendTarget> step(const std::vector<SendTarget>& targets,
                                          const std::optional<SendTarget>& current, bool forward);

private:
    std::vector<SendTarget> m_running;
};

} // namespace orvane
