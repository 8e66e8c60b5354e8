#include "OrvaneCore/storage/StorageManager.h"

#include "OrvaneCore/base/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>
#include <QUuid>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>
#include <vector>

namespace orvane {

namespace fs = std::filesystem;

namespace {

constexpr QLatin1String baseDirectoryKey("StorageBaseDirectory");
constexpr QLatin1String retentionDaysKey("StorageRetentionDays");
constexpr QLatin1String saveRawVideoKey("SaveRawVideo");
constexpr QLatin1String videoFpsKey("VideoFps");
constexpr QLatin1String showCursorKey("ShowCursorInRecording");
constexpr QLatin1String enableCameraKey("EnableCamera");
constexpr QLatin1String cameraSizeKey("CameraSize");
constexpr QLatin1String cameraDiameterKey("CameraDiameter");
constexpr QLatin1String cameraBorderColorKey("CameraBorderColor");
constexpr QLatin1String cameraPositionKey("CameraPosition");
constexpr QLatin1String cameraDeviceIdKey("CameraDeviceId");
constexpr QLatin1String enableMicKey("EnableMic");
constexpr QLatin1String micDeviceIdKey("MicDeviceId");
constexpr QLatin1String hasOnboardedKey("HasOnboarded");

constexpr int defaultRetentionDays = 30;
constexpr int defaultVideoFps = 30;
constexpr int defaultCameraSize = 1;
constexpr int defaultCameraDiameter = 120;
constexpr std::array diameterOfCameraSize{80, 120, 180};
constexpr qint64 millisecondsADay = 86'400'000;

bool boolean(const SettingsStore& settings, QLatin1String key, bool fallback) {
    return settings.value(key).toBool(fallback);
}

/// Numbers beyond the range of int come out as its nearest end; a fraction is no integer.
std::optional<int> integer(const SettingsStore& settings, QLatin1String key) {
    const QJsonValue value = settings.value(key);
    if (!value.isDouble() || std::trunc(value.toDouble()) != value.toDouble()) {
        return std::nullopt;
    }
    return static_cast<int>(std::clamp(value.toDouble(), double(std::numeric_limits<int>::min()),
                                       double(std::numeric_limits<int>::max())));
}

int positiveInteger(const SettingsStore& settings, QLatin1String key, int fallback) {
    const int value = integer(settings, key).value_or(fallback);
    return value > 0 ? value : fallback;
}

std::optional<QString> text(const SettingsStore& settings, QLatin1String key) {
    const QJsonValue value = settings.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

void setText(SettingsStore& settings, QLatin1String key, const std::optional<QString>& value) {
    settings.setValue(key, value ? QJsonValue(*value) : QJsonValue(QJsonValue::Undefined));
}

int clampVideoFps(int framesPerSecond) {
    return std::clamp(framesPerSecond, 1, 60);
}

int clampCameraDiameter(int diameter) {
    return std::clamp(diameter, 60, 240);
}

QString formatBytes(quint64 bytes) {
    return QLocale().formattedDataSize(static_cast<qint64>(bytes), 2, QLocale::DataSizeSIFormat);
}

// The walks use the standard library because Qt cannot name a file whose name is not valid text, and so could
// not delete it, and because Qt follows links where these must not.

fs::path toPath(const QString& path) {
    return QFileInfo(path).filesystemFilePath();
}

bool isHidden(const fs::directory_entry& entry) {
    return entry.path().filename().native().front() == '.';
}

fs::file_type typeOf(const fs::directory_entry& entry) {
    std::error_code error;
    return entry.symlink_status(error).type();
}

/// The whole list before anything is done with it: a directory must not change under its own walk.
std::vector<fs::directory_entry> listDirectory(const fs::path& directory) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    for (fs::directory_iterator it(directory, error); !error && it != fs::directory_iterator();
         it.increment(error)) {
        entries.push_back(*it);
    }
    return entries;
}

/// As `listDirectory`, for those who delete: nothing behind a link, which may lead anywhere.
std::vector<fs::directory_entry> listOwnDirectory(const fs::path& directory) {
    std::error_code error;
    return fs::is_symlink(fs::symlink_status(directory, error)) ? std::vector<fs::directory_entry>()
                                                                : listDirectory(directory);
}

quint64 sizeOf(const fs::directory_entry& entry, fs::file_type type) {
    std::error_code error;
    if (type == fs::file_type::symlink) {
        return fs::read_symlink(entry.path(), error).native().size();
    }
    const auto size = type == fs::file_type::regular ? entry.file_size(error) : 0;
    return error ? 0 : size;
}

struct FileTotals {
    qint64 count = 0;
    quint64 bytes = 0;
};

FileTotals measure(const fs::path& root) {
    FileTotals totals;
    std::vector<fs::path> pending{root};
    while (!pending.empty()) {
        const fs::path directory = std::move(pending.back());
        pending.pop_back();
        for (const fs::directory_entry& entry : listDirectory(directory)) {
            const fs::file_type type = typeOf(entry);
            if (isHidden(entry) || type == fs::file_type::none || type == fs::file_type::not_found) {
                continue;
            }
            if (type == fs::file_type::directory) {
                pending.push_back(entry.path());
                continue;
            }
            totals.count += 1;
            totals.bytes += sizeOf(entry, type);
        }
    }
    return totals;
}

using FileMilliseconds = std::chrono::time_point<std::chrono::file_clock, std::chrono::milliseconds>;

FileMilliseconds toFileTime(std::chrono::milliseconds sinceUnixEpoch) {
    return std::chrono::file_clock::from_sys(
        std::chrono::sys_time<std::chrono::milliseconds>(sinceUnixEpoch));
}

/// False for an entry whose date cannot be read.
bool isOlderThan(const fs::directory_entry& entry, FileMilliseconds cutoff) {
    std::error_code error;
    const fs::file_time_type modified = fs::last_write_time(entry.path(), error);
    // Rounded down, not the cutoff refined: a cutoff centuries ago does not fit into nanoseconds.
    return !error && std::chrono::floor<std::chrono::milliseconds>(modified) < cutoff;
}

/// A failed deletion is passed over: the callers count what they tried.
void removeEntry(const fs::path& path) {
    std::error_code error;
    fs::remove_all(path, error);
}

enum class Links { sweep, keep };

int removeExpired(const fs::path& directory, FileMilliseconds cutoff, Links links) {
    int removed = 0;
    for (const fs::directory_entry& entry : listOwnDirectory(directory)) {
        const bool exempt =
            isHidden(entry) || (links == Links::keep && typeOf(entry) == fs::file_type::symlink);
        if (!exempt && isOlderThan(entry, cutoff)) {
            removeEntry(entry.path());
            removed += 1;
        }
    }
    return removed;
}

int removeAll(const fs::path& directory) {
    const std::vector<fs::directory_entry> entries = listOwnDirectory(directory);
    for (const fs::directory_entry& entry : entries) {
        removeEntry(entry.path());
    }
    return static_cast<int>(entries.size());
}

/// Without a place for the user's trash QFile::moveToTrash does not fail: it moves things into the working
/// directory of the process.
bool makePlaceForTrash() {
    const QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QFileInfo trash(QDir(dataHome).filePath(QStringLiteral("Trash")));
    const bool nameIsFree = !trash.exists() && !trash.isSymLink();
    return trash.isDir() || (nameIsFree && QDir().mkpath(dataHome) && QFileInfo(dataHome).isWritable());
}

/// The reason when the item could not be moved.
std::optional<QString> moveToTrash(const QString& path) {
    if (!makePlaceForTrash()) {
        return QStringLiteral("there is no place for a trash folder");
    }
    QFile item(path);
    return item.moveToTrash() ? std::nullopt : std::optional(item.errorString());
}

QString standardised(const QString& path) {
    return path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

} // namespace

QString StorageManager::UsageStats::capturesFormatted() const {
    return formatBytes(captureBytes);
}

QString StorageManager::UsageStats::sessionsFormatted() const {
    return formatBytes(sessionBytes);
}

QString StorageManager::UsageStats::totalFormatted() const {
    return formatBytes(totalBytes());
}

StorageManager::StorageManager(SettingsStore& settings, QString homeDirectory, WallClock clock)
    : m_settings(settings)
    , m_homeDirectory(std::move(homeDirectory))
    , m_clock(std::move(clock)) {}

QString StorageManager::baseDir() const {
    const QString chosen = text(m_settings, baseDirectoryKey).value_or(QString());
    return chosen.isEmpty() ? QDir(m_homeDirectory).filePath(QStringLiteral(".orvane"))
                            : QDir(chosen).absolutePath();
}

QString StorageManager::capturesDir() const {
    return QDir(baseDir()).filePath(QStringLiteral("captures"));
}

QString StorageManager::sessionsDir() const {
    return QDir(baseDir()).filePath(QStringLiteral("sessions"));
}

QString StorageManager::latestSessionLink() const {
    return sessionDir(QStringLiteral("latest"));
}

QString StorageManager::vlmDaemonInfo() const {
    return QDir(baseDir()).filePath(QStringLiteral("vlm-daemon.json"));
}

QString StorageManager::displayPath(const QString& path) const {
    return path.startsWith(m_homeDirectory) ? QLatin1Char('~') + path.mid(m_homeDirectory.size()) : path;
}

void StorageManager::ensureDirectories() const {
    QDir().mkpath(capturesDir());
    QDir().mkpath(sessionsDir());
}

void StorageManager::setBaseDirectory(const std::optional<QString>& path) {
    setText(m_settings, baseDirectoryKey, path);
    ensureDirectories();
}

StorageManager::SessionFolder StorageManager::createSessionDir() const {
    const QString id = m_clock().toLocalTime().toString(QStringLiteral("yyyyMMdd-HHmmss.zzz"));
    const QString dir = sessionDir(id);
    QDir().mkpath(dir);
    return {dir, id};
}

void StorageManager::updateLatestLink(const QString& target) const {
    const fs::path link = toPath(latestSessionLink());
    const fs::path fresh =
        link.parent_path() / (".latest-" + QUuid::createUuid().toString(QUuid::Id128).toStdString());
    std::error_code error;
    fs::create_symlink(toPath(QFileInfo(target).absoluteFilePath()), fresh, error);
    if (error) {
        return;
    }
    fs::rename(fresh, link, error);
    if (error) {
        // A folder of that name is in the way: a link cannot be renamed onto it.
        removeEntry(link);
        fs::rename(fresh, link, error);
    }
    if (error) {
        removeEntry(fresh);
    }
}

QString StorageManager::sessionDir(const QString& id) const {
    // Joined as it is: QDir would take an id with a slash in front for a path of its own.
    return sessionsDir() + u'/' + id;
}

std::optional<QString> StorageManager::latestSessionDir() const {
    const QString resolved = QFileInfo(latestSessionLink()).canonicalFilePath();
    return resolved.isEmpty() ? std::nullopt : std::optional(resolved);
}

StorageManager::UsageStats StorageManager::usageStats() const {
    const FileTotals captures = measure(toPath(capturesDir()));
    const FileTotals sessions = measure(toPath(sessionsDir()));
    return {captures.count, captures.bytes, sessions.count, sessions.bytes};
}

int StorageManager::cleanupExpired() const {
    const FileMilliseconds cutoff = toFileTime(
        std::chrono::milliseconds(m_clock().toMSecsSinceEpoch() - retentionDays() * millisecondsADay));
    return removeExpired(toPath(capturesDir()), cutoff, Links::sweep) +
           removeExpired(toPath(sessionsDir()), cutoff, Links::keep);
}

int StorageManager::cleanupAll() const {
    return removeAll(toPath(capturesDir())) + removeAll(toPath(sessionsDir()));
}

bool StorageManager::trashSession(const QString& path) const {
    const QString session = standardised(path);
    const QFileInfo info(session);
    if (session.isEmpty() || info.path() != standardised(sessionsDir()) ||
        info.fileName() == QLatin1String("latest")) {
        return false;
    }
    // The standardised path and not the one given: through a link in the middle, ".." may lead elsewhere.
    if (const auto error = moveToTrash(session)) {
        logLine(QStringLiteral("failed to trash session %1: %2").arg(info.fileName(), *error));
        return false;
    }
    const QString link = latestSessionLink();
    if (standardised(QFileInfo(link).symLinkTarget()) == session) {
        QFile::remove(link);
    }
    return true;
}

int StorageManager::retentionDays() const {
    return positiveInteger(m_settings, retentionDaysKey, defaultRetentionDays);
}

void StorageManager::setRetentionDays(int days) {
    m_settings.setValue(retentionDaysKey, days);
}

bool StorageManager::saveRawVideo() const {
    return boolean(m_settings, saveRawVideoKey, true);
}

void StorageManager::setSaveRawVideo(bool save) {
    m_settings.setValue(saveRawVideoKey, save);
}

int StorageManager::videoFps() const {
    return clampVideoFps(positiveInteger(m_settings, videoFpsKey, defaultVideoFps));
}

void StorageManager::setVideoFps(int framesPerSecond) {
    m_settings.setValue(videoFpsKey, clampVideoFps(framesPerSecond));
}

bool StorageManager::showCursorInRecording() const {
    return boolean(m_settings, showCursorKey, true);
}

void StorageManager::setShowCursorInRecording(bool show) {
    m_settings.setValue(showCursorKey, show);
}

bool StorageManager::enableCamera() const {
    return boolean(m_settings, enableCameraKey, false);
}

void StorageManager::setEnableCamera(bool enable) {
    m_settings.setValue(enableCameraKey, enable);
}

int StorageManager::cameraSize() const {
    const int size = integer(m_settings, cameraSizeKey).value_or(defaultCameraSize);
    return size >= 0 && size <= 2 ? size : defaultCameraSize;
}

void StorageManager::setCameraSize(int size) {
    const int stored = std::clamp(size, 0, 2);
    m_settings.setValue(cameraSizeKey, stored);
    setCameraDiameter(diameterOfCameraSize.at(static_cast<size_t>(stored)));
}

int StorageManager::cameraDiameter() const {
    return clampCameraDiameter(positiveInteger(m_settings, cameraDiameterKey, defaultCameraDiameter));
}

void StorageManager::setCameraDiameter(int diameter) {
    m_settings.setValue(cameraDiameterKey, clampCameraDiameter(diameter));
}

QString StorageManager::cameraBorderColor() const {
    return text(m_settings, cameraBorderColorKey).value_or(QStringLiteral("none"));
}

void StorageManager::setCameraBorderColor(const QString& color) {
    m_settings.setValue(cameraBorderColorKey, color);
}

QString StorageManager::cameraPosition() const {
    return text(m_settings, cameraPositionKey).value_or(QStringLiteral("bottom-right"));
}

void StorageManager::setCameraPosition(const QString& position) {
    m_settings.setValue(cameraPositionKey, position);
}

std::optional<QString> StorageManager::cameraDeviceId() const {
    return text(m_settings, cameraDeviceIdKey);
}

void StorageManager::setCameraDeviceId(const std::optional<QString>& id) {
    setText(m_settings, cameraDeviceIdKey, id);
}

bool StorageManager::enableMic() const {
    return boolean(m_settings, enableMicKey, false);
}

void StorageManager::setEnableMic(bool enable) {
    m_settings.setValue(enableMicKey, enable);
}

std::optional<QString> StorageManager::micDeviceId() const {
    return text(m_settings, micDeviceIdKey);
}

void StorageManager::setMicDeviceId(const std::optional<QString>& id) {
    setText(m_settings, micDeviceIdKey, id);
}

bool StorageManager::hasOnboarded() const {
    return boolean(m_settings, hasOnboardedKey, false);
}

void StorageManager::setHasOnboarded(bool done) {
    m_settings.setValue(hasOnboardedKey, done);
}

void StorageManager::resetOnboarding() {
    setHasOnboarded(false);
}

} // namespace orvane
