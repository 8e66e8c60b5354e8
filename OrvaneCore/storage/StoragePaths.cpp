#include "OrvaneCore/storage/StoragePaths.h"

#include "OrvaneCore/storage/TypedSettings.h"

#include <QDir>

#include <utility>

namespace orvane {

namespace {

constexpr QLatin1String baseDirectoryKey("StorageBaseDirectory");

} // namespace

StoragePaths::StoragePaths(SettingsStore& settings, QString homeDirectory)
    : m_settings(settings)
    , m_homeDirectory(std::move(homeDirectory)) {}

QString StoragePaths::baseDir() const {
    const QString chosen = typed_settings::text(m_settings, baseDirectoryKey).value_or(QString());
    return chosen.isEmpty() ? QDir(m_homeDirectory).filePath(QStringLiteral(".orvane"))
                            : QDir(chosen).absolutePath();
}

QString StoragePaths::capturesDir() const {
    return QDir(baseDir()).filePath(QStringLiteral("captures"));
}

QString StoragePaths::sessionsDir() const {
    return QDir(baseDir()).filePath(QStringLiteral("sessions"));
}

QString StoragePaths::sessionDir(const QString& id) const {
    // Joined as it is: QDir would take an id with a slash in front for a path of its own.
    return sessionsDir() + u'/' + id;
}

QString StoragePaths::latestSessionLink() const {
    return sessionDir(QStringLiteral("latest"));
}

QString StoragePaths::vlmDaemonInfo() const {
    return QDir(baseDir()).filePath(QStringLiteral("vlm-daemon.json"));
}

QString StoragePaths::displayPath(const QString& path) const {
    return path.startsWith(m_homeDirectory) ? QLatin1Char('~') + path.mid(m_homeDirectory.size()) : path;
}

void StoragePaths::ensureDirectories() const {
    QDir().mkpath(capturesDir());
    QDir().mkpath(sessionsDir());
}

void StoragePaths::setBaseDirectory(const std::optional<QString>& path) {
    typed_settings::setText(m_settings, baseDirectoryKey, path);
    ensureDirectories();
}

} // namespace orvane
