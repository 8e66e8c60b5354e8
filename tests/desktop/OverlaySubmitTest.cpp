#include "Orvane/StatusItem.h"
#include "OrvaneCore/marking/Palettes.h"
#include "OrvaneCore/surface/ToastPanel.h"
#include "OrvaneCore/surface/ToastWindow.h"
#include "tests/desktop/OverlayFixture.h"

#include <QTimer>

#include <atomic>
#include <csignal>

#include <sys/types.h>

namespace orvane::test {

using namespace std::chrono_literals;

namespace {

constexpr QRgb noticeGround = 0xFF1F1F1F;
constexpr QRgb buttonGround = 0xFF2B2D31;

/// A notice and the pin button, as the application has them beside the overlay.
class OtherWindows {
public:
    /// On a screen 1280 wide.
    static constexpr QPoint onButton{1280 - 12 - 16, 40 + 28};

    OtherWindows(Surfaces& surfaces, const PlatformWords& words)
        : notices(surfaces)
        , m_item([] { return StatusMenuState(); }, [](StatusAction, const std::optional<QString>&) {},
                 [] { return false; }, surfaces, words) {
        notices.show(u"That before"_s, 60s);
    }

    /// Beside the text of the first notice.
    QPoint onNotice() const {
        const QRect frame = notices.panels().front()->frame();
        return {frame.left() + 8, frame.center().y()};
    }

    void setHeldBack(bool areHeldBack) {
        notices.setHeldBack(areHeldBack);
        m_item.setButtonHeldBack(areHeldBack);
    }

    ToastWindow notices;

private:
    StatusItem m_item;
};

class Submission : public OverlayFixture {
protected:
    using OverlayFixture::OverlayFixture;

    QImage picture(const QString& file) { return QImage(session().filePath(file)); }

    QString text(const QString& file) { return QString::fromUtf8(fileBytes(session().filePath(file))); }

    /// What the clipboard of a session with these regions says.
    QString clipboardText(const QString& rest) {
        const QString path = storage.displayPath(session().path());
        return QString(rest).replace(u"<path>"_s, path);
    }
};

class SubmissionOnTwoDisplays : public Submission {
protected:
    SubmissionOnTwoDisplays()
        : Submission({u"--monitors"_s, u"A:1000x700+640+0,B:640x480+0+100"_s}) {}
};

class SubmissionOnMixedScales : public Submission {
protected:
    SubmissionOnMixedScales()
        : Submission(
              {u"--monitors"_s, u"A:1600x1200+0+0,B:1200x900+1600+0"_s, u"--scale"_s, u"A=2;B=1.5"_s}) {}
};

class SubmissionUncomposited : public Submission {
protected:
    SubmissionUncomposited()
        : Submission({u"--size"_s, u"1280x800"_s, u"--no-compositor"_s}) {}
};

} // namespace

TEST_F(Submission, LeavesASessionAndItsTextOnTheClipboard) {
    const auto ground = cover(u"1280x800+0+0"_s);
    const TestWindow pattern(
        {u"--undecorated"_s, u"--geometry"_s, u"300x200+200+200"_s, u"--class"_s, u"Pattern"_s});
    ASSERT_TRUE(comesToShow({100, 100}, white));
    show();
    drag({210, 210}, {410, 310});
    write(u"The pattern"_s);
    mark({700, 500}, {900, 600});
    press(u"m"_s);
    ASSERT_TRUE(eventuallyInLoop([&] { return manager.markupMode(); }));
    manager.setCurrentTool(AnnotationTool::box);
    drag({720, 520}, {820, 580});
    ASSERT_TRUE(eventuallyInLoop([&] { return manager.annotations().size() == 1; }));
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted());
    EXPECT_FALSE(controller.isShown());
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_EQ(toasts.front(), (SubmitToast{.title = u"2 region(s) captured"_s,
                                           .subtitle = u"Paste into your agent to share context"_s,
                                           .icon = u"checkmark.circle.fill"_s}));

