#include "Orvane/ApplicationFace.h"

#include "Orvane/AlreadyRunningAlert.h"
#include "Orvane/AppDelegate.h"
#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/platform/ApplicationStarter.h"
#include "OrvanePlatform/Platform.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace orvane {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Longer than another copy holds the lock only to see whether somebody does.
constexpr auto lockPatience = 1000ms;
constexpr auto lockPoll = 20ms;

std::unique_ptr<InstanceLock> acquireLock(Platform& platform, std::chrono::milliseconds patience) {
    const QString folder = QDir::homePath() + u"/.orvane"_s;
    QDir().mkpath(folder);
    const QDeadlineTimer deadline(patience);
    for (;;) {
        if (auto lock = platform.acquireInstanceLock(folder + u"/.gui.lock"_s))
            return lock;
        if (deadline.hasExpired())
            return nullptr;
        std::this_thread::sleep_for(lockPoll);
    }
}

} // namespace

int runApplicationFace(int argc, char* argv[]) {
    logQtMessages();
    const bool startedByLauncher = qEnvironmentVariableIsSet(ApplicationStarter::startedByLauncherVariable);
    // What this process starts was not started by a launcher.
    qunsetenv(ApplicationStarter::startedByLauncherVariable);
    const std::unique_ptr<Platform> platform = makePlatform();
    if (const auto trouble = platform->displayTrouble()) {
        const QString line = u"orvane: "_s + *trouble;
        logBareLine(platform->standardErrorIsTerminal() ? u"\x1b[31m"_s + line + u"\x1b[0m"_s : line);
        return EXIT_FAILURE;
    }
    qputenv("QT_QPA_PLATFORM", platform->windowSystem());
    // None of the arguments is meant for Qt.
    argc = std::min(argc, 1);
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(u"Orvane"_s);
    QApplication::setDesktopFileName(u"com.orvane.app"_s);
    QApplication::setQuitOnLastWindowClosed(false);

    auto lock = acquireLock(*platform, startedByLauncher ? lockPatience : 0ms);
    if (!lock) {
        // Of several copies that agents start at once one is enough, and nobody is there to read an alert.
        if (!startedByLauncher)
            AlreadyRunningAlert(platform->words()).exec();
        return EXIT_SUCCESS;
    }
    AppDelegate delegate(*platform);
    const auto endRequests = platform->whenAskedToEnd([&delegate] { delegate.quit(); });
    // The end of the desktop session comes this way.
    QObject::connect(&application, &QCoreApplication::aboutToQuit, [&delegate] { delegate.quit(); });
    delegate.applicationDidFinishLaunching();
    QApplication::exec();
    delegate.withdraw();
    // From here on another copy may run, and its own endpoint file stands.
    lock.reset();
    // A tool that still runs uses what would go now.
    if (!delegate.finish())
        std::_Exit(EXIT_SUCCESS);
    return EXIT_SUCCESS;
}

} // namespace orvane
