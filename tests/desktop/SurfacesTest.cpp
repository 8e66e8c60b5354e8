// Windows dressed for what they are for, as they are on real desktops.
#include "OrvanePlatform/x11/Properties.h"
#include "OrvanePlatform/x11/X11Surfaces.h"

#include "tests/desktop/GuiFixture.h"

#include <QFileDialog>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QProcess>
#include <QWidget>

namespace orvane::test {

namespace {

constexpr QRgb red = 0xffff0000;
constexpr QRgb green = 0xff00ff00;
constexpr QRgb blue = 0xff0000ff;
constexpr QRgb yellow = 0xffffff00;
constexpr QRgb grey = 0xff808080;

/// A window of one colour that notes what reaches it.
class ColorWindow : public QWidget {
public:
    explicit ColorWindow(const QColor& color)
        : m_color(color) {
        setFocusPolicy(Qt::StrongFocus);
    }

    int presses = 0;
    int hidings = 0;
    QString typed;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(rect(), m_color);
    }
    void mousePressEvent(QMouseEvent* /*event*/) override { ++presses; }
    void hideEvent(QHideEvent* /*event*/) override { ++hidings; }
    void keyPressEvent(QKeyEvent* event) override { typed += event->text(); }

private:
    QColor m_color;
};

constexpr QRect wholeScreen(0, 0, 1280, 800);
// Where windows of these tests stand in front of each other, the lower ones are larger.
constexpr QRect largePlace(100, 100, 800, 600);
constexpr QRect middlePlace(200, 200, 500, 400);
constexpr QRect smallPlace(300, 300, 200, 200);
constexpr QPoint inLarge(150, 150);
constexpr QPoint inMiddle(250, 250);
constexpr QPoint inSmall(400, 400);

class DressedSurfaces : public GuiFixture {
protected:
    explicit DressedSurfaces(const QStringList& options = {u"--size"_s, u"1280x800"_s})
        : GuiFixture(options) {}

    std::unique_ptr<ColorWindow> dressed(SurfaceRole role, const QRect& place, const QColor& color,
                                         SurfaceKeyboard keyboard = SurfaceKeyboard::never) {
        auto window = std::make_unique<ColorWindow>(color);
        window->setAttribute(Qt::WA_TranslucentBackground, color.alpha() < 255);
        surfaces.dress(*window, role, keyboard, *QGuiApplication::primaryScreen());
        window->setGeometry(place);
        return window;
    }

    std::unique_ptr<ColorWindow> shown(SurfaceRole role, const QRect& place, const QColor& color,
                                       SurfaceKeyboard keyboard = SurfaceKeyboard::never) {
        auto window = dressed(role, place, color, keyboard);
        window->show();
        return window;
    }

    /// An ordinary window over nearly the whole screen, which has the keyboard.
    std::unique_ptr<ColorWindow> ordinary() {
        auto window = std::make_unique<ColorWindow>(QColor::fromRgb(grey));
        window->setWindowFlag(Qt::FramelessWindowHint);
        // One that covers all of it is a full-screen window to window managers.
        window->setGeometry(wholeScreen.adjusted(0, 0, 0, -10));
        window->show();
        expectKeyboard(*window);
        return window;
    }

    std::unique_ptr<ColorWindow> fullScreen() {
        auto window = std::make_unique<ColorWindow>(QColor::fromRgb(grey));
        window->setGeometry(wholeScreen);
        window->showFullScreen();
        expectKeyboard(*window);
        return window;
    }

    void expectKeyboard(ColorWindow& window) {
        // Without a window manager nobody else gives it the keyboard.
        EXPECT_TRUE(eventuallyInLoop([&] {
            window.activateWindow();
            return window.isActiveWindow();
        }));
        EXPECT_TRUE(comesToShow({1200, 700}, grey));
    }

    static void press(const QString& key) { runCommand(u"xdotool"_s, {u"key"_s, key}); }

    static testing::AssertionResult becomes(const std::function<bool()>& condition, const char* what) {
        if (eventuallyInLoop(condition))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << what;
    }

