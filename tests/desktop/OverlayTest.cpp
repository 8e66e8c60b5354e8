#include "OrvaneCore/marking/Palettes.h"
#include "OrvaneCore/marking/overlay/OverlayBarTexts.h"
#include "OrvaneCore/surface/TooltipBubble.h"
#include "tests/desktop/OverlayFixture.h"

#include <QBackingStore>
#include <QClipboard>
#include <QPaintEvent>
#include <QPushButton>

#include <stdexcept>

namespace orvane::test {

namespace {

constexpr QRgb dimmedWhite = 0xFFD9D9D9;

class Overlay : public OverlayFixture {
protected:
    using OverlayFixture::OverlayFixture;

    /// The middle of the bar's button with that accessible name, in global points.
    QPoint buttonAt(const QString& name, std::size_t index = 0) {
        for (const QAbstractButton* button : window(index).findChildren<QAbstractButton*>()) {
            if (button->isVisible() && button->accessibleName() == name)
                return button->mapToGlobal(button->rect().center());
        }
        ADD_FAILURE() << "no button " << name.toStdString();
        return {};
    }

    const Marker& marker(std::size_t index) { return manager.markers().at(index); }
};

class OverlayUncomposited : public Overlay {
protected:
    OverlayUncomposited()
        : Overlay({u"--size"_s, u"1280x800"_s, u"--no-compositor"_s}) {}
};

class OverlayWithoutWindowManager : public Overlay {
protected:
    OverlayWithoutWindowManager()
        : Overlay({u"--size"_s, u"1280x800"_s, u"--no-window-manager"_s}) {}
};

class OverlayOnTwoDisplays : public Overlay {
protected:
    OverlayOnTwoDisplays()
        : Overlay({u"--monitors"_s, u"A:1000x700+0+0,B:640x480+1000+100"_s}) {}
};

/// The primary display is the right one.
class OverlayWithADisplayOnTheLeft : public Overlay {
protected:
    OverlayWithADisplayOnTheLeft()
        : Overlay({u"--monitors"_s, u"B:1000x700+640+0,A:640x480+0+100"_s}) {}
};

class OverlayOnMixedScales : public Overlay {
protected:
    OverlayOnMixedScales()
        : Overlay({u"--monitors"_s, u"A:1600x1200+0+0,B:1000x700+1600+0"_s, u"--scale"_s, u"A=2;B=1"_s}) {}
};

/// At which every tenth point is half a pixel.
class OverlayOnHalvesOfPixels : public Overlay {
protected:
    OverlayOnHalvesOfPixels()
        : Overlay({u"--size"_s, u"1280x800"_s, u"--scale"_s, u"1.1"_s}) {}

    /// What the overlay's window is made of once all is painted.
    QImage painted() {
        QCoreApplication::processEvents();
        const QPaintDevice* pixels = window().backingStore()->paintDevice();
        if (pixels->devType() != QInternal::Image)
            throw std::runtime_error("the window is not painted into an image");
        // Not a second face of the same pixels.
        return static_cast<const QImage*>(pixels)->copy();
    }
};

} // namespace

TEST_F(OverlayOnHalvesOfPixels, LeavesNoRowOfPixelsUnpainted) {
    show();
    for (int i = 0; i < 20; ++i) {
        const QImage before = painted();
        manager.add(QRectF(300 + i, 200 + i, 150, 101), QString());
        const QImage partial = painted();
        window().update();
        ASSERT_EQ(partial, painted()) << i;
        ASSERT_NE(partial, before) << i;
        manager.clearAll();
    }
}

TEST_F(Overlay, DimsTheScreenAndHasTheKeyboardAtOnce) {
    const auto ground = cover(u"1280x800+0+0"_s);
    show();
    EXPECT_TRUE(comesToShow({100, 300}, dimmedWhite));
    EXPECT_TRUE(comesToShow({1279, 799}, dimmedWhite));
    EXPECT_TRUE(manager.isOverlayActive());
    press(u"Escape"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return !controller.isShown(); }));
    EXPECT_FALSE(manager.isOverlayActive());
    EXPECT_TRUE(comesToShow({100, 300}, white));
}

