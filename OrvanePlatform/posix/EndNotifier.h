#pragma once

#include "OrvanePlatform/posix/EndSignals.h"

#include <functional>
#include <memory>

class QSocketNotifier;

namespace orvane::posix {

/// Calls on the main thread, whose event loop must run, when a signal asks the process to end. The next such
/// signal ends it without more ado.
class EndNotifier {
public:
    explicit EndNotifier(std::function<void()> handler);
    ~EndNotifier();
    EndNotifier(const EndNotifier&) = delete;
    EndNotifier& operator=(const EndNotifier&) = delete;

private:
    EndSignals m_signals;
    /// Null where signals could not be taken.
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace orvane::posix
