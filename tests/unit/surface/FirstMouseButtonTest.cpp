#include "OrvaneCore/surface/FirstMouseButton.h"

#include "OrvaneCore/drawing/DrawnText.h"
#include "tests/support/DrawnPixels.h"
#include "tests/support/WidgetTest.h"

#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPainterPath>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

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

    void darken() {
        QPalette dark(ground.palette());
        dark.setColor(QPalette::Window, Qt::black);
        ground.setPalette(dark);
    }

    QImage buttonPicture() { return test::pictureOf(ground).copy(button.geometry()); }

    test::WidgetGround ground;
    FirstMouseButton button;
    int clicks = 0;
};

/// Counts how often a widget is painted.
class PaintCount : public QObject {
public:
    explicit PaintCount(QWidget& widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }

    int count = 0;
};

/// A square around the middle.
QPainterPath squareGlyph() {
    QPainterPath glyph;
    glyph.addRect(-4, -4, 8, 8);
    return glyph;
}

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

TEST_F(FirstMouseButtonTest, HasTheArrowWhateverPointerItsParentHas) {
    EXPECT_EQ(ground.cursor().shape(), Qt::CrossCursor);
    EXPECT_EQ(button.cursor().shape(), Qt::ArrowCursor);
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
    darken();
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
    darken();
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
    darken();
    button.setTitle(u"A title that is far too long for a button of this width"_s);
    ASSERT_GT(button.titleWidth(), button.width());
    const QRect ink = test::inkBounds(test::pictureOf(ground), test::black, 10);
    EXPECT_FALSE(ink.isEmpty());
    EXPECT_TRUE(button.geometry().adjusted(8, 0, -8, 0).contains(ink));
}

TEST_F(FirstMouseButtonTest, ShortensItsTitleInTheMiddle) {
    const QString whole = u"Submit what is marked  Return"_s;
    const QFontMetricsF metrics(systemFont(13, QFont::Normal));
    button.setTitle(metrics.elidedText(whole, Qt::ElideMiddle, button.width() - 2 * 12));
    ASSERT_NE(button.title(), whole);
    const QImage expected = buttonPicture();
    button.setTitle(whole);
    EXPECT_EQ(buttonPicture(), expected);
}

TEST_F(FirstMouseButtonTest, IsAsWideAsItsTitleWithRoomOnBothSides) {
    ASSERT_GT(button.titleWidth(), 0);
    EXPECT_EQ(button.sizeHint(), QSize(button.titleWidth() + 24, 28));
    button.setPadding(5);
    EXPECT_EQ(button.sizeHint(), QSize(button.titleWidth() + 10, 28));
}

TEST_F(FirstMouseButtonTest, IsLaidOutAnewWithAnotherTitle) {
    auto* layout = new QHBoxLayout(&ground);
    layout->addWidget(&button);
    layout->addStretch();
    ASSERT_TRUE(test::eventuallyInLoop([this] { return button.width() == button.sizeHint().width(); }));
    button.setTitle(u"Another title that is longer"_s);
    EXPECT_TRUE(test::eventuallyInLoop([this] { return button.width() == button.sizeHint().width(); }));
}

TEST_F(FirstMouseButtonTest, IsPaintedAnewWhenItsOwnerChangesItsLook) {
    const std::vector<std::function<void()>> changes{
        [this] { button.setTitle(u"Other"_s); },
        [this] { button.setProminent(true); },
        [this] { button.setDimmed(true); },
        [this] { button.setCornerRadius(4); },
        [this] { button.setPadding(20); },
        [this] { button.setGlyph(squareGlyph()); },
        [this] { button.setSwatch(QColor(Qt::red)); },
    };
    PaintCount paints(button);
    for (std::size_t i = 0; i < changes.size(); ++i) {
        // What was to be painted before is not counted.
        ASSERT_TRUE(test::eventuallyInLoop([&] { return std::exchange(paints.count, 0) == 0; }));
        changes[i]();
        EXPECT_TRUE(test::eventuallyInLoop([&] { return paints.count > 0; }, 1000)) << i;
    }
}

TEST_F(FirstMouseButtonTest, StandsOutByABolderTitleToo) {
    const int usual = button.titleWidth();
    button.setProminent(true);
    EXPECT_GT(button.titleWidth(), usual);
}

TEST_F(FirstMouseButtonTest, HasTheCornersThatItIsGiven) {
    darken();
    button.setProminent(true);
    const QPoint nearCorner(3, 3);
    EXPECT_TRUE(test::isColor(buttonPicture(), nearCorner, test::black));
    button.setCornerRadius(4);
    EXPECT_TRUE(test::isColor(buttonPicture(), nearCorner, 0xFF2F7DF6, 2));
}

TEST_F(FirstMouseButtonTest, ShowsAGlyphInPlaceOfItsTitleAndBrighterWhenOn) {
    darken();
    button.setGlyph(squareGlyph());
    const QImage picture = buttonPicture();
    EXPECT_EQ(test::inkBounds(picture, test::black, 10), QRect(56, 10, 8, 8));
    const QRgb usual = test::blended(test::white, 0.85, test::black);
    EXPECT_TRUE(test::isFilled(picture, QRect(57, 11, 6, 6), usual, 2));
    button.setCheckable(true);
    button.setChecked(true);
    EXPECT_TRUE(test::isFilled(buttonPicture(), QRect(57, 11, 6, 6), test::white, 2));
}

TEST_F(FirstMouseButtonTest, ShowsABlackSwatchOnTheDark) {
    darken();
    button.setSwatch(Qt::black);
    const QRect rim = test::inkBounds(buttonPicture(), test::black, 40);
    EXPECT_TRUE(QRect(52, 6, 16, 16).contains(rim));
    EXPECT_GE(rim.width(), 14);
    EXPECT_GE(rim.height(), 14);
}

TEST_F(FirstMouseButtonTest, PutsARingAroundTheSwatchThatIsOnAndNoGround) {
    darken();
    button.setCheckable(true);
    button.setSwatch(Qt::red);
    const QPoint middle(60, 14);
    const QPoint onRing = middle + QPoint(0, 10);
    EXPECT_TRUE(test::isColor(buttonPicture(), middle, 0xFFFF0000));
    EXPECT_TRUE(test::isColor(buttonPicture(), onRing, test::black));
    button.setChecked(true);
    const QImage picture = buttonPicture();
    EXPECT_TRUE(test::isColor(picture, middle, 0xFFFF0000));
    EXPECT_TRUE(test::isColor(picture, onRing, test::white, 20));
    EXPECT_TRUE(test::isColor(picture, {20, 14}, test::black));
}

TEST_F(FirstMouseButtonTest, CentresItsTitle) {
    darken();
    button.setTitle(u"HHH"_s);
    const QRect ink = test::inkBounds(test::pictureOf(ground), test::black, 60);
    EXPECT_NEAR(QRectF(ink).center().x(), QRectF(button.geometry()).center().x(), 1.5);
    EXPECT_NEAR(QRectF(ink).center().y(), QRectF(button.geometry()).center().y(), 1.5);
}

} // namespace

} // namespace orvane
