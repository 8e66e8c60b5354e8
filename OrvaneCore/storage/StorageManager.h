#pragma once

#include "OrvaneCore/storage/RecordingSettings.h"
#include "OrvaneCore/storage/SessionFolders.h"
#include "OrvaneCore/storage/StoragePaths.h"
#include "OrvaneCore/storage/StorageUsage.h"

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>
#include <thread>

namespace orvane {

/// Where the program keeps its data and for how long, and the typed settings of recordings and of the first
/// launch: one face for what `StoragePaths`, `SessionFolders`, `RecordingSettings`, usage and retention do.
///
/// Nothing is cached: every call reads the settings and the file system afresh, so a new base folder counts
/// from the next call on. Failures of the file system are passed over in silence unless a function says
/// otherwise; the caller's next write is where a real problem shows. Any thread; calls may run side by side.
class StorageManager {
public:
    using WallClock = SessionFolders::WallClock;
    using Sleep = SessionFolders::Sleep;
    using UsageStats = StorageUsage;
    using SessionFolder = orvane::SessionFolder;

    /// The store must outlive this object. `homeDirectory` is an absolute path without a slash at its end.
    StorageManager(
        SettingsStore& settings, const QString& homeDirectory,
        const WallClock& clock = [] { return QDateTime::currentDateTime(); },
        Sleep sleep = [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); });

    // Paths.

    QString baseDir() const { return m_paths.baseDir(); }
    QString capturesDir() const { return m_paths.capturesDir(); }
    QString sessionsDir() const { return m_paths.sessionsDir(); }
    QString latestSessionLink() const { return m_paths.latestSessionLink(); }
    QString vlmDaemonInfo() const { return m_paths.vlmDaemonInfo(); }
    QString sessionDir(const QString& id) const { return m_paths.sessionDir(id); }
    QString displayPath(const QString& path) const { return m_paths.displayPath(path); }
    void ensureDirectories() const { m_paths.ensureDirectories(); }
    void setBaseDirectory(const std::optional<QString>& path) { m_paths.setBaseDirectory(path); }

    // Sessions.

    SessionFolder createSessionDir() { return m_sessions.make(); }
    void updateLatestLink(const QString& target) const { m_sessions.updateLatestLink(target); }
    std::optional<QString> latestSessionDir() const { return m_sessions.latest(); }
    bool trashSession(const QString& path) const { return m_sessions.trash(path); }

    // What lies there, and its end.

    UsageStats usageStats() const;

    /// Deletes every capture and every session last changed more than `retentionDays()` ago, as
    /// `retention::removeExpired` does, and gives the number of deletions tried.
    int cleanupExpired() const { return expiredCleanup()({}); }

    /// The same for a thread that nobody may wait for: what is expired, and where, is settled now, and the
    /// call needs nothing of this object any more.
    using Cleanup = std::function<int(const std::stop_token&)>;
    Cleanup expiredCleanup() const;

    /// Deletes everything in `captures` and `sessions`, as `retention::removeAll` does, and gives the number
    /// of deletions tried.
    int cleanupAll() const;

    /// Days; 30 unless above 0.
    int retentionDays() const;
    void setRetentionDays(int days);

    // How recordings are made.

    bool saveRawVideo() const { return m_recording.saveRawVideo(); }
    void setSaveRawVideo(bool save) { m_recording.setSaveRawVideo(save); }
    int videoFps() const { return m_recording.videoFps(); }
    void setVideoFps(int framesPerSecond) { m_recording.setVideoFps(framesPerSecond); }
    bool showCursorInRecording() const { return m_recording.showCursorInRecording(); }
    void setShowCursorInRecording(bool show) { m_recording.setShowCursorInRecording(show); }
    bool enableCamera() const { return m_recording.enableCamera(); }
    void setEnableCamera(bool enable) { m_recording.setEnableCamera(enable); }
    int cameraSize() const { return m_recording.cameraSize(); }
    void setCameraSize(int size) { m_recording.setCameraSize(size); }
    int cameraDiameter() const { return m_recording.cameraDiameter(); }
    void setCameraDiameter(int diameter) { m_recording.setCameraDiameter(diameter); }
    QString cameraBorderColor() const { return m_recording.cameraBorderColor(); }
    void setCameraBorderColor(const QString& color) { m_recording.setCameraBorderColor(color); }
    QString cameraPosition() const { return m_recording.cameraPosition(); }
    void setCameraPosition(const QString& position) { m_recording.setCameraPosition(position); }
    std::optional<QString> cameraDeviceId() const { return m_recording.cameraDeviceId(); }
    void setCameraDeviceId(const std::optional<QString>& id) { m_recording.setCameraDeviceId(id); }
    bool enableMic() const { return m_recording.enableMic(); }
    void setEnableMic(bool enable) { m_recording.setEnableMic(enable); }
    std::optional<QString> micDeviceId() const { return m_recording.micDeviceId(); }
    void setMicDeviceId(const std::optional<QString>& id) { m_recording.setMicDeviceId(id); }

    // The first launch.

    bool hasOnboarded() const;
    void setHasOnboarded(bool done);
    /// The next launch is a first launch again.
    void resetOnboarding() { setHasOnboarded(false); }

private:
    SettingsStore& m_settings;
    WallClock m_clock;
    StoragePaths m_paths;
    SessionFolders m_sessions;
    RecordingSettings m_recording;
};

} // namespace orvane
