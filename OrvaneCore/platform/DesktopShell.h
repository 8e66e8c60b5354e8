#pragma once

#include <QString>

#include <optional>

namespace orvane {

/// What the desktop has to offer beside a place for windows. Main thread.
class DesktopShell {
public:
    virtual ~DesktopShell() = default;

    /// Whether there is a tray now, of whichever kind.
    virtual bool hasTrayHost() = 0;

    /// A sentence for the log on what this kind of desktop keeps from the program; nothing where it is whole.
    virtual std::optional<QString> limits() = 0;

protected:
    DesktopShell() = default;
    DesktopShell(const DesktopShell&) = default;
    DesktopShell& operator=(const DesktopShell&) = default;
};

} // namespace orvane
