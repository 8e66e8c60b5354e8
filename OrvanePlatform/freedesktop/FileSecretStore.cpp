#include "OrvanePlatform/freedesktop/FileSecretStore.h"

#include "OrvaneCore/base/AtomicFile.h"
#include "OrvaneCore/base/PlainFile.h"
#include "OrvanePlatform/freedesktop/XdgFolders.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QMutexLocker>

namespace orvane::freedesktop {

namespace {

constexpr qint64 largestSecrets = qint64{1024} * 1024;

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
    return QJsonDocument::fromJson(readPlainFile(m_filePath, largestSecrets).value_or(QByteArray())).object();
}

bool FileSecretStore::write(const QJsonObject& secrets) const {
    makeFolderOf(m_filePath);
    return writeFileAtomically(m_filePath, QJsonDocument(secrets).toJson(), ownerOnly);
}

} // namespace orvane::freedesktop
