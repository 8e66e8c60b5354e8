#pragma once

#include "OrvaneCore/platform/SettingsStore.h"

#include <QDateTime>
#include <QString>

#include <functional>
#include <optional>

namespace orvane {

/// Where the program keeps its data, and the typed settings of recordings and of the first launch.
///
///     <base>                    ~/.orvane, or the folder the user chose
///     <base>/captures           loose pictures
///     <base>/sessions/<id>      one folder a session, of every kind
///     <base>/sessions/latest    link to the session that was finished last
///     <base>/vlm-daemon.json    where the description daemon tells its address
///
/// Nothing is cached: every call reads the settings and the file system afresh, so a new base folder counts
/// from the next call on. All paths are absolute. Failures of the file system are passed over in silence
/// unless a function says otherwise; the caller's next write is where a real problem shows. Any thread; calls
/// may run side by side.
class StorageManager {
public:
    /// Gives the present moment; any thread.
    using WallClock = std::function<QDateTime()>;

    /// What lies in the data folder: files, not sessions, with all that is not a folder counted as a file and
    /// hidden entries (named with a leading dot) left out. A symbolic link counts with its own size.
    struct UsageStats {
        qint64 captureCount = 0;
        quint64 captureBytes = 0;
        qint64 sessionCount = 0;
        quint64 sessionBytes = 0;

        quint64 totalBytes() const { return captureBytes + sessionBytes; }
        /// Decimal units in the user's language, for example "1.50 MB".
        QString capturesFormatted() const;
        QString sessionsFormatted() const;
        QString totalFormatted() const;

        bool operator==(const UsageStats&) const = default;
    };

    struct SessionFolder {
        QString dir;
        QString id;
    };

    /// The store must outlive this object. `homeDirectory` is an absolute path without a slash at its end.
    StorageManager(
        SettingsStore& settings, QString homeDirectory,
        WallClock clock = [] { return QDateTime::currentDateTime(); });

    QString baseDir() const;
    QString capturesDir() const;
    QString sessionsDir() const;
    QString latestSessionLink() const;
    QString vlmDaemonInfo() const;

    /// The path with the home folder's path at its beginning shortened to "~".
    QString displayPath(const QString& path) const;

    /// Creates the folders of captures and of sessions with all above them.
    void ensureDirectories() const;

    /// Stores the base folder as given (nothing: back to the default) and makes its folders. Data under the
    /// former base folder stays there. An empty text counts as no choice; "~" means nothing special.
    void setBaseDirectory(const std::optional<QString>& path);

    /// A folder for a new session, named by the local time to the millisecond ("20261115-092611.482"). Two
    /// calls within one millisecond give the same folder. The answer comes whether or not the folder could be
    /// made.
    SessionFolder createSessionDir() const;

    /// Makes `latest` point to a session; the link is there for readers at every moment.
    void updateLatestLink(const QString& target) const;

    /// The folder of a session, whether or not there is one.
    QString sessionDir(const QString& id) const;

    /// The session `latest` leads to, with every link in the path resolved; nothing when it leads nowhere.
    std::optional<QString> latestSessionDir() const;

    /// Walks both folders; a folder that cannot be read counts as empty.
    UsageStats usageStats() const;

    /// Deletes every capture and every session last changed more than `retentionDays()` ago and gives the
    /// number of deletions tried. Hidden entries stay, and so do links among the sessions. A folder's date is
    /// that of its own list of entries, a link's that of what it leads to. A link is deleted, never what it
    /// leads to, and where `captures` or `sessions` is itself a link nothing is touched.
    int cleanupExpired() const;

    /// Deletes everything in `captures` and `sessions`, hidden entries and `latest` among it, and gives the
    /// number of deletions tried. Links are treated as in `cleanupExpired`.
    int cleanupAll() const;

    /// Moves a session to the trash, and removes `latest` when it pointed there. False, and nothing touched,
    /// for a path that is not directly in the sessions folder and for `latest`; false with a log line when
    /// the trash does not take it.
    bool trashSession(const QString& path) const;

    // Settings. Each is read from the store at the call; a value of another type counts as absent.

    /// Days; 30 unless above 0.
    int retentionDays() const;
    void setRetentionDays(int days);

    /// True unless set to false.
    bool saveRawVideo() const;
    void setSaveRawVideo(bool save);

    /// Frames a second, 1 to 60; 30 unless above 0.
    int videoFps() const;
    void setVideoFps(int framesPerSecond);

    /// True unless set to false.
    bool showCursorInRecording() const;
    void setShowCursorInRecording(bool show);

    bool enableCamera() const;
    void setEnableCamera(bool enable);

    /// 0, 1 or 2; 1 for anything else. Setting it also sets the diameter: 80, 120 or 180.
    int cameraSize() const;
    void setCameraSize(int size);

    /// Points, 60 to 240; 120 unless above 0.
    int cameraDiameter() const;
    void setCameraDiameter(int diameter);

    /// "none" when absent.
    QString cameraBorderColor() const;
    void setCameraBorderColor(const QString& color);

    /// "bottom-right" when absent.
    QString cameraPosition() const;
    void setCameraPosition(const QString& position);

    /// Nothing: the system's default camera. Setting nothing removes the key.
    std::optional<QString> cameraDeviceId() const;
    void setCameraDeviceId(const std::optional<QString>& id);

    bool enableMic() const;
    void setEnableMic(bool enable);

    /// Nothing: the system's default microphone. Setting nothing removes the key.
    std::optional<QString> micDeviceId() const;
    void setMicDeviceId(const std::optional<QString>& id);

    bool hasOnboarded() const;
    void setHasOnboarded(bool done);
    /// The next launch is a first launch again.
    void resetOnboarding();

private:
    SettingsStore& m_settings;
    QString m_homeDirectory;
    WallClock m_clock;
};

} // namespace orvane
