// When a movie's frames are shown, which are key frames, and how much all takes.
#include "tests/unit/media/MovieTest.h"

#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <map>

#include <malloc.h>
#include <sys/resource.h>

#if defined(__SANITIZE_ADDRESS__)
// The compiler brings the function but not its header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

using namespace Qt::StringLiterals;

namespace orvane::media {
namespace {

using namespace std::chrono_literals;

class Mp4RateTest : public MovieTest {
protected:
    void writeAt(const VideoFormat& format, const std::vector<Microseconds>& times) {
        const std::unique_ptr<VideoWriter> writer = create(format);
        const QImage frame = plain(format.sizePixels, Qt::darkCyan);
        for (const Microseconds time : times)
            append(*writer, frame, time);
        writer->finish();
    }

    std::vector<qint64> keyTicks() const {
        std::vector<qint64> ticks;
        for (const test::Packet& packet : test::packetsOf(path())) {
            if (packet.isKeyFrame)
                ticks.push_back(packet.tick);
        }
        return ticks;
    }

    static std::vector<Microseconds> every(Microseconds period, int count) {
        std::vector<Microseconds> times;
        times.reserve(static_cast<std::size_t>(count));
        for (int index = 0; index < count; ++index)
            times.push_back(index * period);
        return times;
    }

    /// Of a movie of noise.
    double bitsPerSecondOf(const VideoFormat& format, Microseconds period, int count) {
        const std::unique_ptr<VideoWriter> writer = create(format);
        for (int index = 0; index < count; ++index)
            append(*writer, noise(format.sizePixels), index * period);
        writer->finish();
        return static_cast<double>(QFileInfo(path()).size()) * 8 / test::secondsOf(path());
    }

    /// {thread: its nice value} of this process.
    static std::map<int, int> niceValues() {
        std::map<int, int> values;
        for (const QString& thread :
             QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            errno = 0;
            const int value = ::getpriority(PRIO_PROCESS, thread.toUInt());
            if (errno == 0)
                values.emplace(thread.toInt(), value);
        }
        return values;
    }

