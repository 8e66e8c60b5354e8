#pragma once

#include "OrvaneCore/platform/WindowServer.h"
#include "OrvanePlatform/freedesktop/DesktopEntries.h"
#include "OrvanePlatform/x11/X11Session.h"

namespace orvane::x11 {

/// Windows through EWMH: an application is the process behind managed windows that show in the task list.
/// It is named after its desktop entry, else after its WM_CLASS.
class X11WindowServer final : public WindowServer {
public:
    X11WindowServer(X11Session& session, freedesktop::DesktopEntries& entries)
        : m_session(session)
        , m_entries(entries) {}

    WindowSnapshot snapshot(std::stop_token stop) override;
    WindowSnapshot snapshotOf(const ApplicationFilter& isWanted, std::stop_token stop) override;
    std::optional<QRectF> bounds(qint64 windowId) override;
    void activate(const RunningApplication& application, const std::vector<qint64>& handles) override;
    std::optional<QString> unavailableReason() override;

private:
    /// Everything where no filter is given.
    WindowSnapshot read(const ApplicationFilter& isWanted, std::stop_token stop);

    X11Session& m_session;
    freedesktop::DesktopEntries& m_entries;
};

} // namespace orvane::x11
