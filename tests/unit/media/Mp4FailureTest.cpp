// What happens when there is no place for a movie.
#include "OrvaneCore/platform/PlatformError.h"
#include "tests/unit/media/MovieTest.h"

#include <QFileInfo>

#include <gmock/gmock.h>

#include <csignal>

#include <sys/fsuid.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace orvane::media {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;

/// While it lives, no file of this process grows beyond so many bytes: a write that would fails, as on a full
/// disk, and the kernel sends a signal that ends the process when nobody sees to it.
class FileSizeLimit {
public:
    explicit FileSizeLimit(qint64 bytes) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{static_cast<rlim_t>(bytes), m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_before); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before{};
};

class Mp4FailureTest : public MovieTest {
protected:
    std::string whatCreateSays(const QString& name, const VideoFormat& format) {
        try {
            m_media.createMp4(name, format);
        } catch (const PlatformError& error) {
            return error.what();
        }
        return {};
    }

    static std::string whatFinishSays(VideoWriter& writer) {
        try {
            writer.finish();
        } catch (const PlatformError& error) {
            return error.what();
        }
        return {};
    }

    static bool isSizeSignalAround() {
        sigset_t pending;
        sigset_t blocked;
        sigpending(&pending);
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        return sigismember(&pending, SIGXFSZ) != 0 || sigismember(&blocked, SIGXFSZ) != 0;
    }
};

TEST_F(Mp4FailureTest, ImpossibleFormatsLeaveNoFile) {
    for (const QSize size : {QSize(0, 0), QSize(0, 10), QSize(-4, 10), QSize(100'000, 100'000)})
        EXPECT_THAT(whatCreateSays(path(), formatOf(size)), HasSubstr("A movie of ")) << size.width();
    EXPECT_NE(whatCreateSays(path(), {QSize(64, 48), 0, 1'000'000, 60}), "");
    EXPECT_NE(whatCreateSays(path(), {QSize(64, 48), 30, 0, 60}), "");
    EXPECT_NE(whatCreateSays(path(), {QSize(64, 48), 30, 1'000'000, 0}), "");
    EXPECT_TRUE(filesLeft().isEmpty());
}

TEST_F(Mp4FailureTest, TheLargestFormatIsPossible) {
    EXPECT_EQ(whatCreateSays(path(), formatOf({8192, 4320})), "");
}

TEST_F(Mp4FailureTest, AFolderThatIsMissingIsNamed) {
    const QString name = m_folder.filePath(u"none/movie.mp4"_s);
    EXPECT_THAT(whatCreateSays(name, formatOf({64, 48})),
                AllOf(HasSubstr(name.toStdString()), HasSubstr("No such file or directory")));
    EXPECT_TRUE(filesLeft().isEmpty());
}

TEST_F(Mp4FailureTest, AFolderThatCannotBeWrittenIsNamed) {
    // The module is loaded first: it may lie where nobody else may read.
    EXPECT_THAT(whatCreateSays(path(), formatOf({0, 0})), HasSubstr("A movie of "));
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()).constData(), 0555), 0);
    // Where the tests run as root, who may write everywhere, as somebody else.
    const int user = ::setfsuid(65534);
    const std::string said = whatCreateSays(path(), formatOf({64, 48}));
    ::setfsuid(static_cast<uid_t>(user));
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()).constData(), 0755), 0);

    EXPECT_THAT(said, AllOf(HasSubstr(path().toStdString()), HasSubstr("Permission denied")));
    EXPECT_TRUE(filesLeft().isEmpty());
}

TEST_F(Mp4FailureTest, WhatIsNoFileStays) {
    const QString pipe = path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_THAT(whatCreateSays(pipe, formatOf({64, 48})), HasSubstr("could not be made"));
    EXPECT_THAT(whatCreateSays(m_folder.path(), formatOf({64, 48})), HasSubstr("could not be made"));
    EXPECT_EQ(filesLeft(), QStringList{u"pipe"_s});
}

TEST_F(Mp4FailureTest, ADiskThatIsFullFromTheBeginLeavesNoFile) {
    std::string said;
    {
        const FileSizeLimit limit(100);
        said = whatCreateSays(path(), formatOf({64, 48}));
    }
    EXPECT_THAT(said, AllOf(HasSubstr(path().toStdString()), HasSubstr("File too large")));
    EXPECT_FALSE(isSizeSignalAround());
    EXPECT_TRUE(filesLeft().isEmpty());
}

