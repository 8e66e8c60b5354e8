#include "OrvaneCore/storage/SessionFolders.h"

#include "tests/unit/storage/StorageFixture.h"

#include <array>
#include <atomic>
#include <set>
#include <thread>
#include <vector>

namespace orvane {
namespace {

class Sessions : public StorageFixture {};

TEST_F(Sessions, ASessionIsNamedByTheLocalTimeToTheMillisecond) {
    const auto session = m_folders.make();
    EXPECT_EQ(session.id, QStringLiteral("20261115-092611.482"));
    EXPECT_EQ(session.dir, sessions(QStringLiteral("20261115-092611.482")));
    EXPECT_TRUE(QFileInfo(session.dir).isDir());

    m_now = QDateTime(QDate(2027, 1, 2), QTime(3, 4, 5, 6)).toOffsetFromUtc(5 * 3600);
    EXPECT_EQ(m_folders.make().id, QStringLiteral("20270102-030405.006"));
}

TEST_F(Sessions, TheSecondOfOneMillisecondWaitsForTheNext) {
    const QDateTime start = m_now;
    const auto first = m_folders.make();
    EXPECT_EQ(m_now, start);
    const auto second = m_folders.make();
    EXPECT_EQ(m_now, start.addMSecs(1));
    EXPECT_EQ(second.id, QStringLiteral("20261115-092611.483"));
    EXPECT_EQ(second.dir, sessions(second.id));
    EXPECT_TRUE(QFileInfo(second.dir).isDir());
    EXPECT_TRUE(QFileInfo(first.dir).isDir());
}

TEST_F(Sessions, TwoMakersInOneMillisecondGetFoldersOfTheirOwn) {
    // As in two processes: neither knows what the other gave out.
    SessionFolders others(m_paths, m_clock, m_sleep);
    const auto first = m_folders.make();
    const auto second = others.make();
    const auto third = m_folders.make();
    EXPECT_EQ(first.id, QStringLiteral("20261115-092611.482"));
    EXPECT_EQ(second.id, QStringLiteral("20261115-092611.483"));
    EXPECT_EQ(third.id, QStringLiteral("20261115-092611.484"));
    for (const auto& session : {first, second, third})
        EXPECT_TRUE(QFileInfo(session.dir).isDir()) << session.dir.toStdString();
}

TEST_F(Sessions, ANameThatIsTakenByAnythingIsPassedOver) {
    makeFolder(sessions(QStringLiteral("20261115-092611.482")));
    writeFile(sessions(QStringLiteral("20261115-092611.483")));
    makeLink(QStringLiteral("/no/where"), sessions(QStringLiteral("20261115-092611.484")));
    EXPECT_EQ(m_folders.make().id, QStringLiteral("20261115-092611.485"));
    EXPECT_TRUE(QDir(sessions(QStringLiteral("20261115-092611.482"))).isEmpty());
    EXPECT_TRUE(QFileInfo(sessions(QStringLiteral("20261115-092611.483"))).isFile());
}

TEST_F(Sessions, ManyThreadsOfTwoMakersNeverShareAFolder) {
    constexpr int threadCount = 8;
    constexpr int sessionsEach = 25;
    const auto clock = [] { return QDateTime::currentDateTime(); };
    const auto sleep = [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); };
    SessionFolders ours(m_paths, clock, sleep);
    SessionFolders theirs(m_paths, clock, sleep);
    std::array<QStringList, threadCount> made;
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&folders = i % 2 == 0 ? ours : theirs, &mine = made.at(std::size_t(i))] {
            for (int k = 0; k < sessionsEach; ++k)
                mine.append(folders.make().id);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QStringList ids;
    for (const QStringList& some : made)
        ids += some;
    ids.sort();
    EXPECT_EQ(ids.removeDuplicates(), 0);
    EXPECT_EQ(QDir(sessions()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name), ids);
}

TEST_F(Sessions, WithoutAnyFolderEachStillHasAnIdOfItsOwn) {
    writeFile(under(QStringLiteral(".orvane")));
    ::testing::internal::CaptureStderr();
    const auto first = m_folders.make();
    const auto second = m_folders.make();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(first.dir, sessions(QStringLiteral("20261115-092611.482")));
    EXPECT_EQ(second.id, QStringLiteral("20261115-092611.483"));
    EXPECT_FALSE(isThere(first.dir));
    EXPECT_FALSE(isThere(second.dir));
}

TEST_F(Sessions, ThreadsWithoutAnyFolderHaveIdsOfTheirOwn) {
    writeFile(under(QStringLiteral(".orvane")));
    SessionFolders folders(
        m_paths, [] { return QDateTime::currentDateTime(); },
        [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); });
    std::array<QString, 8> ids;
    std::vector<std::thread> threads;
    threads.reserve(ids.size());
    for (QString& id : ids)
        threads.emplace_back([&folders, &id] { id = folders.make().id; });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(std::set<QString>(ids.begin(), ids.end()).size(), ids.size());
}

