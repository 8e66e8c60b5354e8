#include "OrvaneCore/base/AtomicFile.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <filesystem>
#include <system_error>

namespace orvane {

namespace {

bool writeNewFile(const QString& path, QByteArrayView bytes,
                  const std::optional<QFileDevice::Permissions>& permissions) {
    QFile file(path);
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered;
    if (!(permissions ? file.open(mode, *permissions) : file.open(mode)))
        return false;
    const bool complete = file.write(bytes.data(), bytes.size()) == bytes.size();
    file.close();
    return complete && file.error() == QFileDevice::NoError;
}

/// QFile::rename never replaces a file, so the standard library does it.
bool replaceFile(const QString& from, const QString& to) {
    std::error_code error;
    std::filesystem::rename(QFileInfo(from).filesystemFilePath(), QFileInfo(to).filesystemFilePath(), error);
    return !error;
}

} // namespace

bool writeFileAtomically(const QString& path, QByteArrayView bytes,
                         std::optional<QFileDevice::Permissions> permissions) {
    const QFileInfo target(path);
    // Not derived from the target's name, which may already be as long as the file system allows.
    const QString temporary =
        target.path() + QStringLiteral("/.orvane-") + QUuid::createUuid().toString(QUuid::Id128);
    if (writeNewFile(temporary, bytes, permissions) && replaceFile(temporary, path))
        return true;
    QFile::remove(temporary);
    return false;
}

} // namespace orvane
