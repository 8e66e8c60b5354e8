#include "OrvaneCore/tools/RegionLabels.h"

#include "OrvaneCore/drawing/DrawingColors.h"
#include "OrvaneCore/drawing/DrawnText.h"
#include "tests/support/KnownPicture.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize window(400, 300);
constexpr int tolerance = 2;

QImage whitePicture(qreal scale) {
    QImage picture((QSizeF(window) * scale).toSize(), QImage::Format_RGB32);
    picture.fill(Qt::white);
    return picture;
}

/// What a colour at an alpha looks like on a ground.
QColor blended(const QColor& color, double alpha, const QColor& ground) {
    const auto mix = [alpha](int top, int bottom) {
        return static_cast<int>(std::lround(alpha * top + (1 - alpha) * bottom));
    };
    return {mix(color.red(), ground.red()), mix(color.green(), ground.green()),
            mix(color.blue(), ground.blue())};
}

bool alike(const QColor& one, const QColor& other) {
    return std::abs(one.red() - other.red()) <= tolerance &&
           std::abs(one.green() - other.green()) <= tolerance &&
           std::abs(one.blue() - other.blue()) <= tolerance;
}

testing::AssertionResult hasColor(const QImage& picture, const QPointF& at, const QColor& expected) {
    const QColor actual = picture.pixelColor(static_cast<int>(at.x()), static_cast<int>(at.y()));
    if (alike(actual, expected))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << actual.name().toStdString() << " in place of "
                                       << expected.name().toStdString() << " at " << at.x() << "," << at.y();
}

