#include "OrvaneCore/marking/overlay/MarkerPopover.h"

#include "tests/support/DrawnPixels.h"
#include "tests/support/WidgetTest.h"

#include <QClipboard>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPointer>

#include <gmock/gmock.h>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

class MarkerPopoverTest : public testing::Test {
protected:
    MarkerPopoverTest()
        : ground({800, 500})
        , popover(u"old"_s, &ground)
        , editor(*popover.findChild<QPlainTextEdit*>()) {
        popover.setOnSubmit([this](const QString& text) {
            submitted.push_back(text);
            wasOpenOnSubmit = popover.isVisible();
        });
        popover.setOnClose([this] {
            ++closed;
            wasHiddenOnClose = !popover.isVisible();
        });
        popover.openAt({400, 300});
    }

    test::WidgetGround ground;
    MarkerPopover popover;
    QPlainTextEdit& editor;
    std::vector<QString> submitted;
    int closed = 0;
    bool wasOpenOnSubmit = false;
    bool wasHiddenOnClose = false;
};

TEST_F(MarkerPopoverTest, OpensAboveThePointWithTheKeyboardAndAllSelected) {
    EXPECT_TRUE(popover.isVisible());
    EXPECT_TRUE(editor.hasFocus());
    EXPECT_EQ(editor.textCursor().selectedText(), u"old"_s);
    EXPECT_EQ(popover.geometry().bottom() + 1, 299);
    EXPECT_LE(std::abs(popover.geometry().center().x() - 400), 1);
    EXPECT_FALSE(popover.isWindow());
    test::typeText(u"new"_s);
    EXPECT_EQ(popover.text(), u"new"_s);
}

TEST_F(MarkerPopoverTest, SaysWhatItIsFor) {
    EXPECT_EQ(editor.placeholderText().toUtf8(), "Add a note  \xC2\xB7  Enter to save");
}

TEST_F(MarkerPopoverTest, SubmitsAndClosesOnReturn) {
    test::typeText(u"a note"_s);
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_THAT(submitted, ElementsAre(u"a note"_s));
    EXPECT_TRUE(wasOpenOnSubmit);
    EXPECT_EQ(closed, 1);
    EXPECT_TRUE(wasHiddenOnClose);
    EXPECT_FALSE(popover.isVisible());
    EXPECT_TRUE(ground.hasFocus());
    popover.closePopover();
    EXPECT_EQ(closed, 1);
}

