#include "OrvanePlatform/x11/ManagedWindows.h"

#include "OrvanePlatform/x11/ActiveWindow.h"
#include "OrvanePlatform/x11/Properties.h"

#include <QList>

#include <algorithm>

#include <xcb/res.h>

namespace orvane::x11 {

namespace {

// WM_STATE values of ICCCM 2.0, section 4.1.3.1.
constexpr uint32_t iconicState = 3;

bool contains(const std::vector<uint32_t>& atoms, xcb_atom_t atom) {
    return std::find(atoms.begin(), atoms.end(), atom) != atoms.end();
}

std::optional<xcb_res_query_client_ids_cookie_t> requestProcess(const X11Connection& connection,
                                                                xcb_window_t window) {
    if (!connection.extensions().resourceClientIds)
        return std::nullopt;
    const xcb_res_client_id_spec_t spec{.client = window, .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return xcb_res_query_client_ids(connection.raw(), 1, &spec);
}

qint32 readProcess(const X11Connection& connection,
                   const std::optional<xcb_res_query_client_ids_cookie_t>& cookie) {
    if (!cookie)
        return 0;
    const auto reply = connection.reply<xcb_res_query_client_ids_reply>(*cookie);
    if (!reply)
        return 0;
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem > 0;
         xcb_res_client_id_value_next(&it)) {
        if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
            xcb_res_client_id_value_value_length(it.data) > 0)
            return static_cast<qint32>(*xcb_res_client_id_value_value(it.data));
    }
    return 0;
}

struct StateRequests {
    PendingProperty netWmState;
    PendingProperty wmState;
    PendingProperty desktop;
};

StateRequests requestState(const X11Connection& connection, xcb_window_t client) {
    const Atoms& atoms = connection.atoms();
    return {requestProperty(connection, client, atoms.netWmState),
            requestProperty(connection, client, atoms.wmState),
            requestProperty(connection, client, atoms.netWmDesktop)};
}

/// What the window manager says of a window.
struct WindowState {
    std::vector<uint32_t> states;
    bool iconic;
    uint32_t desktop;
};

WindowState readState(const StateRequests& requests) {
    return {.states = requests.netWmState.numbers(),
            .iconic = requests.wmState.number() == iconicState,
            .desktop = requests.desktop.number().value_or(allDesktops)};
}

bool isOnScreen(const X11Connection& connection, const WindowState& state, const WindowPlacement& placement,
                uint32_t currentDesktop) {
    return placement.viewable && !state.iconic &&
           !contains(state.states, connection.atoms().netWmStateHidden) &&
           (state.desktop == allDesktops || state.desktop == currentDesktop);
}

struct WindowRequests {
    std::optional<xcb_res_query_client_ids_cookie_t> process;
    PendingProperty netWmPid;
    PendingProperty netWmName;
    PendingProperty wmName;
    PendingProperty wmClass;
    PendingProperty windowType;
    StateRequests state;
};

WindowRequests requestWindow(const X11Connection& connection, xcb_window_t client) {
    const Atoms& atoms = connection.atoms();
    const auto property = [&](xcb_atom_t atom) { return requestProperty(connection, client, atom); };
    return {requestProcess(connection, client), property(atoms.netWmPid),    property(atoms.netWmName),
            property(XCB_ATOM_WM_NAME),         property(XCB_ATOM_WM_CLASS), property(atoms.netWmWindowType),
            requestState(connection, client)};
}

ManagedWindow readWindow(const X11Connection& connection, xcb_window_t client, const WindowRequests& requests,
                         const WindowPlacement& placement, uint32_t currentDesktop) {
    const Atoms& atoms = connection.atoms();
    ManagedWindow window;
    window.client = client;
    window.placement = placement;

    // The server's word comes first: a window of a sandboxed program tells the number of another name space.
    window.pid = readProcess(connection, requests.process);
    const auto toldPid = requests.netWmPid.number();
    if (window.pid == 0)
        window.pid = static_cast<qint32>(toldPid.value_or(0));

    const QString netTitle = requests.netWmName.text();
    const QString oldTitle = requests.wmName.text();
    window.title = netTitle.isEmpty() ? oldTitle : netTitle;

    const QList<QByteArray> classParts = requests.wmClass.bytes().split('\0');
    window.instanceName = utf8OrLatin1(classParts.value(0));
    window.className = utf8OrLatin1(classParts.value(1));

    const std::vector<uint32_t> types = requests.windowType.numbers();
    const WindowState state = readState(requests.state);
    // The types come in order of preference; the first one says what the window is.
    const xcb_atom_t type = types.empty() ? xcb_atom_t(XCB_ATOM_NONE) : types.front();
    const bool skipsTaskList = contains(state.states, atoms.netWmStateSkipTaskbar);
    window.desktopPart =
        type != XCB_ATOM_NONE && (type == atoms.netWmWindowTypeDesktop || type == atoms.netWmWindowTypeDock);
    window.floating = type != XCB_ATOM_NONE &&
                      (type == atoms.netWmWindowTypeUtility || type == atoms.netWmWindowTypeToolbar ||
                       type == atoms.netWmWindowTypeSplash);
    window.floating = window.floating || (skipsTaskList && contains(state.states, atoms.netWmStateAbove));
    window.inTaskList = !window.desktopPart && !skipsTaskList;

    window.onScreen = isOnScreen(connection, state, placement, currentDesktop);
    return window;
}

} // namespace