/// The smallest rectangle around the pixels that satisfy a condition.
template <typename Condition>
QRect boundsOf(const QImage& picture, const QRect& within, Condition condition) {
    QRect bounds;
    for (int y = within.top(); y <= within.bottom(); ++y) {
        for (int x = within.left(); x <= within.right(); ++x) {
            if (condition(picture.pixelColor(x, y)))
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

QImage drawn(qreal scale, const std::vector<LabelledRegion>& regions) {
    return renderAnnotations(whitePicture(scale), regions, window.width(), window.height());
}

} // namespace

class RegionLabelsAtScale : public testing::TestWithParam<qreal> {
protected:
    const qreal scale = GetParam();
    const QColor red = QColor(system_colors::red);
    const LabelledRegion region{{100, 80, 160, 100}, u"Save"_s};
    const QImage picture = drawn(scale, {region});
};

TEST_P(RegionLabelsAtScale, TintsTheInside) {
    EXPECT_TRUE(hasColor(picture, QPointF(180, 130) * scale, blended(red, 0.15, Qt::white)));
}

TEST_P(RegionLabelsAtScale, OutlinesThreePointsWide) {
    const QColor inner = blended(red, 0.8, blended(red, 0.15, Qt::white));
    const QColor outer = blended(red, 0.8, Qt::white);
    const qreal x = 260 * scale;
    const qreal y = 150 * scale;
    EXPECT_TRUE(hasColor(picture, {x - 0.5 * scale - 0.5, y}, inner));
    EXPECT_TRUE(hasColor(picture, {x + 0.5 * scale, y}, outer));
    EXPECT_TRUE(hasColor(picture, {x + 1.5 * scale + 1.5, y}, Qt::white));
    EXPECT_TRUE(hasColor(picture, {x - 1.5 * scale - 1.5, y}, blended(red, 0.15, Qt::white)));
}

TEST_P(RegionLabelsAtScale, PutsTheBadgeAcrossTheCorner) {
    const double diameter = 28 * scale;
    const QRectF badge(100 * scale - diameter / 3, 80 * scale - diameter / 3, diameter, diameter);
    // The number is narrower than the circle's chord at a quarter of its height.
    EXPECT_TRUE(hasColor(picture, badge.center() - QPointF(0.38 * diameter, 0), red));
    EXPECT_TRUE(hasColor(picture, badge.center() + QPointF(0.38 * diameter, 0), red));
    const auto isRed = [this](const QColor& color) { return alike(color, red); };
    const QRect found = boundsOf(picture, QRectF(0, 0, 140 * scale, 120 * scale).toRect(), isRed);
    EXPECT_NEAR(found.left(), badge.left(), 1.5);
    EXPECT_NEAR(found.top(), badge.top(), 1.5);
    EXPECT_NEAR(found.right() + 1, badge.right(), 1.5);
    EXPECT_NEAR(found.bottom() + 1, badge.bottom(), 1.5);
}

TEST_P(RegionLabelsAtScale, CentresAWhiteNumber) {
    const double diameter = 28 * scale;
    const QRectF badge(100 * scale - diameter / 3, 80 * scale - diameter / 3, diameter, diameter);
    const QRect inside = badge.adjusted(diameter / 5, diameter / 5, -diameter / 5, -diameter / 5).toRect();
    const QRect digit =
        boundsOf(picture, inside, [](const QColor& color) { return alike(color, Qt::white); });
    ASSERT_FALSE(digit.isEmpty());
    EXPECT_NEAR(digit.center().x(), badge.center().x(), 2.5 * scale);
    EXPECT_NEAR(digit.center().y(), badge.center().y(), 1.5 * scale);
    EXPECT_NEAR(digit.height(), 16 * 0.73 * scale, 2 * scale);
}

TEST_P(RegionLabelsAtScale, WritesTheLabelBelow) {
    const DrawnText text(u"[1] Save"_s, 14, QFont::Medium, scale);
    const QRectF plate(QPointF(100, 80 + 100 + 22) * scale - QPointF(0, text.size().height()), text.size());
    const QRect ink = boundsOf(picture, QRectF(0, 185 * scale, 400 * scale, 115 * scale).toAlignedRect(),
                               [](const QColor& color) { return !alike(color, Qt::white); });
    ASSERT_FALSE(ink.isEmpty());
    EXPECT_TRUE(plate.adjusted(-1, -1, 1, 1).contains(ink));
    EXPECT_GT(ink.width(), plate.width() * 0.85);
    EXPECT_TRUE(boundsOf(picture, ink, [this](const QColor& color) { return alike(color, red); }).isValid());
}

TEST_P(RegionLabelsAtScale, PutsTheLabelOnAWhitePlate) {
    QImage black = whitePicture(scale);
    black.fill(Qt::black);
    const QImage onBlack = renderAnnotations(black, {region}, window.width(), window.height());
    const QColor plateColor = blended(Qt::white, 0.85, Qt::black);
    const QRect found = boundsOf(onBlack, QRectF(0, 183 * scale, 400 * scale, 117 * scale).toAlignedRect(),
                                 [&](const QColor& color) { return alike(color, plateColor); });
    const DrawnText text(u"[1] Save"_s, 14, QFont::Medium, scale);
    EXPECT_NEAR(found.left(), 100 * scale, 1);
    EXPECT_NEAR(found.bottom() + 1, (180 + 22) * scale, 1);
    EXPECT_NEAR(found.width(), text.size().width(), 2);
    EXPECT_NEAR(found.height(), text.size().height(), 2);
}

INSTANTIATE_TEST_SUITE_P(Scales, RegionLabelsAtScale, testing::Values(1.0, 1.5, 2.0));

TEST(RegionLabels, RepeatsFiveColours) {
    std::vector<LabelledRegion> regions;
    const std::array expected{system_colors::red,    system_colors::blue,   system_colors::green,
                              system_colors::orange, system_colors::purple, system_colors::red};
    regions.reserve(6);
    for (int i = 0; i < 6; ++i)
        regions.push_back({{20 + 60 * i, 50, 40, 100}, {}});
    const QImage picture = drawn(1, regions);
    for (int i = 0; i < 6; ++i) {
        EXPECT_TRUE(hasColor(picture, QPointF(40 + 60 * i, 120),
                             blended(QColor(expected[static_cast<std::size_t>(i)]), 0.15, Qt::white)));
    }
}

TEST(RegionLabels, LeavesTheRestAlone) {
    const QImage before = test::knownPicture(400, 300, false);
    const QImage after = renderAnnotations(before, {{{200, 150, 50, 50}, u"x"_s}}, 400, 300);
    EXPECT_EQ(after.copy(0, 0, 400, 130), before.copy(0, 0, 400, 130));
    EXPECT_EQ(after.copy(0, 130, 180, 170), before.copy(0, 130, 180, 170));
    EXPECT_EQ(after.copy(270, 0, 130, 300), before.copy(270, 0, 130, 300));
    EXPECT_EQ(after.size(), before.size());
}

TEST(RegionLabels, DrawsNothingForNoRegions) {
    const QImage picture = test::knownPicture(40, 30, false);
    EXPECT_EQ(renderAnnotations(picture, {}, 40, 30), picture);
    const QImage transparent = test::knownPicture(40, 30, true);
    const QImage same = renderAnnotations(transparent, {}, 40, 30);
    EXPECT_TRUE(same.hasAlphaChannel());
    EXPECT_EQ(same.pixelColor(1, 1).alpha(), transparent.pixelColor(1, 1).alpha());
}

TEST(RegionLabels, CountsEachAxisInItsOwnScale) {
    const QImage picture = renderAnnotations(whitePicture(1), {{{100, 40, 100, 50}, {}}}, 800, 300);
    const QColor tint = blended(QColor(system_colors::red), 0.15, Qt::white);
    EXPECT_TRUE(hasColor(picture, {90, 80}, tint));
    EXPECT_TRUE(hasColor(picture, {110, 80}, Qt::white));
}

TEST(RegionLabels, SurvivesAnyNumbers) {
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    std::vector<LabelledRegion> regions{
        {{least, least, most, most}, u"everything"_s},
        {{most, most, most, most}, u"nothing"_s},
        {{10, 10, 0, 0}, u"a point"_s},
        {{300, 200, -100, -50}, u"inverted"_s},
        {{-50, -50, 10, 10}, u"outside"_s},
        {{50, 60, 20, 20}, u"two\nlines"_s},
        {{50, 160, 20, 20}, u"שלום 👋 مرحبا"_s},
        {{5, 100, 5, 5}, QString(20'000, u'W')},
    };
    const QImage picture = drawn(1, regions);
    EXPECT_EQ(picture.size(), window);
    // The inverted one covers what lies between its corners.
    EXPECT_FALSE(hasColor(picture, {250, 175}, Qt::white));
}

TEST(RegionLabels, DrawsThousandsOfRegions) {
    std::vector<LabelledRegion> regions;
    regions.reserve(3000);
    for (int i = 0; i < 3000; ++i)
        regions.push_back({{i % 380, i % 280, 15, 10}, u"n"_s});
    EXPECT_NE(drawn(1, regions), whitePicture(1));
}

} // namespace orvane