TEST_F(Overlay, StandsAboveAFullScreenWindowAndGivesTheKeyboardBack) {
    QWidget other;
    other.setPalette(Qt::white);
    other.showFullScreen();
    ASSERT_TRUE(eventuallyInLoop([&] { return activeWindow() == qint64(other.winId()); }));
    ASSERT_TRUE(comesToShow({100, 300}, white));
    controller.showOverlay();
    ASSERT_TRUE(comesToShow({100, 300}, dimmedWhite));
    press(u"Escape"_s);
    ASSERT_TRUE(eventuallyInLoop([&] { return !controller.isShown(); }));
    EXPECT_TRUE(eventuallyInLoop([&] { return other.isActiveWindow(); }));
    EXPECT_TRUE(eventuallyInLoop([&] { return activeWindow() == qint64(other.winId()); }));
}

TEST_F(Overlay, TakesALostKeyboardBackWithAClick) {
    const auto other = cover(u"400x300+0+0"_s);
    show();
    runCommand(u"xdotool"_s, {u"windowfocus"_s, u"--sync"_s, QString::number(other->id())});
    ASSERT_TRUE(eventuallyInLoop([&] { return !window().isActiveWindow(); }));
    clickAt({700, 400});
    ASSERT_TRUE(eventuallyInLoop([&] { return window().isActiveWindow(); }));
    press(u"Escape"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return !controller.isShown(); }));
}

TEST_F(Overlay, HasAWayOutByMouse) {
    const auto other = cover(u"400x300+0+0"_s);
    show();
    runCommand(u"xdotool"_s, {u"windowfocus"_s, u"--sync"_s, QString::number(other->id())});
    // The first click counts, even though the window does not have the keyboard.
    clickAt(buttonAt(u"Cancel (esc)"_s));
    EXPECT_TRUE(eventuallyInLoop([&] { return !controller.isShown(); }));
}

TEST_F(Overlay, IsPaintedAsAWholeOnce) {
    class WholePaints : public QObject {
    public:
        int count = 0;

    protected:
        bool eventFilter(QObject* watched, QEvent* event) override {
            if (event->type() == QEvent::Paint) {
                const QSize whole = static_cast<QWidget*>(watched)->size();
                qint64 area = 0;
                for (const QRect& part : static_cast<QPaintEvent*>(event)->region())
                    area += qint64(part.width()) * part.height();
                if (area > qint64(whole.width()) * whole.height() / 2)
                    ++count;
            }
            return false;
        }
    } paints;
    controller.showOverlay();
    window().view().installEventFilter(&paints);
    ASSERT_TRUE(eventuallyInLoop([&] { return window().isActiveWindow() && paints.count > 0; }));
    mark({200, 200}, {500, 400});
    EXPECT_EQ(paints.count, 1);
}

TEST_F(Overlay, MarksARegionAndItsLabel) {
    show();
    drag({200, 200}, {500, 400});
    ASSERT_TRUE(eventuallyInLoop([] { return isEditing(); }));
    type(u"Too small"_s);
    press(u"shift+Return"_s);
    type(u"and grey"_s);
    press(u"Return"_s);
    ASSERT_TRUE(eventuallyInLoop([] { return !isEditing(); }));
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(marker(0).rect, QRectF(200, 200, 300, 200));
    EXPECT_EQ(marker(0).label, u"Too small\nand grey"_s);
    EXPECT_TRUE(controller.isShown());
    // The outline is in the marker's colour.
    EXPECT_TRUE(comesToShow({350, 200}, marker(0).color.rgb(), 60));
}

TEST_F(Overlay, KeepsALabelThatIsLeftForAnotherRegion) {
    show();
    drag({200, 200}, {500, 400});
    ASSERT_TRUE(eventuallyInLoop([] { return isEditing(); }));
    type(u"kept"_s);
    mark({600, 200}, {800, 400});
    EXPECT_EQ(marker(0).label, u"kept"_s);
    EXPECT_EQ(marker(1).label, QString());
}

TEST_F(Overlay, LetsARightClickLabelARegion) {
    show();
    mark({200, 200}, {500, 400});
    clickAt({400, 300}, 3);
    write(u"later"_s);
    EXPECT_EQ(marker(0).label, u"later"_s);
}

