#include "Orvane/PinButton.h"

#include "tests/support/FakeSurfaces.h"

#include <QApplication>
#include <QMouseEvent>

#include <gtest/gtest.h>

#include <vector>

namespace orvane::test {

namespace {

class PinButtonUnderTheMouse : public testing::Test {
protected:
    PinButtonUnderTheMouse() {
        // As its surfaces make it.
        button.setWindowFlag(Qt::FramelessWindowHint);
        button.show();
    }

    void send(QEvent::Type type, const QPoint& place) {
        QMouseEvent event(type, place - button.pos(), place, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&button, &event);
    }

    /// From its middle.
    void drag(const QPoint& way) {
        const QPoint from = button.geometry().center();
        send(QEvent::MouseButtonPress, from);
        send(QEvent::MouseMove, from + way / 2);
        send(QEvent::MouseMove, from + way);
        send(QEvent::MouseButtonRelease, from + way);
    }

    std::vector<QPoint> menus;
    FakeSurfaces surfaces;
    PinButton button{surfaces, [this](const QPoint& place) { menus.push_back(place); }};
    const QRect home = button.geometry();
};

} // namespace

TEST(PinButton, IsNearTheTopRightCornerOfWhatPanelsLeaveFree) {
    EXPECT_EQ(PinButton::home(QRect(0, 0, 1000, 800), QRect(0, 30, 900, 770)), QRect(856, 42, 32, 32));
    EXPECT_EQ(PinButton::home(QRect(1920, 100, 1000, 800), QRect(1920, 100, 1000, 760)),
              QRect(2876, 112, 32, 32));
}

TEST(PinButton, LeavesRoomForABarWhereNoPanelIsKnown) {
    EXPECT_EQ(PinButton::home(QRect(0, 0, 1000, 800), QRect(0, 0, 1000, 800)), QRect(956, 40, 32, 32));
}

TEST(PinButton, StaysWhereItWasDraggedToWhenThatIsFree) {
    const QRect place(300, 200, 32, 32);
    EXPECT_EQ(PinButton::inside(place, QRect(0, 30, 900, 770)), place);
}

TEST(PinButton, IsBroughtBackFromBeyondTheEdges) {
    const QRect available(100, 30, 900, 770);
    EXPECT_EQ(PinButton::inside(QRect(50, 10, 32, 32), available), QRect(100, 30, 32, 32));
    EXPECT_EQ(PinButton::inside(QRect(990, 795, 32, 32), available), QRect(968, 768, 32, 32));
}

TEST(PinButton, ShowsItsTopLeftWhereThereIsNoRoom) {
    EXPECT_EQ(PinButton::inside(QRect(50, 10, 32, 32), QRect(5, 6, 20, 20)), QRect(5, 6, 32, 32));
}

TEST_F(PinButtonUnderTheMouse, OffersItsMenuBelowOnAClick) {
    drag({0, 0});
    EXPECT_EQ(menus, std::vector<QPoint>{home.topLeft() + QPoint(0, PinButton::side)});
    EXPECT_EQ(button.geometry(), home);
}

TEST_F(PinButtonUnderTheMouse, TakesAShakyClickForAClick) {
    const int nearly = QApplication::startDragDistance() - 1;
    drag({-nearly, 0});
    EXPECT_EQ(menus.size(), 1U);
    EXPECT_EQ(button.geometry(), home);
    drag({-nearly - 1, 0});
    EXPECT_EQ(menus.size(), 1U);
    EXPECT_EQ(button.geometry(), home.translated(-nearly - 1, 0));
}

TEST_F(PinButtonUnderTheMouse, ComesBackOntoTheScreenWhenItIsLetGoBesideIt) {
    const QRect available = button.screen()->availableGeometry();
    drag({100, -300});
    EXPECT_TRUE(menus.empty());
    EXPECT_EQ(button.geometry(), PinButton::inside(home.translated(100, -300), available));
    EXPECT_TRUE(available.contains(button.geometry()));
    drag({-30, 40});
    EXPECT_EQ(button.pos(), available.topRight() + QPoint(1 - PinButton::side - 30, 40));
    drag({0, 0});
    EXPECT_EQ(menus.size(), 1U);
}

} // namespace orvane::test
