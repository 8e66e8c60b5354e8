#include "OrvaneCore/marking/overlay/OverlayView.h"

#include "OrvaneCore/marking/editing/MarkupPalette.h"
#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/marking/overlay/OverlayBar.h"
#include "OrvaneCore/marking/overlay/OverlayCommands.h"
#include "OrvaneCore/marking/overlay/OverlayPainter.h"
#include "OrvaneCore/platform/DesktopKeyboard.h"
#include "OrvaneCore/send/SendTargets.h"
#include "OrvaneCore/surface/FirstMouseButton.h"
#include "tests/support/InMemorySettings.h"
#include "tests/support/WidgetTest.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QScreen>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

/// Every key is the same one: M, or whichever a test likes.
class LetterKeyboard : public DesktopKeyboard {
public:
    std::optional<int> keyCode(const NativeKey& /*key*/) override { return code; }

    int code = 46;
};

class CountingView : public OverlayView {
public:
    using OverlayView::OverlayView;

    /// What is to be shown, whether or not it is.
    OverlayScene current() const { return OverlayView::scene(); }

    mutable int scenes = 0;

protected:
    OverlayScene scene() const override {
        ++scenes;
        return OverlayView::scene();
    }
};

/// The child of that class. Without a meta object of its own, Qt's search would take it for any widget.
template <typename Child>
Child* childOf(const QObject& parent) {
    for (QObject* child : parent.children()) {
        if (auto* found = dynamic_cast<Child*>(child))
            return found;
    }
    return nullptr;
}

class OverlayViewTest : public testing::Test {
protected:
    OverlayViewTest()
        : ground({800, 600})
        , view(overlay, &ground) {
        view.setGeometry(ground.rect());
        view.setFrame({-100, 50, 800, 600}, 1080);
        view.show();
        view.setFocus();
        QCoreApplication::processEvents();
        view.scenes = 0;
    }

    // What the window gets, as a real pointer would have it. A pointer is where it presses already.
    void press(const QPoint& place) { test::pressAt(view, place); }
    void moveTo(const QPoint& place) { test::moveTo(ground, place); }
    void release(const QPoint& place) { test::releaseAt(ground, place); }
    void drag(const QPoint& from, const QPoint& to) {
        moveTo(from);
        press(from);
        moveTo((from + to) / 2);
        moveTo(to);
        release(to);
    }

    /// A region whose label is not being written any more.
    void drawRegion(const QPoint& from, const QPoint& to) {
        drag(from, to);
        view.closeEditors();
    }

    template <typename Action>
    int scenesOf(Action action) {
        const int before = view.scenes;
        action();
        return view.scenes - before;
    }

    /// Whether the window shows what the document and the gesture are now. What other widgets cover does not
    /// count.
    testing::AssertionResult isShown() {
        QCoreApplication::processEvents();
        QImage shown = QGuiApplication::primaryScreen()
                           ->grabWindow(ground.winId())
                           .toImage()
                           .convertToFormat(QImage::Format_RGB32);
        QImage expected(shown.size(), QImage::Format_RGB32);
        expected.fill(ground.palette().color(QPalette::Window));
        QPainter painter(&expected);
        paintOverlay(painter, view.current(), expected.rect());
        QPainter cover(&shown);
        for (const QWidget* child : view.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (!child->isVisible())
                continue;
            painter.fillRect(child->geometry(), Qt::black);
            cover.fillRect(child->geometry(), Qt::black);
        }
        painter.end();
        cover.end();
        if (shown == expected)
            return testing::AssertionSuccess();
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                if (shown.pixel(x, y) != expected.pixel(x, y))
                    return testing::AssertionFailure() << "another pixel at " << x << ", " << y;
            }
        }
        return testing::AssertionFailure() << "a picture of another kind";
    }

    test::InMemorySettings settings;
    MarkerManager manager{settings};
    SendTargets targets;
    int submissions = 0;
    OverlayCommands commands{manager, targets, [this] { ++submissions; }, [] {}};
    LetterKeyboard keyboard;
    OverlayDocument overlay{.manager = manager,
                            .commands = commands,
                            .keyboard = keyboard,
                            .targetIcon = [](const SendTarget&) { return QIcon(); }};
    test::WidgetGround ground;
    CountingView view;
};

