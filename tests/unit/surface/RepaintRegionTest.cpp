#include "OrvaneCore/surface/RepaintRegion.h"

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QTransform>

#include <gtest/gtest.h>

#include <array>

namespace orvane::test {

namespace {

/// Those that desktops offer, and those that fonts of 100, 120, 128 and 145 dots to the inch make.
constexpr std::array scales{1.0, 100 / 96.0, 1.1,  1.15, 1.2, 1.25, 4 / 3.0, 1.5, 145 / 96.0,
                            1.6, 1.75,       1.85, 2.0,  2.1, 2.25, 2.3,     2.9, 3.0};

/// No edge of it is near half a pixel at any of them.
const QRect view(0, 0, 1536, 864);

QRegion randomRegion(QRandomGenerator& random) {
    QRegion region;
    for (int i = random.bounded(1, 8); i > 0; --i) {
        const QPoint place(random.bounded(-20, view.width()), random.bounded(-20, view.height()));
        // Lines are as common as plates.
        const QSize size(random.bounded(2) == 0 ? 3 : random.bounded(1, 400),
                         random.bounded(2) == 0 ? 3 : random.bounded(1, 400));
        region += QRect(place, size);
    }
    return region;
}

/// What Qt clears and shows.
QRegion clearedPixels(const QRegion& region, qreal scale) {
    return QTransform::fromScale(scale, scale).map(region);
}

/// What the painter of a picture with that scale paints.
QRegion paintedPixels(const QRegion& region, qreal scale) {
    QImage picture(1, 1, QImage::Format_RGB32);
    picture.setDevicePixelRatio(scale);
    const QPainter painter(&picture);
    return painter.deviceTransform().map(region);
}

qint64 areaOf(const QRegion& region) {
    qint64 area = 0;
    for (const QRect& rect : region)
        area += qint64(rect.width()) * rect.height();
    return area;
}

} // namespace

TEST(RepaintRegion, IsPaintedWhereItIsClearedAtEveryScale) {
    QRandomGenerator random(5);
    for (const qreal scale : scales) {
        for (int i = 0; i < 300; ++i) {
            const QRegion changed = randomRegion(random);
            const QRegion region = repaintRegion(changed, view, scale);
            ASSERT_EQ(paintedPixels(region, scale), clearedPixels(region, scale)) << scale << ' ' << i;
            ASSERT_TRUE(((changed & view) - region).isEmpty()) << scale << ' ' << i;
            ASSERT_TRUE((region - view).isEmpty()) << scale << ' ' << i;
            ASSERT_EQ(repaintRegion(region, view, scale), region) << scale << ' ' << i;
        }
    }
}

TEST(RepaintRegion, HasNoEdgeOnHalfAPixel) {
    // 5.5 pixels.
    const QRect onHalves(5, 5, 10, 20);
    ASSERT_NE(paintedPixels(onHalves, 1.1), clearedPixels(onHalves, 1.1));
    EXPECT_EQ(repaintRegion(onHalves, view, 1.1), QRegion(4, 4, 12, 22));
    EXPECT_EQ(repaintRegion(QRect(4, 4, 12, 22), view, 1.1), QRegion(4, 4, 12, 22));
}

TEST(RepaintRegion, DoesNotLeaveTheView) {
    // 15 points are 16.5 pixels.
    EXPECT_EQ(repaintRegion(QRect(5, 5, 20, 20), {0, 0, 15, 15}, 1.1), QRegion(4, 4, 11, 11));
    EXPECT_EQ(repaintRegion(QRect(-5, -5, 20, 20), view, 1.1), QRegion(0, 0, 16, 16));
}

TEST(RepaintRegion, IsWhatHasChangedWherePaintersHaveTheSameScale) {
    const QRegion changed = QRegion(1, 2, 3, 4) + QRegion(7, 3, 5, 9);
    for (const qreal scale : {1.0, 1.25, 1.5, 1.75, 2.0, 2.25, 2.5, 3.0})
        EXPECT_EQ(repaintRegion(changed, view, scale), changed) << scale;
}

TEST(RepaintRegion, IsLittleMoreThanWhatHasChanged) {
    for (const qreal scale : {1.1, 1.15, 1.2, 1.85, 2.3}) {
        qint64 changed = 0;
        qint64 painted = 0;
        // The two lines at a pointer.
        for (int place = 100; place < 800; ++place) {
            const QRegion lines = QRegion(place, 0, 3, view.height()) + QRegion(0, place, view.width(), 3);
            changed += areaOf(lines);
            painted += areaOf(repaintRegion(lines, view, scale));
        }
        EXPECT_LT(static_cast<qreal>(painted) / static_cast<qreal>(changed), 1.15) << scale;
    }
}

TEST(RepaintRegion, IsNoneForNoChange) {
    EXPECT_TRUE(repaintRegion({}, {0, 0, 100, 100}, 1.1).isEmpty());
    EXPECT_TRUE(repaintRegion(QRect(200, 200, 5, 5), {0, 0, 100, 100}, 1.1).isEmpty());
    EXPECT_TRUE(repaintRegion(QRect(0, 0, 5, 5), {}, 1.1).isEmpty());
}

} // namespace orvane::test
