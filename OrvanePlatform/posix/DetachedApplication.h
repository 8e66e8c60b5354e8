#pragma once

#include "OrvaneCore/platform/ApplicationStarter.h"

#include <QString>

#include <functional>

namespace orvane::posix {

/// Starts an executable without arguments as a process of its own: in a session of its own, with none of this
/// process's open files, standard streams that lead nowhere, and the home folder as its working folder. From
/// then on no child of this process inherits a file that is open now, but for the standard streams.
class DetachedApplication final : public ApplicationStarter {
public:
    using DisplayCheck = std::function<bool()>;

    /// `executable` and `homeDirectory` are absolute paths. `isDisplayReachable` tells whether there is a
    /// display for the application to come up on; asked on the thread that calls `start`.
    DetachedApplication(QString executable, QString homeDirectory, DisplayCheck isDisplayReachable);

    /// Where another process holds the instance lock (~/.orvane/.gui.lock) none is needed; else a display
    /// must be reachable. Any number of processes may call this at once.
    Outcome start() override;

private:
    QString m_executable;
    QString m_homeDirectory;
    DisplayCheck m_isDisplayReachable;
};

} // namespace orvane::posix
