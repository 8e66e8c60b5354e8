#include "OrvaneCore/surface/PopoverBubble.h"

#include "tests/support/DrawnPixels.h"
#include "tests/support/WidgetTest.h"

#include <QKeyEvent>
#include <QLineEdit>

#include <gtest/gtest.h>

#include <algorithm>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

/// The least that a bubble can be: one line of text.
class LineBubble final : public PopoverBubble {
public:
    explicit LineBubble(QWidget* parent)
        : PopoverBubble(parent) {
        line.setFrame(false);
        line.setPlaceholderText(u"WWWW"_s);
        setEditor(&line, {160, 24});
    }

    QString text() const override { return line.text(); }

    QLineEdit line{this};

protected:
    void selectAll() override { line.selectAll(); }
    bool isLineBreak(const QKeyEvent& /*event*/) const override { return false; }
};

class PopoverBubbleTest : public testing::Test {
protected:
    PopoverBubbleTest()
        : ground({800, 500})
        , bubble(&ground) {
        bubble.setOnSubmit([this](const QString&) { ++submits; });
        bubble.setOnClose([this] { ++closes; });
    }

    /// The lightest pixel where the text is.
    int brightestOfText() {
        const QImage picture =
            test::pictureOf(ground).copy(QRect(bubble.line.mapTo(&ground, QPoint(0, 0)), bubble.line.size()));
        int most = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                most = std::max(most, qGray(picture.pixel(x, y)));
        }
        return most;
    }

    test::WidgetGround ground;
    LineBubble bubble;
    int submits = 0;
    int closes = 0;
};

TEST_F(PopoverBubbleTest, OpensAboveWhatCameIntoItsViewLater) {
    QWidget later(&ground);
    later.setGeometry(ground.rect());
    later.show();
    bubble.openAt({400, 300});
    EXPECT_EQ(ground.childAt(bubble.geometry().center()), &bubble.line);
}

TEST_F(PopoverBubbleTest, KnowsOfItsLastClosingWhetherItWasEscape) {
    bubble.openAt({400, 300});
    EXPECT_FALSE(bubble.wasCancelled());
    test::typeKey(ground, Qt::Key_Escape);
    EXPECT_TRUE(bubble.wasCancelled());
    bubble.openAt({400, 300});
    EXPECT_FALSE(bubble.wasCancelled());
    test::typeKey(ground, Qt::Key_Return);
    EXPECT_FALSE(bubble.wasCancelled());
}

TEST_F(PopoverBubbleTest, TellsOfItsClosingOnce) {
    bubble.closePopover();
    EXPECT_EQ(closes, 0) << "it was not open";
    bubble.openAt({400, 300});
    bubble.closePopover();
    EXPECT_EQ(closes, 1);
    bubble.openAt({400, 300});
    bubble.closePopover();
    EXPECT_EQ(closes, 1);
}

TEST_F(PopoverBubbleTest, IsNeitherSubmittedNorCancelledWhileItIsClosed) {
    bubble.openAt({400, 300});
    bubble.closePopover();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&bubble.line, &press);
    }
    EXPECT_EQ(submits, 0);
    EXPECT_FALSE(bubble.wasCancelled());
}

TEST_F(PopoverBubbleTest, LeavesTheKeyboardToWhoeverHasTakenIt) {
    QLineEdit other(&ground);
    other.show();
    bubble.openAt({400, 300});
    other.setFocus();
    bubble.closePopover();
    EXPECT_TRUE(other.hasFocus());
}

TEST_F(PopoverBubbleTest, TakesTheKeyboardOnAClickBesideItsText) {
    ground.setFocusPolicy(Qt::ClickFocus);
    bubble.openAt({400, 300});
    ground.setFocus();
    const QPoint beside = bubble.pos() + QPoint(bubble.width() / 2, 4);
    QTest::mouseClick(ground.windowHandle(), Qt::LeftButton, Qt::NoModifier, beside);
    EXPECT_TRUE(bubble.line.hasFocus());
}

TEST_F(PopoverBubbleTest, ShowsItsTextWhiteAndThePlaceholderDimOnTheDark) {
    QPalette dark(ground.palette());
    dark.setColor(QPalette::Window, Qt::black);
    ground.setPalette(dark);
    bubble.openAt({400, 300});
    // Without the cursor.
    ground.setFocus();
    EXPECT_EQ(bubble.line.font().pixelSize(), 13);
    EXPECT_GT(brightestOfText(), 90);
    EXPECT_LT(brightestOfText(), 170);
    bubble.line.setText(u"WWWW"_s);
    EXPECT_GT(brightestOfText(), 220);
    bubble.line.setText(u" "_s);
    EXPECT_LT(brightestOfText(), 60);
}

} // namespace

} // namespace orvane
