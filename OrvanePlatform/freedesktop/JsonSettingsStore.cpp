#include "OrvanePlatform/freedesktop/JsonSettingsStore.h"

#include "OrvaneCore/base/Log.h"
#include "OrvanePlatform/freedesktop/XdgFolders.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QMutexLocker>
#include <QSaveFile>
#include <QThread>

#include <optional>

namespace orvane::freedesktop {

namespace {

constexpr int turnTimeoutMs = 3000;
constexpr int turnPollMs = 5;
/// How long a lock file that does not even name its process may stand in the way.
constexpr int staleLockMs = 1000;
constexpr qint64 largestSettings = qint64(16) * 1024 * 1024;

struct FileContent {
    enum class State { missing, object, damaged, unreadable };

    State state = State::missing;
    QJsonObject settings;
    /// Why it is damaged or unreadable.
    QString problem;
};

FileContent parse(const QByteArray& bytes) {
    using State = FileContent::State;
    if (bytes.size() > largestSettings)
        return {State::damaged, {}, QStringLiteral("it is too large")};
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError)
        return {State::damaged, {}, error.errorString()};
    if (!document.isObject())
        return {State::damaged, {}, QStringLiteral("it is not a JSON object")};
    return {State::object, document.object(), {}};
}

FileContent readSettings(const QString& path) {
    using State = FileContent::State;
    const QFileInfo info(path);
    if (!info.exists())
        return {};
    if (!info.isFile()) {
        // Opening a named pipe would wait for a writer for ever.
        return {State::unreadable, {}, QStringLiteral("it is not a regular file")};
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {State::unreadable, {}, file.errorString()};
    const QByteArray bytes = file.read(largestSettings + 1);
    if (file.error() != QFileDevice::NoError)
        return {State::unreadable, {}, file.errorString()};
    return parse(bytes);
}

/// One writer's turn among all threads and processes, from construction to destruction.
class WriteTurn {
public:
    WriteTurn(QMutex& writersOfThisProcess, const QString& filePath)
        : m_mutex(writersOfThisProcess)
        , m_lock(filePath + QStringLiteral(".lock")) {
        const QDeadlineTimer deadline(turnTimeoutMs);
        m_hasMutex = m_mutex.tryLock(turnTimeoutMs);
        m_lock.setStaleLockTime(staleLockMs);
        // QLockFile's own waiting sleeps ever longer, and would starve among busy writers.
        while (m_hasMutex && !m_lock.tryLock(0) && m_lock.error() == QLockFile::LockFailedError &&
               !deadline.hasExpired()) {
            QThread::msleep(turnPollMs);
        }
    }

    ~WriteTurn() {
        m_lock.unlock();
        if (m_hasMutex)
            m_mutex.unlock();
    }

    WriteTurn(const WriteTurn&) = delete;
    WriteTurn& operator=(const WriteTurn&) = delete;

    bool isTaken() const { return m_lock.isLocked(); }

private:
    QMutex& m_mutex;
    QLockFile m_lock;
    bool m_hasMutex = false;
};

bool setAside(const QString& path, const QString& problem) {
    const QString aside = path + QStringLiteral(".damaged-") +
                          QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss.zzz"));
    if (!QFile::rename(path, aside))
        return false;
    logLine(
        QStringLiteral("the settings file %1 is damaged (%2); it was set aside as %3 and the defaults hold")
            .arg(path, problem, aside));
    return true;
}

/// What the file holds, after a damaged one was set aside. Within a write turn only: without one, a good file
/// that just took the damaged one's place could be set aside.
FileContent readPutRight(const QString& path) {
    FileContent content = readSettings(path);
    if (content.state == FileContent::State::damaged && setAside(path, content.problem))
        return {};
    return content;
}

/// The reason when it fails.
std::optional<QString> replaceSettings(const QString& path, const QJsonObject& settings) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(ownerOnly))
        return file.errorString();
    file.write(QJsonDocument(settings).toJson());
    return file.commit() ? std::nullopt : std::optional(file.errorString());
}

} // namespace

JsonSettingsStore::JsonSettingsStore(const QString& filePath)
    : m_filePath(QFileInfo(filePath).absoluteFilePath()) {}

QString JsonSettingsStore::defaultPath() {
    return QDir(configHome()).filePath(QStringLiteral("orvane/settings.json"));
}

QJsonValue JsonSettingsStore::value(const QString& key) const {
    FileContent content = readSettings(m_filePath);
    if (content.state == FileContent::State::damaged) {
        const WriteTurn turn(m_writing, m_filePath);
        if (turn.isTaken())
            content = readPutRight(m_filePath);
    }
    reportReadFailure(content.problem);
    return content.settings.value(key);
}

void JsonSettingsStore::setValue(const QString& key, const QJsonValue& value) {
    const auto giveUp = [this, &key](const QString& reason) {
        logLine(QStringLiteral("the setting %1 was not stored in %2: %3").arg(key, m_filePath, reason));
    };
    makeFolderOf(m_filePath);
    const WriteTurn turn(m_writing, m_filePath);
    if (!turn.isTaken()) {
        giveUp(QStringLiteral("its lock file cannot be taken"));
        return;
    }
    FileContent content = readPutRight(m_filePath);
    if (!content.problem.isEmpty()) {
        giveUp(content.problem);
        return;
    }
    if (content.settings.value(key) == value)
        return;
    content.settings.insert(key, value);
    if (const auto reason = replaceSettings(m_filePath, content.settings))
        giveUp(*reason);
}

void JsonSettingsStore::reportReadFailure(const QString& failure) const {
    const QMutexLocker locked(&m_reporting);
    if (!failure.isEmpty() && failure != m_reportedFailure) {
        logLine(QStringLiteral("the settings file %1 cannot be used and the defaults hold: %2")
                    .arg(m_filePath, failure));
    }
    m_reportedFailure = failure;
}

} // namespace orvane::freedesktop
