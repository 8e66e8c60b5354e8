#pragma once

#include "OrvanePlatform/x11/X11Connection.h"

#include <memory>
#include <mutex>

namespace orvane::x11 {

/// Hands the one X connection of the process to whoever works on the display, and makes a new one when the
/// old one is lost. Connecting waits for the first use. Any thread.
class X11Session {
public:
    /// Never null. Throws PlatformError when the display cannot be reached: after five seconds where the
    /// server does not answer, however many callers wait.
    std::shared_ptr<X11Connection> connection();

private:
    void takeDecidedAttempt();

    std::mutex m_mutex;
    std::shared_ptr<X11Connection> m_connection;
    /// Under way, or given up by all who waited for it and kept for those to come. Invalid where there is
    /// none.
    X11Connection::Attempt m_attempt;
};

} // namespace orvane::x11
