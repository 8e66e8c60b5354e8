// What the file is while a movie is being written, when it is finished and when it never is.
#include "OrvaneCore/platform/PlatformError.h"
#include "tests/unit/media/MovieTest.h"

#include <QFileInfo>
#include <QProcess>

#include <gmock/gmock.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace orvane::media {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::Not;
using testing::StartsWith;

class Mp4FileTest : public MovieTest {
protected:
    /// Appends frames that are 100 ms apart.
    static void appendFrames(VideoWriter& writer, int count) {
        for (int index = 0; index < count; ++index)
            append(writer, plain({64, 48}, index % 2 == 0 ? Qt::red : Qt::blue), index * 100ms);
    }

    /// A program that writes a movie until it is killed, which happens when it has appended so many frames
    /// and another `wait` has passed. Gives the number of the last frame that it appended.
    int writeAndKill(std::chrono::milliseconds period, int frames, int lastFrame,
                     std::chrono::milliseconds wait) {
        QProcess process;
        process.start(QStringLiteral(ORVANE_ENDLESS_WRITER),
                      {path(), QString::number(period.count()), QString::number(frames)});
        QByteArray said;
        EXPECT_TRUE(test::eventually(
            [&] {
                process.waitForReadyRead(50);
                said += process.readAllStandardOutput();
                return said.contains("\n" + QByteArray::number(lastFrame) + "\n");
            },
            60'000))
            << process.readAllStandardError().toStdString();
        std::this_thread::sleep_for(wait);
        process.kill();
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
        said += process.readAllStandardOutput();
        return said.trimmed().split('\n').back().toInt();
    }
};

TEST_F(Mp4FileTest, IsH264AsTheFormatSays) {
    write(formatOf({320, 200}), {plain({320, 200}, Qt::red), plain({320, 200}, Qt::blue)});

    const QJsonObject stream = test::streamOf(path());
    EXPECT_EQ(stream[u"codec_type"_s].toString(), u"video"_s);
    EXPECT_EQ(stream[u"codec_name"_s].toString(), u"h264"_s);
    EXPECT_EQ(stream[u"codec_tag_string"_s].toString(), u"avc1"_s);
    EXPECT_EQ(stream[u"profile"_s].toString(), u"High"_s);
    EXPECT_EQ(stream[u"has_b_frames"_s].toInt(-1), 0);
    EXPECT_EQ(stream[u"pix_fmt"_s].toString(), u"yuv420p"_s);
    EXPECT_EQ(stream[u"width"_s].toInt(), 320);
    EXPECT_EQ(stream[u"height"_s].toInt(), 200);
    EXPECT_EQ(stream[u"sample_aspect_ratio"_s].toString(), u"1:1"_s);
    EXPECT_EQ(stream[u"time_base"_s].toString(), u"1/90000"_s);
    EXPECT_EQ(stream[u"color_range"_s].toString(), u"tv"_s);
    EXPECT_EQ(stream[u"color_space"_s].toString(), u"bt709"_s);
    EXPECT_EQ(stream[u"color_transfer"_s].toString(), u"bt709"_s);
    EXPECT_EQ(stream[u"color_primaries"_s].toString(), u"bt709"_s);
    EXPECT_THAT(test::formatOf(path())[u"format_name"_s].toString().split(u','), Contains(u"mp4"_s));
}

TEST_F(Mp4FileTest, FinishedHasItsHeaderFirst) {
    const std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}));
    appendFrames(*writer, 40);
    writer->finish();

    const QStringList boxes = test::boxesOf(path());
    EXPECT_EQ(boxes.value(0), u"ftyp"_s);
    EXPECT_EQ(boxes.value(1), u"moov"_s);
    EXPECT_EQ(boxes.count(u"moov"_s), 1);
    EXPECT_EQ(boxes.count(u"mdat"_s), 1);
    EXPECT_LT(boxes.indexOf(u"moov"_s), boxes.indexOf(u"mdat"_s));
    EXPECT_FALSE(boxes.contains(u"moof"_s));
    EXPECT_EQ(test::packetsOf(path()).size(), 40U);
    EXPECT_EQ(test::streamOf(path())[u"nb_frames"_s].toString(), u"40"_s);
    EXPECT_EQ(filesLeft(), QStringList{u"movie.mp4"_s});
}

TEST_F(Mp4FileTest, FinishedHasThePermissionsOfAFileOfTheUser) {
    QFile plainFile(path(u"other"_s));
    ASSERT_TRUE(plainFile.open(QIODevice::WriteOnly));
    plainFile.close();
    write(formatOf({64, 48}), {plain({64, 48}, Qt::red)});
    EXPECT_EQ(QFile::permissions(path()), plainFile.permissions());
}

TEST_F(Mp4FileTest, UnfinishedIsMadeOfFragmentsThatCanBePlayed) {
    const std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}));
    appendFrames(*writer, 60);

    // Without another frame, what is there is put on the disk after a second, but for one frame.
    ASSERT_TRUE(test::eventually([&] { return test::packetsOf(path()).size() >= 59; }));
    const QStringList boxes = test::boxesOf(path());
    EXPECT_EQ(boxes.mid(0, 4), (QStringList{u"ftyp"_s, u"moov"_s, u"moof"_s, u"mdat"_s}));
    EXPECT_GE(boxes.count(u"moof"_s), 5);
    EXPECT_EQ(boxes.count(u"moof"_s), boxes.count(u"mdat"_s));
    EXPECT_EQ(test::picturesOf(path()).size(), 59U);

    writer->finish();
    EXPECT_EQ(test::packetsOf(path()).size(), 60U);
}