TEST_F(Overlay, TakesTextAsAnyProgramDoes) {
    QGuiApplication::clipboard()->setText(u"ある日 ж"_s);
    show();
    drag({200, 200}, {500, 400});
    ASSERT_TRUE(eventuallyInLoop([] { return isEditing(); }));
    type(u"one two"_s);
    press(u"ctrl+shift+Left"_s);
    press(u"ctrl+v"_s);
    press(u"Return"_s);
    ASSERT_TRUE(eventuallyInLoop([] { return !isEditing(); }));
    EXPECT_EQ(marker(0).label, u"one ある日 ж"_s);
    clickAt({400, 300}, 3);
    ASSERT_TRUE(eventuallyInLoop([] { return isEditing(); }));
    type(u"x"_s);
    press(u"ctrl+z"_s);
    type(u""_s);
    press(u"End"_s);
    type(u"!"_s);
    press(u"Return"_s);
    ASSERT_TRUE(eventuallyInLoop([] { return !isEditing(); }));
    EXPECT_EQ(marker(0).label, u"one ある日 ж!"_s);
}

TEST_F(Overlay, MovesAndResizesRegionsAndDeletesThem) {
    show();
    mark({200, 200}, {500, 400});
    drag({350, 200}, {360, 220});
    ASSERT_TRUE(eventuallyInLoop([&] { return marker(0).rect == QRectF(210, 220, 300, 200); }));
    drag({510, 420}, {610, 520});
    ASSERT_TRUE(eventuallyInLoop([&] { return marker(0).rect == QRectF(210, 220, 400, 300); }));
    press(u"BackSpace"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markers().empty(); }));
    EXPECT_TRUE(controller.isShown());
}

TEST_F(Overlay, DrawsWithThePalette) {
    show();
    mark({200, 200}, {600, 500});
    press(u"m"_s);
    ASSERT_TRUE(eventuallyInLoop([&] { return manager.markupMode(); }));
    clickAt(buttonAt(u"Arrow"_s));
    ASSERT_TRUE(eventuallyInLoop([&] { return manager.currentTool() == AnnotationTool::arrow; }));
    drag({250, 250}, {400, 350});
    ASSERT_TRUE(eventuallyInLoop([&] { return manager.annotations().size() == 1; }));
    EXPECT_EQ(manager.annotations()[0].start, QPointF(250, 250));
    EXPECT_EQ(manager.annotations()[0].end, QPointF(400, 350));
    EXPECT_TRUE(comesToShow({325, 300}, QColor::fromRgb(markup_colors::defaultColor).rgb()));

    clickAt(buttonAt(u"Text"_s));
    clickAt({300, 450});
    write(u"here"_s);
    ASSERT_EQ(manager.annotations().size(), 2U);
    EXPECT_EQ(manager.annotations()[1].text, u"here"_s);
    clickAt({500, 450});
    ASSERT_TRUE(eventuallyInLoop([] { return isEditing(); }));
    press(u"Escape"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.annotations().size() == 2; }));
}

TEST_F(Overlay, ObeysItsKeysAndButtons) {
    show();
    press(u"b"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.modes().spotlight; }));
    press(u"o"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.modes().ocr; }));
    clickAt(buttonAt(u"Image Only (I)"_s));
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.modes().image && !manager.modes().ocr; }));
    press(u"s"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.modes().directSend; }));
    clickAt(buttonAt(u"Send: no app (S)"_s));
    EXPECT_TRUE(eventuallyInLoop([&] { return !manager.modes().directSend; }));
    EXPECT_EQ(manager.currentSendTarget(), std::nullopt);
    EXPECT_TRUE(controller.isShown());
    EXPECT_EQ(settings.value(u"ImageMode"_s), QJsonValue(true));
}