TEST_F(Sessions, LatestPointsToTheAbsolutePathOfTheSession) {
    const auto session = m_folders.make();
    m_folders.updateLatestLink(session.dir);
    EXPECT_EQ(std::filesystem::read_symlink(native(m_paths.latestSessionLink())), native(session.dir));
    EXPECT_EQ(m_folders.latest(), QFileInfo(session.dir).canonicalFilePath());
}

TEST_F(Sessions, LatestOfARelativePathLeadsToTheSame) {
    const auto session = m_folders.make();
    m_folders.updateLatestLink(QDir::current().relativeFilePath(session.dir));
    EXPECT_EQ(m_folders.latest(), QFileInfo(session.dir).canonicalFilePath());
}

TEST_F(Sessions, ANewLatestReplacesTheOldOneAndLeavesNothingBehind) {
    makeFolder(sessions(QStringLiteral("a")));
    makeFolder(sessions(QStringLiteral("b")));
    m_folders.updateLatestLink(sessions(QStringLiteral("a")));
    m_folders.updateLatestLink(sessions(QStringLiteral("b")));
    EXPECT_EQ(m_folders.latest(), QFileInfo(sessions(QStringLiteral("b"))).canonicalFilePath());
    const QStringList entries =
        QDir(sessions()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    EXPECT_EQ(entries, QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("latest")}));
}

TEST_F(Sessions, LatestTakesThePlaceOfAFileOrAFolder) {
    makeFolder(sessions(QStringLiteral("a")));
    writeFile(m_paths.latestSessionLink());
    m_folders.updateLatestLink(sessions(QStringLiteral("a")));
    EXPECT_TRUE(QFileInfo(m_paths.latestSessionLink()).isSymLink());

    QFile::remove(m_paths.latestSessionLink());
    writeFile(m_paths.latestSessionLink() + QStringLiteral("/inside.txt"));
    m_folders.updateLatestLink(sessions(QStringLiteral("a")));
    EXPECT_TRUE(QFileInfo(m_paths.latestSessionLink()).isSymLink());
}

TEST_F(Sessions, LatestNeverVanishesWhileItIsReplaced) {
    makeFolder(sessions(QStringLiteral("a")));
    makeFolder(sessions(QStringLiteral("b")));
    m_folders.updateLatestLink(sessions(QStringLiteral("a")));
    std::atomic<bool> done = false;
    int missing = 0;
    std::thread reader([&] {
        while (!done)
            missing += m_folders.latest() ? 0 : 1;
    });
    for (int i = 0; i < 500; ++i)
        m_folders.updateLatestLink(sessions(i % 2 == 0 ? QStringLiteral("b") : QStringLiteral("a")));
    done = true;
    reader.join();
    EXPECT_EQ(missing, 0);
}

TEST_F(Sessions, ALatestThatLeadsNowhereIsNoSession) {
    EXPECT_EQ(m_folders.latest(), std::nullopt);
    m_paths.ensureDirectories();
    EXPECT_EQ(m_folders.latest(), std::nullopt);
    m_folders.updateLatestLink(sessions(QStringLiteral("gone")));
    EXPECT_TRUE(isThere(m_paths.latestSessionLink()));
    EXPECT_EQ(m_folders.latest(), std::nullopt);
}

} // namespace
} // namespace orvane
