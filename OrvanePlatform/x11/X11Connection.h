#pragma once

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/x11/Atoms.h"

#include <QHash>
#include <QString>

#include <cstdlib>
#include <future>
#include <memory>
#include <mutex>
#include <type_traits>

#include <xcb/xcb.h>

namespace orvane::x11 {

struct FreeDeleter {
    void operator()(void* pointer) const { std::free(pointer); }
};

/// Owns a reply (or error) that xcb allocated.
template <typename T>
using Owned = std::unique_ptr<T, FreeDeleter>;

/// Which of the extensions this program can use are there.
struct Extensions {
    bool composite = false;
    bool damage = false;
    bool randrMonitors = false;
    bool resourceClientIds = false;
    bool sharedMemory = false;
    bool xfixes = false;
};

/// One connection to an X server. Any thread: xcb serialises requests, and each reply goes to the thread that
/// asked for it. No events are selected on it.
class X11Connection {
public:
    /// A connection in the making, which any number of threads may wait for.
    using Attempt = std::shared_future<std::shared_ptr<X11Connection>>;
    static constexpr double answerLimitSeconds = 5.0;

    /// Connects to the server that DISPLAY names. Throws PlatformError with a sentence naming the display
    /// when it does not answer within `timeoutSeconds`.
    static std::shared_ptr<X11Connection> open(double timeoutSeconds = answerLimitSeconds);

    /// The same in two steps. The attempt has a thread of its own, since a server that hangs holds up whoever
    /// connects for as long as it hangs: so who gave up waiting keeps the attempt, and does not begin
    /// another.
    static Attempt beginToOpen();
    static std::shared_ptr<X11Connection> await(const Attempt& attempt, double timeoutSeconds);

    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* raw() const { return m_connection; }
    const xcb_setup_t& setup() const { return *xcb_get_setup(m_connection); }
    const xcb_screen_t& screen() const { return *m_screen; }
    int screenNumber() const { return m_screenNumber; }
    xcb_window_t root() const { return m_screen->root; }
    const Atoms& atoms() const { return m_atoms; }
    const Extensions& extensions() const { return m_extensions; }

    /// The name of an atom; the server is asked once. Empty when there is no such atom.
    QString atomName(xcb_atom_t atom) const;

    /// True once the server is gone, xcb has given up or `abandon` was called; the connection is of no use
    /// from then on, and whoever waits for a reply on it gets an error.
    bool lost() const;

    /// Ends the connection under all threads that wait for a reply on it: they get an error at once.
    void abandon() const;

    /// Lets the server write to the memory of that descriptor, which is closed, as the segment `id` (MIT-SHM
    /// 1.2). False when the server refuses. Throws PlatformError when the connection is lost.
    bool attachSharedMemory(uint32_t id, int descriptor) const;

    /// Waits for the reply to a request, for example `reply<xcb_get_geometry_reply>(cookie)`.
    /// Null when the server refused this request (the window is gone, say); throws PlatformError when the
    /// connection is lost.
    template <auto ReplyFunction, typename Cookie>
    auto reply(Cookie cookie) const {
        using Result = std::remove_pointer_t<
            std::invoke_result_t<decltype(ReplyFunction), xcb_connection_t*, Cookie, xcb_generic_error_t**>>;
        xcb_generic_error_t* error = nullptr;
        Owned<Result> result;
        {
            const std::scoped_lock lock(m_waitMutex);
            result.reset(ReplyFunction(m_connection, cookie, &error));
        }
        Owned<xcb_generic_error_t> ownedError(error);
        if (!result)
            throwIfLost();
        return result;
    }

    /// Waits until the server has dealt with everything sent so far. Throws PlatformError when the connection
    /// is lost.
    void sync() const;

    /// Frees what the server sent unasked: errors of requests without a reply. Nobody waits for those.
    void dropEvents() const;

    void throwIfLost() const;

private:
    X11Connection(xcb_connection_t* connection, int screenNumber);
    static std::shared_ptr<X11Connection> connect();
    void queryExtensions();

    xcb_connection_t* m_connection;
    int m_screenNumber;
    xcb_screen_t* m_screen = nullptr;
    Atoms m_atoms;
    Extensions m_extensions;
    /// One thread at a time waits inside xcb, the others for it. When a connection is lost, xcb takes those
    /// that wait off a list, and never ends where the one that was reading is not the first on it. Little is
    /// lost: answers come in the order of the questions, whoever asked.
    mutable std::mutex m_waitMutex;
    mutable std::mutex m_atomNamesMutex;
    mutable QHash<xcb_atom_t, QString> m_atomNames;
};

} // namespace orvane::x11
