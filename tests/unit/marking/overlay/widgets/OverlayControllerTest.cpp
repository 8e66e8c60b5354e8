#include "OrvaneCore/marking/overlay/OverlayController.h"

#include "OrvaneCore/base/TaskRunner.h"
#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/platform/DesktopKeyboard.h"
#include "OrvaneCore/send/SendTargets.h"
#include "tests/support/DrawnPixels.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FakeSurfaces.h"
#include "tests/support/MacWords.h"
#include "tests/unit/marking/submit/SubmitFixture.h"

#include <QPainter>
#include <QPlainTextEdit>
#include <QtTest/QTest>

#include <deque>

namespace orvane::test {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// Does what it is given when it is told to, on the thread that tells it.
class PatientTasks final : public TaskRunner {
public:
    void run(std::function<Continuation()> work) override { m_waiting.push_back(std::move(work)); }

    bool isIdle() const { return m_waiting.empty(); }

    /// The work of the first task; what is to follow on the main thread is given back.
    Continuation workOfFirst() {
        const auto work = std::move(m_waiting.front());
        m_waiting.pop_front();
        return work();
    }

    void finishFirst() {
        if (const Continuation continuation = workOfFirst())
            continuation();
    }

private:
    std::deque<std::function<Continuation()>> m_waiting;
};

class KeylessKeyboard final : public DesktopKeyboard {
public:
    std::optional<int> keyCode(const NativeKey& /*key*/) override { return std::nullopt; }
};

class OverlayControllerTest : public SubmitFixture {
protected:
    static QImage plain(QRgb color) {
        QImage picture(400, 300, QImage::Format_RGB32);
        picture.fill(color);
        return picture;
    }

    /// What the ground of the overlay is, away from all that stands on it.
    testing::AssertionResult showsDimmed(QRgb color) {
        const QImage shown = controller.windows().at(0)->grab().toImage();
        const QPoint place(shown.width() / 2, shown.height() / 2);
        return isColor(shown, place, blended(black, 38.0 / 255, color));
    }

    void logged(const TaskRunner::Continuation& call) {
        testing::internal::CaptureStderr();
        call();
        log = QString::fromStdString(testing::internal::GetCapturedStderr());
    }

    /// Until its toast is shown.
    void finishSubmission() {
        logged([this] {
            const TaskRunner::Continuation end = tasks.workOfFirst();
            // The pictures are taken, which it has heard of before the end.
            QCoreApplication::processEvents();
            end();
        });
    }

    void submitAll() {
        controller.submit();
        finishSubmission();
        ASSERT_FALSE(tasks.isIdle()) << "there is no small picture";
        tasks.finishFirst();
    }

