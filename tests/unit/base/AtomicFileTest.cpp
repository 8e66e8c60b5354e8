#include "OrvaneCore/base/AtomicFile.h"
#include "tests/unit/storage/StorageFixture.h"

#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>

namespace orvane {
namespace {

class AtomicFile : public StorageFixture {
protected:
    static QByteArray contentOf(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QStringList entries() const {
        return QDir(home()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
};

TEST_F(AtomicFile, WritesAllBytesAndNothingElse) {
    const QByteArray bytes("a\0b\xFF", 4);
    EXPECT_TRUE(writeFileAtomically(under(QStringLiteral("日本.png")), bytes));
    EXPECT_EQ(contentOf(under(QStringLiteral("日本.png"))), bytes);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("日本.png")});
}

TEST_F(AtomicFile, WritesAnEmptyFile) {
    EXPECT_TRUE(writeFileAtomically(under(QStringLiteral("empty")), {}));
    EXPECT_EQ(contentOf(under(QStringLiteral("empty"))), QByteArray());
}

TEST_F(AtomicFile, ReplacesALongerFile) {
    writeFile(under(QStringLiteral("f")), QByteArray(5000, 'o'));
    EXPECT_TRUE(writeFileAtomically(under(QStringLiteral("f")), QByteArray("new")));
    EXPECT_EQ(contentOf(under(QStringLiteral("f"))), QByteArray("new"));
    EXPECT_EQ(entries().size(), 1);
}

TEST_F(AtomicFile, HasThePermissionsThatAreAskedFor) {
    const auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    EXPECT_TRUE(writeFileAtomically(under(QStringLiteral("f")), QByteArray("x"), ownerOnly));
    const auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther |
                        QFileDevice::WriteOther | QFileDevice::ExeOwner;
    EXPECT_EQ(QFile::permissions(under(QStringLiteral("f"))) & (ownerOnly | others), ownerOnly);
}

TEST_F(AtomicFile, FollowsTheUmaskLikeAnyFile) {
    const mode_t before = ::umask(0027);
    EXPECT_TRUE(writeFileAtomically(under(QStringLiteral("f")), QByteArray("x")));
    ::umask(before);
    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(under(QStringLiteral("f"))).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(AtomicFile, TakesTheLongestNameAFileSystemAllows) {
    const QString path = under(QString(255, QLatin1Char('n')));
    EXPECT_TRUE(writeFileAtomically(path, QByteArray("x")));
    EXPECT_EQ(contentOf(path), QByteArray("x"));
}

TEST_F(AtomicFile, ReplacesALinkInsteadOfFollowingIt) {
    writeFile(under(QStringLiteral("target")), "old");
    makeLink(under(QStringLiteral("target")), under(QStringLiteral("link")));
    EXPECT_TRUE(writeFileAtomically(under(QStringLiteral("link")), QByteArray("new")));
    EXPECT_FALSE(QFileInfo(under(QStringLiteral("link"))).isSymLink());
    EXPECT_EQ(contentOf(under(QStringLiteral("target"))), QByteArray("old"));
}

TEST_F(AtomicFile, FailsWithoutAFolderToWriteTo) {
    EXPECT_FALSE(writeFileAtomically(under(QStringLiteral("missing/f")), QByteArray("x")));
    writeFile(under(QStringLiteral("file")));
    EXPECT_FALSE(writeFileAtomically(under(QStringLiteral("file/f")), QByteArray("x")));
    EXPECT_EQ(entries(), QStringList{QStringLiteral("file")});
}

TEST_F(AtomicFile, FailsOntoAFolderAndLeavesNothingBehind) {
    makeFolder(under(QStringLiteral("folder")));
    EXPECT_FALSE(writeFileAtomically(under(QStringLiteral("folder")), QByteArray("x")));
    EXPECT_EQ(entries(), QStringList{QStringLiteral("folder")});
    EXPECT_TRUE(QFileInfo(under(QStringLiteral("folder"))).isDir());
}

TEST_F(AtomicFile, KeepsTheOldFileWhenTheDiskTakesOnlyAPart) {
    writeFile(under(QStringLiteral("f")), "old");
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{4096, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool written = writeFileAtomically(under(QStringLiteral("f")), QByteArray(100'000, 'x'));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written);
    EXPECT_EQ(contentOf(under(QStringLiteral("f"))), QByteArray("old"));
    EXPECT_EQ(entries(), QStringList{QStringLiteral("f")});
}

TEST_F(AtomicFile, WritersSideBySideNeverMixTheirBytes) {
    const QString path = under(QStringLiteral("f"));
    ASSERT_TRUE(writeFileAtomically(path, QByteArray(100'000, 'a')));
    std::atomic<int> failures = 0;
    std::vector<std::thread> writers;
    for (const char letter : {'a', 'b', 'c'}) {
        writers.emplace_back([&, letter] {
            for (int i = 0; i < 50; ++i)
                failures += writeFileAtomically(path, QByteArray(100'000, letter)) ? 0 : 1;
        });
    }
    for (int i = 0; i < 50; ++i) {
        const QByteArray seen = contentOf(path);
        ASSERT_FALSE(seen.isEmpty());
        EXPECT_EQ(seen, QByteArray(100'000, seen.front()));
    }
    for (std::thread& writer : writers)
        writer.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(entries().size(), 1);
}

} // namespace
} // namespace orvane