TEST_F(MarkerPopoverTest, SubmitsOnTheKeypadsEnter) {
    test::typeKey(ground, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_THAT(submitted, ElementsAre(u"old"_s));
    EXPECT_EQ(closed, 1);
}

TEST_F(MarkerPopoverTest, BreaksLinesWithShift) {
    test::typeText(u"one"_s);
    test::typeKey(ground, Qt::Key_Return, Qt::ShiftModifier);
    test::typeText(u"two"_s);
    test::typeKey(ground, Qt::Key_Enter, Qt::ShiftModifier | Qt::KeypadModifier);
    test::typeText(u"three"_s);
    EXPECT_THAT(submitted, IsEmpty());
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_THAT(submitted, ElementsAre(u"one\ntwo\nthree"_s));
}

TEST_F(MarkerPopoverTest, ClosesOnEscapeWithoutSubmitting) {
    test::typeText(u"never"_s);
    test::typeKey(ground, Qt::Key_Escape);
    EXPECT_THAT(submitted, IsEmpty());
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(popover.isVisible());
    EXPECT_THAT(ground.reached, testing::Not(testing::Contains(QEvent::KeyPress)));
}

TEST_F(MarkerPopoverTest, ClosesWhenItIsTold) {
    popover.closePopover();
    EXPECT_THAT(submitted, IsEmpty());
    EXPECT_EQ(closed, 1);
    EXPECT_TRUE(ground.hasFocus());
    test::typeKey(ground, Qt::Key_X);
    EXPECT_THAT(ground.reached, ElementsAre(QEvent::KeyPress, QEvent::KeyRelease));
}

TEST_F(MarkerPopoverTest, MayBeClosedFromItsOwnCalls) {
    popover.setOnSubmit([this](const QString&) { popover.closePopover(); });
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_EQ(closed, 1);
}

TEST_F(MarkerPopoverTest, CanBeDeletedLaterByItsOwner) {
    auto* other = new MarkerPopover(u"x"_s, &ground);
    const QPointer<MarkerPopover> watched(other);
    other->setOnClose([other] { other->deleteLater(); });
    other->openAt({100, 300});
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_TRUE(test::eventuallyInLoop([&] { return watched.isNull(); }));
}

TEST_F(MarkerPopoverTest, LetsNoKeyThrough) {
    test::expectNoKeyPasses(ground, editor);
    EXPECT_EQ(closed, 0);
}

TEST_F(MarkerPopoverTest, LetsNoMouseThroughAndKeepsTheKeyboard) {
    const QPoint edge = popover.pos() + QPoint(popover.width() / 2, 4);
    const QPoint text = editor.mapTo(&ground, QPoint(20, 8));
    for (const QPoint& place : {edge, text}) {
        for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
            QTest::mouseClick(ground.windowHandle(), button, Qt::NoModifier, place);
            EXPECT_TRUE(editor.hasFocus());
        }
    }
    for (int i = 0; i < 3; ++i) {
        QWheelEvent wheel(QPointF(20, 8), text, {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(editor.viewport(), &wheel);
    }
    EXPECT_THAT(ground.reached, IsEmpty());
    EXPECT_EQ(popover.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(MarkerPopoverTest, OpensNoMenu) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, {20, 8}, editor.mapToGlobal(QPoint(20, 8)));
    QApplication::sendEvent(editor.viewport(), &event);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_THAT(ground.reached, IsEmpty());
}

TEST_F(MarkerPopoverTest, ComposesJapanese) {
    test::compose(u"にほん"_s);
    EXPECT_EQ(popover.text(), QString()) << "what is composed is no text yet";
    test::commit(u"日本"_s);
    test::commit(u"語"_s);
    EXPECT_EQ(popover.text(), u"日本語"_s);
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_THAT(submitted, ElementsAre(u"日本語"_s));
}

TEST_F(MarkerPopoverTest, LeavesKeysToTheInputMethodWhileItComposes) {
    test::compose(u"にほん"_s);
    test::typeKey(ground, Qt::Key_Return);
    test::typeKey(ground, Qt::Key_Enter, Qt::KeypadModifier);
    test::typeKey(ground, Qt::Key_Return, Qt::ShiftModifier);
    test::typeKey(ground, Qt::Key_Escape);
    EXPECT_THAT(submitted, IsEmpty());
    EXPECT_EQ(closed, 0);
    test::commit(u"日本"_s);
    EXPECT_EQ(popover.text(), u"日本"_s);
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_THAT(submitted, ElementsAre(u"日本"_s));
}

TEST_F(MarkerPopoverTest, ClosesOnEscapeAgainAfterComposingWasGivenUp) {
    test::compose(u"にほん"_s);
    test::compose(QString());
    test::typeKey(ground, Qt::Key_Escape);
    EXPECT_EQ(closed, 1);
}

TEST_F(MarkerPopoverTest, KeepsWhatWasBeingComposedWhenItIsClosedFromOutside) {
    test::typeText(u"in "_s);
    test::compose(u"にほん"_s);
    popover.closePopover();
    EXPECT_EQ(popover.text(), u"in にほん"_s);
    EXPECT_EQ(closed, 1);
}

TEST_F(MarkerPopoverTest, CopiesCutsPastesAndUndoes) {
    test::typeText(u"word"_s);
    test::typeKey(ground, Qt::Key_A, Qt::ControlModifier);
    test::typeKey(ground, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"word"_s);
    test::typeKey(ground, Qt::Key_End);
    test::typeKey(ground, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(popover.text(), u"wordword"_s);
    test::typeKey(ground, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(popover.text(), u"word"_s);
    test::typeKey(ground, Qt::Key_A, Qt::ControlModifier);
    test::typeKey(ground, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(popover.text(), QString());
    EXPECT_THAT(ground.reached, IsEmpty());
}

TEST_F(MarkerPopoverTest, TakesALongText) {
    const QString longText = u"line of text, "_s.repeated(800).left(9'999) + u'\n';
    ASSERT_EQ(longText.size(), 10'000);
    QGuiApplication::clipboard()->setText(longText);
    const QRect place = popover.geometry();
    test::typeKey(ground, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(popover.text(), longText);
    EXPECT_EQ(popover.geometry(), place);
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_THAT(submitted, ElementsAre(longText));
}

TEST_F(MarkerPopoverTest, PastesPlainText) {
    auto* rich = new QMimeData;
    rich->setHtml(u"<b>bold</b>"_s);
    rich->setText(u"bold"_s);
    QGuiApplication::clipboard()->setMimeData(rich);
    test::typeKey(ground, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(popover.text(), u"bold"_s);
}

TEST_F(MarkerPopoverTest, IsADarkBubbleWithAnArrowToThePoint) {
    QPalette light(ground.palette());
    light.setColor(QPalette::Window, Qt::white);
    ground.setPalette(light);
    test::typeText(u"x"_s);
    const QImage picture = test::pictureOf(ground);
    const QRgb plate = test::blended(0xFF1F1F1F, 0.92, test::white);
    const QRect frame = popover.geometry();
    EXPECT_TRUE(test::isFilled(picture, QRect(frame.x() + 20, frame.y() + 1, 100, 6), plate, 2));
    // No edge between the bubble and its arrow.
    EXPECT_TRUE(test::isFilled(picture, QRect(394, frame.bottom() - 9, 12, 3), plate, 2));
    EXPECT_FALSE(test::isColor(picture, QPointF(200 + frame.x(), frame.bottom() - 8), plate, 20));
    EXPECT_TRUE(test::isColor(picture, QPointF(400, 295), plate, 2));
    EXPECT_TRUE(test::isColor(picture, QPointF(388, 297), test::white));
    EXPECT_TRUE(test::isColor(picture, QPointF(412, 297), test::white));
    EXPECT_TRUE(test::isColor(picture, frame.topLeft(), test::white));
}

TEST_F(MarkerPopoverTest, TurnsItsArrowUpBelowThePoint) {
    QPalette light(ground.palette());
    light.setColor(QPalette::Window, Qt::white);
    ground.setPalette(light);
    popover.closePopover();
    MarkerPopover below(QString(), &ground);
    below.openAt({200, 10});
    const QImage picture = test::pictureOf(ground);
    EXPECT_EQ(below.geometry().top(), 11);
    EXPECT_TRUE(test::isColor(picture, QPointF(200, 15), test::blended(0xFF1F1F1F, 0.92, test::white), 2));
    EXPECT_TRUE(test::isColor(picture, QPointF(188, 13), test::white));
}

} // namespace

} // namespace orvane
