#include "OrvanePlatform/x11/ManagedWindows.h"

#include "OrvanePlatform/x11/ActiveWindow.h"
#include "OrvanePlatform/x11/Properties.h"

#include <algorithm>
#include <utility>

namespace orvane::x11 {

namespace {

// WM_STATE values of ICCCM 2.0, section 4.1.3.1.
constexpr uint32_t iconicState = 3;

bool contains(const std::vector<uint32_t>& atoms, xcb_atom_t atom) {
    return std::find(atoms.begin(), atoms.end(), atom) != atoms.end();
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
    PendingProperty netWmName;
    PendingProperty wmName;
    PendingProperty windowType;
    StateRequests state;
};

WindowRequests requestWindow(const X11Connection& connection, xcb_window_t client) {
    const Atoms& atoms = connection.atoms();
    const auto property = [&](xcb_atom_t atom) { return requestProperty(connection, client, atom); };
    return {property(atoms.netWmName), property(XCB_ATOM_WM_NAME), property(atoms.netWmWindowType),
            requestState(connection, client)};
}

ManagedWindow readWindow(const X11Connection& connection, const WindowOwner& owner,
                         const WindowRequests& requests, const WindowPlacement& placement,
                         uint32_t currentDesktop) {
    const Atoms& atoms = connection.atoms();
    ManagedWindow window;
    window.owner = owner;
    window.placement = placement;

    const QString netTitle = requests.netWmName.text();
    const QString oldTitle = requests.wmName.text();
    window.title = netTitle.isEmpty() ? oldTitle : netTitle;

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

ClientLists readClientLists(const X11Connection& connection) {
    const Atoms& atoms = connection.atoms();
    const auto property = [&](xcb_atom_t atom) {
        return requestProperty(connection, connection.root(), atom);
    };
    const auto clientList = property(atoms.netClientList);
    const auto stacking = property(atoms.netClientListStacking);
    const auto currentDesktop = property(atoms.netCurrentDesktop);
    ClientLists lists;
    lists.clients = clientList.numbers();
    lists.frontToBack = stacking.numbers();
    std::reverse(lists.frontToBack.begin(), lists.frontToBack.end());
    lists.currentDesktop = currentDesktop.number().value_or(0);
    return lists;
}

std::vector<ManagedWindow> readManagedWindows(const X11Connection& connection,
                                              const std::vector<WindowOwner>& owners,
                                              uint32_t currentDesktop) {
    std::vector<xcb_window_t> clients;
    clients.reserve(owners.size());
    for (const WindowOwner& owner : owners)
        clients.push_back(owner.client);

    // First, and not while hundreds of other answers wait: xcb looks for an answer from the oldest one on.
    const auto placements = readPlacements(connection, clients);
    std::vector<WindowRequests> requests;
    requests.reserve(clients.size());
    for (const xcb_window_t client : clients)
        requests.push_back(requestWindow(connection, client));

    std::vector<ManagedWindow> windows;
    windows.reserve(owners.size());
    for (size_t i = 0; i < owners.size(); ++i) {
        // The answers are fetched for a window that is gone, too: what is asked for must be taken.
        ManagedWindow window = readWindow(connection, owners[i], requests[i],
                                          placements[i].value_or(WindowPlacement()), currentDesktop);
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

} // namespace orvane::x11
