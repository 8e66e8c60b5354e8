#include "OrvanePlatform/x11/WindowOwners.h"

#include "OrvanePlatform/x11/Properties.h"

#include <QHash>
#include <QList>

#include <optional>
#include <utility>

#include <xcb/res.h>

namespace orvane::x11 {

namespace {

/// The question which processes made some windows, and its answer.
class PendingProcesses {
public:
    PendingProcesses(const X11Connection& connection, const std::vector<xcb_window_t>& windows)
        : m_connection(connection) {
        if (!connection.extensions().resourceClientIds || windows.empty())
            return;
        // All windows of a connection are of one process, and one of them stands for all.
        QHash<uint32_t, xcb_window_t> windowOf;
        for (const xcb_window_t window : windows)
            windowOf.insert(connectionOf(window), window);
        std::vector<xcb_res_client_id_spec_t> specs;
        specs.reserve(static_cast<size_t>(windowOf.size()));
        for (const xcb_window_t window : std::as_const(windowOf))
            specs.push_back({.client = window, .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
        m_cookie =
            xcb_res_query_client_ids(connection.raw(), static_cast<uint32_t>(specs.size()), specs.data());
    }

    /// Once. 0 where the server does not know.
    std::vector<qint32> read(const std::vector<xcb_window_t>& windows) const {
        const QHash<uint32_t, qint32> processOf = readAnswer();
        std::vector<qint32> processes;
        processes.reserve(windows.size());
        for (const xcb_window_t window : windows)
            processes.push_back(processOf.value(connectionOf(window), 0));
        return processes;
    }

private:
    /// The part of a resource's number that all resources of a connection share.
    uint32_t connectionOf(uint32_t resource) const {
        return resource & ~m_connection.setup().resource_id_mask;
    }

    QHash<uint32_t, qint32> readAnswer() const {
        QHash<uint32_t, qint32> processOf;
        if (!m_cookie)
            return processOf;
        const auto reply = m_connection.reply<xcb_res_query_client_ids_reply>(*m_cookie);
        if (!reply)
            return processOf;
        for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem > 0;
             xcb_res_client_id_value_next(&it)) {
            if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
                xcb_res_client_id_value_value_length(it.data) > 0) {
                processOf.insert(connectionOf(it.data->spec.client),
                                 static_cast<qint32>(*xcb_res_client_id_value_value(it.data)));
            }
        }
        return processOf;
    }

    const X11Connection& m_connection;
    std::optional<xcb_res_query_client_ids_cookie_t> m_cookie;
};

/// Asks the windows themselves where the server did not know their process.
void readToldProcesses(const X11Connection& connection, std::vector<WindowOwner>& owners) {
    std::vector<std::pair<WindowOwner*, PendingProperty>> requests;
    for (WindowOwner& owner : owners) {
        if (owner.pid == 0) {
            requests.emplace_back(&owner,
                                  requestProperty(connection, owner.client, connection.atoms().netWmPid));
        }
    }
    for (const auto& [owner, told] : requests)
        owner->pid = static_cast<qint32>(told.number().value_or(0));
}

} // namespace

std::vector<WindowOwner> readOwners(const X11Connection& connection,
                                    const std::vector<xcb_window_t>& clients) {
    const PendingProcesses pendingProcesses(connection, clients);
    std::vector<PendingProperty> classes;
    classes.reserve(clients.size());
    for (const xcb_window_t client : clients)
        classes.push_back(requestProperty(connection, client, XCB_ATOM_WM_CLASS));

    // The server's word comes first: a window of a sandboxed program tells the number of another name space.
    const std::vector<qint32> processes = pendingProcesses.read(clients);
    std::vector<WindowOwner> owners;
    owners.reserve(clients.size());
    for (size_t i = 0; i < clients.size(); ++i) {
        const QList<QByteArray> parts = classes[i].bytes().split('\0');
        owners.push_back({.client = clients[i],
                          .pid = processes[i],
                          .instanceName = utf8OrLatin1(parts.value(0)),
                          .className = utf8OrLatin1(parts.value(1))});
    }
    readToldProcesses(connection, owners);
    return owners;
}

std::vector<qint32> readProcesses(const X11Connection& connection, const std::vector<xcb_window_t>& windows) {
    return PendingProcesses(connection, windows).read(windows);
}

} // namespace orvane::x11