TEST_F(Mp4FileTest, DestroyedUnfinishedItPlays) {
    std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}));
    appendFrames(*writer, 75);
    writer.reset();

    // Thirty frames of this size may have waited.
    EXPECT_GE(test::packetsOf(path()).size(), 45U);
    EXPECT_GE(test::picturesOf(path()).size(), 45U);
    EXPECT_TRUE(test::boxesOf(path()).contains(u"moof"_s));
    EXPECT_EQ(filesLeft(), QStringList{u"movie.mp4"_s});
}

TEST_F(Mp4FileTest, OfAKilledProcessPlaysUpToAboutASecondBefore) {
    const int last = writeAndKill(50ms, 1000, 70, 0ms);

    const std::vector<qint64> ticks = test::ticksOf(path());
    ASSERT_FALSE(ticks.empty());
    EXPECT_EQ(ticks.front(), 0);
    EXPECT_GE(ticks.back(), (last * 50 - 1200) * qint64{90});
    EXPECT_EQ(test::picturesOf(path()).size(), ticks.size());
}

TEST_F(Mp4FileTest, OfAProcessThatIsKilledInAPauseHasAllButTheLastFrame) {
    writeAndKill(50ms, 8, 7, 2500ms);
    EXPECT_EQ(test::picturesOf(path()).size(), 7U);
}

TEST_F(Mp4FileTest, FinishesOnce) {
    const std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}));
    appendFrames(*writer, 10);
    writer->finish();
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_NO_THROW(writer->finish());
    EXPECT_TRUE(filesLeft().isEmpty());
}

TEST_F(Mp4FileTest, TakesNothingAfterItIsFinished) {
    const std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}));
    appendFrames(*writer, 10);
    writer->finish();
    EXPECT_FALSE(writer->append(plain({64, 48}, Qt::white), 2s));
    EXPECT_EQ(test::packetsOf(path()).size(), 10U);
}

TEST_F(Mp4FileTest, WithoutFramesIsAnEmptyMovie) {
    create(formatOf({64, 48}))->finish();

    EXPECT_EQ(test::boxesOf(path()).value(1), u"moov"_s);
    EXPECT_EQ(test::streamOf(path())[u"width"_s].toInt(), 64);
    EXPECT_TRUE(test::packetsOf(path()).empty());
}

TEST_F(Mp4FileTest, ANullFrameIsNotTaken) {
    const std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}));
    EXPECT_FALSE(writer->append(QImage(), 0us));
    appendFrames(*writer, 3);
    writer->finish();
    EXPECT_EQ(test::packetsOf(path()).size(), 3U);
}

TEST_F(Mp4FileTest, OfOneFrameLastsForOneFrame) {
    write(formatOf({64, 48}), {plain({64, 48}, Qt::red)});
    EXPECT_EQ(test::picturesOf(path()).size(), 1U);
    EXPECT_NEAR(test::secondsOf(path()), 1 / 30.0, 0.001);
}

TEST_F(Mp4FileTest, ReplacesAFileOfItsName) {
    QFile old(path());
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(1'000'000, 'x'));
    old.close();

    write(formatOf({64, 48}), {plain({64, 48}, Qt::red)});

    EXPECT_LT(QFileInfo(path()).size(), 100'000);
    EXPECT_EQ(test::packetsOf(path()).size(), 1U);
}

TEST_F(Mp4FileTest, TheNameMayLookLikeAnAddress) {
    const QString name = path(u"tcp:films — ü %d.mp4"_s);
    const std::unique_ptr<VideoWriter> writer = m_media.createMp4(name, formatOf({64, 48}));
    appendFrames(*writer, 5);
    writer->finish();
    EXPECT_EQ(test::packetsOf(name).size(), 5U);
    EXPECT_FALSE(test::boxesOf(name).contains(u"moof"_s));
}

TEST_F(Mp4FileTest, SaysWhenTheEncoderIsNotReady) {
    const QSize large(3840, 2160);
    const QImage frame = noise(large);
    const std::unique_ptr<VideoWriter> writer = create(formatOf(large, 16'000'000));
    std::size_t taken = 0;
    std::size_t dropped = 0;
    // To put a frame in takes microseconds, to encode it many milliseconds.
    for (int index = 0; index < 40; ++index)
        ++(writer->append(frame, index * 33ms) ? taken : dropped);
    writer->finish();

    EXPECT_GE(taken, 4U);
    EXPECT_GE(dropped, 1U);
    EXPECT_EQ(test::packetsOf(path()).size(), taken);
}

TEST_F(Mp4FileTest, MoviesCanBeWrittenSideBySide) {
    const std::unique_ptr<VideoWriter> one = create(formatOf({64, 48}));
    const std::unique_ptr<VideoWriter> other = m_media.createMp4(path(u"other.mp4"_s), formatOf({64, 48}));
    std::thread second([&] {
        appendFrames(*other, 200);
        other->finish();
    });
    appendFrames(*one, 100);
    one->finish();
    second.join();
    EXPECT_EQ(test::packetsOf(path()).size(), 100U);
    EXPECT_EQ(test::packetsOf(path(u"other.mp4"_s)).size(), 200U);
}

} // namespace
} // namespace orvane::media
