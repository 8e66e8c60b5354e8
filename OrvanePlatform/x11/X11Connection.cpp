#include "OrvanePlatform/x11/X11Connection.h"

#include <chrono>
#include <exception>
#include <thread>
#include <utility>

#include <sys/socket.h>

#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/res.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

namespace orvane::x11 {

namespace {

QString displayName() {
    return qEnvironmentVariable("DISPLAY");
}

/// Whether a socket ends on this machine and can pass descriptors.
bool isLocal(int descriptor) {
    sockaddr_storage address{};
    socklen_t length = sizeof(address);
    return ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) == 0 &&
           address.ss_family == AF_UNIX;
}

} // namespace

std::shared_ptr<X11Connection> X11Connection::connect() {
    if (displayName().isEmpty())
        throw PlatformError(QStringLiteral("There is no display: DISPLAY is not set."));
    int screenNumber = 0;
    xcb_connection_t* raw = xcb_connect(nullptr, &screenNumber);
    std::shared_ptr<X11Connection> connection(new X11Connection(raw, screenNumber));
    if (connection->m_screen == nullptr) {
        throw PlatformError(
            QStringLiteral("Cannot open the display \"%1\". Check that DISPLAY names a running X server "
                           "that lets this user in.")
                .arg(displayName()));
    }
    connection->m_atoms = Atoms::intern(raw, screenNumber);
    connection->queryExtensions();
    connection->throwIfLost();
    return connection;
}

X11Connection::Attempt X11Connection::beginToOpen() {
    std::promise<std::shared_ptr<X11Connection>> promise;
    Attempt attempt = promise.get_future().share();
    // A connection that nobody waits for any more ends with the attempt.
    std::thread([promise = std::move(promise)]() mutable {
        try {
            promise.set_value(connect());
        } catch (...) {
            promise.set_exception(std::current_exception());
        }
    }).detach();
    return attempt;
}

std::shared_ptr<X11Connection> X11Connection::await(const Attempt& attempt, double timeoutSeconds) {
    if (attempt.wait_for(std::chrono::duration<double>(timeoutSeconds)) == std::future_status::ready)
        return attempt.get();
    throw PlatformError(QStringLiteral("The display \"%1\" does not answer. Check that its X server runs.")
                            .arg(displayName()));
}

std::shared_ptr<X11Connection> X11Connection::open(double timeoutSeconds) {
    return await(beginToOpen(), timeoutSeconds);
}

X11Connection::X11Connection(xcb_connection_t* connection, int screenNumber)
    : m_connection(connection)
    , m_screenNumber(screenNumber) {
    if (xcb_connection_has_error(connection) != 0)
        return;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i)
        xcb_screen_next(&screens);
    m_screen = screens.data;
}

X11Connection::~X11Connection() {
    xcb_disconnect(m_connection);
}

void X11Connection::queryExtensions() {
    for (xcb_extension_t* extension :
         {&xcb_composite_id, &xcb_damage_id, &xcb_randr_id, &xcb_res_id, &xcb_shm_id, &xcb_xfixes_id})
        xcb_prefetch_extension_data(m_connection, extension);
    const auto present = [this](xcb_extension_t* extension) {
        const xcb_query_extension_reply_t* data = xcb_get_extension_data(m_connection, extension);
        return data != nullptr && data->present != 0;
    };

    // The versions asked for are the ones whose requests this program sends: named window pixmaps came with
    // Composite 0.2, monitors with RandR 1.5, client pids with X-Resource 1.2, file descriptors with
    // MIT-SHM 1.2.
    if (present(&xcb_composite_id)) {
        const auto version =
            reply<xcb_composite_query_version_reply>(xcb_composite_query_version(m_connection, 0, 4));
        m_extensions.composite = version && (version->major_version > 0 || version->minor_version >= 2);
    }
    if (present(&xcb_xfixes_id)) {
        m_extensions.xfixes =
            reply<xcb_xfixes_query_version_reply>(xcb_xfixes_query_version(m_connection, 5, 0)) != nullptr;
    }
    if (present(&xcb_damage_id)) {
        m_extensions.damage =
            reply<xcb_damage_query_version_reply>(xcb_damage_query_version(m_connection, 1, 1)) != nullptr;
    }
    if (present(&xcb_randr_id)) {
        const auto version =
            reply<xcb_randr_query_version_reply>(xcb_randr_query_version(m_connection, 1, 5));
        m_extensions.randrMonitors = version && (version->major_version > 1 || version->minor_version >= 5);
    }
    if (present(&xcb_res_id)) {
        const auto version = reply<xcb_res_query_version_reply>(xcb_res_query_version(m_connection, 1, 2));
        m_extensions.resourceClientIds = version && (version->server_major > 1 || version->server_minor >= 2);
    }
    if (present(&xcb_shm_id)) {
        const auto version = reply<xcb_shm_query_version_reply>(xcb_shm_query_version(m_connection));
        // A server on another machine has the extension, too, and no way to share memory.
        m_extensions.sharedMemory = version && isLocal(xcb_get_file_descriptor(m_connection)) &&
                                    (version->major_version > 1 || version->minor_version >= 2);
    }
}

QString X11Connection::atomName(xcb_atom_t atom) const {
    {
        const std::scoped_lock lock(m_atomNamesMutex);
        const auto known = m_atomNames.constFind(atom);
        if (known != m_atomNames.constEnd())
            return *known;
    }
    const auto answer = reply<xcb_get_atom_name_reply>(xcb_get_atom_name(m_connection, atom));
    if (!answer)
        return {};
    QString name =
        QString::fromUtf8(xcb_get_atom_name_name(answer.get()), xcb_get_atom_name_name_length(answer.get()));
    const std::scoped_lock lock(m_atomNamesMutex);
    m_atomNames.insert(atom, name);
    return name;
}

bool X11Connection::lost() const {
    if (xcb_connection_has_error(m_connection) == 0)
        return false;
    // What made xcb give up may have left the socket open, and others waiting for answers on it.
    abandon();
    return true;
}

void X11Connection::abandon() const {
    ::shutdown(xcb_get_file_descriptor(m_connection), SHUT_RDWR);
}

bool X11Connection::attachSharedMemory(uint32_t id, int descriptor) const {
    // The memory is ours and its descriptor goes with the request. Memory of the server's comes with a reply,
    // and xcb loses descriptors that arrive before their reply or behind a long one: that reply never comes,
    // or the connection is given up, and numbers are closed that belong to others by then.
    Owned<xcb_generic_error_t> error;
    {
        // With the lock descriptors go one at a time, too: xcb keeps no more than a few.
        const std::scoped_lock lock(m_waitMutex);
        const auto cookie = xcb_shm_attach_fd_checked(m_connection, id, descriptor, 0);
        error.reset(xcb_request_check(m_connection, cookie));
    }
    throwIfLost();
    return error == nullptr;
}

void X11Connection::sync() const {
    reply<xcb_get_input_focus_reply>(xcb_get_input_focus(m_connection));
}

void X11Connection::dropEvents() const {
    while (Owned<xcb_generic_event_t>(xcb_poll_for_event(m_connection))) {
    }
}

void X11Connection::throwIfLost() const {
    if (lost()) {
        throw PlatformError(
            QStringLiteral(
                "The connection to the display \"%1\" was lost. Try again when the desktop is back.")
                .arg(displayName()));
    }
}

} // namespace orvane::x11
