#include "OrvaneCore/marking/editing/AnnotationTextEditor.h"

#include "OrvaneCore/marking/editing/AnnotationTextPopover.h"
#include "tests/support/WidgetTest.h"

#include <QLineEdit>

#include <gmock/gmock.h>

#include <memory>
#include <utility>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class AnnotationTextEditorTest : public testing::Test {
protected:
    AnnotationTextEditorTest()
        : view({800, 300}) {}

    bool isOpen() const {
        const auto* field = qobject_cast<const QLineEdit*>(QApplication::focusWidget());
        return field && field->isVisible();
    }

    test::WidgetGround view;
    std::vector<std::pair<QUuid, QString>> written;
    std::unique_ptr<AnnotationTextEditor> editor =
        std::make_unique<AnnotationTextEditor>(view, [this](const QUuid& annotation, const QString& text) {
            written.emplace_back(annotation, text);
        });
    const QUuid first = QUuid::createUuid();
    const QUuid second = QUuid::createUuid();
};

TEST_F(AnnotationTextEditorTest, GivesWhatWasWrittenAndTheKeyboardBack) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        written.clear();
        editor->open(first, {400, 100});
        ASSERT_TRUE(isOpen());
        test::typeText(u"see"_s);
        EXPECT_THAT(written, IsEmpty());
        test::typeKey(view, key);
        EXPECT_THAT(written, ElementsAre(Pair(first, u"see"_s)));
        EXPECT_TRUE(view.hasFocus());
    }
}

TEST_F(AnnotationTextEditorTest, IsClosedFromOutside) {
    editor->close();
    EXPECT_THAT(written, IsEmpty());
    editor->open(first, {400, 100});
    test::typeText(u"see"_s);
    editor->close();
    editor->close();
    EXPECT_THAT(written, ElementsAre(Pair(first, u"see"_s)));
    EXPECT_TRUE(view.hasFocus());
}

TEST_F(AnnotationTextEditorTest, OpensOneAtATimeAndEachEmpty) {
    editor->open(first, {400, 100});
    test::typeText(u"one"_s);
    editor->open(second, {200, 100});
    EXPECT_THAT(written, ElementsAre(Pair(first, u"one"_s)));
    ASSERT_TRUE(isOpen());
    editor->close();
    EXPECT_THAT(written, ElementsAre(Pair(first, u"one"_s), Pair(second, QString())));
}

TEST_F(AnnotationTextEditorTest, OpensWithTheWordsOfAText) {
    editor->open(first, {400, 100}, u"as it was"_s);
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(static_cast<const QLineEdit*>(QApplication::focusWidget())->text(), u"as it was"_s);
    test::typeKey(view, Qt::Key_Return);
    EXPECT_THAT(written, ElementsAre(Pair(first, u"as it was"_s)));
}

TEST_F(AnnotationTextEditorTest, GivesChangedWordsUnlessItIsCancelled) {
    editor->open(first, {400, 100}, u"as it was"_s);
    test::typeText(u"changed"_s);
    test::typeKey(view, Qt::Key_Return);
    editor->open(first, {400, 100}, u"changed"_s);
    test::typeText(u"by a click elsewhere"_s);
    editor->close();
    editor->open(first, {400, 100}, u"by a click elsewhere"_s);
    test::typeText(u"not kept"_s);
    test::typeKey(view, Qt::Key_Escape);
    editor->open(first, {400, 100}, u"by a click elsewhere"_s);
    test::typeKey(view, Qt::Key_Delete);
    test::typeKey(view, Qt::Key_Return);
    EXPECT_THAT(written, ElementsAre(Pair(first, u"changed"_s), Pair(first, u"by a click elsewhere"_s),
                                     Pair(first, u"by a click elsewhere"_s), Pair(first, QString())));
}

TEST_F(AnnotationTextEditorTest, GivesTheKeyboardBackWhoeverHasItMeanwhile) {
    QLineEdit field(&view);
    field.show();
    AnnotationTextEditor other(view, [&field](const QUuid&, const QString&) { field.setFocus(); });
    other.open(first, {400, 100});
    field.setFocus();
    other.close();
    EXPECT_TRUE(view.hasFocus());
}

TEST_F(AnnotationTextEditorTest, TakesItsPopoverAlong) {
    editor->open(first, {400, 100});
    editor.reset();
    EXPECT_TRUE(test::eventuallyInLoop([this] { return view.children().isEmpty(); }));
    EXPECT_THAT(written, IsEmpty());
}

} // namespace

} // namespace orvane
