#include "OrvanePlatform/posix/ThisProcess.h"

#include <QFileInfo>

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

} // namespace orvane::posix