    /// The window has the keyboard, and a key that is pressed arrives there.
    static testing::AssertionResult comesToHear(ColorWindow& window, const QString& key) {
        if (!eventuallyInLoop([&] { return window.isActiveWindow(); }))
            return testing::AssertionFailure() << "the window does not get the keyboard";
        const QString before = window.typed;
        press(key);
        return becomes([&] { return window.typed == before + key; }, "the key does not arrive");
    }

    static testing::AssertionResult comesToBePressed(const ColorWindow& window, const QPoint& pixel) {
        const int before = window.presses;
        clickAt(pixel);
        return becomes([&] { return window.presses == before + 1; }, "the press does not arrive");
    }

    void expectLevels();
    void expectClickThrough();
    void expectKeyboards(SurfaceRole role);
    void expectNoKeyboard(SurfaceRole role);
};

/// Comes up in the wrong order, and is raised in the wrong order.
void DressedSurfaces::expectLevels() {
    const auto below = fullScreen();
    const auto filePanel = shown(SurfaceRole::filePanel, smallPlace, Qt::red);
    ASSERT_TRUE(comesToShow(inSmall, red));
    const auto palette = shown(SurfaceRole::palette, middlePlace, Qt::green);
    ASSERT_TRUE(comesToShow(inMiddle, green));
    const auto canvas = shown(SurfaceRole::canvas, largePlace, Qt::blue);
    ASSERT_TRUE(comesToShow(inLarge, blue));
    const auto chrome = shown(SurfaceRole::chrome, wholeScreen, Qt::yellow);
    ASSERT_TRUE(comesToShow({50, 50}, yellow));
    EXPECT_TRUE(comesToShow(inSmall, red));
    EXPECT_TRUE(comesToShow(inMiddle, green));
    EXPECT_TRUE(comesToShow(inLarge, blue));

    palette->raise();
    canvas->raise();
    chrome->raise();
    // Comes up last, so that what was asked for before has been done by then.
    const auto notice = shown(SurfaceRole::toast, QRect(0, 0, 20, 20), Qt::white);
    ASSERT_TRUE(comesToShow({10, 10}, white));
    EXPECT_TRUE(comesToShow(inSmall, red));
    EXPECT_TRUE(comesToShow(inMiddle, green));
    EXPECT_TRUE(comesToShow(inLarge, blue));
    EXPECT_TRUE(comesToShow({50, 50}, yellow));

    filePanel->hide();
    ASSERT_TRUE(comesToShow(inSmall, green));
    canvas->hide();
    ASSERT_TRUE(comesToShow(inLarge, yellow));
    canvas->show();
    ASSERT_TRUE(comesToShow(inLarge, blue));
    EXPECT_TRUE(comesToShow(inMiddle, green));
    filePanel->show();
    EXPECT_TRUE(comesToShow(inSmall, red));

    const auto overlay = shown(SurfaceRole::overlay, wholeScreen, Qt::black);
    ASSERT_TRUE(comesToShow({50, 50}, black));
    EXPECT_TRUE(comesToShow(inSmall, black));
    // The last one that was shown of these two is above.
    EXPECT_TRUE(comesToShow({10, 10}, black));
    notice->hide();
    notice->show();
    EXPECT_TRUE(comesToShow({10, 10}, white));
}

void DressedSurfaces::expectClickThrough() {
    const auto below = ordinary();
    const auto canvas = shown(SurfaceRole::canvas, middlePlace, Qt::blue);
    ASSERT_TRUE(comesToShow(inMiddle, blue));
    ASSERT_TRUE(comesToBePressed(*canvas, inMiddle));
    surfaces.setClickThrough(*canvas, true);
    EXPECT_TRUE(comesToBePressed(*below, inMiddle));
    EXPECT_EQ(canvas->presses, 1);
    surfaces.setClickThrough(*canvas, false);
    EXPECT_TRUE(comesToBePressed(*canvas, inMiddle));
    // Where it has grown, too.
    const QPoint grown = largePlace.bottomRight() - QPoint(20, 20);
    canvas->setGeometry(largePlace);
    ASSERT_TRUE(comesToShow(grown, blue));
    EXPECT_TRUE(comesToBePressed(*canvas, grown));
    EXPECT_EQ(below->presses, 1);
    surfaces.setClickThrough(*canvas, true);
    EXPECT_TRUE(comesToBePressed(*below, inLarge));
    EXPECT_EQ(canvas->hidings, 0);
    EXPECT_TRUE(comesToShow(inLarge, blue));

    // What is on it is not.
    const auto palette = shown(SurfaceRole::palette, smallPlace, Qt::green);
    ASSERT_TRUE(comesToShow(inSmall, green));
    EXPECT_TRUE(comesToBePressed(*palette, inSmall));
    EXPECT_EQ(below->presses, 2);
}

/// Of a window that may have the keyboard: who has it, and who gets it back.
void DressedSurfaces::expectKeyboards(SurfaceRole role) {
    const auto before = ordinary();
    ASSERT_TRUE(comesToHear(*before, u"a"_s));
    const auto onClick = shown(role, smallPlace, Qt::red, SurfaceKeyboard::onClick);
    ASSERT_TRUE(comesToShow(inSmall, red));
    EXPECT_TRUE(comesToHear(*before, u"b"_s));
    EXPECT_TRUE(comesToBePressed(*onClick, inSmall));
    EXPECT_TRUE(comesToHear(*onClick, u"c"_s));
    surfaces.giveKeyboardBack();
    onClick->hide();
    EXPECT_TRUE(comesToHear(*before, u"d"_s));

    const auto atOnce = shown(role, smallPlace, Qt::green, SurfaceKeyboard::atOnce);
    EXPECT_TRUE(comesToHear(*atOnce, u"e"_s));
    atOnce->hide();
    surfaces.giveKeyboardBack();
    EXPECT_TRUE(comesToHear(*before, u"f"_s));
    atOnce->show();
    EXPECT_TRUE(comesToHear(*atOnce, u"g"_s));
    atOnce->hide();
    surfaces.giveKeyboardBack();
    EXPECT_TRUE(comesToHear(*before, u"h"_s));

    onClick->show();
    ASSERT_TRUE(comesToShow(inSmall, red));
    EXPECT_TRUE(before->isActiveWindow());
    surfaces.takeKeyboard(*onClick);
    EXPECT_TRUE(comesToHear(*onClick, u"i"_s));
}

void DressedSurfaces::expectNoKeyboard(SurfaceRole role) {
    const auto before = ordinary();
    ASSERT_TRUE(comesToHear(*before, u"a"_s));
    const auto window = shown(role, smallPlace, Qt::red);
    ASSERT_TRUE(comesToShow(inSmall, red));
    surfaces.setClickThrough(*window, false);
    EXPECT_TRUE(comesToBePressed(*window, inSmall));
    surfaces.takeKeyboard(*window);
    EXPECT_FALSE(eventuallyInLoop([&] { return window->isActiveWindow(); }, 200));
    EXPECT_TRUE(comesToHear(*before, u"b"_s));
    EXPECT_EQ(window->typed, QString());
}

class DressedSurfacesUncomposited : public DressedSurfaces {
protected:
    DressedSurfacesUncomposited()
        : DressedSurfaces({u"--size"_s, u"1280x800"_s, u"--no-compositor"_s}) {}
};

class DressedSurfacesWithoutWindowManager : public DressedSurfaces {
protected:
    DressedSurfacesWithoutWindowManager()
        : DressedSurfaces({u"--size"_s, u"1280x800"_s, u"--no-window-manager"_s}) {}
};

class DressedSurfacesOnTwoDisplays : public DressedSurfaces {
protected:
    DressedSurfacesOnTwoDisplays()
        : DressedSurfaces({u"--monitors"_s, u"A:800x600+0+0,B:640x480+800+100"_s}) {}
};

} // namespace

