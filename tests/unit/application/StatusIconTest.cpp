#include "Orvane/StatusIcon.h"
#include "Orvane/MenuBarGlyph.h"
#include "tests/support/DrawnPixels.h"

#include <QPainter>

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr QRgb red = 0xffff3b30;

/// The icon in a slot of that many points, on a panel of that colour.
QImage inSlot(bool isRecording, int slot, QRgb panel, int scale = 1) {
    QImage picture = ground(QSize(slot, slot) * scale, panel);
    picture.setDevicePixelRatio(scale);
    QPainter painter(&picture);
    status_icon::icon(isRecording).paint(&painter, QRect(0, 0, slot, slot));
    painter.end();
    picture.setDevicePixelRatio(1);
    return picture;
}

int clearPixels(const QImage& picture, QRgb panel) {
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            count += colorDistance(picture.pixel(x, y), panel) > 90 ? 1 : 0;
    }
    return count;
}

/// The part of the inked pixels that are neither the panel's colour nor one of the icon's.
qreal blurredPart(const QImage& picture, QRgb panel, QRgb ink) {
    int inked = 0;
    int blurred = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            if (colorDistance(pixel, panel) <= 8)
                continue;
            ++inked;
            blurred += colorDistance(pixel, ink) > 8 ? 1 : 0;
        }
    }
    return qreal(blurred) / inked;
}

} // namespace

TEST(StatusIcon, TellsOfARecordingInWords) {
    EXPECT_EQ(status_icon::description(true), u"Orvane (Recording)"_s);
    EXPECT_EQ(status_icon::description(false), u"Orvane"_s);
}

TEST(StatusIcon, IsEighteenPointsWideInTheMiddleOfALargerSlot) {
    for (const bool isRecording : {false, true}) {
        const QRect ink = inkBounds(inSlot(isRecording, 30, white), white, 8);
        EXPECT_TRUE(QRect(6, 6, 18, 18).contains(ink)) << isRecording;
        EXPECT_GE(std::max(ink.width(), ink.height()), 15) << isRecording;
        EXPECT_LE(std::abs(ink.left() + ink.right() - 29), 1) << isRecording;
    }
}

TEST(StatusIcon, FitsASmallerSlot) {
    for (const bool isRecording : {false, true}) {
        const QRect ink = inkBounds(inSlot(isRecording, 12, white), white, 8);
        EXPECT_GE(std::max(ink.width(), ink.height()), 10) << isRecording;
        EXPECT_LE(std::max(ink.width(), ink.height()), 12) << isRecording;
    }
}

TEST(StatusIcon, RecordingIsRed) {
    const QImage picture = inSlot(true, 18, white);
    EXPECT_TRUE(isColor(picture, {9, 9}, red));
    EXPECT_TRUE(isColor(picture, {9, 2}, red, 40));
    EXPECT_FALSE(isColor(inSlot(false, 18, white), {9, 9}, red, 100));
}

TEST(StatusIcon, CanBeSeenOnAnyPanel) {
    for (const QRgb panel : {white, black, 0xff808080U, 0xff2e3436U, 0xfff0f0f0U}) {
        EXPECT_GE(clearPixels(inSlot(true, 18, panel), panel), 60) << std::hex << panel;
        EXPECT_GE(clearPixels(inSlot(false, 18, panel), panel), 30) << std::hex << panel;
    }
}

TEST(StatusIcon, IsDrawnAnewAtTwiceTheScale) {
    const QImage once = inSlot(true, 18, white);
    const QImage twice = inSlot(true, 18, white, 2);
    const QImage enlarged = once.scaled(36, 36, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    EXPECT_LT(blurredPart(twice, white, red), 0.45);
    EXPECT_GT(blurredPart(enlarged, white, red), blurredPart(twice, white, red) + 0.2);
}

TEST(StatusIcon, PicturesForOthersToFitFillTheirSize) {
    const QIcon icon = status_icon::icon(true);
    const QList<QSize> sizes = icon.availableSizes();
    ASSERT_TRUE(sizes.contains(QSize(22, 22)));
    ASSERT_TRUE(sizes.contains(QSize(64, 64)));
    for (const QSize& size : {QSize(22, 22), QSize(64, 64)}) {
        const QImage picture = icon.pixmap(size).toImage();
        ASSERT_EQ(picture.size(), size);
        EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
        EXPECT_EQ(picture.pixel(size.width() / 2, size.height() / 2), red);
        EXPECT_EQ(qAlpha(picture.pixel(size.width() / 2, size.height() / 8)), 255);
    }
}

TEST(StatusIcon, APinPointsDownAndHasAHole) {
    const QPainterPath pin = menu_bar_glyph::pin();
    const QRectF bounds = pin.boundingRect();
    EXPECT_TRUE(QRectF(0, 0, menu_bar_glyph::side, menu_bar_glyph::side).contains(bounds));
    EXPECT_TRUE(pin.contains(QPointF(9, 3)));
    EXPECT_FALSE(pin.contains(QPointF(9, 7)));
    EXPECT_TRUE(pin.contains(QPointF(9, 15)));
    EXPECT_FALSE(pin.contains(QPointF(5, 15)));
}

} // namespace orvane::test