    /// What is allocated and not freed.
    static std::size_t bytesInUse() {
#if defined(__SANITIZE_ADDRESS__)
        return __sanitizer_get_current_allocated_bytes();
#else
        const struct mallinfo2 use = mallinfo2();
        return use.uordblks + use.hblkhd;
#endif
    }
};

TEST_F(Mp4RateTest, LastsFromTheBeginToTheEndOfTheLastFrame) {
    writeAt(formatOf({64, 48}), every(100ms, 51));
    EXPECT_NEAR(test::secondsOf(path()), 5 + 1 / 30.0, 0.001);
    EXPECT_NEAR(test::streamOf(path())[u"duration"_s].toString().toDouble(), 5 + 1 / 30.0, 0.001);
}

TEST_F(Mp4RateTest, TimesMayBeUneven) {
    writeAt(formatOf({64, 48}), {0us, 40ms, 1s, 1'000'011us, 1'000'022us, 3700ms, 3701ms, 12s});

    EXPECT_EQ(test::ticksOf(path()),
              (std::vector<qint64>{0, 3600, 90'000, 90'001, 90'002, 333'000, 333'090, 1'080'000}));
    EXPECT_NEAR(test::secondsOf(path()), 12 + 1 / 30.0, 0.001);
}

TEST_F(Mp4RateTest, TimesThatDoNotAscendLoseNoFrame) {
    writeAt(formatOf({64, 48}), {500ms, 1s, 1s, 900ms, 2s});
    EXPECT_EQ(test::ticksOf(path()), (std::vector<qint64>{0, 90'000, 90'001, 90'002, 180'000}));
}

TEST_F(Mp4RateTest, AFrameMayBeShownForManyHours) {
    writeAt(formatOf({64, 48}), {0us, 1s, 1s + 20h, 2s + 20h});

    const std::vector<qint64> ticks = test::ticksOf(path());
    ASSERT_GE(ticks.size(), 4U);
    const qint64 later = (20 * 3600 + 1) * qint64{90'000};
    EXPECT_EQ(ticks[1], 90'000);
    EXPECT_EQ(std::count(ticks.begin(), ticks.end(), later), 1);
    EXPECT_EQ(ticks.back(), later + 90'000);
    EXPECT_TRUE(std::is_sorted(ticks.begin(), ticks.end()));
    EXPECT_NEAR(test::secondsOf(path()), 20 * 3600 + 2 + 1 / 30.0, 0.01);
}

TEST_F(Mp4RateTest, KeyFramesComeAfterSoManyFrames) {
    writeAt({QSize(64, 48), 10, 1'000'000, 10}, every(30ms, 45));
    EXPECT_EQ(keyTicks(), (std::vector<qint64>{0, 27'000, 54'000, 81'000, 108'000}));
}

TEST_F(Mp4RateTest, KeyFramesComeAfterSoMuchTimeWhenFramesAreFew) {
    writeAt(formatOf({64, 48}), every(700ms, 10));
    EXPECT_EQ(keyTicks(), (std::vector<qint64>{0, 189'000, 378'000, 567'000}));

    writeAt(formatOf({64, 48}), every(5s, 3));
    EXPECT_EQ(keyTicks(), (std::vector<qint64>{0, 450'000, 900'000}));
}

TEST_F(Mp4RateTest, KeyFramesAreNoMoreThanTwoSecondsApartAtTheExpectedRate) {
    writeAt({QSize(64, 48), 5, 1'000'000, 10}, every(200ms, 31));
    EXPECT_EQ(keyTicks(), (std::vector<qint64>{0, 180'000, 360'000, 540'000}));
}

TEST_F(Mp4RateTest, KeepsToTheBitRateAtTheExpectedFrameRate) {
    const double bits = bitsPerSecondOf(formatOf({320, 240}, 1'000'000), Microseconds(33'333), 450);
    EXPECT_NEAR(bits, 1'000'000, 250'000);
}

TEST_F(Mp4RateTest, KeepsToTheBitRateWhenFramesComeSlower) {
    const double bits = bitsPerSecondOf(formatOf({320, 240}, 1'000'000), 200ms, 150);
    EXPECT_NEAR(bits, 1'000'000, 250'000);
}

TEST_F(Mp4RateTest, ItsThreadsGiveWayAndNoOthersDo) {
    const std::map<int, int> before = niceValues();
    const std::unique_ptr<VideoWriter> writer = create(formatOf({640, 480}));
    const auto newThreadsGiveWay = [&] {
        int count = 0;
        for (const auto& [thread, value] : niceValues()) {
            if (before.count(thread) != 0)
                continue;
            ++count;
            if (value < 10)
                return false;
        }
        return count > 0;
    };
    EXPECT_TRUE(test::eventually(newThreadsGiveWay));
    for (const auto& [thread, value] : niceValues()) {
        const auto known = before.find(thread);
        EXPECT_TRUE(known == before.end() || value == known->second);
    }
}

TEST_F(Mp4RateTest, MemoryDoesNotGrowWithTheMovie) {
    const std::unique_ptr<VideoWriter> writer = create(formatOf({64, 48}, 200'000));
    const std::vector<QImage> frames{noise({64, 48}), noise({64, 48}), noise({64, 48})};
    const auto appendUpTo = [&](int from, int to) {
        for (int index = from; index < to; ++index)
            append(*writer, frames[static_cast<std::size_t>(index) % frames.size()], index * 33ms);
    };
    appendUpTo(0, 1000);
    const std::size_t before = bytesInUse();
    appendUpTo(1000, 11'000);
    const std::size_t after = bytesInUse();
    writer->finish();

    // The fragment that is being written is up to a second long and more or less full.
    EXPECT_LT(after, before + 100'000);
    EXPECT_EQ(test::packetsOf(path()).size(), 11'000U);
}

} // namespace
} // namespace orvane::media