    ASSERT_TRUE(eventuallyInLoop([&] { return sessionFiles().contains(u"thumbnail.png"_s); }));
    EXPECT_EQ(sessionFiles(), (QStringList{u"SESSION.md"_s, u"display-annotated.png"_s, u"region-1.png"_s,
                                           u"region-2.png"_s, u"thumbnail.png"_s}));
    const QImage crop = picture(u"region-1.png"_s).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(crop, knownPicture(300, 200, false).copy(10, 10, 200, 100));
    const QImage second = picture(u"region-2.png"_s);
    ASSERT_EQ(second.size(), QSize(200, 100));
    const QRgb red = QColor::fromRgb(markup_colors::defaultColor).rgb();
    EXPECT_TRUE(isColor(second, QPoint(70, 20), red));
    EXPECT_TRUE(isColor(second, QPoint(150, 50), white));
    const QImage display = picture(u"display-annotated.png"_s);
    ASSERT_EQ(display.size(), QSize(1280, 800));
    EXPECT_TRUE(isColor(display, QPoint(770, 520), red));
    EXPECT_TRUE(isColor(display, QPoint(310, 209), marker_palette::border(1).rgb(), 40));
    EXPECT_TRUE(isColor(display, QPoint(850, 550), blended(marker_palette::border(2).rgb(), 0.09, white), 2));
    EXPECT_TRUE(isColor(display, QPoint(50, 400), white)) << "the overlay is on the picture";

    EXPECT_EQ(clipboard(u"UTF8_STRING"_s).value_or(""),
              clipboardText(
                  u"[Orvane] 2 annotation(s) on Pattern\nScreenshot: <path>/display-annotated.png\n"
                  "Manifest: <path>/SESSION.md\n"
                  "Note: arrows, boxes, ellipses, highlights, and text in these images are user annotations "
                  "added with Orvane — not part of the captured UI.\n"
                  "  [1] The pattern → <path>/region-1.png\n"
                  "  [2] region → <path>/region-2.png — markup: box\n"_s)
                  .toUtf8());
    const QString manifest = text(u"SESSION.md"_s);
    EXPECT_TRUE(manifest.startsWith(u"# Orvane Session\n\n- **Session ID:** "_s + session().dirName()));
    EXPECT_TRUE(manifest.contains(u"### [1] Pattern\n\n**Description:** The pattern\n\n"_s));
    EXPECT_TRUE(manifest.contains(u"**Position on Display 1:** (210, 210), 200×100 px (region-1.png)"_s));
    EXPECT_TRUE(manifest.contains(u"**Window-relative:** (10, 10) 200x100\n\n"_s));
    EXPECT_TRUE(manifest.contains(u"**User markup:** box\n\n"_s));
}

TEST_F(Submission, PutsAPictureAloneOnTheClipboard) {
    const auto ground = cover(u"1280x800+0+0"_s, u"#336699"_s);
    manager.setImageMode(true);
    show();
    mark({100, 200}, {300, 300});
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted());
    EXPECT_EQ(toasts.front().title, u"Image copied"_s);
    const auto bytes = clipboard(u"image/png"_s);
    ASSERT_TRUE(bytes);
    const QImage pasted = QImage::fromData(*bytes);
    ASSERT_EQ(pasted.size(), QSize(200, 100));
    EXPECT_TRUE(isFilled(pasted, pasted.rect(), 0xFF336699));
    const QByteArray formats = clipboard(u"TARGETS"_s).value_or("");
    EXPECT_TRUE(formats.contains("image/png"));
    EXPECT_FALSE(formats.contains("UTF8_STRING") || formats.contains("text/")) << formats.toStdString();
}

TEST_F(Submission, PutsRecognisedTextOnTheClipboard) {
    recognition.lines = {{.text = u"Überschrift"_s, .box = {}, .confidence = 1}};
    std::atomic<bool> mayGoOn = false;
    recognition.lineRead = [&mayGoOn] { mayGoOn.wait(false); };
    manager.setOcrMode(true);
    show();
    mark({100, 200}, {300, 300});
    EXPECT_FALSE(isEditing());
    press(u"Return"_s);
    const testing::AssertionResult saysAtOnce = isSubmitted();
    mayGoOn = true;
    mayGoOn.notify_all();
    ASSERT_TRUE(saysAtOnce);
    ASSERT_TRUE(isSubmitted(2));
    EXPECT_EQ(toasts.front(), readingToast());
    EXPECT_EQ(toasts.back().title, u"Text copied"_s);
    EXPECT_EQ(toasts.back().subtitle, u"11 character(s) recognized"_s);
    EXPECT_EQ(clipboard(u"UTF8_STRING"_s).value_or(""), u"Überschrift"_s.toUtf8());
    EXPECT_EQ(text(u"ocr.txt"_s), u"Überschrift"_s);
    ASSERT_EQ(recognition.pictures.size(), 1U);
    EXPECT_EQ(recognition.pictures.front().size(), QSize(200, 100));
}