// ---- levels

TEST_F(DressedSurfaces, StandInTheirOrder) {
    expectLevels();
}

TEST_F(DressedSurfacesUncomposited, StandInTheirOrder) {
    expectLevels();
}

TEST_F(DressedSurfacesWithoutWindowManager, StandInTheirOrder) {
    expectLevels();
}

TEST_F(DressedSurfaces, StandAboveWindowsThatComeLater) {
    const auto canvas = shown(SurfaceRole::canvas, middlePlace, Qt::blue);
    ASSERT_TRUE(comesToShow(inMiddle, blue));
    const auto panel = shown(SurfaceRole::panel, QRect(20, 20, 60, 60), Qt::green, SurfaceKeyboard::onClick);
    ASSERT_TRUE(comesToShow({50, 50}, green));
    const auto later = colorWindow(u"1280x790+0+0"_s, u"white"_s, {u"--undecorated"_s});
    ASSERT_TRUE(comesToShow({1200, 700}, white));
    EXPECT_TRUE(comesToShow(inMiddle, blue));
    EXPECT_TRUE(comesToShow({50, 50}, green));
    // A click brings the other program's window to the front of those that are managed.
    clickAt({1200, 700});
    ASSERT_TRUE(eventuallyInLoop([&] { return activeWindow() == later->id(); }));
    EXPECT_TRUE(comesToShow(inMiddle, blue));
    EXPECT_TRUE(comesToShow({50, 50}, green));
}

