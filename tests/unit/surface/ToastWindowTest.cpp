#include "OrvaneCore/surface/ToastWindow.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/surface/ToastPanel.h"
#include "tests/support/DrawnPixels.h"
#include "tests/support/FakeSurfaces.h"
#include "tests/support/WidgetTest.h"

#include <QGuiApplication>
#include <QPainter>

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

constexpr auto longTime = 60s;
constexpr QRgb plate = 0xFF1F1F1F;

/// The lightest grey there.
int brightest(const QImage& picture, const QRect& area) {
    int most = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            most = std::max(most, qGray(picture.pixel(x, y)));
    }
    return most;
}

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
    EXPECT_EQ(first.window->windowTitle(), u"Copied"_s);
    EXPECT_EQ(first.window->accessibleName(), u"Copied"_s);
    EXPECT_FALSE(first.window->testAttribute(Qt::WA_QuitOnClose));
    EXPECT_TRUE(surfaces.keyboardTakers.empty());
}

TEST(ToastWindow, ThatCameWhileTheyWereHeldBackHaveTheirOwnTimeAfterwards) {
    test::FakeSurfaces surfaces;
    ToastWindow toast(surfaces);
    const auto perToast = static_cast<std::size_t>(QGuiApplication::screens().size());
    toast.setHeldBack(true);
    toast.show(u"Short"_s, 50ms);
    toast.show(u"Long"_s, longTime);
    toast.setHeldBack(false);
    EXPECT_EQ(toast.panels().size(), 2 * perToast);
    EXPECT_TRUE(test::eventuallyInLoop([&] { return toast.panels().size() <= perToast; }));
    ASSERT_FALSE(test::eventuallyInLoop([&] { return toast.panels().size() < perToast; }, 500));
    EXPECT_EQ(toast.panels().front()->accessibleName(), u"Long"_s);
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

TEST(ToastWindow, HasAHairlineAndASubtitleThatIsDimmerThanItsTitle) {
    test::FakeSurfaces surfaces;
    surfaces.translucent = false;
    ToastWindow toast(surfaces);
    toast.showRich(u"HHHH"_s, u"HHHH"_s, {}, longTime);
    QWidget& panel = *surfaces.windows.front().window;
    const QImage picture = test::pictureOf(panel);
    const int middle = panel.width() / 2;
    EXPECT_TRUE(test::isColor(picture, QPoint(middle, 0), test::blended(0xFF404040, 0.4, plate), 2));
    EXPECT_TRUE(test::isColor(picture, QPoint(middle, 2), plate));

    const DrawnText title(u"HHHH"_s, 15, QFont::DemiBold, 1);
    const DrawnText subtitle(u"HHHH"_s, 12, QFont::Normal, 1);
    const ToastLayout layout =
        toast::layout({.title = title.size(), .subtitle = subtitle.size(), .hasIcon = false},
                      surfaces.windows.front().screen->availableGeometry());
    QImage expected = test::ground(panel.size(), plate);
    QPainter painter(&expected);
    title.draw(painter, layout.title, gray(1));
    subtitle.draw(painter, layout.subtitle, gray(0.6F));
    painter.end();
    for (const auto& [place, size] :
         {std::pair(layout.title, title.size()), std::pair(layout.subtitle, subtitle.size())}) {
        const QRect area = QRectF(place, size).toAlignedRect();
        EXPECT_NEAR(brightest(picture, area), brightest(expected, area), 2);
    }
}

TEST(ToastWindow, CutsEachLineOfATextByItself) {
    test::FakeSurfaces surfaces;
    ToastWindow toast(surfaces);
    toast.showRich(u"Title"_s, u"one\ntwo"_s, {}, longTime);
    const int twoLines = toast.panels().front()->frame().height();
    toast.showRich(u"Title"_s, QString(2000, u'w') + u"\ntwo"_s, {}, longTime);
    EXPECT_EQ(toast.panels().back()->frame().height(), twoLines);
}

} // namespace orvane