TEST_F(Submission, BlursAllButTheRegionsUnderSpotlight) {
    const auto ground = cover(u"1280x800+0+0"_s);
    ground->fill(QRect(640, 0, 640, 800), Qt::black);
    manager.setSpotlightMode(true);
    show();
    mark({600, 300}, {700, 400});
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted());
    const QImage display = picture(u"display-annotated.png"_s);
    EXPECT_TRUE(isColor(display, QPoint(636, 350), white));
    EXPECT_TRUE(isColor(display, QPoint(643, 350), black));
    EXPECT_FALSE(isColor(display, QPoint(636, 600), white, 40));
    EXPECT_TRUE(isColor(display, QPoint(100, 600), white));
}

TEST_F(Submission, SaysWhyNothingCouldBeCaptured) {
    const auto connection = DesktopFixture::session.connection();
    show();
    mark({200, 200}, {400, 300});
    // By this name an X server knows that a Wayland compositor has the screen.
    connection->reply<xcb_intern_atom_reply>(xcb_intern_atom(connection->raw(), 0, 13, "WL_SURFACE_ID"));
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted());
    EXPECT_EQ(toasts.front().title, u"Nothing was captured");
    EXPECT_TRUE(toasts.front().subtitle.contains(u"Wayland"_s));
    EXPECT_EQ(sessionFiles(), QStringList{u"SESSION.md"_s});
}

TEST_F(Submission, DoesNothingWithoutARegion) {
    show();
    press(u"Return"_s);
    press(u"b"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.modes().spotlight; }));
    EXPECT_TRUE(controller.isShown());
    EXPECT_TRUE(QDir(storage.sessionsDir()).isEmpty());
}

TEST_F(Submission, LetsTheWindowThreadTurn) {
    std::atomic<int> turns = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&turns] { ++turns; });
    timer.start(1);
    std::atomic<bool> turned = false;
    // The submission waits for the window thread here: it would do so in vain if that waited for it.
    sleep = [&](std::chrono::milliseconds) {
        const int before = turns;
        turned = eventually([&] { return turns >= before + 20; });
    };
    show();
    mark({100, 200}, {300, 300});
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted());
    EXPECT_TRUE(turned);
}

TEST_F(Submission, IsOverBeforeTheOverlayIsOnTheScreenAgain) {
    const auto ground = cover(u"1280x800+0+0"_s);
    std::atomic<bool> isWaiting = false;
    std::atomic<bool> goOn = false;
    sleep = [&](std::chrono::milliseconds time) {
        std::this_thread::sleep_for(time);
        isWaiting = true;
        eventually([&] { return goOn.load(); });
    };
    show();
    mark({100, 200}, {300, 300});
    press(u"Return"_s);
    ASSERT_TRUE(eventuallyInLoop([&] { return isWaiting.load(); }));
    controller.toggleOverlay();
    EXPECT_FALSE(controller.isShown());
    goOn = true;
    ASSERT_TRUE(isSubmitted());
    ASSERT_TRUE(eventuallyInLoop([&] { return controller.isShown() && window().isActiveWindow(); }));
    EXPECT_TRUE(isColor(picture(u"display-annotated.png"_s), QPoint(50, 400), white));
    // The marks of the new run are its own.
    mark({500, 500}, {600, 600});
    EXPECT_EQ(manager.markers().size(), 1U);
}

TEST_F(Submission, MayBeginBeforeTheLastOneHasEnded) {
    show();
    mark({100, 200}, {300, 300});
    press(u"Return"_s);
    ASSERT_TRUE(eventuallyInLoop([&] { return !controller.isShown(); }));
    controller.toggleOverlay();
    ASSERT_TRUE(eventuallyInLoop([&] { return controller.isShown() && window().isActiveWindow(); }));
    mark({400, 200}, {600, 350});
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted(2));
    EXPECT_EQ(
        QDir(storage.sessionsDir()).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks).size(),
        2);
    EXPECT_EQ(picture(u"region-1.png"_s).size(), QSize(200, 150));
}