TEST_F(Overlay, StepsThroughTheApplicationsThatMarksCanBeSentTo) {
    sendTargets = SendTargets({{.name = u"First"_s, .bundleID = u"1"_s},
                               {.name = u"Second"_s, .bundleID = u"2"_s},
                               {.name = u"Third"_s, .bundleID = u"3"_s},
                               {.name = u"Fourth"_s, .bundleID = u"4"_s}});
    show();
    const auto comesToSendTo = [&](const QString& name) {
        return eventuallyInLoop(
            [&] { return manager.currentSendTarget() && manager.currentSendTarget()->name == name; });
    };
    press(u"Tab"_s);
    press(u"s"_s);
    ASSERT_TRUE(comesToSendTo(u"First"_s));
    buttonAt(u"Send → First (S)"_s);
    for (const auto& [key, name] :
         {std::pair(u"Tab"_s, u"Second"_s), std::pair(u"d"_s, u"Third"_s), std::pair(u"Right"_s, u"Fourth"_s),
          std::pair(u"a"_s, u"Third"_s), std::pair(u"Left"_s, u"Second"_s)}) {
        press(key);
        EXPECT_TRUE(comesToSendTo(name)) << key.toStdString();
        buttonAt(u"Send → %1 (S)"_s.arg(name));
    }
    clickAt(buttonAt(u"Send → Second (S)"_s));
    ASSERT_TRUE(eventuallyInLoop([&] { return !manager.modes().directSend; }));
    // Nothing is stepped to while nothing is to be sent.
    press(u"Tab"_s);
    press(u"d"_s);
    press(u"b"_s);
    ASSERT_TRUE(eventuallyInLoop([&] { return manager.modes().spotlight; }));
    ASSERT_TRUE(manager.currentSendTarget());
    EXPECT_EQ(manager.currentSendTarget()->name, u"Second"_s);
    EXPECT_TRUE(controller.isShown());
}

// The places of keys are those of a US keyboard: 38 is A, 39 is S, 52 is Z and 58 is M there.

TEST_F(Overlay, FindsKeysByTheirPlaceWhereTheLettersAreNotLatin) {
    // The last is Georgian on French keys: a comma has the place of M.
    for (const QStringList& layout : {QStringList{u"ru"_s}, QStringList{u"gr"_s}, QStringList{u"il"_s},
                                      QStringList{u"ara"_s}, QStringList{u"fr"_s, u"-variant"_s, u"geo"_s}}) {
        runCommand(u"setxkbmap"_s, QStringList{u"-layout"_s} + layout);
        show();
        manager.add({200, 200, 300, 200}, QString());
        press(u"58"_s);
        EXPECT_TRUE(eventuallyInLoop([&] { return manager.markupMode(); })) << layout.front().toStdString();
        press(u"39"_s);
        EXPECT_TRUE(eventuallyInLoop([&] { return manager.modes().directSend; }))
            << layout.front().toStdString();
        press(u"ctrl+52"_s);
        EXPECT_TRUE(eventuallyInLoop([&] { return manager.markers().empty(); }))
            << layout.front().toStdString();
        manager.setDirectSend(false);
        controller.cancelOverlay();
    }
}

TEST_F(Overlay, FindsLettersWhereALatinLayoutHasThem) {
    sendTargets = SendTargets({{.name = u"First"_s, .bundleID = u"1"_s},
                               {.name = u"Second"_s, .bundleID = u"2"_s},
                               {.name = u"Third"_s, .bundleID = u"3"_s}});
    manager.setDirectSend(true);
    const auto target = [&] { return manager.currentSendTarget().value_or(SendTarget()).name; };

    // French keys: A is where Q is elsewhere, M right of L, Z where W is, a comma where M is.
    runCommand(u"setxkbmap"_s, {u"fr"_s});
    show();
    manager.add({200, 200, 300, 200}, QString());
    press(u"58"_s);
    press(u"38"_s);
    press(u"ctrl+52"_s);
    press(u"24"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return target() == u"Third"_s; })) << target().toStdString();
    EXPECT_FALSE(manager.markupMode());
    EXPECT_EQ(manager.markers().size(), 1U);
    press(u"47"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markupMode(); }));
    press(u"ctrl+25"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markers().empty(); }));
    controller.cancelOverlay();

    // German keys: Z and Y have changed places.
    runCommand(u"setxkbmap"_s, {u"de"_s});
    show();
    manager.add({200, 200, 300, 200}, QString());
    press(u"ctrl+52"_s);
    press(u"58"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markupMode(); }));
    EXPECT_EQ(manager.markers().size(), 1U);
    press(u"ctrl+29"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markers().empty(); }));
    controller.cancelOverlay();

    // Dvorak: the place of S has O.
    runCommand(u"setxkbmap"_s, {u"us"_s, u"-variant"_s, u"dvorak"_s});
    show();
    press(u"39"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.modes().ocr; }));
}