TEST_F(DressedSurfaces, ForgetWindowsThatAreGone) {
    auto canvas = shown(SurfaceRole::canvas, largePlace, Qt::blue);
    auto palette = shown(SurfaceRole::palette, middlePlace, Qt::green, SurfaceKeyboard::atOnce);
    const auto filePanel = shown(SurfaceRole::filePanel, smallPlace, Qt::red);
    palette.reset();
    canvas->hide();
    canvas->show();
    ASSERT_TRUE(comesToShow(inMiddle, blue));
    EXPECT_TRUE(comesToShow(inSmall, red));
    canvas.reset();
    surfaces.giveKeyboardBack();
    const auto other = shown(SurfaceRole::canvas, largePlace, Qt::yellow, SurfaceKeyboard::atOnce);
    EXPECT_TRUE(comesToHear(*other, u"a"_s));
    EXPECT_TRUE(comesToShow(inSmall, red));
}

// ---- clicks

TEST_F(DressedSurfaces, LetClicksThroughWhileTheyAreShown) {
    expectClickThrough();
}

TEST_F(DressedSurfacesUncomposited, LetClicksThroughWhileTheyAreShown) {
    expectClickThrough();
}

TEST_F(DressedSurfacesWithoutWindowManager, LetClicksThroughWhileTheyAreShown) {
    expectClickThrough();
}

TEST_F(DressedSurfaces, LetClicksThroughFromTheStartWhereThatIsTheirRole) {
    const auto below = ordinary();
    const auto chrome = shown(SurfaceRole::chrome, middlePlace, Qt::red);
    const auto notice = shown(SurfaceRole::toast, smallPlace, Qt::green);
    ASSERT_TRUE(comesToShow(inMiddle, red));
    ASSERT_TRUE(comesToShow(inSmall, green));
    EXPECT_TRUE(comesToBePressed(*below, inMiddle));
    EXPECT_TRUE(comesToBePressed(*below, inSmall));
    surfaces.setClickThrough(*chrome, false);
    EXPECT_TRUE(comesToBePressed(*chrome, inMiddle));
}

TEST_F(DressedSurfaces, LetClicksThroughWhenToldBeforeTheyAreShown) {
    const auto below = ordinary();
    const auto canvas = dressed(SurfaceRole::canvas, middlePlace, Qt::blue);
    surfaces.setClickThrough(*canvas, true);
    canvas->show();
    ASSERT_TRUE(comesToShow(inMiddle, blue));
    EXPECT_TRUE(comesToBePressed(*below, inMiddle));
    canvas->hide();
    canvas->show();
    ASSERT_TRUE(comesToShow(inMiddle, blue));
    EXPECT_TRUE(comesToBePressed(*below, inMiddle));
    EXPECT_EQ(canvas->presses, 0);
}