TEST_F(Submission, HasNoOtherWindowOfOursInItsPictures) {
    // As large as the screen it would be above the button.
    const auto ground = cover(u"1280x780+0+0"_s);
    OtherWindows others(surfaces, words);
    holdWindowsBack = [&](bool areHeldBack) { others.setHeldBack(areHeldBack); };
    const ToastWindow& notices = others.notices;
    const QPoint notice = others.onNotice();
    const QPoint button = OtherWindows::onButton;
    const QRgb plate = blended(noticeGround, 0.9, white);
    ASSERT_TRUE(comesToShow(notice, plate));
    ASSERT_TRUE(comesToShow(button, buttonGround));

    show();
    EXPECT_TRUE(comesToShow(notice, blended(black, 38.0 / 255, white)));
    EXPECT_TRUE(comesToShow(button, blended(black, 38.0 / 255, white)));
    mark({100, 200}, {300, 300});
    others.notices.show(u"Meanwhile"_s, 60s);
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted());
    const QImage display = picture(u"display-annotated.png"_s);
    EXPECT_TRUE(isFilled(display, QRect(0, 0, 1280, 180), white));
    EXPECT_TRUE(isFilled(display, QRect(0, 340, 1280, 440), white));

    EXPECT_TRUE(comesToShow(notice, plate, 60));
    EXPECT_TRUE(comesToShow(button, buttonGround));
    ASSERT_EQ(notices.panels().size(), 2U);
    EXPECT_EQ(notices.panels()[1]->accessibleName(), u"Meanwhile"_s);
    EXPECT_TRUE(notices.panels()[0]->isVisible() && notices.panels()[1]->isVisible());
}

TEST_F(Submission, HoldsOtherWindowsBackFromTheFirstMomentUntilItsPicturesAreTaken) {
    std::vector<bool> told;
    holdWindowsBack = [&](bool areHeldBack) {
        EXPECT_FALSE(areHeldBack && controller.isShown());
        told.push_back(areHeldBack);
    };
    std::atomic<bool> isWaiting = false;
    std::atomic<bool> goOn = false;
    sleep = [&](std::chrono::milliseconds) {
        isWaiting = true;
        eventually([&] { return goOn.load(); });
    };
    show();
    EXPECT_EQ(told, std::vector{true});
    controller.cancelOverlay();
    EXPECT_EQ(told, (std::vector{true, false}));

    told.clear();
    show();
    mark({100, 200}, {300, 300});
    press(u"Return"_s);
    ASSERT_TRUE(eventuallyInLoop([&] { return isWaiting.load(); }));
    EXPECT_FALSE(controller.isShown());
    EXPECT_EQ(told, std::vector{true});
    // The overlay is to come back at once.
    controller.toggleOverlay();
    goOn = true;
    ASSERT_TRUE(eventuallyInLoop([&] { return controller.isShown(); }));
    EXPECT_EQ(told, std::vector{true});
    ASSERT_TRUE(isSubmitted());
    ASSERT_TRUE(eventuallyInLoop([&] { return window().isActiveWindow(); }));
    mark({100, 200}, {300, 300});
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted(2));
    EXPECT_EQ(told, (std::vector{true, false}));
}

TEST_F(SubmissionUncomposited, ShowsTheScreenAndNotItsFrozenPicture) {
    const auto ground = cover(u"1280x800+0+0"_s);
    show();
    mark({100, 200}, {300, 300});
    ground->fill(QRect(100, 200, 200, 100), QColor(0, 128, 0));
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted());
    const QImage crop = picture(u"region-1.png"_s);
    EXPECT_TRUE(isFilled(crop, crop.rect(), 0xFF008000));
}

