#include "tests/unit/storage/StorageFixture.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace orvane {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class Trash : public StorageFixture {
protected:
    void SetUp() override {
        StorageFixture::SetUp();
        m_paths.ensureDirectories();
        writeFile(sessions(QStringLiteral("s/SESSION.md")), "text");
    }

    QString trashed(const QString& name) const { return under(QStringLiteral("data/Trash/files/")) + name; }

    /// What is told on standard error by a trashing that must fail.
    std::string refuse(const QString& path) const {
        ::testing::internal::CaptureStderr();
        EXPECT_FALSE(m_folders.trash(path));
        return ::testing::internal::GetCapturedStderr();
    }
};

TEST_F(Trash, MovesASessionToTheTrash) {
    EXPECT_TRUE(m_folders.trash(sessions(QStringLiteral("s"))));
    EXPECT_FALSE(isThere(sessions(QStringLiteral("s"))));
    EXPECT_TRUE(isThere(trashed(QStringLiteral("s/SESSION.md"))));
}

TEST_F(Trash, TakesAPathThatMeansASessionInAnotherSpelling) {
    EXPECT_TRUE(m_folders.trash(sessions(QStringLiteral("gone/../s/"))));
    EXPECT_TRUE(isThere(trashed(QStringLiteral("s/SESSION.md"))));
}

TEST_F(Trash, RefusesLatestInSilence) {
    m_folders.updateLatestLink(sessions(QStringLiteral("s")));
    EXPECT_EQ(refuse(m_paths.latestSessionLink()), "");
    EXPECT_EQ(refuse(m_paths.latestSessionLink() + QLatin1Char('/')), "");
    EXPECT_TRUE(isThere(m_paths.latestSessionLink()));
    EXPECT_TRUE(isThere(sessions(QStringLiteral("s/SESSION.md"))));
}

TEST_F(Trash, RefusesWhatIsNotDirectlyAmongTheSessionsInSilence) {
    writeFile(under(QStringLiteral("outside/file")));
    makeFolder(sessions(QStringLiteral("s/nested")));
    writeFile(captures(QStringLiteral("a.png")));
    for (const QString& path : {under(QStringLiteral("outside")), sessions(QStringLiteral("s/nested")),
                                captures(QStringLiteral("a.png")), sessions(QStringLiteral("../captures")),
                                sessions(QStringLiteral("s/..")), m_paths.sessionsDir(), m_paths.baseDir(),
                                QStringLiteral("s"), QStringLiteral("/"), QString()}) {
        EXPECT_EQ(refuse(path), "") << path.toStdString();
    }
    EXPECT_TRUE(isThere(under(QStringLiteral("outside/file"))));
    EXPECT_TRUE(isThere(sessions(QStringLiteral("s/nested"))));
    EXPECT_TRUE(isThere(captures(QStringLiteral("a.png"))));
    EXPECT_FALSE(isThere(under(QStringLiteral("data/Trash"))));
}

TEST_F(Trash, IsNotLedOutsideByALinkInTheMiddleOfThePath) {
    writeFile(under(QStringLiteral("outside/s/precious")));
    makeFolder(under(QStringLiteral("outside/inner")));
    makeLink(under(QStringLiteral("outside/inner")), sessions(QStringLiteral("link")));
    // To the file system this path is outside/s.
    EXPECT_TRUE(m_folders.trash(sessions(QStringLiteral("link/../s"))));
    EXPECT_TRUE(isThere(under(QStringLiteral("outside/s/precious"))));
    EXPECT_FALSE(isThere(sessions(QStringLiteral("s"))));
}

TEST_F(Trash, MovesALinkAmongTheSessionsAndNotWhatItLeadsTo) {
    writeFile(under(QStringLiteral("outside/precious")));
    makeLink(under(QStringLiteral("outside")), sessions(QStringLiteral("link")));
    EXPECT_TRUE(m_folders.trash(sessions(QStringLiteral("link"))));
    EXPECT_TRUE(isThere(under(QStringLiteral("outside/precious"))));
    EXPECT_FALSE(isThere(sessions(QStringLiteral("link"))));
}

