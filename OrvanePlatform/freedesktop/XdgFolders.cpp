#include "OrvanePlatform/freedesktop/XdgFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace orvane::freedesktop {

using namespace Qt::StringLiterals;

namespace {

/// Not asked of QStandardPaths, which takes relative paths as they are.
QString folderFrom(const char* variable, const QString& underHome) {
    const QString configured = qEnvironmentVariable(variable);
    return QDir::isAbsolutePath(configured) ? configured : QDir::home().filePath(underHome);
}

} // namespace

QString configHome() {
    return folderFrom("XDG_CONFIG_HOME", u".config"_s);
}

QString dataHome() {
    return folderFrom("XDG_DATA_HOME", u".local/share"_s);
}

void makeFolderOf(const QString& path) {
    const QString folder = QFileInfo(path).path();
    if (!QFileInfo::exists(folder) && QDir().mkpath(folder))
        QFile::setPermissions(folder, ownerOnly | QFileDevice::ExeOwner);
}

} // namespace orvane::freedesktop
