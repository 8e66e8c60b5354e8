#include "OrvaneCore/storage/Trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace orvane {

namespace {

/// Without a place for the user's trash QFile::moveToTrash does not fail: it moves things into the working
/// directory of the process.
bool makePlaceForTrash() {
    const QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QFileInfo trash(QDir(dataHome).filePath(QStringLiteral("Trash")));
    const bool nameIsFree = !trash.exists() && !trash.isSymLink();
    return trash.isDir() || (nameIsFree && QDir().mkpath(dataHome) && QFileInfo(dataHome).isWritable());
}

} // namespace

std::optional<QString> moveToTrash(const QString& path) {
    if (!makePlaceForTrash())
        return QStringLiteral("there is no place for a trash folder");
    QFile item(path);
    return item.moveToTrash() ? std::nullopt : std::optional(item.errorString());
}

} // namespace orvane