TEST_F(Trash, RemovesLatestWhenItPointedToTheSession) {
    m_folders.updateLatestLink(sessions(QStringLiteral("s")));
    EXPECT_TRUE(m_folders.trash(sessions(QStringLiteral("s"))));
    EXPECT_FALSE(isThere(m_paths.latestSessionLink()));
}

TEST_F(Trash, LeavesLatestAloneWhenItPointsElsewhere) {
    makeFolder(sessions(QStringLiteral("t")));
    m_folders.updateLatestLink(sessions(QStringLiteral("t")));
    EXPECT_TRUE(m_folders.trash(sessions(QStringLiteral("s"))));
    EXPECT_EQ(m_folders.latest(), QFileInfo(sessions(QStringLiteral("t"))).canonicalFilePath());
}

TEST_F(Trash, TellsWhyTheTrashDidNotTakeASession) {
    const std::string told = refuse(sessions(QStringLiteral("missing")));
    EXPECT_THAT(told, StartsWith("orvane: failed to trash session missing: "));
    EXPECT_THAT(told, HasSubstr("No such file"));
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1);
}

TEST_F(Trash, LeavesASessionWhereItIsWhenThereIsNoPlaceForATrash) {
    const QTemporaryDir workingFolder;
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(workingFolder.path()));
    // First the data folder cannot be made, then the trash folder in it.
    writeFile(under(QStringLiteral("data")));
    EXPECT_THAT(refuse(sessions(QStringLiteral("s"))), StartsWith("orvane: failed to trash session s: "));
    QFile::remove(under(QStringLiteral("data")));
    writeFile(under(QStringLiteral("data/Trash")));
    EXPECT_THAT(refuse(sessions(QStringLiteral("s"))), StartsWith("orvane: failed to trash session s: "));
    QFile::remove(under(QStringLiteral("data/Trash")));
    makeLink(QStringLiteral("/no/where"), under(QStringLiteral("data/Trash")));
    EXPECT_THAT(refuse(sessions(QStringLiteral("s"))), StartsWith("orvane: failed to trash session s: "));
    EXPECT_TRUE(QDir::setCurrent(before));
    EXPECT_TRUE(isThere(sessions(QStringLiteral("s/SESSION.md"))));
    EXPECT_TRUE(QDir(workingFolder.path()).isEmpty());
}

TEST_F(Trash, LeavesASessionWhereItIsWhenTheTrashIsBroken) {
    writeFile(under(QStringLiteral("data/Trash/files")));
    EXPECT_THAT(refuse(sessions(QStringLiteral("s"))), StartsWith("orvane: failed to trash session s: "));
    EXPECT_TRUE(isThere(sessions(QStringLiteral("s/SESSION.md"))));
}

TEST_F(Trash, KeepsBothOfTwoSessionsOfOneName) {
    EXPECT_TRUE(m_folders.trash(sessions(QStringLiteral("s"))));
    writeFile(sessions(QStringLiteral("s/other")));
    EXPECT_TRUE(m_folders.trash(sessions(QStringLiteral("s"))));
    EXPECT_FALSE(isThere(sessions(QStringLiteral("s"))));
    EXPECT_TRUE(isThere(trashed(QStringLiteral("s/SESSION.md"))));
    EXPECT_EQ(QDir(trashed(QString())).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 2);
}

TEST_F(Trash, KeepsLatestWhenTheTrashDidNotTakeTheSession) {
    m_folders.updateLatestLink(sessions(QStringLiteral("missing")));
    EXPECT_NE(refuse(sessions(QStringLiteral("missing"))), "");
    EXPECT_TRUE(isThere(m_paths.latestSessionLink()));
}

} // namespace
} // namespace orvane