TEST_F(SubmissionUncomposited, FreezesNoOtherWindowOfOurs) {
    // As large as the screen it would be above the button.
    const auto ground = cover(u"1280x780+0+0"_s);
    OtherWindows others(surfaces, words);
    holdWindowsBack = [&](bool areHeldBack) { others.setHeldBack(areHeldBack); };
    const QRgb dimmed = blended(black, 38.0 / 255, white);
    const auto areUp = [&] {
        return screen().pixel(others.onNotice()) == noticeGround &&
               screen().pixel(OtherWindows::onButton) == buttonGround;
    };
    ASSERT_TRUE(eventuallyInLoop(areUp));
    show();
    EXPECT_TRUE(comesToShow(others.onNotice(), dimmed));
    EXPECT_TRUE(comesToShow(OtherWindows::onButton, dimmed));
    controller.cancelOverlay();
    ASSERT_TRUE(eventuallyInLoop(areUp));

    // Over one that is too slow to draw where a window has gone.
    ::kill(static_cast<pid_t>(ground->pid()), SIGSTOP);
    show();
    EXPECT_TRUE(comesToShow(others.onNotice(), dimmed));
    EXPECT_TRUE(comesToShow(OtherWindows::onButton, dimmed));
    ::kill(static_cast<pid_t>(ground->pid()), SIGCONT);
}

TEST_F(SubmissionOnTwoDisplays, HasAPictureOfEachDisplay) {
    const auto left = cover(u"640x480+0+100"_s, u"#800000"_s);
    const auto right = cover(u"1000x700+640+0"_s, u"#000080"_s);
    show();
    mark({100, 300}, {300, 400});
    mark({800, 300}, {950, 450});
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted());
    QStringList expected{u"SESSION.md"_s, u"region-1.png"_s, u"region-2.png"_s};
    for (const Display& display : displays.list())
        expected += u"display-annotated-"_s + QString::number(display.id) + u".png"_s;
    expected.sort();
    QStringList files = sessionFiles();
    files.removeAll(u"thumbnail.png"_s);
    EXPECT_EQ(files, expected);
    const QImage first = picture(u"region-1.png"_s);
    EXPECT_EQ(first.size(), QSize(200, 100));
    EXPECT_TRUE(isFilled(first, first.rect(), 0xFF800000));
    const QImage second = picture(u"region-2.png"_s);
    EXPECT_EQ(second.size(), QSize(150, 150));
    EXPECT_TRUE(isFilled(second, second.rect(), 0xFF000080));
    const QString manifest = text(u"SESSION.md"_s);
    EXPECT_TRUE(manifest.contains(u"- **Display 1**: 640×480 pt — global desktop origin (0, 100)\n"
                                  "- **Display 2** (main): 1000×700 pt — global desktop origin (640, 0)\n"_s))
        << manifest.toStdString();
    EXPECT_TRUE(manifest.contains(u"**Position on Display 1:** (100, 200), 200×100 px (region-1.png)"_s));
    EXPECT_TRUE(manifest.contains(u"**Position on Display 2:** (160, 300), 150×150 px (region-2.png)"_s));
}

TEST_F(SubmissionOnMixedScales, CropsInNativePixels) {
    const auto left = cover(u"1600x1200+0+0"_s, u"#800000"_s);
    const auto right = cover(u"1200x900+1600+0"_s, u"#000080"_s);
    left->fill(QRect(401, 300, 199, 101), QColor(255, 255, 0));
    right->fill(QRect(301, 302, 91, 64), QColor(0, 255, 255));
    show();
    mark({401, 300}, {600, 401});
    mark({1901, 302}, {1992, 366});
    press(u"Return"_s);
    ASSERT_TRUE(isSubmitted());
    const QImage first = picture(u"region-1.png"_s);
    EXPECT_EQ(first.size(), QSize(199, 101));
    EXPECT_TRUE(isFilled(first, first.rect(), 0xFFFFFF00));
    const QImage second = picture(u"region-2.png"_s);
    EXPECT_EQ(second.size(), QSize(91, 64));
    EXPECT_TRUE(isFilled(second, second.rect(), 0xFF00FFFF));
    const QString manifest = text(u"SESSION.md"_s);
    EXPECT_TRUE(manifest.contains(u"100×51 pt = 199×101 px @2× (region-1.png)"_s)) << manifest.toStdString();
    EXPECT_TRUE(manifest.contains(u"61×43 pt = 91×64 px @1.5× (region-2.png)"_s));
}

} // namespace orvane::test