TEST_F(Overlay, GoesByTheLayoutThatIsInUse) {
    // The second of two, as a human switches to it.
    runCommand(u"setxkbmap"_s, {u"fr,ru"_s, u"-option"_s, u"grp:shifts_toggle"_s});
    show();
    press(u"47"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markupMode(); }));
    runCommand(u"xdotool"_s, {u"keydown"_s, u"50"_s, u"key"_s, u"62"_s, u"keyup"_s, u"50"_s});
    press(u"47"_s);
    press(u"58"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return !manager.markupMode(); }));
}

TEST_F(Overlay, SubmitsByTheEnterOfTheKeypad) {
    show();
    mark({200, 200}, {500, 400});
    press(u"KP_Enter"_s);
    EXPECT_TRUE(isSubmitted());
}

TEST_F(Overlay, UndoesByControlZ) {
    show();
    mark({200, 200}, {500, 400});
    mark({600, 200}, {800, 400});
    press(u"z"_s);
    press(u"ctrl+shift+z"_s);
    press(u"ctrl+z"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markers().size() == 1; }));
    EXPECT_EQ(marker(0).rect, QRectF(200, 200, 300, 200));
}

TEST_F(Overlay, MarksTheLastRowAndColumn) {
    show();
    mark({1000, 600}, {1279, 799});
    EXPECT_EQ(marker(0).rect, QRectF(1000, 600, 280, 200));
    mark({1279, 400}, {900, 300});
    EXPECT_EQ(marker(1).rect, QRectF(900, 300, 380, 100));
    mark({0, 0}, {300, 200});
    EXPECT_EQ(marker(2).rect, QRectF(0, 0, 300, 200));
}

TEST_F(Overlay, LetsADoubleClickChangeAText) {
    show();
    press(u"m"_s);
    ASSERT_TRUE(eventuallyInLoop([&] { return manager.markupMode(); }));
    clickAt(buttonAt(u"Text"_s));
    clickAt({300, 450});
    write(u"here"_s);
    ASSERT_EQ(manager.annotations().size(), 1U);
    const auto doubleClick = [] {
        moveMouse({310, 442});
        runCommand(u"xdotool"_s, {u"click"_s, u"--repeat"_s, u"2"_s, u"--delay"_s, u"60"_s, u"1"_s});
    };
    doubleClick();
    ASSERT_TRUE(eventuallyInLoop([] { return isEditing(); }));
    press(u"End"_s);
    type(u" not"_s);
    press(u"Escape"_s);
    ASSERT_TRUE(eventuallyInLoop([] { return !isEditing(); }));
    EXPECT_EQ(manager.annotations()[0].text, u"here"_s);
    doubleClick();
    ASSERT_TRUE(eventuallyInLoop([] { return isEditing(); }));
    press(u"End"_s);
    write(u" and there"_s);
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(manager.annotations()[0].text, u"here and there"_s);
}

TEST_F(Overlay, HasNoCrosshairWhileThePointerIsOnTheBar) {
    const auto ground = cover(u"1280x800+0+0"_s, u"#000000"_s);
    show();
    moveMouse({300, 300});
    // The lines are dashed.
    const auto hasCrosshair = [&](int x) {
        const QImage picture = screen();
        for (int y = 350; y < 550; ++y) {
            if (qGray(picture.pixel(x, y)) > 20)
                return true;
        }
        return false;
    };
    ASSERT_TRUE(eventuallyInLoop([&] { return hasCrosshair(300); }));
    const QPoint button = buttonAt(u"OCR (O)"_s);
    moveMouse(button);
    EXPECT_TRUE(eventuallyInLoop([&] { return !hasCrosshair(300) && !hasCrosshair(button.x()); }));
    moveMouse({400, 300});
    EXPECT_TRUE(eventuallyInLoop([&] { return hasCrosshair(400); }));
}

