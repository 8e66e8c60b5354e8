#include "OrvaneCore/surface/ToastWindow.h"

#include "OrvaneCore/surface/ToastPanel.h"
#include "tests/support/FakeSurfaces.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

namespace orvane {

namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

constexpr auto longTime = 60s;

} // namespace

TEST(ToastWindow, DressesTheToastOfEachScreenForWhatItIs) {
    test::FakeSurfaces surfaces;
    ToastWindow toast(surfaces);
    toast.show(u"Copied"_s, longTime);
    const QList<QScreen*> screens = QGuiApplication::screens();
    ASSERT_EQ(surfaces.windows.size(), static_cast<std::size_t>(screens.size()));
    const test::FakeSurfaces::Dressed& first = surfaces.windows.front();
    EXPECT_EQ(first.window, toast.panels().front());
    EXPECT_EQ(first.role, SurfaceRole::toast);
    EXPECT_EQ(first.keyboard, SurfaceKeyboard::never);
    EXPECT_EQ(first.screen, screens.front());
    EXPECT_TRUE(first.window->isVisible());
    EXPECT_TRUE(surfaces.keyboardTakers.empty());
}

TEST(ToastWindow, AsksForEachToastWhetherItCanBeTranslucent) {
    test::FakeSurfaces surfaces;
    ToastWindow toast(surfaces);
    toast.show(u"With a shadow"_s, longTime);
    surfaces.translucent = false;
    toast.show(u"Plain"_s, longTime);
    const auto panels = toast.panels();
    const std::size_t perToast = panels.size() / 2;
    const ToastPanel& shadowed = *panels.front();
    EXPECT_TRUE(shadowed.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_TRUE(shadowed.geometry().contains(shadowed.frame(), true));
    EXPECT_TRUE(shadowed.mask().isEmpty());
    const ToastPanel& plain = *panels.at(perToast);
    EXPECT_FALSE(plain.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_EQ(plain.geometry(), plain.frame());
    EXPECT_FALSE(plain.mask().isEmpty());
}

} // namespace orvane
