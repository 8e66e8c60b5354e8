#pragma once

#include "OrvanePlatform/x11/X11Connection.h"

#include <memory>
#include <mutex>

namespace orvane::x11 {

/// Hands the one X connection of the process to whoever works on the display, and makes a new one when the
/// old one is lost. Connecting waits for the first use. Any thread.
class X11Session {
public:
    /// Never null. Throws PlatformError when the display cannot be reached.
    std::shared_ptr<X11Connection> connection();

private:
    std::mutex m_mutex;
    std::shared_ptr<X11Connection> m_connection;
};

} // namespace orvane::x11
