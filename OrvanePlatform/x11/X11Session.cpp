#include "OrvanePlatform/x11/X11Session.h"

namespace orvane::x11 {

std::shared_ptr<X11Connection> X11Session::connection() {
    const std::scoped_lock lock(m_mutex);
    if (m_connection && m_connection->lost())
        m_connection.reset();
    if (!m_connection)
        m_connection = X11Connection::open();
    m_connection->dropEvents();
    return m_connection;
}

} // namespace orvane::x11