// ---- the keyboard

TEST_F(DressedSurfaces, PaletteHasTheKeyboardWhenItIsToHaveIt) {
    expectKeyboards(SurfaceRole::palette);
}

TEST_F(DressedSurfaces, FilePanelHasTheKeyboardWhenItIsToHaveIt) {
    expectKeyboards(SurfaceRole::filePanel);
}

TEST_F(DressedSurfaces, PanelHasTheKeyboardWhenItIsToHaveIt) {
    expectKeyboards(SurfaceRole::panel);
}

TEST_F(DressedSurfacesWithoutWindowManager, FilePanelHasTheKeyboardWhenItIsToHaveIt) {
    expectKeyboards(SurfaceRole::filePanel);
}

TEST_F(DressedSurfacesWithoutWindowManager, PanelHasTheKeyboardWhenItIsToHaveIt) {
    const auto before = ordinary();
    const auto atOnce = shown(SurfaceRole::panel, middlePlace, Qt::green, SurfaceKeyboard::atOnce);
    EXPECT_TRUE(comesToHear(*atOnce, u"a"_s));
    atOnce->hide();
    surfaces.giveKeyboardBack();
    EXPECT_TRUE(comesToHear(*before, u"b"_s));
    const auto onClick = shown(SurfaceRole::panel, middlePlace, Qt::red, SurfaceKeyboard::onClick);
    ASSERT_TRUE(comesToShow(inMiddle, red));
    EXPECT_TRUE(before->isActiveWindow());
    EXPECT_TRUE(comesToBePressed(*onClick, inMiddle));
    EXPECT_TRUE(comesToHear(*onClick, u"c"_s));
}

TEST_F(DressedSurfaces, CanvasNeverHasTheKeyboard) {
    expectNoKeyboard(SurfaceRole::canvas);
}

TEST_F(DressedSurfaces, PanelNeverHasTheKeyboard) {
    expectNoKeyboard(SurfaceRole::panel);
}

TEST_F(DressedSurfacesWithoutWindowManager, CanvasNeverHasTheKeyboard) {
    expectNoKeyboard(SurfaceRole::canvas);
}

TEST_F(DressedSurfaces, FileDialogIsUsedAboveACanvas) {
    const auto canvas = shown(SurfaceRole::canvas, wholeScreen, Qt::blue);
    ASSERT_TRUE(comesToShow({1200, 700}, blue));
    QFileDialog dialog(nullptr, QString(), desktop.home());
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    surfaces.dress(dialog, SurfaceRole::filePanel, SurfaceKeyboard::atOnce, *canvas->screen());
    QStringList chosen;
    QObject::connect(&dialog, &QFileDialog::fileSelected, &dialog,
                     [&chosen](const QString& file) { chosen << file; });
    dialog.show();
    ASSERT_TRUE(eventuallyInLoop([&] { return dialog.isActiveWindow(); }));
    EXPECT_TRUE(wholeScreen.contains(dialog.geometry()));
    EXPECT_TRUE(eventuallyInLoop([&] { return screen().pixel(dialog.geometry().center()) != blue; }));
    runCommand(u"xdotool"_s, {u"type"_s, u"drawing"_s});
    press(u"Return"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return !chosen.isEmpty(); }));
    EXPECT_EQ(chosen, QStringList{desktop.home() + u"/drawing"_s});
}

TEST_F(DressedSurfaces, PanelThatHasTheKeyboardIsTheActiveWindow) {
    const auto before = ordinary();
    const auto panel = shown(SurfaceRole::panel, smallPlace, Qt::red, SurfaceKeyboard::atOnce);
    ASSERT_TRUE(comesToHear(*panel, u"a"_s));
    EXPECT_EQ(activeWindow(), qint64(panel->winId()));
    panel->hide();
    EXPECT_TRUE(comesToHear(*before, u"b"_s)) << "the window manager gives it to somebody else";
}

