#include "OrvaneCore/recording/RecordingJournal.h"

#include "OrvanePlatform/png/IgzipWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <future>

namespace orvane::test {

namespace {

using namespace Qt::StringLiterals;
using testing::HasSubstr;

class RecordingJournalTest : public testing::Test {
protected:
    RecordingJournalTest() { frame.fill(Qt::black); }

    std::shared_ptr<RecordingJournal> make(const QString& path, WorkQueue* queue = nullptr) {
        return std::make_shared<RecordingJournal>(
            RecordingJournal::Head{.sessionId = u"20260304-050607.000"_s,
                                   .folder = path,
                                   .startTime = begin,
                                   .source = RecordingSource::human,
                                   .appName = u"Terminal"_s},
            pngWriter, tracker, queue == nullptr ? work : *queue);
    }

    /// The frame with a fifth of that cell of the grid in white: too little for a major change.
    QImage changedIn(int column, int row) const {
        QImage changed = frame;
        for (int y = row * 100; y < row * 100 + 20; ++y) {
            for (int x = column * 100; x < column * 100 + 100; ++x)
                changed.setPixel(x, y, 0xffffffff);
        }
        return changed;
    }

    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }

    QTemporaryDir folder;
    QDateTime begin{{2026, 3, 4}, {5, 6, 7}, Qt::UTC};
    QImage frame{800, 600, QImage::Format_RGB32};
    png::IgzipWriter pngWriter;
    ChangeTracker tracker;
    /// More than any test asks for at once.
    WorkQueue work{100};
    std::shared_ptr<RecordingJournal> journal = make(folder.path());
};

} // namespace

TEST_F(RecordingJournalTest, TellsNewsOnce) {
    journal->tellStart(u"Region (3x4)"_s);
    EXPECT_EQ(
        journal->takeNews(),
        QStringList{u"T+0.0s | recording_start | Started monitoring Region (3x4) | frame-000-start.png"_s});
    EXPECT_TRUE(journal->takeNews().isEmpty());
}

TEST_F(RecordingJournalTest, TellsOfASingleMinorUpdateBeforeTheNextChange) {
    for (const QImage& changed : {changedIn(7, 0), changedIn(7, 0), changedIn(0, 0)}) {
        journal->compare(frame, changed, begin.addSecs(1));
        work.drain();
    }
    const QStringList news = journal->takeNews();
    ASSERT_EQ(news.size(), 3);
    EXPECT_TRUE(news.at(0).startsWith(u"T+1.0s | visual_change | "_s));
    EXPECT_EQ(news.at(1),
              u"T+1.0s | minor_changes | 1 minor update(s) (continuous activity in active regions)"_s);
    EXPECT_TRUE(news.at(2).startsWith(u"T+1.0s | visual_change | "_s));
}

TEST_F(RecordingJournalTest, NumbersPicturesByTheFramesCompared) {
    journal->compare(frame, frame, begin.addSecs(1));
    journal->compare(frame, changedIn(7, 0), begin.addSecs(2));
    work.drain();
    EXPECT_EQ(files(), QStringList{u"change-002.png"_s});
    const QStringList news = journal->takeNews();
    ASSERT_EQ(news.size(), 1);
    EXPECT_TRUE(news.front().startsWith(u"T+2.0s | visual_change | "_s));
    EXPECT_TRUE(news.front().endsWith(u" | change-002.png"_s));
    journal->tellEnd(pngWriter.encode(frame), begin.addSecs(3));
    EXPECT_EQ(journal->takeNews(),
              QStringList{u"T+3.0s | recording_end | Recording stopped. Duration: 3.0s, 2 frames analyzed. | "
                          "frame-003-end.png"_s});
    EXPECT_EQ(files(), (QStringList{u"change-002.png"_s, u"frame-003-end.png"_s}));
}

TEST_F(RecordingJournalTest, TellsActivityThatWasOnlyCounted) {
    journal->compare(frame, changedIn(1, 1), begin.addSecs(1));
    for (int second = 2; second < 4; ++second) {
        journal->compare(second % 2 == 0 ? changedIn(1, 1) : frame, second % 2 == 0 ? frame : changedIn(1, 1),
                         begin.addSecs(second));
    }
    journal->tellPendingChanges(begin.addSecs(4));
    work.drain();
    EXPECT_EQ(journal->takeNews().last(), u"T+4.0s | minor_changes | 2 minor update(s) in active regions");
}

TEST_F(RecordingJournalTest, ReportsAnEndWithoutAPicture) {
    journal->tellStart(u"Terminal — a (3x4)"_s);
    journal->tellEndWithoutFrame(u"it closed"_s, begin.addSecs(5));
    journal->writeReport(begin.addSecs(6));
    QFile file(folder.filePath(u"SESSION.md"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_THAT(
        file.readAll().toStdString(),
        testing::AllOf(
            HasSubstr("- **Session ID:** 20260304-050607.000\n"), HasSubstr("- **Source:** human\n"),
            HasSubstr("- **App:** Terminal\n"), HasSubstr("- **Duration:** 6.0s\n"),
            HasSubstr("- **Frames captured:** 0\n"),
            HasSubstr(
                "| T+5.0s | recording_end | Recording stopped (end frame capture failed: it closed) | — |")));
}

TEST_F(RecordingJournalTest, LeavesOutWhatIsTooMuch) {
    std::promise<void> gate;
    std::promise<void> begun;
    WorkQueue busy(1);
    busy.post([&] {
        begun.set_value();
        gate.get_future().wait();
    });
    begun.get_future().wait();
    const auto hurried = make(folder.path(), &busy);
    EXPECT_TRUE(hurried->compare(frame, changedIn(0, 0), begin.addSecs(1)));
    EXPECT_FALSE(hurried->compare(changedIn(0, 0), changedIn(1, 1), begin.addSecs(2)));
    EXPECT_FALSE(hurried->compare(changedIn(0, 0), changedIn(2, 2), begin.addSecs(3)));
    gate.set_value();
    busy.drain();
    EXPECT_TRUE(hurried->compare(changedIn(0, 0), changedIn(3, 3), begin.addSecs(4)));
    // What holds no pictures is never left out.
    hurried->tellPendingChanges(begin.addSecs(5));
    busy.drain();
    EXPECT_EQ(files(), (QStringList{u"change-001.png"_s, u"change-002.png"_s}));
    hurried->tellEnd(pngWriter.encode(frame), begin.addSecs(6));
    EXPECT_TRUE(hurried->takeNews().last().endsWith(u" 2 frames analyzed. | frame-003-end.png"_s));
    testing::internal::CaptureStderr();
    hurried->logFramesLeftOut();
    journal->logFramesLeftOut();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: 2 frame(s) came faster than they could be searched for changes\n");
}

TEST_F(RecordingJournalTest, GoesOnWithoutAFolder) {
    const auto lost = make(folder.filePath(u"no/such/folder"_s));
    lost->writeStartFrame(pngWriter.encode(frame));
    lost->compare(frame, changedIn(0, 0), begin.addSecs(1));
    work.drain();
    lost->writeReport(begin.addSecs(2));
    lost->makeThumbnail();
    work.drain();
    EXPECT_EQ(lost->takeNews().size(), 1);
}

TEST_F(RecordingJournalTest, OutlivesItsOwnerUntilAllIsCompared) {
    for (int i = 0; i < 10; ++i)
        journal->compare(frame, changedIn(i % 8, i % 6), begin.addSecs(i));
    journal.reset();
    work.drain();
    EXPECT_TRUE(files().contains(u"change-001.png"_s));
}

} // namespace orvane::test