    PatientTasks tasks;
    FakeSurfaces surfaces;
    KeylessKeyboard keyboard;
    MarkerManager manager{settings};
    SendTargets targets;
    PlatformWords words = macWords();
    std::vector<SubmitToast> toasts;
    /// Whether other windows of ours are to be away, each time that this is told.
    std::vector<bool> heldBack;
    OverlayController controller{{.manager = manager,
                                  .sendTargets = targets,
                                  .pipeline = pipeline,
                                  .tasks = tasks,
                                  .keyboard = keyboard,
                                  .surfaces = surfaces,
                                  .displays = desktop,
                                  .capture = screenCapture,
                                  .words = words,
                                  .showToast = [this](const SubmitToast& toast) { toasts.push_back(toast); },
                                  .holdWindowsBack =
                                      [this](bool areHeldBack) {
                                          EXPECT_FALSE(controller.isShown());
                                          heldBack.push_back(areHeldBack);
                                      }}};
};

TEST_F(OverlayControllerTest, SendsToTheFirstApplicationWhereItIsToSend) {
    const SendTarget first{.name = u"First"_s, .bundleID = u"first"_s};
    targets = SendTargets({first, {.name = u"Second"_s, .bundleID = u"second"_s}});
    manager.setCurrentSendTarget(first);
    controller.showOverlay();
    EXPECT_EQ(manager.currentSendTarget(), std::nullopt);
    controller.cancelOverlay();
    manager.setDirectSend(true);
    controller.showOverlay();
    EXPECT_EQ(manager.currentSendTarget(), first);
    manager.add({10, 10, 50, 50}, QString());
    submitAll();
    EXPECT_EQ(manager.lastSendOutcome(), (SendOutcome{.activated = true, .sentCount = 1, .total = 1}));
    ASSERT_EQ(toasts.size(), 1U);
    EXPECT_EQ(toasts[0].title, u"Sent 1 region(s) → First"_s);
}

TEST_F(OverlayControllerTest, ALabelThatIsBeingWrittenIsSubmitted) {
    controller.showOverlay();
    OverlayView& view = controller.windows().at(0)->view();
    manager.add({10, 10, 200, 200}, QString());
    QTest::mouseClick(&view, Qt::RightButton, Qt::NoModifier, QPoint(100, 100));
    auto* editor = view.findChild<QPlainTextEdit*>();
    ASSERT_TRUE(editor);
    editor->setPlainText(u"half a word"_s);
    submitAll();
    EXPECT_TRUE(clipboard.text().contains(u"  [1] half a word → "_s));
}

TEST_F(OverlayControllerTest, ASecondPressOfTheHotkeyTakesTheFirstBack) {
    controller.showOverlay();
    manager.add({10, 10, 50, 50}, QString());
    controller.submit();
    controller.toggleOverlay();
    controller.toggleOverlay();
    finishSubmission();
    EXPECT_FALSE(controller.isShown());
}

TEST_F(OverlayControllerTest, SentAwayWhilePicturesAreTakenItDoesNotComeBack) {
    controller.showOverlay();
    manager.add({10, 10, 50, 50}, QString());
    controller.submit();
    controller.showOverlay();
    controller.hideOverlay();
    finishSubmission();
    EXPECT_FALSE(controller.isShown());
    EXPECT_THAT(heldBack, ElementsAre(true, false));
}

TEST_F(OverlayControllerTest, TheEndOfASubmissionLeavesTheMarksOfTheNextRun) {
    controller.showOverlay();
    manager.add({10, 10, 50, 50}, QString());
    controller.submit();
    controller.showOverlay();
    const TaskRunner::Continuation end = tasks.workOfFirst();
    ASSERT_TRUE(eventuallyInLoop([this] { return controller.isShown(); }));
    manager.add({20, 20, 60, 60}, QString());
    logged(end);
    EXPECT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(toasts.size(), 1U);
}

TEST_F(OverlayControllerTest, OneDisplayOfTwoIsEnoughForASession) {
    addLeftDisplay();
    screens.failures[mainId] = [] { throw PlatformError(u"The screen is locked."_s); };
    controller.showOverlay();
    manager.add({10, 10, 50, 50}, QString());
    manager.add({-100, 100, 20, 20}, QString());
    submitAll();
    ASSERT_EQ(toasts.size(), 1U);
    EXPECT_EQ(toasts[0].title, u"2 region(s) captured"_s);
}

TEST_F(OverlayControllerTest, OnlyReadingIsAnnounced) {
    controller.showOverlay();
    manager.setOcrMode(true);
    manager.add({10, 10, 50, 50}, QString());
    submitAll();
    ASSERT_EQ(toasts.size(), 2U);
    EXPECT_EQ(toasts[0], readingToast());
    toasts.clear();
    manager.setOcrMode(false);
    controller.showOverlay();
    manager.add({10, 10, 50, 50}, QString());
    submitAll();
    ASSERT_EQ(toasts.size(), 1U);
    EXPECT_EQ(toasts[0].title, u"1 region(s) captured"_s);
}

TEST_F(OverlayControllerTest, GivesTheKeyboardBackOnce) {
    controller.hideOverlay();
    EXPECT_EQ(surfaces.timesGivenBack, 0);
    controller.showOverlay();
    controller.hideOverlay();
    EXPECT_EQ(surfaces.timesGivenBack, 1);
}

/// On a desktop that has no translucent windows.
class OverlayControllerOpaque : public OverlayControllerTest {
protected:
    void SetUp() override { surfaces.translucent = false; }
};

TEST_F(OverlayControllerTest, WhereTheScreenShinesThroughItIsNotCaptured) {
    controller.showOverlay();
    EXPECT_TRUE(controller.isShown());
    EXPECT_THAT(heldBack, ElementsAre(true));
    EXPECT_TRUE(tasks.isIdle());
    EXPECT_THAT(screens.captured, IsEmpty());
    controller.cancelOverlay();
    EXPECT_THAT(heldBack, ElementsAre(true, false));
}

TEST_F(OverlayControllerOpaque, TheFrozenScreenShowsNoWindowOfOurs) {
    screens.pictures[mainId] = plain(0xFFC80000);
    screens.picturesWithoutOwn[mainId] = plain(0xFF00C800);
    controller.showOverlay();
    EXPECT_FALSE(controller.isShown());
    tasks.finishFirst();
    ASSERT_EQ(controller.windows().size(), 1U);
    EXPECT_TRUE(showsDimmed(0xFF00C800));
    EXPECT_THAT(screens.captured, IsEmpty());
}

TEST_F(OverlayControllerOpaque, APartOfTheFrozenScreenIsPaintedWhereItBelongs) {
    QImage picture = plain(0xFF00C800);
    QPainter(&picture).fillRect(0, 225, 400, 75, QColor(200, 0, 0));
    screens.picturesWithoutOwn[mainId] = picture;
    controller.showOverlay();
    tasks.finishFirst();
    OverlayWindow& window = *controller.windows().at(0);
    // The picture has other sides than the screen.
    const int boundary = window.height() * 3 / 4;
    const auto rowAt = [&](int y) { return window.grab(QRect(20, y, 30, 1)).toImage(); };
    const QRgb above = blended(black, 38.0 / 255, 0xFF00C800);
    const QRgb below = blended(black, 38.0 / 255, 0xFFC80000);
    EXPECT_TRUE(isColor(rowAt(boundary - 20), QPointF(5, 0), above));
    EXPECT_TRUE(isColor(rowAt(boundary + 20), QPointF(5, 0), below));
}

TEST_F(OverlayControllerOpaque, WhereOursCannotBeLeftOutTheScreenIsFrozenWithThem) {
    screens.pictures[mainId] = plain(0xFFC80000);
    controller.showOverlay();
    tasks.finishFirst();
    ASSERT_EQ(controller.windows().size(), 1U);
    EXPECT_TRUE(showsDimmed(0xFFC80000));
    EXPECT_THAT(screens.captured, ElementsAre(mainId));
    EXPECT_THAT(screens.cursors, ElementsAre(false));
}

TEST_F(OverlayControllerOpaque, WithoutAnyPictureTheOverlayComesNevertheless) {
    screens.failures[mainId] = [] { throw PlatformError(u"The screen is locked."_s); };
    controller.showOverlay();
    testing::internal::CaptureStderr();
    tasks.finishFirst();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: the screen cannot be shown under the overlay: The screen is locked.\n");
    EXPECT_TRUE(controller.isShown());
}

TEST_F(OverlayControllerOpaque, OtherWindowsGoOnceTheScreenIsFrozenAndBeforeTheOverlayComes) {
    screens.picturesWithoutOwn[mainId] = plain(white);
    controller.showOverlay();
    const TaskRunner::Continuation frozen = tasks.workOfFirst();
    EXPECT_THAT(heldBack, IsEmpty());
    frozen();
    EXPECT_TRUE(controller.isShown());
    EXPECT_THAT(heldBack, ElementsAre(true));
    controller.cancelOverlay();
    EXPECT_THAT(heldBack, ElementsAre(true, false));
}

TEST_F(OverlayControllerOpaque, SentAwayBeforeItHasComeItMovesNoOtherWindow) {
    screens.picturesWithoutOwn[mainId] = plain(white);
    controller.toggleOverlay();
    controller.toggleOverlay();
    tasks.finishFirst();
    EXPECT_FALSE(controller.isShown());
    EXPECT_FALSE(manager.isOverlayActive());
    EXPECT_THAT(heldBack, IsEmpty());
}

} // namespace
} // namespace orvane::test
