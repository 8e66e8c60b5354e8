#include "OrvaneCore/marking/editing/AnnotationTextPopover.h"

#include "tests/support/WidgetTest.h"

#include <QClipboard>
#include <QLineEdit>

#include <gmock/gmock.h>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

class AnnotationTextPopoverTest : public testing::Test {
protected:
    AnnotationTextPopoverTest()
        : ground({800, 500})
        , popover(u"old"_s, &ground)
        , editor(*popover.findChild<QLineEdit*>()) {
        popover.setOnSubmit([this](const QString& text) { submitted.push_back(text); });
        popover.setOnClose([this] { ++closed; });
        popover.openAt({400, 300});
    }

    test::WidgetGround ground;
    AnnotationTextPopover popover;
    QLineEdit& editor;
    std::vector<QString> submitted;
    int closed = 0;
};

TEST_F(AnnotationTextPopoverTest, OpensWithTheKeyboardAndAllSelected) {
    EXPECT_TRUE(editor.hasFocus());
    EXPECT_EQ(editor.selectedText(), u"old"_s);
    EXPECT_EQ(editor.placeholderText().toUtf8(), "Type text \xC2\xB7 Enter to place");
    EXPECT_EQ(popover.geometry().bottom() + 1, 299);
    EXPECT_FALSE(editor.hasFrame()) << "the bubble is its frame";
}

TEST_F(AnnotationTextPopoverTest, SubmitsAndClosesOnReturn) {
    test::typeText(u"look here"_s);
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_THAT(submitted, ElementsAre(u"look here"_s));
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(popover.isVisible());
    EXPECT_TRUE(ground.hasFocus());
}

TEST_F(AnnotationTextPopoverTest, SubmitsOnEveryKindOfReturn) {
    test::typeKey(ground, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_THAT(submitted, ElementsAre(u"old"_s));
    AnnotationTextPopover other(QString(), &ground);
    other.setOnSubmit([this](const QString& text) { submitted.push_back(text); });
    other.openAt({100, 100});
    test::typeKey(ground, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_THAT(submitted, ElementsAre(u"old"_s, QString()));
}

TEST_F(AnnotationTextPopoverTest, ClosesOnEscapeWithoutSubmittingAndStillKnowsTheText) {
    test::typeText(u"half"_s);
    test::typeKey(ground, Qt::Key_Escape);
    EXPECT_THAT(submitted, IsEmpty());
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(popover.text(), u"half"_s);
}

TEST_F(AnnotationTextPopoverTest, LetsNoKeyThrough) {
    QLineEdit neighbour(&ground);
    neighbour.show();
    test::expectNoKeyPasses(ground, editor);
    EXPECT_EQ(closed, 0);
}

TEST_F(AnnotationTextPopoverTest, LetsNoMouseThrough) {
    for (const QPoint& place :
         {popover.pos() + QPoint(popover.width() / 2, 3), popover.geometry().center()}) {
        for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
            QTest::mouseClick(ground.windowHandle(), button, Qt::NoModifier, place);
            EXPECT_TRUE(editor.hasFocus());
        }
    }
    EXPECT_THAT(ground.reached, IsEmpty());
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(AnnotationTextPopoverTest, LeavesKeysToTheInputMethodWhileItComposes) {
    test::compose(u"にほん"_s);
    test::typeKey(ground, Qt::Key_Return);
    test::typeKey(ground, Qt::Key_Escape);
    EXPECT_THAT(submitted, IsEmpty());
    EXPECT_EQ(closed, 0);
    test::commit(u"日本"_s);
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_THAT(submitted, ElementsAre(u"日本"_s));
}

TEST_F(AnnotationTextPopoverTest, KeepsWhatWasBeingComposedWhenItIsClosedFromOutside) {
    test::compose(u"にほん"_s);
    popover.closePopover();
    EXPECT_EQ(popover.text(), u"にほん"_s);
}

TEST_F(AnnotationTextPopoverTest, PastesAndUndoes) {
    const QString longText = u"0123456789"_s.repeated(1000);
    QGuiApplication::clipboard()->setText(longText);
    test::typeKey(ground, Qt::Key_A, Qt::ControlModifier);
    test::typeKey(ground, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(popover.text(), longText);
    test::typeKey(ground, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(popover.text(), u"old"_s);
    test::typeKey(ground, Qt::Key_A, Qt::ControlModifier);
    test::typeKey(ground, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"old"_s);
}

} // namespace

} // namespace orvane