TEST_F(OverlayViewTest, APointerThatMovesMakesOneScene) {
    EXPECT_EQ(scenesOf([this] { moveTo({100, 100}); }), 1);
    EXPECT_TRUE(isShown());
    EXPECT_EQ(scenesOf([this] { moveTo({300, 200}); }), 1);
    EXPECT_TRUE(isShown());
    QEvent leave(QEvent::Leave);
    EXPECT_EQ(scenesOf([this, &leave] { QCoreApplication::sendEvent(&view, &leave); }), 1);
    EXPECT_EQ(view.current().mousePosition, std::nullopt);
    EXPECT_TRUE(isShown());
}

TEST_F(OverlayViewTest, TheSceneTellsOfTheToolAndOfAllDisplays) {
    EXPECT_TRUE(view.current().shapes.displays.empty());
    manager.setCurrentTool(AnnotationTool::arrow);
    EXPECT_EQ(view.current().tool, AnnotationTool::arrow);
    overlay.displays = [] { return std::vector{QRectF(0, 0, 100, 80), QRectF(100, 0, 50, 80)}; };
    const CountingView another(overlay, &ground);
    EXPECT_EQ(another.current().shapes.displays, overlay.displays());
}

TEST_F(OverlayViewTest, EachStepOfARegionMakesOneScene) {
    moveTo({100, 100});
    EXPECT_EQ(scenesOf([this] { press({100, 100}); }), 1);
    for (const QPoint& place : {QPoint(150, 160), QPoint(300, 250), QPoint(60, 70)}) {
        EXPECT_EQ(scenesOf([this, place] { moveTo(place); }), 1);
        EXPECT_TRUE(isShown());
    }
    EXPECT_EQ(scenesOf([this] { release({60, 70}); }), 1);
    EXPECT_EQ(manager.markers().size(), 1U);
    EXPECT_TRUE(isShown());
}

TEST_F(OverlayViewTest, EachStepOfAMarkerThatIsDraggedMakesOneScene) {
    drawRegion({100, 100}, {300, 250});
    for (const QPoint& from : {QPoint(200, 100), QPoint(320, 280)}) {
        moveTo(from);
        EXPECT_EQ(scenesOf([this, from] { press(from); }), 1);
        for (const QPoint& way : {QPoint(10, 15), QPoint(20, 30)}) {
            const QRectF before = manager.markers()[0].rect;
            EXPECT_EQ(scenesOf([this, from, way] { moveTo(from + way); }), 1);
            EXPECT_NE(manager.markers()[0].rect, before);
            EXPECT_TRUE(isShown());
        }
        EXPECT_EQ(scenesOf([this, from] { release(from + QPoint(20, 30)); }), 1);
        EXPECT_TRUE(isShown());
    }
}

TEST_F(OverlayViewTest, EachStepOfAShapeMakesOneScene) {
    commands.perform(OverlayCommand::toggleMarkup);
    manager.setCurrentTool(AnnotationTool::box);
    // Drawn, reshaped by its corner, moved by its outline.
    for (const auto& [from, to] :
         {std::pair(QPoint(100, 100), QPoint(200, 180)), std::pair(QPoint(200, 180), QPoint(260, 240)),
          std::pair(QPoint(180, 100), QPoint(190, 130))}) {
        moveTo(from);
        EXPECT_EQ(scenesOf([this, from = from] { press(from); }), 1);
        EXPECT_TRUE(isShown());
        for (const QPoint& place : {(from + to) / 2, to}) {
            EXPECT_EQ(scenesOf([this, place] { moveTo(place); }), 1);
            EXPECT_TRUE(isShown());
        }
        EXPECT_EQ(scenesOf([this, to = to] { release(to); }), 1);
        EXPECT_TRUE(isShown());
    }
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(manager.annotations()[0].boundingRect(), QRectF(10, 180, 160, 140));
}

