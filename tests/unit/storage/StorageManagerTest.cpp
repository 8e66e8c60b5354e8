#include "OrvaneCore/storage/StorageManager.h"

#include "tests/unit/storage/StorageFixture.h"

#include <QJsonArray>

#include <vector>

namespace orvane {
namespace {

class Storage : public StorageFixture {
protected:
    StorageManager m_storage{m_settings, home(), m_clock, m_sleep};
};

TEST_F(Storage, ABaseFolderThatCannotBeMadeFailsInSilence) {
    const QString blocked = under(QStringLiteral("file"));
    writeFile(blocked);
    ::testing::internal::CaptureStderr();
    m_storage.setBaseDirectory(blocked + QStringLiteral("/base"));
    const auto session = m_storage.createSessionDir();
    m_storage.updateLatestLink(session.dir);
    EXPECT_EQ(m_storage.usageStats(), StorageManager::UsageStats());
    EXPECT_EQ(m_storage.cleanupExpired(), 0);
    EXPECT_EQ(m_storage.cleanupAll(), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(session.dir, blocked + QStringLiteral("/base/sessions/20261115-092611.482"));
    EXPECT_FALSE(QFileInfo::exists(session.dir));
    EXPECT_EQ(m_storage.latestSessionDir(), std::nullopt);
}

TEST_F(Storage, TheRealClockNamesSessionsToo) {
    StorageManager storage(m_settings, home());
    const QDateTime before = QDateTime::currentDateTime();
    const QString id = storage.createSessionDir().id;
    const QDateTime after = QDateTime::currentDateTime();
    const QDateTime parsed = QDateTime::fromString(id, QStringLiteral("yyyyMMdd-HHmmss.zzz"));
    EXPECT_LE(before, parsed);
    EXPECT_LE(parsed, after);
    EXPECT_NE(storage.createSessionDir().id, id);
}

TEST_F(Storage, GivesThePathsOfTheBaseFolder) {
    EXPECT_EQ(m_storage.baseDir(), m_paths.baseDir());
    EXPECT_EQ(m_storage.capturesDir(), m_paths.capturesDir());
    EXPECT_EQ(m_storage.sessionsDir(), m_paths.sessionsDir());
    EXPECT_EQ(m_storage.sessionDir(QStringLiteral("a")), m_paths.sessionDir(QStringLiteral("a")));
    EXPECT_EQ(m_storage.latestSessionLink(), m_paths.latestSessionLink());
    EXPECT_EQ(m_storage.vlmDaemonInfo(), m_paths.vlmDaemonInfo());
    EXPECT_EQ(m_storage.displayPath(captures(QStringLiteral("a"))), QStringLiteral("~/.orvane/captures/a"));
}

TEST_F(Storage, KeepsASessionFromItsFolderToTheTrash) {
    m_storage.ensureDirectories();
    EXPECT_TRUE(QFileInfo(captures()).isDir());
    const auto session = m_storage.createSessionDir();
    writeFile(session.dir + QStringLiteral("/SESSION.md"), "12345");
    m_storage.updateLatestLink(session.dir);
    EXPECT_EQ(m_storage.latestSessionDir(), QFileInfo(session.dir).canonicalFilePath());
    QFile::remove(m_storage.latestSessionLink());
    EXPECT_EQ(m_storage.usageStats(), (StorageManager::UsageStats{0, 0, 1, 5}));
    EXPECT_TRUE(m_storage.trashSession(session.dir));
    EXPECT_FALSE(isThere(session.dir));
}

TEST_F(Storage, EachSettingOfRecordingsGoesThroughToItsKey) {
    m_storage.setSaveRawVideo(false);
    m_storage.setVideoFps(24);
    m_storage.setShowCursorInRecording(false);
    m_storage.setEnableCamera(true);
    m_storage.setCameraSize(2);
    m_storage.setCameraDiameter(77);
    m_storage.setCameraBorderColor(QStringLiteral("red"));
    m_storage.setCameraPosition(QStringLiteral("top-left"));
    m_storage.setCameraDeviceId(QStringLiteral("camera"));
    m_storage.setEnableMic(true);
    m_storage.setMicDeviceId(QStringLiteral("mic"));
    EXPECT_EQ(m_settings.values(),
              (QJsonObject{{QStringLiteral("SaveRawVideo"), false},
                           {QStringLiteral("VideoFps"), 24},
                           {QStringLiteral("ShowCursorInRecording"), false},
                           {QStringLiteral("EnableCamera"), true},
                           {QStringLiteral("CameraSize"), 2},
                           {QStringLiteral("CameraDiameter"), 77},
                           {QStringLiteral("CameraBorderColor"), QStringLiteral("red")},
                           {QStringLiteral("CameraPosition"), QStringLiteral("top-left")},
                           {QStringLiteral("CameraDeviceId"), QStringLiteral("camera")},
                           {QStringLiteral("EnableMic"), true},
                           {QStringLiteral("MicDeviceId"), QStringLiteral("mic")}}));
    EXPECT_FALSE(m_storage.saveRawVideo());
    EXPECT_EQ(m_storage.videoFps(), 24);
    EXPECT_FALSE(m_storage.showCursorInRecording());
    EXPECT_TRUE(m_storage.enableCamera());
    EXPECT_EQ(m_storage.cameraSize(), 2);
    EXPECT_EQ(m_storage.cameraDiameter(), 77);
    EXPECT_EQ(m_storage.cameraBorderColor(), QStringLiteral("red"));
    EXPECT_EQ(m_storage.cameraPosition(), QStringLiteral("top-left"));
    EXPECT_EQ(m_storage.cameraDeviceId(), QStringLiteral("camera"));
    EXPECT_TRUE(m_storage.enableMic());
    EXPECT_EQ(m_storage.micDeviceId(), QStringLiteral("mic"));
}

TEST_F(Storage, SettingsOfAnotherTypeReadAsTheirDefault) {
    for (const QJsonValue& value : {QJsonValue(QJsonValue::Undefined), QJsonValue(QJsonValue::Null),
                                    QJsonValue(QStringLiteral("45")), QJsonValue(QJsonArray{45})}) {
        m_settings.setValue(QStringLiteral("StorageRetentionDays"), value);
        m_settings.setValue(QStringLiteral("HasOnboarded"), value);
        EXPECT_EQ(m_storage.retentionDays(), 30);
        EXPECT_FALSE(m_storage.hasOnboarded());
    }
}

TEST_F(Storage, RetentionIsThirtyDaysUnlessAboveZero) {
    const std::vector<std::pair<QJsonValue, int>> cases{
        {0, 30}, {-5, 30}, {1, 1}, {120, 120}, {7.0, 7}, {7.5, 30}, {-1e300, 30}, {1e300, 2147483647}};
    for (const auto& [value, expected] : cases) {
        m_settings.setValue(QStringLiteral("StorageRetentionDays"), value);
        EXPECT_EQ(m_storage.retentionDays(), expected) << value.toDouble();
    }
}

TEST_F(Storage, RetentionIsStoredAsGiven) {
    for (const int days : {-5, 0, 1, 400}) {
        m_storage.setRetentionDays(days);
        EXPECT_EQ(m_settings.value(QStringLiteral("StorageRetentionDays")), QJsonValue(days));
    }
}

TEST_F(Storage, ResettingTheOnboardingWritesFalse) {
    m_storage.setHasOnboarded(true);
    m_storage.resetOnboarding();
    EXPECT_EQ(m_settings.value(QStringLiteral("HasOnboarded")), QJsonValue(false));
    EXPECT_FALSE(m_storage.hasOnboarded());
    m_settings.setValue(QStringLiteral("HasOnboarded"), true);
    EXPECT_TRUE(m_storage.hasOnboarded());
}

TEST_F(Storage, CleansUpByTheSettingOfTheMoment) {
    writeFile(captures(QStringLiteral("a.png")));
    makeOld(captures(QStringLiteral("a.png")));
    m_storage.setRetentionDays(31);
    EXPECT_EQ(m_storage.cleanupExpired(), 0);
    m_storage.setRetentionDays(0);
    EXPECT_EQ(m_storage.cleanupExpired(), 1);
}

TEST_F(Storage, CleansUpCapturesAndSessionsAlike) {
    writeFile(captures(QStringLiteral("a.png")));
    writeFile(sessions(QStringLiteral("s/SESSION.md")));
    EXPECT_EQ(m_storage.cleanupAll(), 2);
    EXPECT_FALSE(isThere(captures(QStringLiteral("a.png"))));
    EXPECT_FALSE(isThere(sessions(QStringLiteral("s"))));
}

TEST_F(Storage, WorksOnTheBaseFolderOfTheMoment) {
    writeFile(captures(QStringLiteral("kept.png")));
    m_storage.setBaseDirectory(under(QStringLiteral("other")));
    writeFile(under(QStringLiteral("other/captures/gone.png")));
    EXPECT_EQ(m_storage.cleanupAll(), 1);
    EXPECT_TRUE(isThere(captures(QStringLiteral("kept.png"))));
}

} // namespace
} // namespace orvane
