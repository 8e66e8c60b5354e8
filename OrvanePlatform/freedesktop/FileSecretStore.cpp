#include "OrvanePlatform/freedesktop/FileSecretStore.h"

#include "OrvaneCore/storage/AtomicFile.h"
#include "OrvaneCore/storage/PlainFile.h"
#include "OrvanePlatform/freedesktop/XdgFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QMutexLocker>

namespace orvane::freedesktop {

namespace {

constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
constexpr qint64 largestFile = qint64{1024} * 1024;

/// A folder made here is for the user alone, as the XDG base directory rules ask.
void makeFolderOf(const QString& path) {
    const QString folder = QFileInfo(path).path();
    if (!QFileInfo::exists(folder) && QDir().mkpath(folder))
        QFile::setPermissions(folder, ownerOnly | QFileDevice::ExeOwner);
}

} // namespace

FileSecretStore::FileSecretStore(const QString& filePath)
    : m_filePath(QFileInfo(filePath).absoluteFilePath()) {}

QString FileSecretStore::defaultPath() {
    return QDir(dataHome()).filePath(QStringLiteral("orvane/secrets.json"));
}

std::optional<QString> FileSecretStore::get(const QString& key) {
    const QMutexLocker locked(&m_mutex);
    const QJsonValue value = read().value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

bool FileSecretStore::set(const QString& key, const QString& value) {
    const QMutexLocker locked(&m_mutex);
    QJsonObject secrets = read();
    secrets.insert(key, value);
    return write(secrets);
}

bool FileSecretStore::remove(const QString& key) {
    const QMutexLocker locked(&m_mutex);
    QJsonObject secrets = read();
    if (!secrets.contains(key))
        return true;
    secrets.remove(key);
    return write(secrets);
}

QJsonObject FileSecretStore::read() const {
    return QJsonDocument::fromJson(readPlainFile(m_filePath, largestFile).value_or(QByteArray())).object();
}

bool FileSecretStore::write(const QJsonObject& secrets) const {
    makeFolderOf(m_filePath);
    return writeFileAtomically(m_filePath, QJsonDocument(secrets).toJson(), ownerOnly);
}

} // namespace orvane::freedesktop
