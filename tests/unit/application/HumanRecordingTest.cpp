#include "Orvane/HumanRecording.h"

#include "OrvanePlatform/freedesktop/DesktopWords.h"
#include "tests/support/MacWords.h"
#include "tests/unit/recording/RecorderFixture.h"

#include <deque>
#include <stdexcept>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::RecorderFixture;

/// Tasks that the test runs, one after the other.
class HeldTasks final : public TaskRunner {
public:
    void run(std::function<Continuation()> work) override { m_waiting.push_back(std::move(work)); }

    std::size_t count() const { return m_waiting.size(); }

    /// The first task; gives what follows from it.
    Continuation runWork() {
        const auto work = std::move(m_waiting.front());
        m_waiting.pop_front();
        return work();
    }

    /// The first task and what follows from it.
    void runNext() {
        if (const Continuation next = runWork())
            next();
    }

private:
    std::deque<std::function<Continuation()>> m_waiting;
};

class RecordedView final : public HumanRecording::View {
public:
    struct Toast {
        QString title;
        QString subtitle;
        QString icon;
        double seconds;

        bool operator==(const Toast&) const = default;
    };

    void recordingChanged() override { ++changes; }
    void copyToClipboard(const QString& text) override { copied.push_back(text); }
    void showToast(const QString& title, const QString& subtitle, const QString& icon,
                   double seconds) override {
        toasts.push_back({title, subtitle, icon, seconds});
    }

    int changes = 0;
    std::vector<QString> copied;
    std::vector<Toast> toasts;
};

class HumanRecordingTest : public RecorderFixture {
public:
    HumanRecordingTest() { testing::internal::CaptureStderr(); }
    ~HumanRecordingTest() override {
        if (!m_logIsTaken)
            testing::internal::GetCapturedStderr();
    }

protected:
    using Answer = std::function<void(std::optional<RecordingTarget>)>;

    QString log() {
        m_logIsTaken = true;
        return QString::fromStdString(testing::internal::GetCapturedStderr());
    }

    /// Answers the question for a target.
    void choose(const std::optional<RecordingTarget>& target) {
        const Answer answer = std::move(answers.front());
        answers.pop_front();
        answer(target);
    }

    void record(const RecordingTarget& target) {
        human.toggle();
        choose(target);
        tasks.runNext();
        clock.awaitSleeper();
    }

    HeldTasks tasks;
    RecordedView view;
    std::deque<Answer> answers;
    PlatformWords words = test::macWords();
    HumanRecording human{recorder, discovery, storage, tasks, view, words, [this](Answer answer) {
                             answers.push_back(std::move(answer));
                         }};

private:
    bool m_logIsTaken = false;
};

TEST_F(HumanRecordingTest, RecordsWhatWasChosenUntilItIsToggledAgain) {
    record(DisplayTarget{11});
    EXPECT_TRUE(human.isRecording());
    EXPECT_EQ(human.appName(), u"Full Screen"_s);
    EXPECT_EQ(view.changes, 1);
    EXPECT_TRUE(view.copied.empty());
    const QString id = recorder.recordingSessionId().value();

    human.toggle();
    EXPECT_TRUE(human.isRecording());
    tasks.runNext();
    EXPECT_FALSE(human.isRecording());
    EXPECT_EQ(human.appName(), QString());
    EXPECT_EQ(view.changes, 2);
    const QString folder = u"~/.orvane/sessions/"_s + id;
    EXPECT_EQ(view.copied,
              (std::vector{u"[Orvane] Recording of Full Screen\nSession: "_s + id + u"\nTimeline: "_s +
                           folder + u"/SESSION.md\nStart frame: "_s + folder + u"/frame-000-start.png\n"_s}));
    EXPECT_EQ(view.toasts, (std::vector<RecordedView::Toast>{
                               {u"Recording saved"_s, u"Copied to clipboard · ⌘ Ctrl H for GIF export"_s,
                                u"checkmark.circle.fill"_s, 4.0}}));
    EXPECT_TRUE(report(id).contains(u"- **Source:** human\n"_s));
    const QString lines = log();
    EXPECT_TRUE(lines.contains(u"orvane: human recording started for Full Screen\n"_s));
    EXPECT_TRUE(lines.endsWith(u"orvane: human recording stopped (session "_s + id + u")\n"_s))
        << qPrintable(lines);
}

