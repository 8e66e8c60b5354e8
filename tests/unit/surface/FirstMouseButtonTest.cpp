#include "OrvaneCore/surface/FirstMouseButton.h"

#include "tests/support/DrawnPixels.h"
#include "tests/support/WidgetTest.h"

#include <QLineEdit>

#include <gtest/gtest.h>

#include <algorithm>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

class FirstMouseButtonTest : public testing::Test {
protected:
    FirstMouseButtonTest()
        : ground({300, 200})
        , button(u"Save & go"_s, &ground) {
        button.setGeometry(50, 50, 120, 28);
        button.show();
        QObject::connect(&button, &QAbstractButton::clicked, &ground, [this] { ++clicks; });
    }

    test::WidgetGround ground;
    FirstMouseButton button;
    int clicks = 0;
};

TEST_F(FirstMouseButtonTest, IsCalledByItsTitle) {
    EXPECT_EQ(button.title(), u"Save & go"_s);
    EXPECT_EQ(button.accessibleName(), u"Save & go"_s);
    button.setTitle(u"Stay"_s);
    EXPECT_EQ(button.title(), u"Stay"_s);
    EXPECT_EQ(button.accessibleName(), u"Stay"_s);
    EXPECT_TRUE(button.shortcut().isEmpty());
}

TEST_F(FirstMouseButtonTest, ActsOnOneClickInAWindowThatIsNotActive) {
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(test::eventuallyInLoop([&] { return !ground.isActiveWindow(); }));
    test::click(button);
    EXPECT_EQ(clicks, 1);
}

TEST_F(FirstMouseButtonTest, ActsOnEachOfTwoFastClicks) {
    test::click(button);
    QTest::mouseDClick(ground.windowHandle(), Qt::LeftButton, Qt::NoModifier, button.geometry().center());
    EXPECT_GE(clicks, 3);
}

TEST_F(FirstMouseButtonTest, IsAboutTheLeftButton) {
    test::click(button, Qt::RightButton);
    test::click(button, Qt::MiddleButton);
    EXPECT_EQ(clicks, 0);
}

TEST_F(FirstMouseButtonTest, LeavesTheKeyboardWhereItIs) {
    QLineEdit field(&ground);
    field.show();
    field.setFocus();
    ASSERT_TRUE(field.hasFocus());
    test::click(button);
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(field.hasFocus());
    test::typeKey(ground, Qt::Key_Tab);
    EXPECT_FALSE(button.hasFocus());
}

TEST_F(FirstMouseButtonTest, ShowsWhatItsOwnerSetsAndNotTheClick) {
    button.setCheckable(true);
    test::click(button);
    EXPECT_FALSE(button.isChecked());
    button.setChecked(true);
    test::click(button);
    EXPECT_TRUE(button.isChecked());
}

TEST_F(FirstMouseButtonTest, LooksDifferentWhenOnWhenPressedAndUnderTheMouse) {
    const QPoint beside = QPoint(10, 5);
    const QRgb plain = test::pictureOf(ground).pixel(button.pos() + beside);
    button.setCheckable(true);
    button.setChecked(true);
    EXPECT_GT(test::colorDistance(test::pictureOf(ground).pixel(button.pos() + beside), plain), 20);
    button.setChecked(false);

    test::moveTo(ground, {5, 190});
    test::moveTo(ground, button.geometry().center());
    QPalette dark(ground.palette());
    dark.setColor(QPalette::Window, Qt::black);
    ground.setPalette(dark);
    const QRgb hovered = test::pictureOf(ground).pixel(button.pos() + beside);
    EXPECT_GT(test::colorDistance(hovered, test::black), 20);
    test::pressAt(button, button.rect().center());
    const QRgb pressed = test::pictureOf(ground).pixel(button.pos() + beside);
    EXPECT_GT(test::colorDistance(pressed, hovered), 10);
    test::releaseAt(ground, button.geometry().center());
    test::moveTo(ground, {5, 190});
    EXPECT_EQ(test::pictureOf(ground).pixel(button.pos() + beside), test::black);
}

TEST_F(FirstMouseButtonTest, IsDarkerWhileItIsDimmedAndCanBePressed) {
    QPalette dark(ground.palette());
    dark.setColor(QPalette::Window, Qt::black);
    ground.setPalette(dark);
    button.setProminent(true);
    test::moveTo(ground, {5, 190});
    const QPoint beside = button.pos() + QPoint(10, 5);
    const auto lightest = [this] {
        const QImage picture = test::pictureOf(ground).copy(button.geometry());
        int most = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                most = std::max(most, qGray(picture.pixel(x, y)));
        }
        return most;
    };
    EXPECT_EQ(test::pictureOf(ground).pixel(beside), 0xFF2F7DF6);
    EXPECT_GT(lightest(), 240);
    button.setDimmed(true);
    EXPECT_TRUE(button.isDimmed());
    EXPECT_TRUE(
        test::isColor(test::pictureOf(ground), beside, test::blended(0xFF2F7DF6, 0.3, test::black), 2));
    EXPECT_LT(lightest(), 160);
    test::click(button);
    EXPECT_EQ(clicks, 1);
    button.setDimmed(false);
    test::moveTo(ground, {5, 190});
    EXPECT_EQ(test::pictureOf(ground).pixel(beside), 0xFF2F7DF6);
}

TEST_F(FirstMouseButtonTest, KeepsItsTitleInsideItself) {
    QPalette dark(ground.palette());
    dark.setColor(QPalette::Window, Qt::black);
    ground.setPalette(dark);
    button.setTitle(u"A title that is far too long for a button of this width"_s);
    ASSERT_GT(button.titleWidth(), button.width());
    const QRect ink = test::inkBounds(test::pictureOf(ground), test::black, 10);
    EXPECT_FALSE(ink.isEmpty());
    EXPECT_TRUE(button.geometry().adjusted(8, 0, -8, 0).contains(ink));
}

TEST_F(FirstMouseButtonTest, CentresItsTitle) {
    QPalette dark(ground.palette());
    dark.setColor(QPalette::Window, Qt::black);
    ground.setPalette(dark);
    button.setTitle(u"HHH"_s);
    const QRect ink = test::inkBounds(test::pictureOf(ground), test::black, 60);
    EXPECT_NEAR(QRectF(ink).center().x(), QRectF(button.geometry()).center().x(), 1.5);
    EXPECT_NEAR(QRectF(ink).center().y(), QRectF(button.geometry()).center().y(), 1.5);
}

} // namespace

} // namespace orvane
