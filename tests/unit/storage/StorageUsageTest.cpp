#include "OrvaneCore/storage/StorageUsage.h"

#include "tests/unit/storage/StorageFixture.h"

#include <QLocale>

#include <sys/stat.h>

namespace orvane {
namespace {

class Usage : public StorageFixture {
protected:
    StorageUsage usage() const { return measureUsage(m_paths.capturesDir(), m_paths.sessionsDir()); }
};

TEST_F(Usage, UsageCountsFilesAtAnyDepthButNoFolders) {
    writeFile(captures(QStringLiteral("a.png")), QByteArray(1000, 'x'));
    writeFile(captures(QStringLiteral("deep/er/b.png")), QByteArray(234, 'x'));
    writeFile(sessions(QStringLiteral("s1/SESSION.md")), QByteArray(10, 'x'));
    writeFile(sessions(QStringLiteral("s1/empty")), QByteArray());
    makeFolder(sessions(QStringLiteral("s2/nothing")));
    EXPECT_EQ(usage(), (StorageUsage{2, 1234, 2, 10}));
    EXPECT_EQ(usage().totalBytes(), 1244U);
}

TEST_F(Usage, UsageLeavesOutWhatIsHidden) {
    writeFile(captures(QStringLiteral(".hidden")));
    writeFile(captures(QStringLiteral(".folder/inside.png")));
    writeFile(captures(QStringLiteral("shown.png")));
    EXPECT_EQ(usage().captureCount, 1);
    EXPECT_EQ(usage().captureBytes, 1U);
}

TEST_F(Usage, UsageCountsALinkWithItsOwnSizeAndDoesNotFollowIt) {
    writeFile(under(QStringLiteral("big/file")), QByteArray(100'000, 'x'));
    m_paths.ensureDirectories();
    makeLink(under(QStringLiteral("big")), captures(QStringLiteral("folder-link")));
    makeLink(under(QStringLiteral("big/file")), captures(QStringLiteral("file-link")));
    makeLink(captures(), captures(QStringLiteral("round")));
    makeLink(QStringLiteral("/no/where"), m_paths.latestSessionLink());
    const auto stats = usage();
    EXPECT_EQ(stats.captureCount, 3);
    const auto targetLengths =
        under(QStringLiteral("big")).size() + under(QStringLiteral("big/file")).size() + captures().size();
    EXPECT_EQ(stats.captureBytes, quint64(targetLengths));
    EXPECT_EQ(stats.sessionCount, 1);
    EXPECT_EQ(stats.sessionBytes, 9U);
}

TEST_F(Usage, UsageCountsAPipeWithoutOpeningIt) {
    m_paths.ensureDirectories();
    ASSERT_EQ(::mkfifo(QFile::encodeName(captures(QStringLiteral("pipe"))).constData(), 0600), 0);
    EXPECT_EQ(usage(), (StorageUsage{1, 0, 0, 0}));
}

TEST_F(Usage, UsageOfMissingFoldersIsZero) {
    EXPECT_EQ(usage(), StorageUsage());
}

TEST_F(Usage, UsageIsToldInDecimalUnits) {
    QLocale::setDefault(QLocale::c());
    const StorageUsage stats{3, 1'500'000, 1, 999};
    EXPECT_EQ(stats.capturesFormatted(), QStringLiteral("1.50 MB"));
    EXPECT_EQ(stats.sessionsFormatted(), QStringLiteral("999 bytes"));
    EXPECT_EQ(stats.totalFormatted(), QStringLiteral("1.50 MB"));
    EXPECT_EQ(StorageUsage().totalFormatted(), QStringLiteral("0 bytes"));
}

} // namespace
} // namespace orvane