std::vector<ManagedWindow> readManagedWindows(const X11Connection& connection) {
    const Atoms& atoms = connection.atoms();
    const auto clientList = requestProperty(connection, connection.root(), atoms.netClientList);
    const auto currentDesktop = requestProperty(connection, connection.root(), atoms.netCurrentDesktop);
    const std::vector<xcb_window_t> clients = clientList.numbers();
    const uint32_t desktop = currentDesktop.number().value_or(0);

    // First, and not while hundreds of other answers wait: xcb looks for an answer from the oldest one on.
    const auto placements = readPlacements(connection, clients);
    std::vector<WindowRequests> requests;
    requests.reserve(clients.size());
    for (const xcb_window_t client : clients)
        requests.push_back(requestWindow(connection, client));

    std::vector<ManagedWindow> windows;
    windows.reserve(clients.size());
    for (size_t i = 0; i < clients.size(); ++i) {
        // The answers are fetched for a window that is gone, too: what is asked for must be taken.
        ManagedWindow window = readWindow(connection, clients[i], requests[i],
                                          placements[i].value_or(WindowPlacement()), desktop);
        if (placements[i])
            windows.push_back(std::move(window));
    }
    return windows;
}

std::vector<std::optional<WindowPlacement>> readOnScreen(const X11Connection& connection,
                                                         const std::vector<xcb_window_t>& clients) {
    const Atoms& atoms = connection.atoms();
    const auto clientList = requestProperty(connection, connection.root(), atoms.netClientList);
    const auto currentDesktop = requestProperty(connection, connection.root(), atoms.netCurrentDesktop);
    std::vector<StateRequests> requests;
    requests.reserve(clients.size());
    for (const xcb_window_t client : clients)
        requests.push_back(requestState(connection, client));
    auto placements = readPlacements(connection, clients);

    const std::vector<xcb_window_t> managed = clientList.numbers();
    const uint32_t desktop = currentDesktop.number().value_or(0);
    for (size_t i = 0; i < clients.size(); ++i) {
        const WindowState state = readState(requests[i]);
        if (placements[i] &&
            (!contains(managed, clients[i]) || !isOnScreen(connection, state, *placements[i], desktop)))
            placements[i].reset();
    }
    return placements;
}

std::vector<xcb_window_t> readStackingOrder(const X11Connection& connection) {
    std::vector<xcb_window_t> order =
        requestProperty(connection, connection.root(), connection.atoms().netClientListStacking).numbers();
    std::reverse(order.begin(), order.end());
    return order;
}

std::vector<qint32> readProcesses(const X11Connection& connection, const std::vector<xcb_window_t>& windows) {
    std::vector<std::optional<xcb_res_query_client_ids_cookie_t>> cookies;
    cookies.reserve(windows.size());
    for (const xcb_window_t window : windows)
        cookies.push_back(requestProcess(connection, window));
    std::vector<qint32> processes;
    processes.reserve(windows.size());
    for (const auto& cookie : cookies)
        processes.push_back(readProcess(connection, cookie));
    return processes;
}

} // namespace orvane::x11