TEST_F(OverlayViewTest, APressThatEndsATextAndBeginsAnotherMakesOneScene) {
    commands.perform(OverlayCommand::toggleMarkup);
    manager.setCurrentTool(AnnotationTool::text);
    press({100, 100});
    release({100, 100});
    test::typeText(u"see"_s);
    moveTo({100, 300});
    EXPECT_EQ(scenesOf([this] { press({100, 300}); }), 1);
    ASSERT_EQ(manager.annotations().size(), 2U);
    EXPECT_EQ(manager.annotations()[0].text, u"see"_s);
    EXPECT_TRUE(isShown());
    release({100, 300});
    test::typeKey(ground, Qt::Key_Escape);
    EXPECT_EQ(manager.annotations().size(), 1U);
    EXPECT_TRUE(isShown());
}

TEST_F(OverlayViewTest, AKeyThatChangesSeveralThingsMakesOneScene) {
    manager.setSelectedMarkerId(manager.add({0, 150, 200, 100}, QString()).id);
    EXPECT_EQ(scenesOf([this] { test::typeKey(ground, Qt::Key_M); }), 1);
    EXPECT_TRUE(manager.markupMode());
    EXPECT_EQ(manager.selectedMarkerId(), std::nullopt);
    EXPECT_TRUE(isShown());
    EXPECT_EQ(scenesOf([this] { test::typeKey(ground, Qt::Key_Backspace); }), 1);
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_TRUE(isShown());
}

