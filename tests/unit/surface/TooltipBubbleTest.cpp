#include "OrvaneCore/surface/TooltipBubble.h"

#include "OrvaneCore/drawing/DrawnText.h"
#include "tests/support/FakeSurfaces.h"
#include "tests/support/WidgetTest.h"

#include <QFontMetrics>
#include <QGuiApplication>

#include <gtest/gtest.h>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

const QRect screenRect(1000, 100, 800, 600);

class TooltipBubbleTest : public testing::Test {
protected:
    TooltipBubble bubble(const QString& text) {
        return {text, QRect(300, 300, 80, 28), *QGuiApplication::primaryScreen(), surfaces};
    }

    test::FakeSurfaces surfaces;
};

TEST(TooltipBubblePlace, IsAboveItsWidgetInTheMiddle) {
    EXPECT_EQ(TooltipBubble::place({100, 30}, {1200, 400, 80, 28}, screenRect), QRect(1190, 364, 100, 30));
}

TEST(TooltipBubblePlace, IsBelowWhereThereIsNoRoomAbove) {
    EXPECT_EQ(TooltipBubble::place({100, 30}, {1200, 144, 80, 28}, screenRect), QRect(1190, 108, 100, 30));
    EXPECT_EQ(TooltipBubble::place({100, 30}, {1200, 143, 80, 28}, screenRect), QRect(1190, 177, 100, 30));
}

TEST(TooltipBubblePlace, IsOnTheScreen) {
    EXPECT_EQ(TooltipBubble::place({100, 30}, {1010, 400, 20, 28}, screenRect), QRect(1008, 364, 100, 30));
    EXPECT_EQ(TooltipBubble::place({100, 30}, {1780, 400, 20, 28}, screenRect), QRect(1692, 364, 100, 30));
    EXPECT_EQ(TooltipBubble::place({100, 30}, {1200, 110, 80, 585}, screenRect), QRect(1190, 662, 100, 30));
    EXPECT_EQ(TooltipBubble::place({900, 700}, {1200, 400, 80, 28}, screenRect), QRect(1008, 108, 900, 700));
}

TEST_F(TooltipBubbleTest, IsDressedAsANoticeThatTakesNothing) {
    const TooltipBubble shown = bubble(u"Reads text"_s);
    ASSERT_EQ(surfaces.windows.size(), 1U);
    EXPECT_EQ(surfaces.windows[0].window, &shown);
    EXPECT_EQ(surfaces.windows[0].role, SurfaceRole::toast);
    EXPECT_EQ(surfaces.windows[0].keyboard, SurfaceKeyboard::never);
    EXPECT_TRUE(surfaces.windows[0].isClickThrough);
    EXPECT_EQ(shown.accessibleName(), u"Reads text"_s);
    EXPECT_EQ(shown.windowTitle(), u"Reads text"_s);
    EXPECT_FALSE(shown.testAttribute(Qt::WA_QuitOnClose));
}

TEST_F(TooltipBubbleTest, WrapsWhatIsLong) {
    const TooltipBubble one = bubble(u"Short"_s);
    const TooltipBubble more = bubble(u"Many words that follow each other "_s.repeated(8));
    EXPECT_GT(more.height(), 2 * one.height());
    EXPECT_LE(more.width(), 300);
    EXPECT_GT(more.width(), 230);
    EXPECT_EQ(more.geometry().bottom(), one.geometry().bottom());
}

TEST_F(TooltipBubbleTest, IsADarkPlateWithLightText) {
    TooltipBubble shown = bubble(u"WWWWWWWW"_s);
    const QImage picture = test::pictureOf(shown);
    EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
    const QColor ground = picture.pixelColor(picture.width() / 2, 4);
    EXPECT_GT(ground.alpha(), 200);
    EXPECT_LT(ground.red(), 60);
    const auto brightest = [&picture](const QRect& area) {
        int most = 0;
        for (int x = area.left(); x <= area.right(); ++x) {
            for (int y = area.top(); y <= area.bottom(); ++y)
                most = std::max(most, picture.pixelColor(x, y).red());
        }
        return most;
    };
    EXPECT_GT(brightest(picture.rect()), 200);
    EXPECT_NEAR(picture.width(), 20 + QFontMetrics(systemFont(12)).horizontalAdvance(u"WWWWWWWW"_s), 2);
    // Beside the text, within the edge.
    const int height = picture.height();
    EXPECT_LT(brightest({3, 8, 5, height - 16}), 60);
    EXPECT_LT(brightest({picture.width() - 8, 8, 5, height - 16}), 60);
}

TEST_F(TooltipBubbleTest, IsOpaqueWithRoundCornersWhereNothingCanBeTranslucent) {
    surfaces.translucent = false;
    TooltipBubble shown = bubble(u"Reads text"_s);
    EXPECT_FALSE(shown.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_FALSE(shown.mask().isEmpty());
    EXPECT_FALSE(shown.mask().contains(QPoint(0, 0)));
    const QColor ground = test::pictureOf(shown).pixelColor(shown.width() / 2, 4);
    EXPECT_EQ(ground.alpha(), 255);
    EXPECT_NEAR(ground.red(), 0x1F, 2);
}

} // namespace

} // namespace orvane
