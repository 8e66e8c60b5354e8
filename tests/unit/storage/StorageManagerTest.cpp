#include "tests/unit/storage/StorageFixture.h"

#include <QJsonArray>
#include <QLocale>

#include <atomic>
#include <thread>

#include <sys/stat.h>

namespace orvane {
namespace {

class Storage : public StorageFixture {};

TEST_F(Storage, EveryPathHangsOffTheHomeFolderByDefault) {
    EXPECT_EQ(m_storage.baseDir(), under(QStringLiteral(".orvane")));
    EXPECT_EQ(m_storage.capturesDir(), under(QStringLiteral(".orvane/captures")));
    EXPECT_EQ(m_storage.sessionsDir(), under(QStringLiteral(".orvane/sessions")));
    EXPECT_EQ(m_storage.latestSessionLink(), under(QStringLiteral(".orvane/sessions/latest")));
    EXPECT_EQ(m_storage.vlmDaemonInfo(), under(QStringLiteral(".orvane/vlm-daemon.json")));
    EXPECT_EQ(m_storage.sessionDir(QStringLiteral("20261115-092611.482")),
              under(QStringLiteral(".orvane/sessions/20261115-092611.482")));
}

TEST_F(Storage, ABaseFolderInTheSettingsCountsFromTheNextCall) {
    m_settings.setValue(QStringLiteral("StorageBaseDirectory"), QStringLiteral("/somewhere/else"));
    EXPECT_EQ(m_storage.baseDir(), QStringLiteral("/somewhere/else"));
    EXPECT_EQ(m_storage.capturesDir(), QStringLiteral("/somewhere/else/captures"));
    EXPECT_EQ(m_storage.latestSessionLink(), QStringLiteral("/somewhere/else/sessions/latest"));
    EXPECT_EQ(m_storage.vlmDaemonInfo(), QStringLiteral("/somewhere/else/vlm-daemon.json"));
    m_settings.setValue(QStringLiteral("StorageBaseDirectory"), QJsonValue::Undefined);
    EXPECT_EQ(m_storage.baseDir(), under(QStringLiteral(".orvane")));
}

TEST_F(Storage, ATildeInTheBaseFolderMeansNothingSpecial) {
    m_settings.setValue(QStringLiteral("StorageBaseDirectory"), QStringLiteral("~/x"));
    EXPECT_EQ(m_storage.baseDir(), QDir::currentPath() + QStringLiteral("/~/x"));
}

TEST_F(Storage, ASlashAtTheEndOfTheBaseFolderDoesNotDoubleUp) {
    m_settings.setValue(QStringLiteral("StorageBaseDirectory"), QStringLiteral("/a/b/"));
    EXPECT_EQ(m_storage.sessionsDir(), QStringLiteral("/a/b/sessions"));
}

TEST_F(Storage, ABaseFolderThatIsNoTextOrEmptyIsNoChoice) {
    for (const QJsonValue& value : {QJsonValue(7), QJsonValue(true), QJsonValue(QJsonValue::Null),
                                    QJsonValue(QJsonArray{QStringLiteral("/x")}), QJsonValue(QString())}) {
        m_settings.setValue(QStringLiteral("StorageBaseDirectory"), value);
        EXPECT_EQ(m_storage.baseDir(), under(QStringLiteral(".orvane")));
    }
}

TEST_F(Storage, SettingTheBaseFolderStoresItAndMakesItsFolders) {
    writeFile(captures(QStringLiteral("old.png")));
    const QString chosen = under(QStringLiteral("Füße 日本/data"));
    m_storage.setBaseDirectory(chosen);
    EXPECT_EQ(m_settings.values(), (QJsonObject{{QStringLiteral("StorageBaseDirectory"), chosen}}));
    EXPECT_TRUE(QFileInfo(chosen + QStringLiteral("/captures")).isDir());
    EXPECT_TRUE(QFileInfo(chosen + QStringLiteral("/sessions")).isDir());
    EXPECT_TRUE(isThere(captures(QStringLiteral("old.png"))));
    EXPECT_EQ(m_storage.usageStats().captureCount, 0);
}

TEST_F(Storage, SettingNoBaseFolderRemovesTheKeyAndMakesTheDefaultFolders) {
    m_storage.setBaseDirectory(under(QStringLiteral("elsewhere")));
    m_storage.setBaseDirectory(std::nullopt);
    EXPECT_TRUE(m_settings.values().isEmpty());
    EXPECT_TRUE(QFileInfo(captures()).isDir());
    EXPECT_TRUE(QFileInfo(sessions()).isDir());
}

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

TEST_F(Storage, EnsureDirectoriesMakesBothAndKeepsWhatIsThere) {
    m_storage.ensureDirectories();
    writeFile(captures(QStringLiteral("a.png")));
    m_storage.ensureDirectories();
    EXPECT_TRUE(isThere(captures(QStringLiteral("a.png"))));
    EXPECT_TRUE(QFileInfo(sessions()).isDir());
}

TEST_F(Storage, DisplayPathShortensTheHomeFolderAsPlainText) {
    EXPECT_EQ(m_storage.displayPath(sessions(QStringLiteral("a"))), QStringLiteral("~/.orvane/sessions/a"));
    EXPECT_EQ(m_storage.displayPath(home()), QStringLiteral("~"));
    EXPECT_EQ(m_storage.displayPath(home() + QStringLiteral("2/x")), QStringLiteral("~2/x"));
    EXPECT_EQ(m_storage.displayPath(QStringLiteral("/elsewhere") + home()),
              QStringLiteral("/elsewhere") + home());
    EXPECT_EQ(m_storage.displayPath(QString()), QString());
}

TEST_F(Storage, ASessionIsNamedByTheLocalTimeToTheMillisecond) {
    const auto session = m_storage.createSessionDir();
    EXPECT_EQ(session.id, QStringLiteral("20261115-092611.482"));
    EXPECT_EQ(session.dir, sessions(QStringLiteral("20261115-092611.482")));
    EXPECT_TRUE(QFileInfo(session.dir).isDir());

    m_now = m_now.toUTC();
    EXPECT_EQ(m_storage.createSessionDir().id, session.id);

    m_now = QDateTime(QDate(2027, 1, 2), QTime(3, 4, 5, 6));
    EXPECT_EQ(m_storage.createSessionDir().id, QStringLiteral("20270102-030405.006"));
}

TEST_F(Storage, TheRealClockNamesSessionsToo) {
    StorageManager storage(m_settings, home());
    const QDateTime before = QDateTime::currentDateTime();
    const QString id = storage.createSessionDir().id;
    const QDateTime after = QDateTime::currentDateTime();
    const QDateTime parsed = QDateTime::fromString(id, QStringLiteral("yyyyMMdd-HHmmss.zzz"));
    EXPECT_LE(before, parsed);
    EXPECT_LE(parsed, after);
}

TEST_F(Storage, SessionsOfOneMillisecondShareAFolder) {
    const auto first = m_storage.createSessionDir();
    writeFile(first.dir + QStringLiteral("/a.png"));
    const auto second = m_storage.createSessionDir();
    EXPECT_EQ(second.dir, first.dir);
    EXPECT_TRUE(isThere(second.dir + QStringLiteral("/a.png")));
}

TEST_F(Storage, LatestPointsToTheAbsolutePathOfTheSession) {
    const auto session = m_storage.createSessionDir();
    m_storage.updateLatestLink(session.dir);
    EXPECT_EQ(std::filesystem::read_symlink(native(m_storage.latestSessionLink())), native(session.dir));
    EXPECT_EQ(m_storage.latestSessionDir(), QFileInfo(session.dir).canonicalFilePath());
}

TEST_F(Storage, ANewLatestReplacesTheOldOneAndLeavesNothingBehind) {
    makeFolder(sessions(QStringLiteral("a")));
    makeFolder(sessions(QStringLiteral("b")));
    m_storage.updateLatestLink(sessions(QStringLiteral("a")));
    m_storage.updateLatestLink(sessions(QStringLiteral("b")));
    EXPECT_EQ(m_storage.latestSessionDir(), QFileInfo(sessions(QStringLiteral("b"))).canonicalFilePath());
    const QStringList entries =
        QDir(sessions()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    EXPECT_EQ(entries, QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("latest")}));
}

TEST_F(Storage, LatestTakesThePlaceOfAFileOrAFolder) {
    makeFolder(sessions(QStringLiteral("a")));
    writeFile(m_storage.latestSessionLink());
    m_storage.updateLatestLink(sessions(QStringLiteral("a")));
    EXPECT_TRUE(QFileInfo(m_storage.latestSessionLink()).isSymLink());

    QFile::remove(m_storage.latestSessionLink());
    writeFile(m_storage.latestSessionLink() + QStringLiteral("/inside.txt"));
    m_storage.updateLatestLink(sessions(QStringLiteral("a")));
    EXPECT_TRUE(QFileInfo(m_storage.latestSessionLink()).isSymLink());
}

TEST_F(Storage, LatestNeverVanishesWhileItIsReplaced) {
    makeFolder(sessions(QStringLiteral("a")));
    makeFolder(sessions(QStringLiteral("b")));
    m_storage.updateLatestLink(sessions(QStringLiteral("a")));
    std::atomic<bool> done = false;
    int missing = 0;
    std::thread reader([&] {
        while (!done) {
            missing += m_storage.latestSessionDir() ? 0 : 1;
        }
    });
    for (int i = 0; i < 500; ++i) {
        m_storage.updateLatestLink(sessions(i % 2 == 0 ? QStringLiteral("b") : QStringLiteral("a")));
    }
    done = true;
    reader.join();
    EXPECT_EQ(missing, 0);
}

TEST_F(Storage, ALatestThatLeadsNowhereIsNoSession) {
    EXPECT_EQ(m_storage.latestSessionDir(), std::nullopt);
    m_storage.ensureDirectories();
    EXPECT_EQ(m_storage.latestSessionDir(), std::nullopt);
    m_storage.updateLatestLink(sessions(QStringLiteral("gone")));
    EXPECT_TRUE(isThere(m_storage.latestSessionLink()));
    EXPECT_EQ(m_storage.latestSessionDir(), std::nullopt);
}

TEST_F(Storage, UsageCountsFilesAtAnyDepthButNoFolders) {
    writeFile(captures(QStringLiteral("a.png")), QByteArray(1000, 'x'));
    writeFile(captures(QStringLiteral("deep/er/b.png")), QByteArray(234, 'x'));
    writeFile(sessions(QStringLiteral("s1/SESSION.md")), QByteArray(10, 'x'));
    writeFile(sessions(QStringLiteral("s1/empty")), QByteArray());
    makeFolder(sessions(QStringLiteral("s2/nothing")));
    EXPECT_EQ(m_storage.usageStats(), (StorageManager::UsageStats{2, 1234, 2, 10}));
    EXPECT_EQ(m_storage.usageStats().totalBytes(), 1244U);
}

TEST_F(Storage, UsageLeavesOutWhatIsHidden) {
    writeFile(captures(QStringLiteral(".hidden")));
    writeFile(captures(QStringLiteral(".folder/inside.png")));
    writeFile(captures(QStringLiteral("shown.png")));
    EXPECT_EQ(m_storage.usageStats().captureCount, 1);
    EXPECT_EQ(m_storage.usageStats().captureBytes, 1U);
}

TEST_F(Storage, UsageCountsALinkWithItsOwnSizeAndDoesNotFollowIt) {
    writeFile(under(QStringLiteral("big/file")), QByteArray(100'000, 'x'));
    m_storage.ensureDirectories();
    makeLink(under(QStringLiteral("big")), captures(QStringLiteral("folder-link")));
    makeLink(under(QStringLiteral("big/file")), captures(QStringLiteral("file-link")));
    makeLink(captures(), captures(QStringLiteral("round")));
    makeLink(QStringLiteral("/no/where"), m_storage.latestSessionLink());
    const auto stats = m_storage.usageStats();
    EXPECT_EQ(stats.captureCount, 3);
    const auto targetLengths =
        under(QStringLiteral("big")).size() + under(QStringLiteral("big/file")).size() + captures().size();
    EXPECT_EQ(stats.captureBytes, quint64(targetLengths));
    EXPECT_EQ(stats.sessionCount, 1);
    EXPECT_EQ(stats.sessionBytes, 9U);
}

TEST_F(Storage, UsageCountsAPipeWithoutOpeningIt) {
    m_storage.ensureDirectories();
    ASSERT_EQ(::mkfifo(QFile::encodeName(captures(QStringLiteral("pipe"))).constData(), 0600), 0);
    EXPECT_EQ(m_storage.usageStats(), (StorageManager::UsageStats{1, 0, 0, 0}));
}

TEST_F(Storage, UsageOfMissingFoldersIsZero) {
    EXPECT_EQ(m_storage.usageStats(), StorageManager::UsageStats());
}

TEST_F(Storage, UsageIsToldInDecimalUnits) {
    QLocale::setDefault(QLocale::c());
    const StorageManager::UsageStats stats{3, 1'500'000, 1, 999};
    EXPECT_EQ(stats.capturesFormatted(), QStringLiteral("1.50 MB"));
    EXPECT_EQ(stats.sessionsFormatted(), QStringLiteral("999 bytes"));
    EXPECT_EQ(stats.totalFormatted(), QStringLiteral("1.50 MB"));
    EXPECT_EQ(StorageManager::UsageStats().totalFormatted(), QStringLiteral("0 bytes"));
}

} // namespace
} // namespace orvane
