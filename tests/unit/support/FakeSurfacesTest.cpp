#include "tests/support/FakeSurfaces.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

namespace orvane::test {

namespace {

class FakeSurfacesTest : public testing::Test {
protected:
    void dress(QWidget& window, SurfaceRole role, SurfaceKeyboard keyboard) {
        surfaces.dress(window, role, keyboard, *QGuiApplication::primaryScreen());
    }

    FakeSurfaces surfaces;
    QWidget canvas;
    QWidget palette;
};

} // namespace

TEST_F(FakeSurfacesTest, RecordsWhatWindowsAreDressedFor) {
    EXPECT_EQ(surfaces.find(canvas), nullptr);
    dress(canvas, SurfaceRole::canvas, SurfaceKeyboard::never);
    dress(palette, SurfaceRole::palette, SurfaceKeyboard::onClick);
    ASSERT_EQ(surfaces.windows.size(), 2U);
    EXPECT_EQ(surfaces.windows[0].window, &canvas);
    const FakeSurfaces::Dressed* found = surfaces.find(palette);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->role, SurfaceRole::palette);
    EXPECT_EQ(found->keyboard, SurfaceKeyboard::onClick);
    EXPECT_EQ(found->screen, QGuiApplication::primaryScreen());
}

TEST_F(FakeSurfacesTest, RecordsWhatClicksPassThrough) {
    QWidget toast;
    dress(toast, SurfaceRole::toast, SurfaceKeyboard::never);
    dress(canvas, SurfaceRole::canvas, SurfaceKeyboard::never);
    EXPECT_TRUE(surfaces.find(toast)->isClickThrough);
    EXPECT_FALSE(surfaces.find(canvas)->isClickThrough);
    surfaces.setClickThrough(canvas, true);
    EXPECT_TRUE(surfaces.find(canvas)->isClickThrough);
}

TEST_F(FakeSurfacesTest, RecordsWhoTakesTheKeyboard) {
    dress(canvas, SurfaceRole::canvas, SurfaceKeyboard::never);
    dress(palette, SurfaceRole::palette, SurfaceKeyboard::onClick);
    surfaces.takeKeyboard(canvas);
    surfaces.takeKeyboard(palette);
    ASSERT_EQ(surfaces.keyboardTakers.size(), 1U);
    EXPECT_EQ(surfaces.keyboardTakers.back(), &palette);
    surfaces.giveKeyboardBack();
    EXPECT_TRUE(surfaces.keyboardTakers.empty());
    EXPECT_EQ(surfaces.timesGivenBack, 1);
}

TEST_F(FakeSurfacesTest, RefusesWhatNoDesktopCouldDo) {
    EXPECT_DEATH(surfaces.setClickThrough(canvas, true), "not dressed");
    dress(canvas, SurfaceRole::canvas, SurfaceKeyboard::never);
    EXPECT_DEATH(dress(canvas, SurfaceRole::palette, SurfaceKeyboard::never), "dressed once");
    palette.show();
    EXPECT_DEATH(dress(palette, SurfaceRole::palette, SurfaceKeyboard::never), "before it is shown");
}

} // namespace orvane::test
