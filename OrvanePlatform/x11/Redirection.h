#pragma once

#include "OrvanePlatform/x11/X11Connection.h"

#include <memory>
#include <mutex>

namespace orvane::x11 {

/// Sees to it that every top-level window has pixels of its own, so that a covered one can be read whole.
/// A compositor does that already. Where none runs, the windows are redirected on behalf of this connection,
/// for as long as it lives; the screen looks the same. Any thread.
class Redirection {
public:
    explicit Redirection(std::shared_ptr<X11Connection> connection)
        : m_connection(std::move(connection)) {}

    /// True when a compositor runs now.
    bool composited() const;

    /// After this the window's pixmap can be named and holds what the window shows. The first call without a
    /// compositor waits until the window has drawn the parts that were covered: at most half a second. Gives
    /// whether a compositor runs, as `composited` does.
    /// Throws PlatformError when the server cannot redirect windows or the connection is lost.
    bool prepare(xcb_window_t topLevel);

    /// The same for a window that the compositor has set free, as some do with full-screen windows: this one
    /// is redirected on behalf of this connection.
    void prepareFreed(xcb_window_t topLevel);

private:
    template <typename Redirect>
    void redirectAndAwaitRepaint(xcb_window_t topLevel, Redirect redirect);

    std::shared_ptr<X11Connection> m_connection;
    std::mutex m_mutex;
    bool m_redirected = false;
};

} // namespace orvane::x11
