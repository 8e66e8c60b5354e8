#include "OrvanePlatform/x11/X11Session.h"

#include <chrono>
#include <utility>

namespace orvane::x11 {

std::shared_ptr<X11Connection> X11Session::connection() {
    X11Connection::Attempt attempt;
    {
        const std::scoped_lock lock(m_mutex);
        takeDecidedAttempt();
        if (m_connection) {
            // Looking for events also finds out that the server has gone since the last use.
            m_connection->dropEvents();
            if (!m_connection->lost())
                return m_connection;
            m_connection.reset();
        }
        if (!m_attempt.valid())
            m_attempt = X11Connection::beginToOpen();
        attempt = m_attempt;
    }
    // Others are not locked out meanwhile: they wait for the same attempt, each for its own time.
    return X11Connection::await(attempt, X11Connection::answerLimitSeconds);
}

void X11Session::takeDecidedAttempt() {
    if (!m_attempt.valid() || m_attempt.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return;
    const X11Connection::Attempt attempt = std::exchange(m_attempt, {});
    try {
        m_connection = attempt.get();
    } catch (const PlatformError&) {
        // Who waited for it has been told; the next one tries again.
        m_connection.reset();
    }
}

} // namespace orvane::x11