TEST_F(OverlayViewTest, EnterOfTheKeypadSubmits) {
    test::typeKey(ground, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(submissions, 1);
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_EQ(submissions, 2);
}

TEST_F(OverlayViewTest, AKeyThatIsHeldRemovesOnAndTogglesOnce) {
    const auto repeat = [this](int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
        QCoreApplication::sendEvent(&view, &event);
    };
    test::typeKey(ground, Qt::Key_M);
    repeat(Qt::Key_M);
    EXPECT_TRUE(manager.markupMode());
    repeat(Qt::Key_Return);
    EXPECT_EQ(submissions, 0);
    for (int i = 0; i < 3; ++i)
        manager.add({0, 150, 200, 100}, QString());
    test::typeKey(ground, Qt::Key_Backspace);
    repeat(Qt::Key_Backspace);
    EXPECT_EQ(manager.markers().size(), 1U);
}

TEST_F(OverlayViewTest, BothDeleteKeysRemove) {
    for (const Qt::Key key : {Qt::Key_Backspace, Qt::Key_Delete}) {
        manager.add({0, 150, 200, 100}, QString());
        test::typeKey(ground, key);
        EXPECT_TRUE(manager.markers().empty()) << key;
    }
}

TEST_F(OverlayViewTest, TabGoesToTheNextApplicationAndToNoOtherWidget) {
    targets = SendTargets({{.name = u"First"_s, .bundleID = u"first"_s},
                           {.name = u"Second"_s, .bundleID = u"second"_s},
                           {.name = u"Third"_s, .bundleID = u"third"_s}});
    commands.perform(OverlayCommand::toggleSend);
    const auto target = [this] { return manager.currentSendTarget().value_or(SendTarget()).name; };
    test::typeKey(ground, Qt::Key_Tab);
    EXPECT_EQ(target(), u"Second"_s);
    test::typeKey(ground, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(target(), u"Third"_s);
    test::typeKey(ground, Qt::Key_Left);
    EXPECT_EQ(target(), u"Second"_s);
    test::typeKey(ground, Qt::Key_Right);
    EXPECT_EQ(target(), u"Third"_s);
    EXPECT_TRUE(view.hasFocus());
}

TEST_F(OverlayViewTest, AGestureWhoseReleaseWentElsewhereIsOver) {
    moveTo({100, 100});
    press({100, 100});
    moveTo({200, 200});
    ASSERT_TRUE(view.current().currentRect);
    QMouseEvent move(QEvent::MouseMove, QPointF(220, 220), QPointF(220, 220), QPointF(220, 220), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &move);
    EXPECT_FALSE(view.current().currentRect);
    release({220, 220});
    EXPECT_TRUE(manager.markers().empty());
}

TEST_F(OverlayViewTest, ALabelThatIsLeftForAnotherRegionIsKept) {
    drag({100, 100}, {300, 250});
    test::typeText(u"kept"_s);
    drag({400, 100}, {600, 250});
    ASSERT_EQ(manager.markers().size(), 2U);
    EXPECT_EQ(manager.markers()[0].label, u"kept"_s);
    test::typeText(u"another"_s);
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_EQ(manager.markers()[0].label, u"kept"_s);
    EXPECT_EQ(manager.markers()[1].label, u"another"_s);
    EXPECT_TRUE(view.hasFocus());
}

TEST_F(OverlayViewTest, TheSecondOfTwoQuickRightClicksOpensALabelToo) {
    manager.add({0, 150, 200, 100}, u"label"_s);
    const QPointF place(150, 150);
    QMouseEvent second(QEvent::MouseButtonDblClick, place, place, place, Qt::RightButton, Qt::RightButton,
                       Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &second);
    test::typeText(u"new"_s);
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_EQ(manager.markers()[0].label, u"new"_s);
}

TEST_F(OverlayViewTest, ThePaletteStandsAboveTheBar) {
    commands.perform(OverlayCommand::toggleMarkup);
    const QRect bar = childOf<OverlayBar>(view)->geometry();
    const QRect palette = childOf<MarkupPalette>(view)->geometry();
    EXPECT_EQ(palette.bottom() + 1, bar.top() - 16);
    EXPECT_LE(std::abs(palette.center().x() - view.rect().center().x()), 1);
}

TEST_F(OverlayViewTest, ControlZUndoes) {
    keyboard.code = 6;
    manager.add({0, 150, 200, 100}, QString());
    test::typeKey(ground, Qt::Key_Z);
    EXPECT_EQ(manager.markers().size(), 1U);
    test::typeKey(ground, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(manager.markers().empty());
    EXPECT_TRUE(isShown());
}

TEST_F(OverlayViewTest, TheCrosshairLeavesWhereThePointerIsOnTheBarOrThePalette) {
    commands.perform(OverlayCommand::toggleMarkup);
    for (const QWidget* strip : {static_cast<QWidget*>(childOf<OverlayBar>(view)),
                                 static_cast<QWidget*>(childOf<MarkupPalette>(view))}) {
        ASSERT_TRUE(strip && strip->isVisible());
        moveTo({100, 100});
        EXPECT_EQ(view.current().mousePosition, QPointF(100, 100));
        moveTo(strip->geometry().center());
        EXPECT_EQ(view.current().mousePosition, std::nullopt);
        EXPECT_TRUE(isShown());
        moveTo({120, 110});
        EXPECT_EQ(view.current().mousePosition, QPointF(120, 110));
        EXPECT_TRUE(isShown());
    }
    // A gesture goes on over both.
    manager.setCurrentTool(AnnotationTool::region);
    press({120, 110});
    const QPoint place = childOf<OverlayBar>(view)->geometry().center();
    moveTo(place);
    EXPECT_EQ(view.current().mousePosition, QPointF(place));
    EXPECT_TRUE(view.current().currentRect);
    release(place);
}

TEST_F(OverlayViewTest, ADoubleClickOpensATextWithItsWords) {
    commands.perform(OverlayCommand::toggleMarkup);
    const Annotation text{.kind = Annotation::Kind::text,
                          .start = {100, 250},
                          .end = {100, 250},
                          .text = u"first words"_s,
                          .color = Qt::red,
                          .strokeWidth = 6};
    manager.addAnnotation(text);
    const QPoint place(210, 192);
    const auto doubleClick = [&] {
        moveTo(place);
        QTest::mouseDClick(ground.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
    };
    doubleClick();
    const auto* field = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_TRUE(field);
    EXPECT_EQ(field->text(), u"first words"_s);
    test::typeText(u"others"_s);
    test::typeKey(ground, Qt::Key_Escape);
    EXPECT_EQ(manager.annotations().at(0).text, u"first words"_s);
    EXPECT_TRUE(view.hasFocus());
    doubleClick();
    test::typeText(u"others"_s);
    test::typeKey(ground, Qt::Key_Return);
    ASSERT_EQ(manager.annotations().size(), 1U);
    EXPECT_EQ(manager.annotations()[0].text, u"others"_s);
    EXPECT_EQ(manager.annotations()[0].id, text.id);
    EXPECT_EQ(manager.annotations()[0].start, text.start);
    EXPECT_TRUE(isShown());
}

TEST_F(OverlayViewTest, WhatOthersChangeIsShownAtOnce) {
    const QUuid marker = manager.add({0, 150, 200, 100}, u"label"_s).id;
    EXPECT_EQ(view.scenes, 1);
    EXPECT_TRUE(isShown());
    manager.updateRect(marker, {40, 190, 150, 200});
    EXPECT_EQ(view.scenes, 2);
    EXPECT_TRUE(isShown());
    manager.addAnnotation({.start = {100, 100}, .end = {300, 300}, .color = Qt::red, .strokeWidth = 6});
    EXPECT_EQ(view.scenes, 3);
    EXPECT_TRUE(isShown());
    manager.clearAll();
    EXPECT_EQ(view.scenes, 4);
    EXPECT_TRUE(isShown());
}

TEST_F(OverlayViewTest, AClickOnTheBarIsShown) {
    drawRegion({100, 100}, {300, 250});
    auto* button = view.findChild<FirstMouseButton*>(u"spotlightButton"_s);
    ASSERT_TRUE(button);
    test::click(*button);
    EXPECT_TRUE(manager.modes().spotlight);
    EXPECT_TRUE(isShown());
    test::click(*view.findChild<FirstMouseButton*>(u"markupButton"_s));
    EXPECT_TRUE(manager.markupMode());
    EXPECT_TRUE(isShown());
}

TEST_F(OverlayViewTest, WhatHappensInAnotherViewIsShownHere) {
    test::WidgetGround otherGround({400, 300});
    CountingView other(overlay, &otherGround);
    other.setGeometry(otherGround.rect());
    other.setFrame({700, 50, 400, 300}, 1080);
    other.show();

    // From the other view into this one.
    test::moveTo(otherGround, {100, 100});
    other.scenes = 0;
    test::pressAt(other, {100, 100});
    test::moveTo(otherGround, {-400, 220});
    EXPECT_EQ(other.scenes, 2);
    test::releaseAt(otherGround, {-400, 220});
    ASSERT_EQ(manager.markers().size(), 1U);
    EXPECT_EQ(manager.markers()[0].rect, QRectF(300, 150, 500, 120));
    EXPECT_TRUE(isShown());

    other.closeEditors();
    test::pressAt(other, {50, 100});
    const int scenes = view.scenes;
    other.scenes = 0;
    test::moveTo(otherGround, {30, 140});
    EXPECT_EQ(other.scenes, 1);
    EXPECT_EQ(view.scenes, scenes + 1);
    EXPECT_TRUE(isShown());
    test::releaseAt(otherGround, {30, 140});
}

TEST_F(OverlayViewTest, WhatIsShownIsStillSoWhenTheViewIsElsewhere) {
    manager.add({0, 150, 200, 100}, QString());
    view.setFrame({-300, 20, 800, 600}, 1080);
    EXPECT_TRUE(isShown());
    view.resize(700, 500);
    EXPECT_EQ(view.current().shapes.size, QSizeF(700, 500));
}

} // namespace

} // namespace orvane
