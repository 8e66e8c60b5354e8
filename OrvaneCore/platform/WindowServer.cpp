#include "OrvaneCore/platform/WindowServer.h"

#include <QSet>

namespace orvane {

WindowSnapshot onlyWanted(WindowSnapshot desktop, const ApplicationFilter& isWanted) {
    std::erase_if(desktop.applications, [&isWanted](const RunningApplication& application) {
        return !application.localizedName || !isWanted(*application.localizedName);
    });
    QSet<qint32> processes;
    for (const RunningApplication& application : desktop.applications)
        processes.insert(application.pid);
    std::erase_if(desktop.onScreen,
                  [&processes](const WindowEntry& row) { return !processes.contains(row.pid); });
    return desktop;
}

} // namespace orvane