TEST_F(Overlay, ExplainsItsButtons) {
    show();
    const QPoint button = buttonAt(u"OCR (O)"_s);
    moveMouse(button - QPoint(3, 0));
    moveMouse(button);
    ASSERT_TRUE(eventuallyInLoop([&] { return tooltips.shown() != nullptr; }));
    EXPECT_EQ(tooltips.shown()->accessibleName(), overlay_bar_tips::ocr());
    const QRect bubble = tooltips.shown()->geometry();
    EXPECT_LT(bubble.bottom(), button.y() - 14);
    EXPECT_TRUE(QRect(0, 0, 1280, 800).contains(bubble));
    // Dark, in front of the overlay.
    const QPoint place = bubble.topLeft() + QPoint(bubble.width() / 2, 4);
    EXPECT_TRUE(eventuallyInLoop([&] { return qGray(screen().pixel(place)) < 60; }));
    EXPECT_TRUE(window().isActiveWindow());
    press(u"o"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.modes().ocr && !tooltips.shown(); }));
}

TEST_F(OverlayOnTwoDisplays, ExplainsItsButtonsOnBoth) {
    show();
    for (const std::size_t index : {0U, 1U}) {
        const QPoint button = buttonAt(u"OCR (O)"_s, index);
        moveMouse(button - QPoint(3, 0));
        moveMouse(button);
        ASSERT_TRUE(eventuallyInLoop([&] { return tooltips.shown() != nullptr; })) << index;
        EXPECT_TRUE(window(index).geometry().contains(tooltips.shown()->geometry()));
        moveMouse(window(index).geometry().center());
        ASSERT_TRUE(eventuallyInLoop([&] { return !tooltips.shown(); })) << index;
    }
}

TEST_F(OverlayOnMixedScales, MarksTheLastRowAndColumn) {
    show();
    mark({1400, 1000}, {1599, 1199});
    EXPECT_EQ(marker(0).rect, QRectF(700, 500, 100, 100));
    mark({1200, 900}, {1598, 1198});
    EXPECT_EQ(marker(1).rect, QRectF(600, 450, 199, 149));
    mark({2400, 600}, {2599, 699});
    EXPECT_EQ(marker(2).rect.size(), QSizeF(200, 100));
}

TEST_F(Overlay, IsToggledByItsHotkey) {
    controller.toggleOverlay();
    ASSERT_TRUE(eventuallyInLoop([&] { return window().isActiveWindow(); }));
    controller.toggleOverlay();
    EXPECT_FALSE(controller.isShown());
    EXPECT_TRUE(toasts.empty());

    show();
    mark({200, 200}, {500, 400});
    controller.toggleOverlay();
    EXPECT_FALSE(controller.isShown());
    EXPECT_TRUE(isSubmitted());
    EXPECT_TRUE(manager.markers().empty());
}

TEST_F(Overlay, ForgetsTheMarksOfTheLastTime) {
    show();
    mark({200, 200}, {500, 400});
    manager.setMarkupMode(true);
    manager.setCurrentTool(AnnotationTool::arrow);
    controller.hideOverlay();
    EXPECT_EQ(manager.markers().size(), 1U);
    show();
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_FALSE(manager.markupMode());
    EXPECT_EQ(manager.currentTool(), AnnotationTool::region);
    controller.showOverlay();
    EXPECT_EQ(controller.windows().size(), 1U);
}

TEST_F(Overlay, BearsTwoHundredRegions) {
    show();
    for (int i = 0; i < 200; ++i) {
        const QPoint place(i % 20, i / 20);
        manager.add(QRectF(QPoint(20, 60) + 60 * place, QSize(40, 40)), QString::number(i));
    }
    drag({100, 670}, {160, 715});
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markers().size() == 201; }));
}

TEST_F(OverlayUncomposited, FreezesTheScreen) {
    const auto ground = cover(u"1280x800+0+0"_s);
    ground->fill(QRect(100, 300, 50, 50), QColor(200, 0, 0));
    controller.showOverlay();
    ASSERT_TRUE(comesToShow({200, 300}, dimmedWhite));
    EXPECT_TRUE(comesToShow({120, 320}, blended(0xFF000000, 38.0 / 255, 0xFFC80000)));
    ASSERT_TRUE(eventuallyInLoop([&] { return window().isActiveWindow(); }));
    drag({400, 300}, {600, 500});
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markers().size() == 1; }));
    controller.cancelOverlay();
    EXPECT_TRUE(comesToShow({200, 300}, white));
}