TEST_F(DressedSurfaces, SeekNoKeyboardOnceTheyAreHiddenOrItIsGivenBack) {
    const auto before = ordinary();
    const auto palette = shown(SurfaceRole::palette, smallPlace, Qt::red, SurfaceKeyboard::onClick);
    ASSERT_TRUE(comesToShow(inSmall, red));
    surfaces.takeKeyboard(*palette);
    palette->hide();
    palette->show();
    EXPECT_FALSE(eventuallyInLoop([&] { return palette->isActiveWindow(); }, 300));
    EXPECT_TRUE(comesToHear(*before, u"a"_s));
    surfaces.takeKeyboard(*palette);
    surfaces.giveKeyboardBack();
    EXPECT_FALSE(eventuallyInLoop([&] { return palette->isActiveWindow(); }, 300));
    EXPECT_TRUE(comesToHear(*before, u"b"_s));
}

TEST_F(DressedSurfaces, DoNotTakeTheKeyboardFromTheOneThatAskedLast) {
    const auto first = shown(SurfaceRole::palette, smallPlace, Qt::red, SurfaceKeyboard::onClick);
    const auto second =
        shown(SurfaceRole::palette, QRect(700, 100, 100, 100), Qt::blue, SurfaceKeyboard::onClick);
    ASSERT_TRUE(comesToShow(inSmall, red));
    const auto staysWith = [](const QWidget& window) {
        const auto isActive = [&window] { return window.isActiveWindow(); };
        return eventuallyInLoop(isActive) && !eventuallyInLoop([&] { return !isActive(); }, 300);
    };
    surfaces.takeKeyboard(*first);
    surfaces.takeKeyboard(*second);
    EXPECT_TRUE(staysWith(*second));
    surfaces.takeKeyboard(*second);
    surfaces.takeKeyboard(*first);
    EXPECT_TRUE(staysWith(*first));
    // A press is the human's word.
    surfaces.takeKeyboard(*first);
    EXPECT_TRUE(comesToBePressed(*second, {750, 150}));
    EXPECT_TRUE(staysWith(*second));
}

// By the time of the human's last action in it (EWMH 1.5), of which 0 says that it is not to be activated.
TEST_F(DressedSurfaces, SayThatTheyAreNotToBeActivatedUntilTheyAreToHaveTheKeyboard) {
    const auto userTime = [this](const ColorWindow& window) {
        const auto connection = session.connection();
        const auto atom = connection->reply<xcb_intern_atom_reply>(
            xcb_intern_atom(connection->raw(), 0, 17, "_NET_WM_USER_TIME"));
        return x11::requestProperty(*connection, static_cast<xcb_window_t>(window.winId()), atom->atom)
            .number();
    };
    const auto before = ordinary();
    clickAt({1200, 700});
    ASSERT_TRUE(eventuallyInLoop([&] { return before->presses == 1; }));
    const auto onClick = shown(SurfaceRole::panel, smallPlace, Qt::red, SurfaceKeyboard::onClick);
    ASSERT_TRUE(comesToShow(inSmall, red));
    EXPECT_EQ(userTime(*onClick), 0U);
    const auto atOnce = shown(SurfaceRole::panel, smallPlace, Qt::green, SurfaceKeyboard::atOnce);
    ASSERT_TRUE(comesToShow(inSmall, green));
    EXPECT_NE(userTime(*atOnce), 0U);
}

TEST_F(DressedSurfaces, LeaveTheKeyboardToWhomTheHumanGaveItMeanwhile) {
    const auto before = ordinary();
    const auto palette = shown(SurfaceRole::palette, smallPlace, Qt::red, SurfaceKeyboard::atOnce);
    ASSERT_TRUE(comesToHear(*palette, u"a"_s));
    const auto other = colorWindow(u"100x100+1000+600"_s, u"white"_s, {u"--undecorated"_s});
    runCommand(u"xdotool"_s, {u"windowfocus"_s, u"--sync"_s, QString::number(other->id())});
    ASSERT_TRUE(eventuallyInLoop([&] { return !palette->isActiveWindow(); }));
    surfaces.giveKeyboardBack();
    EXPECT_FALSE(eventuallyInLoop([&] { return before->isActiveWindow(); }, 200));
}

