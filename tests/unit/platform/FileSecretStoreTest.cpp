#include "OrvanePlatform/freedesktop/FileSecretStore.h"
#include "tests/unit/storage/StorageFixture.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <atomic>
#include <thread>
#include <vector>

#include <sys/stat.h>

namespace orvane::freedesktop {
namespace {

using namespace Qt::StringLiterals;

class FileSecrets : public StorageFixture {
protected:
    QString folder() const { return under(u"data/orvane"_s); }
    QString file() const { return folder() + u"/secrets.json"_s; }

    QJsonObject content() const {
        QFile in(file());
        EXPECT_TRUE(in.open(QIODevice::ReadOnly));
        return QJsonDocument::fromJson(in.readAll()).object();
    }

    QStringList entries() const {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                        QDir::NoDotAndDotDot);
    }

    static unsigned modeOf(const QString& path) {
        struct stat status {};
        EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0);
        return status.st_mode & 07777U;
    }
};

TEST_F(FileSecrets, LieInTheUsersDataFolder) {
    EXPECT_EQ(FileSecretStore::defaultPath(), file());
    for (const char* other : {"", "relative/data"}) {
        qputenv("XDG_DATA_HOME", other);
        EXPECT_EQ(FileSecretStore::defaultPath(), under(u".local/share/orvane/secrets.json"_s)) << other;
    }
    qunsetenv("XDG_DATA_HOME");
    EXPECT_EQ(FileSecretStore::defaultPath(), under(u".local/share/orvane/secrets.json"_s));
}

TEST_F(FileSecrets, AreKeptBeyondTheObject) {
    EXPECT_TRUE(FileSecretStore(file()).set(u"key"_s, u"日本 \"quoted\"\n"_s));
    EXPECT_EQ(FileSecretStore(file()).get(u"key"_s), u"日本 \"quoted\"\n"_s);
    EXPECT_EQ(entries(), QStringList{u"secrets.json"_s});
}

TEST_F(FileSecrets, AreApartFromEachOther) {
    FileSecretStore store(file());
    EXPECT_TRUE(store.set(u"a"_s, u"1"_s));
    EXPECT_TRUE(store.set(u"b"_s, u""_s));
    EXPECT_TRUE(store.set(u"a"_s, u"2"_s));
    EXPECT_EQ(store.get(u"a"_s), u"2"_s);
    EXPECT_EQ(store.get(u"b"_s), u""_s);
    EXPECT_EQ(store.get(u"c"_s), std::nullopt);
    EXPECT_EQ(content(), (QJsonObject{{u"a"_s, u"2"_s}, {u"b"_s, u""_s}}));
}

TEST_F(FileSecrets, CanBeRemovedAlsoWhenThereAreNone) {
    FileSecretStore store(file());
    EXPECT_TRUE(store.remove(u"a"_s));
    EXPECT_FALSE(isThere(file()));
    store.set(u"a"_s, u"1"_s);
    store.set(u"b"_s, u"2"_s);
    EXPECT_TRUE(store.remove(u"a"_s));
    EXPECT_TRUE(store.remove(u"a"_s));
    EXPECT_EQ(store.get(u"a"_s), std::nullopt);
    EXPECT_EQ(store.get(u"b"_s), u"2"_s);
}

TEST_F(FileSecrets, AreForTheirUserAlone) {
    const mode_t before = ::umask(0);
    EXPECT_TRUE(FileSecretStore(file()).set(u"a"_s, u"1"_s));
    ::umask(before);
    EXPECT_EQ(modeOf(file()), 0600U);
    EXPECT_EQ(modeOf(folder()), 0700U);
}

TEST_F(FileSecrets, AreForTheirUserAloneAgainAfterTheNextWrite) {
    writeFile(file(), R"({"a":"1"})");
    ASSERT_TRUE(QFile::setPermissions(file(), QFileDevice::Permissions(0x6666)));
    EXPECT_TRUE(FileSecretStore(file()).set(u"b"_s, u"2"_s));
    EXPECT_EQ(modeOf(file()), 0600U);
    EXPECT_EQ(FileSecretStore(file()).get(u"a"_s), u"1"_s);
}

TEST_F(FileSecrets, CountAsNoneInADamagedFile) {
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("{"), QByteArray("[\"a\"]"), QByteArray(100, '\xff'),
          "{\"a\":\"1\"}" + QByteArray(qsizetype(1024) * 1024, ' ')}) {
        writeFile(file(), bytes);
        FileSecretStore store(file());
        EXPECT_EQ(store.get(u"a"_s), std::nullopt);
        EXPECT_TRUE(store.set(u"b"_s, u"2"_s));
        EXPECT_EQ(content(), (QJsonObject{{u"b"_s, u"2"_s}}));
    }
}

TEST_F(FileSecrets, AreTextAndNothingElse) {
    writeFile(file(), R"({"a":1,"b":null,"c":["x"],"d":"yes"})");
    FileSecretStore store(file());
    for (const QString& key : {u"a"_s, u"b"_s, u"c"_s})
        EXPECT_EQ(store.get(key), std::nullopt) << key.toStdString();
    EXPECT_EQ(store.get(u"d"_s), u"yes"_s);
}

TEST_F(FileSecrets, CannotBeStoredWhereNoFolderCanBe) {
    writeFile(folder());
    FileSecretStore store(file());
    EXPECT_FALSE(store.set(u"a"_s, u"1"_s));
    EXPECT_EQ(store.get(u"a"_s), std::nullopt);
    EXPECT_TRUE(store.remove(u"a"_s));
}

TEST_F(FileSecrets, StayWhenTheyCannotBeReplaced) {
    makeFolder(file());
    FileSecretStore store(file());
    EXPECT_FALSE(store.set(u"a"_s, u"1"_s));
    EXPECT_EQ(entries(), QStringList{u"secrets.json"_s});
}

TEST_F(FileSecrets, APipeInTheirPlaceIsNotWaitedFor) {
    makeFolder(folder());
    ASSERT_EQ(::mkfifo(QFile::encodeName(file()).constData(), 0600), 0);
    EXPECT_EQ(FileSecretStore(file()).get(u"a"_s), std::nullopt);
}

TEST_F(FileSecrets, ThreadsLoseNothingOfEachOther) {
    FileSecretStore store(file());
    std::atomic<int> failures = 0;
    std::vector<std::thread> writers;
    writers.reserve(4);
    for (int writer = 0; writer < 4; ++writer) {
        writers.emplace_back([&, writer] {
            for (int i = 0; i < 25; ++i)
                failures += store.set(u"%1-%2"_s.arg(writer).arg(i), u"x"_s) ? 0 : 1;
        });
    }
    for (std::thread& writer : writers)
        writer.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(content().size(), 100);
}

} // namespace
} // namespace orvane::freedesktop