TEST_F(HumanRecordingTest, NamesTheHotkeyAsTheDesktopDoes) {
    words = freedesktop::desktopWords();
    record(DisplayTarget{11});
    human.toggle();
    tasks.runNext();
    ASSERT_EQ(view.toasts.size(), 1U);
    EXPECT_EQ(view.toasts.front().subtitle, u"Copied to clipboard · Super Ctrl H for GIF export"_s);
}

TEST_F(HumanRecordingTest, NamesEachKindOfTarget) {
    EXPECT_EQ(recordingName(WindowTarget{u"Terminal"_s, windowId}), u"Terminal"_s);
    EXPECT_EQ(recordingName(DisplayTarget{11}), u"Full Screen"_s);
    EXPECT_EQ(recordingName(RegionTarget{QRectF(5.5, 6.5, 320.9, 200.1), 11}), u"Region (320×200)"_s);
}

TEST_F(HumanRecordingTest, RaisesTheWindowFirst) {
    record(WindowTarget{u"Terminal"_s, windowId});
    EXPECT_EQ(human.appName(), u"Terminal"_s);
    EXPECT_EQ(desktop.activations.size(), 1U);
}

TEST_F(HumanRecordingTest, AsksOnceHoweverOftenItIsToggledMeanwhile) {
    human.toggle();
    human.toggle();
    choose(DisplayTarget{11});
    human.toggle();
    EXPECT_TRUE(answers.empty());
    EXPECT_EQ(tasks.count(), 1U);
    EXPECT_EQ(log(), u"orvane: recording start already in progress\n"
                     u"orvane: recording start already in progress\n"_s);
}

TEST_F(HumanRecordingTest, NothingChosenIsNothingRecorded) {
    human.toggle();
    choose(std::nullopt);
    EXPECT_FALSE(human.isRecording());
    EXPECT_EQ(tasks.count(), 0U);
    EXPECT_EQ(view.changes, 0);
    human.toggle();
    EXPECT_EQ(answers.size(), 1U) << "a new one can begin";
    EXPECT_EQ(log(), u"orvane: recording cancelled\n"_s);
}

TEST_F(HumanRecordingTest, AFailedStartLeavesNothingBehind) {
    recorder.startRecording(DisplayTarget{11}, 1000, RecordingSource::mcp);
    human.toggle();
    choose(DisplayTarget{11});
    tasks.runNext();
    EXPECT_FALSE(human.isRecording());
    EXPECT_EQ(view.changes, 0);
    human.toggle();
    EXPECT_EQ(answers.size(), 1U) << "a new one can begin";
    EXPECT_EQ(view.toasts,
              (std::vector<RecordedView::Toast>{{u"Nothing was recorded"_s,
                                                 u"An agent is recording: try again when it has stopped"_s,
                                                 u"exclamationmark.triangle.fill"_s, 4.0}}));
    EXPECT_TRUE(log().contains(u"orvane: recording failed: Invalid arguments: Already recording. "_s));
}

TEST_F(HumanRecordingTest, AStartWhoseFirstPictureFailsIsNoneForTheRecorderEither) {
    desktop.consent = test::FakeDesktop::Consent::refused;
    human.toggle();
    choose(DisplayTarget{11});
    tasks.runNext();
    EXPECT_FALSE(human.isRecording());
    EXPECT_EQ(recorder.recordingSessionId(), std::nullopt);
    EXPECT_EQ(view.changes, 0);
    EXPECT_EQ(view.toasts,
              (std::vector<RecordedView::Toast>{
                  {u"Nothing was recorded"_s,
                   u"The human has refused to let the screen be captured. Ask them before you try again."_s,
                   u"exclamationmark.triangle.fill"_s, 4.0}}));
    desktop.consent = test::FakeDesktop::Consent::given;
    clock.jump(5ms);
    record(DisplayTarget{11});
    EXPECT_TRUE(human.isRecording());
    EXPECT_TRUE(recorder.recordingSessionId());
    EXPECT_EQ(view.toasts.size(), 1U) << "nothing has failed any more";
    const QString lines = log();
    EXPECT_TRUE(
        lines.contains(u"orvane: recording failed: The human has refused to let the screen be "
                       "captured. Ask them before you try again.\norvane: recording stopped (session "_s))
        << qPrintable(lines);
}

