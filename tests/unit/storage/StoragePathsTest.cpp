#include "OrvaneCore/storage/StoragePaths.h"

#include "tests/unit/storage/StorageFixture.h"

#include <QJsonArray>

namespace orvane {
namespace {

class Paths : public StorageFixture {};

TEST_F(Paths, EveryPathHangsOffTheHomeFolderByDefault) {
    EXPECT_EQ(m_paths.baseDir(), under(QStringLiteral(".orvane")));
    EXPECT_EQ(m_paths.capturesDir(), under(QStringLiteral(".orvane/captures")));
    EXPECT_EQ(m_paths.sessionsDir(), under(QStringLiteral(".orvane/sessions")));
    EXPECT_EQ(m_paths.latestSessionLink(), under(QStringLiteral(".orvane/sessions/latest")));
    EXPECT_EQ(m_paths.vlmDaemonInfo(), under(QStringLiteral(".orvane/vlm-daemon.json")));
    EXPECT_EQ(m_paths.sessionDir(QStringLiteral("20261115-092611.482")),
              under(QStringLiteral(".orvane/sessions/20261115-092611.482")));
}

TEST_F(Paths, ABaseFolderInTheSettingsCountsFromTheNextCall) {
    m_settings.setValue(QStringLiteral("StorageBaseDirectory"), QStringLiteral("/somewhere/else"));
    EXPECT_EQ(m_paths.baseDir(), QStringLiteral("/somewhere/else"));
    EXPECT_EQ(m_paths.capturesDir(), QStringLiteral("/somewhere/else/captures"));
    EXPECT_EQ(m_paths.latestSessionLink(), QStringLiteral("/somewhere/else/sessions/latest"));
    EXPECT_EQ(m_paths.vlmDaemonInfo(), QStringLiteral("/somewhere/else/vlm-daemon.json"));
    m_settings.setValue(QStringLiteral("StorageBaseDirectory"), QJsonValue::Undefined);
    EXPECT_EQ(m_paths.baseDir(), under(QStringLiteral(".orvane")));
}

TEST_F(Paths, ATildeInTheBaseFolderMeansNothingSpecial) {
    m_settings.setValue(QStringLiteral("StorageBaseDirectory"), QStringLiteral("~/x"));
    EXPECT_EQ(m_paths.baseDir(), QDir::currentPath() + QStringLiteral("/~/x"));
}

TEST_F(Paths, ASlashAtTheEndOfTheBaseFolderDoesNotDoubleUp) {
    m_settings.setValue(QStringLiteral("StorageBaseDirectory"), QStringLiteral("/a/b/"));
    EXPECT_EQ(m_paths.sessionsDir(), QStringLiteral("/a/b/sessions"));
}

TEST_F(Paths, ABaseFolderThatIsNoTextOrEmptyIsNoChoice) {
    for (const QJsonValue& value : {QJsonValue(7), QJsonValue(true), QJsonValue(QJsonValue::Null),
                                    QJsonValue(QJsonArray{QStringLiteral("/x")}), QJsonValue(QString())}) {
        m_settings.setValue(QStringLiteral("StorageBaseDirectory"), value);
        EXPECT_EQ(m_paths.baseDir(), under(QStringLiteral(".orvane")));
    }
}

TEST_F(Paths, SettingTheBaseFolderStoresItAndMakesItsFolders) {
    writeFile(captures(QStringLiteral("old.png")));
    const QString chosen = under(QStringLiteral("Füße 日本/data"));
    m_paths.setBaseDirectory(chosen);
    EXPECT_EQ(m_settings.values(), (QJsonObject{{QStringLiteral("StorageBaseDirectory"), chosen}}));
    EXPECT_TRUE(QFileInfo(chosen + QStringLiteral("/captures")).isDir());
    EXPECT_TRUE(QFileInfo(chosen + QStringLiteral("/sessions")).isDir());
    EXPECT_TRUE(isThere(captures(QStringLiteral("old.png"))));
    EXPECT_EQ(m_paths.capturesDir(), chosen + QStringLiteral("/captures"));
}

TEST_F(Paths, SettingNoBaseFolderRemovesTheKeyAndMakesTheDefaultFolders) {
    m_paths.setBaseDirectory(under(QStringLiteral("elsewhere")));
    m_paths.setBaseDirectory(std::nullopt);
    EXPECT_TRUE(m_settings.values().isEmpty());
    EXPECT_TRUE(QFileInfo(captures()).isDir());
    EXPECT_TRUE(QFileInfo(sessions()).isDir());
}

TEST_F(Paths, EnsureDirectoriesMakesBothAndKeepsWhatIsThere) {
    m_paths.ensureDirectories();
    writeFile(captures(QStringLiteral("a.png")));
    m_paths.ensureDirectories();
    EXPECT_TRUE(isThere(captures(QStringLiteral("a.png"))));
    EXPECT_TRUE(QFileInfo(sessions()).isDir());
}

TEST_F(Paths, DisplayPathShortensTheHomeFolderAsPlainText) {
    EXPECT_EQ(m_paths.displayPath(sessions(QStringLiteral("a"))), QStringLiteral("~/.orvane/sessions/a"));
    EXPECT_EQ(m_paths.displayPath(home()), QStringLiteral("~"));
    EXPECT_EQ(m_paths.displayPath(home() + QStringLiteral("2/x")), QStringLiteral("~2/x"));
    EXPECT_EQ(m_paths.displayPath(QStringLiteral("/elsewhere") + home()),
              QStringLiteral("/elsewhere") + home());
    EXPECT_EQ(m_paths.displayPath(QString()), QString());
}

} // namespace
} // namespace orvane
