#include "OrvanePlatform/x11/X11Session.h"

namespace orvane::x11 {

std::shared_ptr<X11Connection> X11Session::connection() {
    const std::scoped_lock lock(m_mutex);
    if (m_connection) {
        // Looking for events also finds out that the server has gone since the last use.
        m_connection->dropEvents();
        if (m_connection->lost())
            m_connection.reset();
    }
    if (!m_connection)
        m_connection = X11Connection::open();
    return m_connection;
}

} // namespace orvane::x11