TEST_F(OverlayUncomposited, CanBeSentAwayBeforeItHasCome) {
    controller.toggleOverlay();
    EXPECT_FALSE(controller.isShown());
    controller.toggleOverlay();
    EXPECT_FALSE(eventuallyInLoop([&] { return controller.isShown(); }, 700));
    EXPECT_FALSE(manager.isOverlayActive());
    show();
}

TEST_F(OverlayWithoutWindowManager, Works) {
    show();
    mark({200, 200}, {500, 400});
    press(u"Escape"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return !controller.isShown(); }));
}

TEST_F(OverlayOnTwoDisplays, IsOnBoth) {
    const auto ground = cover(u"1640x700+0+0"_s);
    show();
    ASSERT_EQ(controller.windows().size(), 2U);
    EXPECT_TRUE(comesToShow({100, 300}, dimmedWhite));
    EXPECT_TRUE(comesToShow({1050, 300}, dimmedWhite));
    mark({1100, 200}, {1300, 300});
    EXPECT_EQ(marker(0).rect, QRectF(1100, 200, 200, 100));
    // A drag that leaves its display.
    mark({900, 200}, {1050, 300});
    EXPECT_EQ(marker(1).rect, QRectF(900, 200, 150, 100));
    // What is drawn on one is seen on the other.
    EXPECT_TRUE(comesToShow({1025, 200}, marker(1).color.rgb(), 60));
    press(u"Delete"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return manager.markers().size() == 1; }));
}

TEST_F(OverlayOnTwoDisplays, SurvivesTheLossOfOne) {
    show();
    mark({1100, 200}, {1300, 300});
    runCommand(u"xrandr"_s, {u"--delmonitor"_s, u"B"_s});
    ASSERT_TRUE(eventuallyInLoop([&] { return controller.windows().size() == 1; }));
    EXPECT_TRUE(controller.isShown());
    EXPECT_EQ(manager.markers().size(), 1U);
    mark({200, 200}, {500, 400});
    controller.submit();
    EXPECT_TRUE(isSubmitted());
    EXPECT_EQ(sessionFiles(), (QStringList{u"SESSION.md"_s, u"display-annotated.png"_s, u"region-2.png"_s}));
}

TEST_F(OverlayOnTwoDisplays, HasTheKeyboardOnTheOtherAfterTheLossOfThatWhichHadIt) {
    show();
    runCommand(u"xrandr"_s, {u"--delmonitor"_s, u"A"_s});
    ASSERT_TRUE(eventuallyInLoop([&] { return controller.windows().size() == 1; }));
    ASSERT_TRUE(eventuallyInLoop([&] { return window().isActiveWindow(); }));
    press(u"Escape"_s);
    EXPECT_TRUE(eventuallyInLoop([&] { return !controller.isShown(); }));
}

TEST_F(OverlayWithADisplayOnTheLeft, MarksOnBoth) {
    show();
    EXPECT_EQ(window().geometry(), QRect(640, 0, 1000, 700));
    mark({100, 200}, {300, 300});
    mark({800, 100}, {900, 200});
    EXPECT_EQ(marker(0).rect, QRectF(100, 200, 200, 100));
    EXPECT_EQ(marker(1).rect, QRectF(800, 100, 100, 100));
    EXPECT_TRUE(comesToShow({200, 200}, marker(0).color.rgb(), 60));
}

TEST_F(OverlayOnMixedScales, MarksSinglePixels) {
    show();
    mark({401, 201}, {600, 501});
    EXPECT_EQ(marker(0).rect, QRectF(200.5, 100.5, 99.5, 150));
}

TEST_F(OverlayOnMixedScales, MarksInPoints) {
    show();
    mark({400, 200}, {600, 500});
    EXPECT_EQ(marker(0).rect, QRectF(200, 100, 100, 150));
    mark({1700, 100}, {1800, 200});
    const QRectF right = marker(1).rect;
    EXPECT_EQ(right.size(), QSizeF(100, 100));
    EXPECT_EQ(right.topLeft() - QPointF(window(1).geometry().topLeft()), QPointF(100, 100));
    EXPECT_TRUE(comesToShow({500, 200}, marker(0).color.rgb(), 60));
    EXPECT_TRUE(comesToShow({1750, 100}, marker(1).color.rgb(), 60));
}

} // namespace orvane::test