// ---- translucency

TEST_F(DressedSurfaces, AreTranslucentWithACompositor) {
    const auto below = ordinary();
    ASSERT_TRUE(surfaces.canBeTranslucent());
    const auto canvas = shown(SurfaceRole::canvas, largePlace, QColor(0, 0, 255, 128));
    EXPECT_TRUE(comesToShow(inLarge, blended(blue, 128.0 / 255, grey)));
    const auto clear = shown(SurfaceRole::canvas, middlePlace, QColor(0, 0, 0, 0));
    ASSERT_TRUE(comesToBePressed(*clear, inMiddle));
    EXPECT_TRUE(comesToShow(inMiddle, blended(blue, 128.0 / 255, grey)));
}

TEST_F(DressedSurfacesUncomposited, AreShapedInsteadOfTranslucent) {
    const auto below = ordinary();
    EXPECT_FALSE(surfaces.canBeTranslucent());
    const auto canvas = dressed(SurfaceRole::canvas, wholeScreen, Qt::blue);
    canvas->setMask(QRegion(smallPlace));
    canvas->show();
    ASSERT_TRUE(comesToShow(inSmall, blue));
    EXPECT_TRUE(comesToShow(inMiddle, grey));
    EXPECT_TRUE(comesToBePressed(*canvas, inSmall));
    EXPECT_TRUE(comesToBePressed(*below, inMiddle));
    surfaces.setClickThrough(*canvas, true);
    EXPECT_TRUE(comesToBePressed(*below, inSmall));
    surfaces.setClickThrough(*canvas, false);
    canvas->setMask(QRegion(middlePlace));
    ASSERT_TRUE(comesToShow(inMiddle, blue));
    EXPECT_TRUE(comesToBePressed(*canvas, inMiddle));
    EXPECT_TRUE(comesToBePressed(*below, inLarge));
}

TEST_F(DressedSurfacesUncomposited, CanBeTranslucentOnceACompositorComes) {
    ASSERT_FALSE(surfaces.canBeTranslucent());
    QProcess compositor;
    compositor.start(u"picom"_s, {u"--config"_s, u"/dev/null"_s, u"--backend"_s, u"xrender"_s});
    EXPECT_TRUE(eventuallyInLoop([&] { return surfaces.canBeTranslucent(); }));
    compositor.terminate();
    compositor.waitForFinished();
    EXPECT_TRUE(eventuallyInLoop([&] { return !surfaces.canBeTranslucent(); }));
}

// ---- places

TEST_F(DressedSurfacesOnTwoDisplays, CoverADisplayExactly) {
    const auto ground = colorWindow(u"1440x600+0+0"_s, u"white"_s, {u"--override-redirect"_s});
    const QList<QScreen*> screens = QGuiApplication::screens();
    ASSERT_EQ(screens.size(), 2);
    ColorWindow canvas(Qt::blue);
    surfaces.dress(canvas, SurfaceRole::canvas, SurfaceKeyboard::never, *screens[1]);
    canvas.setGeometry(screens[1]->geometry());
    canvas.show();
    EXPECT_TRUE(comesToShow({800, 100}, blue));
    EXPECT_TRUE(comesToShow({1439, 579}, blue));
    EXPECT_TRUE(comesToShow({799, 100}, white));
    EXPECT_TRUE(comesToShow({800, 99}, white));
    // Onto another display while it is shown.
    canvas.setGeometry(screens[0]->geometry());
    EXPECT_TRUE(comesToShow({0, 0}, blue));
    EXPECT_TRUE(comesToShow({799, 599}, blue));
    EXPECT_TRUE(comesToShow({800, 100}, white));
}

} // namespace orvane::test
