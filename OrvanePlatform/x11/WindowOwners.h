#pragma once

#include "OrvanePlatform/x11/X11Connection.h"

#include <QString>

#include <vector>

namespace orvane::x11 {

/// Of which application a window is: little to ask for, and enough to tell whether the rest matters.
struct WindowOwner {
    xcb_window_t client = XCB_WINDOW_NONE;
    /// 0 when neither the server nor the window tells.
    qint32 pid = 0;
    /// The two parts of WM_CLASS (ICCCM 2.0).
    QString instanceName;
    QString className;
};

/// The owners of client windows, in their order; of one that is gone, what is still known. One round trip,
/// and another one where the server does not know a process. Any thread; throws PlatformError when the
/// connection is lost.
std::vector<WindowOwner> readOwners(const X11Connection& connection,
                                    const std::vector<xcb_window_t>& clients);

/// The processes that made the windows, in their order, as the server knows them (X-Resource 1.2); 0 where it
/// does not. One request for all.
std::vector<qint32> readProcesses(const X11Connection& connection, const std::vector<xcb_window_t>& windows);

} // namespace orvane::x11