TEST_F(Mp4FailureTest, ADiskThatBecomesFullIsToldInTheEnd) {
    constexpr int bytes = 2'000'000;
    const std::unique_ptr<VideoWriter> writer = create(formatOf({320, 240}, 4'000'000));
    {
        const FileSizeLimit limit(bytes);
        for (int index = 0; index < 300; ++index)
            append(*writer, noise({320, 240}), index * 33ms);
        // It has failed long ago, and takes whatever comes, more than could wait.
        const QImage frame = noise({320, 240});
        for (int index = 300; index < 350; ++index)
            EXPECT_TRUE(writer->append(frame, index * 33ms));

        EXPECT_THAT(whatFinishSays(*writer),
                    AllOf(HasSubstr(path().toStdString()), HasSubstr("File too large")));
    }
    EXPECT_FALSE(isSizeSignalAround());
    EXPECT_EQ(whatFinishSays(*writer), "");
    EXPECT_FALSE(writer->append(noise({320, 240}), 20s));

    // What there was room for plays, and nothing that is broken is left after it.
    EXPECT_LE(QFileInfo(path()).size(), bytes);
    EXPECT_EQ(test::boxesOf(path()).last(), u"mdat"_s);
    EXPECT_GE(test::picturesOf(path()).size(), 60U);
    EXPECT_EQ(filesLeft(), QStringList{u"movie.mp4"_s});
}

TEST_F(Mp4FailureTest, ADiskWithoutRoomForTheFinalFormLeavesTheMovieAsItIs) {
    const std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}));
    for (int index = 0; index < 10; ++index)
        append(*writer, plain({64, 48}, Qt::red), index * 33ms);
    ASSERT_TRUE(test::eventually([&] { return test::packetsOf(path()).size() >= 9; }));
    std::string said;
    {
        // Room for the last frame, but not for the header of the final form.
        const FileSizeLimit limit(QFileInfo(path()).size() + 2000);
        said = whatFinishSays(*writer);
    }
    EXPECT_THAT(said,
                AllOf(HasSubstr(path().toStdString()), HasSubstr("final form"), HasSubstr("File too large")));
    EXPECT_FALSE(isSizeSignalAround());
    EXPECT_EQ(test::picturesOf(path()).size(), 10U);
    EXPECT_TRUE(test::boxesOf(path()).contains(u"moof"_s));
    EXPECT_EQ(filesLeft(), QStringList{u"movie.mp4"_s});
}

TEST_F(Mp4FailureTest, AFolderThatWasMovedKeepsTheMovieAsItIs) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(u"before"_s));
    const QString before = m_folder.filePath(u"before"_s);
    const QString after = m_folder.filePath(u"after"_s);
    const std::unique_ptr<VideoWriter> writer =
        m_media.createMp4(before + u"/movie.mp4"_s, formatOf({64, 48}));
    for (int index = 0; index < 10; ++index)
        append(*writer, plain({64, 48}, Qt::red), index * 33ms);
    ASSERT_TRUE(QDir().rename(before, after));

    EXPECT_THAT(whatFinishSays(*writer), HasSubstr("final form"));

    EXPECT_EQ(test::picturesOf(after + u"/movie.mp4"_s).size(), 10U);
}

TEST_F(Mp4FailureTest, WhatTheLibrariesComplainOfIsInTheLogOnce) {
    testing::internal::CaptureStderr();
    for (int time = 0; time < 2; ++time) {
        const std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}));
        append(*writer, plain({64, 48}, Qt::red), 0us);
        ASSERT_TRUE(QFile::remove(path()));
        QFile other(path());
        ASSERT_TRUE(other.open(QIODevice::WriteOnly));
        other.write("no movie at all");
        other.close();
        EXPECT_THAT(whatFinishSays(*writer), HasSubstr("final form"));
    }
    const QString said = QString::fromStdString(testing::internal::GetCapturedStderr());

    EXPECT_EQ(said.count(u"moov atom not found"_s), 1) << said.toStdString();
    EXPECT_TRUE(said.startsWith(u"orvane: FFmpeg: "_s)) << said.toStdString();
    EXPECT_EQ(said.count(u'\n'), 1) << said.toStdString();
}

} // namespace
} // namespace orvane::media