TEST_F(HumanRecordingTest, ADesktopThatDoesNotAnswerIsToldInThePlatformsWords) {
    words.remedies.screen = u"Knock twice"_s;
    desktop.duringCapture = [] { throw OrvaneError::permissionDenied(); };
    human.toggle();
    choose(WindowTarget{u"Terminal"_s, windowId});
    const TaskRunner::Continuation failed = tasks.runWork();
    EXPECT_TRUE(view.toasts.empty()) << "toasts are the main thread's";
    failed();
    ASSERT_EQ(view.toasts.size(), 1U);
    EXPECT_EQ(view.toasts.front().subtitle, u"Knock twice"_s);
    EXPECT_TRUE(log().contains(u"orvane: recording failed: Screen Recording permission required. "_s));
}

TEST_F(HumanRecordingTest, AFailedStartNeverEndsAnAgentsRecording) {
    const QString theirs = recorder.startRecording(DisplayTarget{11}, 1000, RecordingSource::mcp);
    human.toggle();
    choose(DisplayTarget{11});
    tasks.runNext();
    EXPECT_FALSE(human.isRecording());
    EXPECT_EQ(recorder.recordingSessionId(), theirs);
}

TEST_F(HumanRecordingTest, AFailedStopLeavesEverythingAsItWas) {
    storage.setSaveRawVideo(true);
    record(DisplayTarget{11});
    media.duringFinish = [] { throw std::runtime_error("no memory"); };
    human.toggle();
    tasks.runNext();
    EXPECT_TRUE(human.isRecording());
    EXPECT_EQ(human.appName(), u"Full Screen"_s);
    EXPECT_EQ(view.changes, 1);
    EXPECT_TRUE(view.copied.empty());
    EXPECT_TRUE(view.toasts.empty());
    // The next try ends it, whatever comes of that.
    human.toggle();
    tasks.runNext();
    EXPECT_FALSE(human.isRecording());
    EXPECT_TRUE(log().contains(u"orvane: stop recording failed: no memory\n"_s));
}

TEST_F(HumanRecordingTest, IsOverWhenSomebodyElseHasEndedIt) {
    record(DisplayTarget{11});
    recorder.stopRecording();
    EXPECT_TRUE(human.isRecording()) << "nobody has told";
    human.toggle();
    tasks.runNext();
    EXPECT_FALSE(human.isRecording());
    EXPECT_EQ(human.appName(), QString());
    EXPECT_EQ(view.changes, 2);
    EXPECT_TRUE(view.copied.empty());
    EXPECT_TRUE(view.toasts.empty());
    clock.jump(5ms);
    record(DisplayTarget{11});
    EXPECT_TRUE(human.isRecording());
    EXPECT_TRUE(recorder.recordingSessionId());
    EXPECT_TRUE(log().contains(u"orvane: stop recording failed: Invalid arguments: Not recording.\n"_s));
}

TEST_F(HumanRecordingTest, IsOverWhenSomebodyElseHasEndedItAfterOneThatTheHumanEnded) {
    record(DisplayTarget{11});
    human.toggle();
    tasks.runNext();
    clock.jump(5ms);
    record(DisplayTarget{11});
    recorder.stopRecording();
    human.toggle();
    tasks.runNext();
    EXPECT_FALSE(human.isRecording());
    EXPECT_EQ(view.changes, 4);
}

TEST_F(HumanRecordingTest, LooksOnceASecondWithoutAMovie) {
    storage.setSaveRawVideo(false);
    record(DisplayTarget{11});
    clock.advance(10s);
    const QString id = recorder.recordingSessionId().value();
    recorder.stopRecording();
    EXPECT_TRUE(report(id).contains(u"- **Frames captured:** 10\n"_s)) << qPrintable(report(id));
}

TEST_F(HumanRecordingTest, AskedTwiceToStopItIsOverWhenTheFirstStopIs) {
    record(DisplayTarget{11});
    human.toggle();
    human.toggle();
    // The second stop is answered first, while the first one is still at it.
    const TaskRunner::Continuation ended = tasks.runWork();
    const TaskRunner::Continuation refused = tasks.runWork();
    refused();
    EXPECT_TRUE(human.isRecording());
    EXPECT_EQ(view.changes, 1);
    ended();
    EXPECT_FALSE(human.isRecording());
    EXPECT_EQ(view.changes, 2);
    EXPECT_EQ(view.toasts.size(), 1U);
}

} // namespace
} // namespace orvane
