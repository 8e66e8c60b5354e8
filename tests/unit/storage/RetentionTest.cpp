#include "OrvaneCore/storage/Retention.h"

#include "tests/unit/storage/StorageFixture.h"

namespace orvane {
namespace {

using namespace std::chrono_literals;

class Retention : public StorageFixture {
protected:
    void SetUp() override {
        StorageFixture::SetUp();
        m_paths.ensureDirectories();
    }

    int removeExpired(int days = 30) const {
        return retention::removeExpired(m_paths.capturesDir(), m_paths.sessionsDir(), m_now, days);
    }
    int removeAll() const { return retention::removeAll(m_paths.capturesDir(), m_paths.sessionsDir()); }
};

TEST_F(Retention, DeletesOldCapturesAndSessionsAndCountsThem) {
    writeFile(captures(QStringLiteral("old.png")));
    writeFile(captures(QStringLiteral("old-folder/inside.png")));
    writeFile(captures(QStringLiteral("new.png")));
    writeFile(sessions(QStringLiteral("old/deep/SESSION.md")));
    writeFile(sessions(QStringLiteral("new/SESSION.md")));
    makeOld(captures(QStringLiteral("old.png")));
    makeOld(captures(QStringLiteral("old-folder")));
    makeOld(sessions(QStringLiteral("old")));
    datePast(captures(QStringLiteral("new.png")), -1h);
    datePast(sessions(QStringLiteral("new")), -1h);

    EXPECT_EQ(removeExpired(), 3);

    EXPECT_FALSE(isThere(captures(QStringLiteral("old.png"))));
    EXPECT_FALSE(isThere(captures(QStringLiteral("old-folder"))));
    EXPECT_FALSE(isThere(sessions(QStringLiteral("old"))));
    EXPECT_TRUE(isThere(captures(QStringLiteral("new.png"))));
    EXPECT_TRUE(isThere(sessions(QStringLiteral("new/SESSION.md"))));
    EXPECT_EQ(removeExpired(), 0);
}

TEST_F(Retention, SparesAnItemDatedExactlyAtTheCutoff) {
    for (const QString& root : {captures(), sessions()}) {
        writeFile(root + QStringLiteral("at"));
        writeFile(root + QStringLiteral("just-before"));
        writeFile(root + QStringLiteral("just-after"));
        datePast(root + QStringLiteral("at"), 0ns);
        datePast(root + QStringLiteral("just-before"), 1ns);
        datePast(root + QStringLiteral("just-after"), -1ns);
    }
    EXPECT_EQ(removeExpired(), 2);
    for (const QString& root : {captures(), sessions()}) {
        EXPECT_TRUE(isThere(root + QStringLiteral("at")));
        EXPECT_FALSE(isThere(root + QStringLiteral("just-before")));
        EXPECT_TRUE(isThere(root + QStringLiteral("just-after")));
    }
}

TEST_F(Retention, CountsDaysOf86400Seconds) {
    writeFile(captures(QStringLiteral("a.png")));
    makeOld(captures(QStringLiteral("a.png")));
    EXPECT_EQ(removeExpired(31), 0);
    EXPECT_EQ(removeExpired(30), 1);
}

TEST_F(Retention, OfEnormousLengthDeletesNothing) {
    writeFile(captures(QStringLiteral("a.png")));
    makeOld(captures(QStringLiteral("a.png")));
    for (const int days : {200'000, 2147483647})
        EXPECT_EQ(removeExpired(days), 0) << days;
}

TEST_F(Retention, DatesASessionByItsFolderAndNotByItsFiles) {
    writeFile(sessions(QStringLiteral("s/new-inside.md")));
    makeOld(sessions(QStringLiteral("s")));
    writeFile(sessions(QStringLiteral("t/old-inside.md")));
    makeOld(sessions(QStringLiteral("t/old-inside.md")));
    datePast(sessions(QStringLiteral("t")), -1h);
    EXPECT_EQ(removeExpired(), 1);
    EXPECT_FALSE(isThere(sessions(QStringLiteral("s"))));
    EXPECT_TRUE(isThere(sessions(QStringLiteral("t/old-inside.md"))));
}

TEST_F(Retention, AStrayFileAmongTheSessionsExpiresLikeASession) {
    writeFile(sessions(QStringLiteral("stray.txt")));
    makeOld(sessions(QStringLiteral("stray.txt")));
    EXPECT_EQ(removeExpired(), 1);
    EXPECT_FALSE(isThere(sessions(QStringLiteral("stray.txt"))));
}

TEST_F(Retention, SparesHiddenEntriesWhichRemovingAllRemoves) {
    writeFile(captures(QStringLiteral(".hidden")));
    writeFile(sessions(QStringLiteral(".hidden")));
    writeFile(sessions(QStringLiteral(".folder/inside")));
    makeOld(captures(QStringLiteral(".hidden")));
    makeOld(sessions(QStringLiteral(".hidden")));
    makeOld(sessions(QStringLiteral(".folder")));
    EXPECT_EQ(removeExpired(), 0);
    EXPECT_TRUE(isThere(sessions(QStringLiteral(".hidden"))));
    EXPECT_EQ(removeAll(), 3);
    EXPECT_FALSE(isThere(captures(QStringLiteral(".hidden"))));
    EXPECT_FALSE(isThere(sessions(QStringLiteral(".hidden"))));
    EXPECT_FALSE(isThere(sessions(QStringLiteral(".folder"))));
}

TEST_F(Retention, SparesTheLatestLinkWhereverItLeads) {
    makeFolder(under(QStringLiteral("elsewhere")));
    makeOld(under(QStringLiteral("elsewhere")));
    makeLink(under(QStringLiteral("elsewhere")), sessions(QStringLiteral("old-link")));
    makeFolder(sessions(QStringLiteral("s")));
    makeOld(sessions(QStringLiteral("s")));
    m_folders.updateLatestLink(sessions(QStringLiteral("s")));

    EXPECT_EQ(removeExpired(), 1);

    EXPECT_TRUE(isThere(sessions(QStringLiteral("old-link"))));
    EXPECT_TRUE(isThere(m_paths.latestSessionLink()));
    EXPECT_EQ(m_folders.latest(), std::nullopt);
}

TEST_F(Retention, NeverReachesThroughALink) {
    const QString precious = under(QStringLiteral("precious/file"));
    writeFile(precious);
    makeOld(precious);
    makeOld(under(QStringLiteral("precious")));
    makeFolder(sessions(QStringLiteral("old")));
    makeLink(under(QStringLiteral("precious")), sessions(QStringLiteral("old/link")));
    makeOld(sessions(QStringLiteral("old")));
    makeLink(under(QStringLiteral("precious")), captures(QStringLiteral("folder-link")));
    makeLink(precious, captures(QStringLiteral("file-link")));
    makeLink(QStringLiteral("/no/where"), captures(QStringLiteral("dangling")));

    EXPECT_EQ(removeExpired(), 3);

    EXPECT_TRUE(isThere(precious));
    EXPECT_FALSE(isThere(sessions(QStringLiteral("old"))));
    EXPECT_FALSE(isThere(captures(QStringLiteral("folder-link"))));
    EXPECT_FALSE(isThere(captures(QStringLiteral("file-link"))));
    EXPECT_TRUE(isThere(captures(QStringLiteral("dangling"))));
}

TEST_F(Retention, SweepsAFolderThatIsItselfALinkAndNoLinkInIt) {
    const QString precious = under(QStringLiteral("precious/file"));
    writeFile(precious);
    makeOld(precious);
    makeOld(under(QStringLiteral("precious")));
    const auto onDisk = [this](const QString& name) { return under(QStringLiteral("disk/") + name); };
    for (const QString& name : {QStringLiteral("captures"), QStringLiteral("sessions")}) {
        ASSERT_TRUE(QDir().rmdir(under(QStringLiteral(".orvane/") + name)));
        makeFolder(onDisk(name));
        makeLink(onDisk(name), under(QStringLiteral(".orvane/") + name));
    }
    writeFile(onDisk(QStringLiteral("captures/old.png")));
    writeFile(onDisk(QStringLiteral("captures/new.png")));
    makeLink(under(QStringLiteral("precious")), onDisk(QStringLiteral("captures/folder-link")));
    makeFolder(onDisk(QStringLiteral("sessions/old")));
    makeLink(under(QStringLiteral("precious")), onDisk(QStringLiteral("sessions/old/link")));
    makeFolder(onDisk(QStringLiteral("sessions/new")));
    makeLink(under(QStringLiteral("precious")), onDisk(QStringLiteral("sessions/latest")));
    makeOld(onDisk(QStringLiteral("captures/old.png")));
    makeOld(onDisk(QStringLiteral("sessions/old")));
    datePast(onDisk(QStringLiteral("captures/new.png")), -1h);
    datePast(onDisk(QStringLiteral("sessions/new")), -1h);

    EXPECT_EQ(removeExpired(), 3);

    EXPECT_FALSE(isThere(onDisk(QStringLiteral("captures/old.png"))));
    EXPECT_FALSE(isThere(onDisk(QStringLiteral("captures/folder-link"))));
    EXPECT_FALSE(isThere(onDisk(QStringLiteral("sessions/old"))));
    EXPECT_TRUE(isThere(onDisk(QStringLiteral("captures/new.png"))));
    EXPECT_TRUE(isThere(onDisk(QStringLiteral("sessions/new"))));
    EXPECT_TRUE(isThere(onDisk(QStringLiteral("sessions/latest"))));

    EXPECT_EQ(removeAll(), 3);

    EXPECT_FALSE(isThere(onDisk(QStringLiteral("sessions/latest"))));
    EXPECT_TRUE(isThere(m_paths.capturesDir()));
    EXPECT_TRUE(isThere(m_paths.sessionsDir()));
    EXPECT_TRUE(isThere(precious));
}

TEST_F(Retention, ALinkToNowhereIsAnEmptyFolder) {
    for (const QString& root : {m_paths.capturesDir(), m_paths.sessionsDir()}) {
        ASSERT_TRUE(QDir().rmdir(root));
        makeLink(QStringLiteral("/no/where"), root);
    }
    EXPECT_EQ(removeExpired(), 0);
    EXPECT_EQ(removeAll(), 0);
    EXPECT_TRUE(isThere(m_paths.capturesDir()));
}

TEST_F(Retention, StopsWhenItIsAskedTo) {
    for (const QString& root : {captures(), sessions()}) {
        writeFile(root + QStringLiteral("old"));
        makeOld(root + QStringLiteral("old"));
    }
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(
        retention::removeExpired(m_paths.capturesDir(), m_paths.sessionsDir(), m_now, 30, stop.get_token()),
        0);
    EXPECT_TRUE(isThere(captures(QStringLiteral("old"))));
    EXPECT_EQ(removeExpired(), 2);
}

TEST_F(Retention, DeletesNamesThatAreNotValidText) {
    const std::filesystem::path odd = native(captures()) / "odd-\xFF\xFE.png";
    ASSERT_TRUE(QDir().mkpath(captures()));
    std::filesystem::create_directory(odd);
    EXPECT_EQ(removeAll(), 1);
    EXPECT_FALSE(std::filesystem::exists(odd));
}

TEST_F(Retention, AllRemovesEverythingWithTheLatestLinkButNotTheFolders) {
    writeFile(captures(QStringLiteral("a.png")));
    writeFile(captures(QStringLiteral("folder/b.png")));
    writeFile(sessions(QStringLiteral("s/SESSION.md")));
    m_folders.updateLatestLink(sessions(QStringLiteral("s")));
    writeFile(under(QStringLiteral(".orvane/mcp-endpoint.json")));

    EXPECT_EQ(removeAll(), 4);

    EXPECT_FALSE(isThere(m_paths.latestSessionLink()));
    EXPECT_TRUE(QDir(captures()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    EXPECT_TRUE(QDir(sessions()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    EXPECT_TRUE(QFileInfo(captures()).isDir());
    EXPECT_TRUE(isThere(under(QStringLiteral(".orvane/mcp-endpoint.json"))));
    EXPECT_EQ(removeAll(), 0);
}

TEST_F(Retention, AllFollowsALinkAmongTheSessionsNoFurtherThanTheLink) {
    const QString precious = under(QStringLiteral("precious/file"));
    writeFile(precious);
    makeLink(under(QStringLiteral("precious")), sessions(QStringLiteral("link")));
    makeFolder(sessions(QStringLiteral("s")));
    makeLink(under(QStringLiteral("precious")), sessions(QStringLiteral("s/link")));
    EXPECT_EQ(removeAll(), 2);
    EXPECT_TRUE(isThere(precious));
}

TEST_F(Retention, OneMissingFolderDoesNotStopTheOther) {
    ASSERT_TRUE(QDir().rmdir(m_paths.capturesDir()));
    writeFile(sessions(QStringLiteral("s/SESSION.md")));
    makeOld(sessions(QStringLiteral("s")));
    EXPECT_EQ(removeExpired(), 1);
    writeFile(sessions(QStringLiteral("t/SESSION.md")));
    EXPECT_EQ(removeAll(), 1);
}

} // namespace
} // namespace orvane
