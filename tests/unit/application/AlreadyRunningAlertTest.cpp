#include "Orvane/AlreadyRunningAlert.h"

#include "OrvanePlatform/freedesktop/DesktopWords.h"
#include "tests/support/MacWords.h"

#include <QAbstractButton>

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;

TEST(AlreadyRunningAlert, SaysWhereToLook) {
    const AlreadyRunningAlert alert(macWords());
    EXPECT_EQ(alert.text(), u"Orvane is already running"_s);
    EXPECT_EQ(alert.informativeText(),
              u"Look for the pin in your menu bar. Only one instance can run at a time."_s);
    EXPECT_EQ(alert.windowTitle(), u"Orvane"_s);
    EXPECT_EQ(alert.icon(), QMessageBox::Information);
}

TEST(AlreadyRunningAlert, NamesThePlaceAsTheDesktopDoes) {
    EXPECT_EQ(AlreadyRunningAlert(freedesktop::desktopWords()).informativeText(),
              u"Look for the pin in your tray. Only one instance can run at a time."_s);
}

TEST(AlreadyRunningAlert, HasOneButtonThatEndsIt) {
    AlreadyRunningAlert alert(macWords());
    alert.show();
    ASSERT_EQ(alert.buttons().size(), 1);
    alert.buttons().constFirst()->click();
    EXPECT_FALSE(alert.isVisible());
}

} // namespace orvane::test
