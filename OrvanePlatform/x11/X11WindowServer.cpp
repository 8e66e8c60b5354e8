#include "OrvanePlatform/x11/X11WindowServer.h"

#include "OrvanePlatform/x11/ActiveWindow.h"
#include "OrvanePlatform/x11/ManagedWindows.h"
#include "OrvanePlatform/x11/X11Displays.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace orvane::x11 {

namespace {

using namespace std::chrono_literals;

// How long an application may take to come to the front before the caller goes on without it.
constexpr auto activationLimit = 500ms;
constexpr auto activationPoll = 4ms;

/// The rank of each client from the front; clients the window manager did not stack come last.
QHash<xcb_window_t, qsizetype> frontRanks(const std::vector<xcb_window_t>& frontToBack) {
    QHash<xcb_window_t, qsizetype> ranks;
    for (const xcb_window_t client : frontToBack)
        ranks.insert(client, ranks.size());
    return ranks;
}

std::optional<QString> optionalText(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

/// The name a human would know the owner of a window by; nothing when there is none.
std::optional<QString> nameOf(const WindowOwner& owner, const freedesktop::ApplicationNames& names) {
    return optionalText(names.of(owner.instanceName, owner.className).value_or(owner.className));
}

/// Leaves the windows of processes that may be wanted: an application is named after one of its windows, and
/// which one that is only the rest about them tells.
void keepCandidates(std::vector<WindowOwner>& owners, const freedesktop::ApplicationNames& names,
                    const ApplicationFilter& isWanted) {
    QSet<qint32> candidates;
    for (const WindowOwner& owner : owners) {
        const auto name = nameOf(owner, names);
        if (name && isWanted(*name))
            candidates.insert(owner.pid);
    }
    std::erase_if(owners,
                  [&candidates](const WindowOwner& owner) { return !candidates.contains(owner.pid); });
}

} // namespace

WindowSnapshot X11WindowServer::snapshot(std::stop_token stop) {
    return read({}, std::move(stop));
}

WindowSnapshot X11WindowServer::snapshotOf(const ApplicationFilter& isWanted, std::stop_token stop) {
    return onlyWanted(read(isWanted, std::move(stop)), isWanted);
}

WindowSnapshot X11WindowServer::read(const ApplicationFilter& isWanted, std::stop_token stop) {
    const auto connection = m_session.connection();
    const std::stop_callback abandon(std::move(stop), [&connection] { connection->abandon(); });

    // Asked for first, so that it costs no round trip of its own.
    const PendingScreenLayout pendingLayout(*connection);
    const ClientLists lists = readClientLists(*connection);
    const ScreenLayout layout = pendingLayout.read();
    const auto names = m_entries.names();
    std::vector<WindowOwner> owners = readOwners(*connection, lists.clients);
    if (isWanted)
        keepCandidates(owners, *names, isWanted);
    std::vector<ManagedWindow> windows = readManagedWindows(*connection, owners, lists.currentDesktop);

    WindowSnapshot snapshot;
    QHash<qint32, size_t> applicationOf;
    for (const ManagedWindow& window : windows) {
        if (!window.inTaskList || window.owner.pid == 0 || applicationOf.contains(window.owner.pid))
            continue;
        applicationOf.insert(window.owner.pid, snapshot.applications.size());
        snapshot.applications.push_back(
            {.pid = window.owner.pid, .localizedName = nameOf(window.owner, *names), .windows = {}});
    }

    const auto ranks = frontRanks(lists.frontToBack);
    // A minimised window may keep its place in the stack, and still nobody sees it in front.
    const auto place = [&ranks](const ManagedWindow& window) {
        return std::pair(!window.onScreen, ranks.value(window.owner.client, ranks.size()));
    };
    std::stable_sort(windows.begin(), windows.end(),
                     [&place](const auto& a, const auto& b) { return place(a) < place(b); });
    for (const ManagedWindow& window : windows) {
        const QRectF boundsPoints = layout.toPoints(window.placement.visibleRect);
        const auto application = applicationOf.constFind(window.owner.pid);
        if (application != applicationOf.constEnd()) {
            snapshot.applications[*application].windows.push_back(
                {.handle = window.owner.client,
                 .role = window.desktopPart ? WindowRole::other : WindowRole::window,
                 .floating = window.floating,
                 .boundsPoints = boundsPoints,
                 .title = window.title});
        }
        if (window.onScreen && !window.desktopPart && window.owner.pid != 0) {
            const auto owner = application != applicationOf.constEnd()
                                   ? snapshot.applications[*application].localizedName
                                   : nameOf(window.owner, *names);
            snapshot.onScreen.push_back({.windowId = window.owner.client,
                                         .pid = window.owner.pid,
                                         .ownerName = owner,
                                         .title = optionalText(window.title),
                                         .boundsPoints = boundsPoints});
        }
    }
    return snapshot;
}

std::optional<QRectF> X11WindowServer::bounds(qint64 windowId) {
    const auto connection = m_session.connection();
    const auto placement = readPlacements(*connection, {static_cast<xcb_window_t>(windowId)}).front();
    if (!placement || !placement->viewable)
        return std::nullopt;
    return readScreenLayout(*connection).toPoints(placement->visibleRect);
}

void X11WindowServer::activate(const RunningApplication& application, const std::vector<qint64>& handles) {
    if (handles.empty())
        return;
    const auto connection = m_session.connection();
    const auto front = static_cast<xcb_window_t>(handles.front());
    const xcb_window_t activeBefore = activeWindow(*connection);
    requestDesktopOf(*connection, front);
    // The rear-most first, so that the front one ends in front.
    std::for_each(handles.rbegin(), handles.rend(), [&connection](qint64 handle) {
        const uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(connection->raw(), static_cast<xcb_window_t>(handle),
                             XCB_CONFIG_WINDOW_STACK_MODE, &above);
    });
    requestActivation(*connection, front);
    connection->sync();

    // A window manager may choose another window of the application, such as a dialog of the wanted one. One
    // that was active before says nothing.
    const auto isDone = [&application, front, activeBefore](xcb_window_t active) {
        return active == front ||
               (active != activeBefore &&
                std::any_of(application.windows.begin(), application.windows.end(),
                            [active](const ApplicationWindow& own) { return own.handle == active; }));
    };
    const auto limit = std::chrono::steady_clock::now() + activationLimit;
    while (!isDone(activeWindow(*connection)) && std::chrono::steady_clock::now() < limit)
        std::this_thread::sleep_for(activationPoll);
}

std::optional<QString> X11WindowServer::unavailableReason() {
    try {
        const auto connection = m_session.connection();
        if (!hasWindowManager(*connection)) {
            return QStringLiteral("No window manager runs on the display \"%1\", so its windows cannot be "
                                  "told apart. Start one that follows EWMH.")
                .arg(qEnvironmentVariable("DISPLAY"));
        }
        return std::nullopt;
    } catch (const PlatformError& error) {
        return error.message();
    }
}

} // namespace orvane::x11
