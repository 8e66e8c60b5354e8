#include "OrvaneCore/surface/Tooltips.h"

#include "OrvaneCore/surface/FirstMouseButton.h"
#include "OrvaneCore/surface/TooltipBubble.h"
#include "tests/support/FakeSurfaces.h"
#include "tests/support/WidgetTest.h"

#include <QHelpEvent>
#include <QToolTip>

#include <gtest/gtest.h>

#include <memory>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

class TooltipsTest : public testing::Test {
protected:
    TooltipsTest()
        : ground({600, 400})
        , explained(std::make_unique<FirstMouseButton>(u"Explained"_s, &ground))
        , other(std::make_unique<FirstMouseButton>(u"Other"_s, &ground))
        , silent(std::make_unique<FirstMouseButton>(u"Silent"_s, &ground)) {
        explained->setToolTip(u"What it does"_s);
        explained->setGeometry(100, 200, 90, 28);
        other->setToolTip(u"What the other does"_s);
        other->setGeometry(200, 200, 90, 28);
        silent->setGeometry(300, 200, 90, 28);
        for (QWidget* button : {explained.get(), other.get(), silent.get()})
            button->show();
    }

    /// As the toolkit does it when the pointer has rested on the widget.
    static bool rest(QWidget& widget) {
        QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), widget.mapToGlobal(QPoint(5, 5)));
        event.ignore();
        QCoreApplication::sendEvent(&widget, &event);
        return event.isAccepted();
    }

    static void send(QWidget& widget, QEvent::Type type) {
        QEvent event(type);
        QCoreApplication::sendEvent(&widget, &event);
    }

    QString shownText() const { return tooltips.shown() ? tooltips.shown()->accessibleName() : QString(); }

    test::FakeSurfaces surfaces;
    Tooltips tooltips{surfaces};
    test::WidgetGround ground;
    std::unique_ptr<FirstMouseButton> explained;
    std::unique_ptr<FirstMouseButton> other;
    std::unique_ptr<FirstMouseButton> silent;
};

TEST_F(TooltipsTest, AreShownInPlaceOfTheToolkits) {
    EXPECT_TRUE(rest(*explained));
    EXPECT_EQ(shownText(), u"What it does"_s);
    EXPECT_TRUE(tooltips.shown()->isVisible());
    EXPECT_FALSE(QToolTip::isVisible());
    EXPECT_TRUE(ground.hasFocus());
    EXPECT_TRUE(ground.isActiveWindow());
    const QRect around(explained->mapToGlobal(QPoint(0, 0)), explained->size());
    EXPECT_FALSE(tooltips.shown()->geometry().intersects(around));
    EXPECT_NEAR(tooltips.shown()->geometry().center().x(), around.center().x(), 1);
}

TEST_F(TooltipsTest, OfOthersFollowAndOneIsShownAtATime) {
    rest(*explained);
    const TooltipBubble* first = tooltips.shown();
    rest(*explained);
    EXPECT_EQ(tooltips.shown(), first);
    rest(*other);
    EXPECT_EQ(shownText(), u"What the other does"_s);
    EXPECT_EQ(
        std::count_if(surfaces.windows.begin(), surfaces.windows.end(),
                      [](const auto& dressed) { return dressed.window && dressed.window->isVisible(); }),
        1);
}

TEST_F(TooltipsTest, AreNotShownWhereThereIsNoText) {
    rest(*silent);
    EXPECT_EQ(tooltips.shown(), nullptr);
    EXPECT_FALSE(QToolTip::isVisible());
}

TEST_F(TooltipsTest, GoWhenThePointerLeavesTheirWidget) {
    rest(*explained);
    send(*other, QEvent::Leave);
    EXPECT_TRUE(tooltips.shown());
    send(*explained, QEvent::Leave);
    EXPECT_EQ(tooltips.shown(), nullptr);
}

TEST_F(TooltipsTest, GoWhenAnythingIsPressed) {
    rest(*explained);
    test::typeKey(ground, Qt::Key_M);
    EXPECT_EQ(tooltips.shown(), nullptr);
    rest(*explained);
    test::pressAt(ground, {500, 300});
    EXPECT_EQ(tooltips.shown(), nullptr);
    test::releaseAt(ground, {500, 300});
    rest(*explained);
    QWheelEvent wheel(QPointF(5, 5), explained->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(explained.get(), &wheel);
    EXPECT_EQ(tooltips.shown(), nullptr);
}

TEST_F(TooltipsTest, GoWithTheirWidget) {
    rest(*explained);
    explained->hide();
    EXPECT_EQ(tooltips.shown(), nullptr);
    rest(*other);
    other.reset();
    EXPECT_EQ(tooltips.shown(), nullptr);
    explained->show();
    rest(*explained);
    ground.hide();
    EXPECT_EQ(tooltips.shown(), nullptr);
}

TEST_F(TooltipsTest, GoWhenTheyAreNotTrueAnyMore) {
    rest(*explained);
    explained->setToolTip(u"Something else"_s);
    EXPECT_EQ(tooltips.shown(), nullptr);
    rest(*explained);
    EXPECT_EQ(shownText(), u"Something else"_s);
}

} // namespace

} // namespace orvane
