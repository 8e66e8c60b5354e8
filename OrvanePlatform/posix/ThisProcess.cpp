#include "OrvanePlatform/posix/ThisProcess.h"

#include <QFileInfo>

#include <csignal>

#include <pwd.h>
#include <unistd.h>

namespace orvane::posix {

using namespace Qt::StringLiterals;

QString executablePath() {
    // Qt tells it to those only who have an application object.
    const QString path = QFileInfo(u"/proc/self/exe"_s).symLinkTarget();
    return path.isEmpty() ? u"orvane"_s : path;
}

bool standardErrorIsTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

void surviveBrokenPipes() {
    struct sigaction action {};
    // A handler and not SIG_IGN, which children would inherit.
    action.sa_handler = [](int) {};
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGPIPE, &action, nullptr);
}

void nameHomeFolder() {
    if (!qEnvironmentVariableIsEmpty("HOME"))
        return;
    const passwd* user = ::getpwuid(::getuid());
    if (user != nullptr && user->pw_dir != nullptr)
        qputenv("HOME", user->pw_dir);
}

} // namespace orvane::posix
