#include "Orvane/PinButton.h"

#include <gtest/gtest.h>

namespace orvane::test {

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

} // namespace orvane::test
