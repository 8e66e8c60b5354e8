#include "OrvaneCore/drawing/SoftShadow.h"

#include "tests/support/DrawnPixels.h"

#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>

#include <gtest/gtest.h>

#include <cmath>

namespace orvane::test {

namespace {

QPainterPath rectPath(const QRectF& rect) {
    QPainterPath path;
    path.addRect(rect);
    return path;
}

QPainterPath circlePath(const QPointF& center, qreal radius) {
    QPainterPath path;
    path.addEllipse(center, radius, radius);
    return path;
}

QColor shade(qreal alpha) {
    return QColor::fromRgbF(0, 0, 0, static_cast<float>(alpha));
}

QImage shadowOf(const QPainterPath& path, qreal blur, const QPointF& offset, const QSize& size = {100, 80},
                const QTransform& transform = {}) {
    QImage picture = ground(size);
    QPainter painter(&picture);
    painter.setTransform(transform);
    drawSoftShadow(painter, path, shade(0.5), blur, offset);
    painter.end();
    return picture;
}

/// Paints on a picture as a widget of a window does: with sizes in points, on a part of the window's pixels.
class PartOfWindow : public QPaintDevice {
public:
    PartOfWindow(QImage& window, const QRect& points)
        : m_window(window)
        , m_points(points) {}

    QPaintEngine* paintEngine() const override { return m_window.paintEngine(); }

protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
            return m_points.width();
        case PdmHeight:
            return m_points.height();
        case PdmDevicePixelRatio:
            return static_cast<int>(m_window.devicePixelRatio());
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(m_window.devicePixelRatio() * devicePixelRatioFScale());
        case PdmDepth:
            return m_window.depth();
        case PdmNumColors:
            return m_window.colorCount();
        case PdmWidthMM:
            return m_window.widthMM();
        case PdmHeightMM:
            return m_window.heightMM();
        case PdmDpiX:
        case PdmPhysicalDpiX:
            return m_window.logicalDpiX();
        case PdmDpiY:
        case PdmPhysicalDpiY:
            return m_window.logicalDpiY();
        }
        return 0;
    }
    QPaintDevice* redirected(QPoint* offset) const override {
        *offset = -m_points.topLeft();
        return &m_window;
    }

private:
    QImage& m_window;
    QRect m_points;
};

} // namespace

TEST(SoftShadow, FallsOffAsAGaussianOfHalfItsBlur) {
    for (const qreal blur : {3.0, 4.0, 8.0}) {
        const QImage picture = shadowOf(rectPath({-50, 40, 200, 200}), blur, {0, 0});
        for (int y = 0; y < 80; ++y) {
            const qreal depth = (y + 0.5 - 40) / (blur / 2 * std::sqrt(2.0));
            const qreal part = 0.5 * (1 + std::erf(depth));
            EXPECT_TRUE(isColor(picture, {50.0, y + 0.5}, blended(black, 0.5 * part, white), 3))
                << blur << " at " << y;
        }
    }
}

TEST(SoftShadow, GetsFainterWithEveryPixelOutward) {
    const QImage picture = shadowOf(circlePath({50, 40}, 15), 8, {0, 0});
    int last = qRed(picture.pixel(50, 40));
    EXPECT_NEAR(last, 128, 2);
    int steps = 0;
    for (int x = 51; x < 100; ++x) {
        const int level = qRed(picture.pixel(x, 40));
        EXPECT_GE(level, last) << x;
        steps += level > last ? 1 : 0;
        last = level;
    }
    EXPECT_GE(steps, 10);
    EXPECT_EQ(last, 255);
}

TEST(SoftShadow, IsMovedByItsOffset) {
    const QImage plain = shadowOf(circlePath({40, 30}, 9), 4, {0, 0});
    const QImage moved = shadowOf(circlePath({40, 30}, 9), 4, {7, 11});
    EXPECT_FALSE(inkBounds(plain).isEmpty());
    EXPECT_EQ(inkBounds(moved), inkBounds(plain).translated(7, 11));
    EXPECT_EQ(moved.copy(7, 11, 93, 69), plain.copy(0, 0, 93, 69));
    // And by parts of a pixel.
    const QImage half = shadowOf(rectPath({-50, 40, 200, 200}), 4, {0, 0.5});
    EXPECT_NEAR(qRed(half.pixel(50, 40)), qRed(blended(black, 0.25, white)), 2);
}

TEST(SoftShadow, IsOfItsColour) {
    QImage picture = ground({60, 60});
    QPainter painter(&picture);
    drawSoftShadow(painter, circlePath({30, 30}, 20), QColor(0, 0, 255, 128), 4, {0, 0});
    painter.end();
    EXPECT_TRUE(isColor(picture, {30, 30}, blended(0xFF0000FF, 128 / 255.0, white)));
    const QRgb rim = picture.pixel(30, 9);
    EXPECT_EQ(qBlue(rim), 255);
    EXPECT_GT(qRed(rim), 140);
    EXPECT_LT(qRed(rim), 240);
}

TEST(SoftShadow, IsTheSameInAFinerDrawing) {
    const QPainterPath path = circlePath({40, 30}, 12);
    const QImage scaledPainter = shadowOf(path, 5, {1, 2}, {200, 160}, QTransform::fromScale(2, 2));
    const QImage scaledValues = shadowOf(QTransform::fromScale(2, 2).map(path), 10, {2, 4}, {200, 160});
    EXPECT_LE(difference(scaledPainter, scaledValues, 0).largest, 1);
    const QImage one = shadowOf(path, 5, {1, 2});
    const QImage reduced = scaledPainter.scaled(one.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    EXPECT_LE(difference(one, reduced, 0).largest, 3);
}

TEST(SoftShadow, FollowsTheTransformOfItsPainter) {
    QTransform transform;
    transform.translate(70, 10);
    transform.rotate(90);
    const QPainterPath path = rectPath({5, 5, 30, 12});
    const QImage turned = shadowOf(path, 4, {0, 6}, {100, 80}, transform);
    EXPECT_LE(difference(turned, shadowOf(transform.map(path.translated(0, 6)), 4, {0, 0}), 0).largest, 1);
}

TEST(SoftShadow, IsTheSameOnAPictureOfMorePixelsToThePoint) {
    const QPainterPath path = circlePath({40, 30}, 12);
    const QImage expected = shadowOf(path, 5, {1, 2}, {200, 160}, QTransform::fromScale(2, 2));
    QImage picture = ground({200, 160});
    picture.setDevicePixelRatio(2);
    QPainter painter(&picture);
    drawSoftShadow(painter, path, shade(0.5), 5, {1, 2});
    painter.end();
    EXPECT_LE(difference(picture, expected, 0).largest, 1);
}

TEST(SoftShadow, IsTheSameOnAPartOfAWindow) {
    for (const int ratio : {1, 2}) {
        // On the far side of the part, and of the window.
        const QPainterPath path = circlePath({90, 50}, 12);
        const QTransform toWindow = QTransform::fromTranslate(20, 10) * QTransform::fromScale(ratio, ratio);
        const QSize pixels(120 * ratio, 80 * ratio);
        const QImage expected = shadowOf(path, 5, {1, 2}, pixels, toWindow);
        QImage window = ground(pixels);
        window.setDevicePixelRatio(ratio);
        PartOfWindow part(window, {20, 10, 100, 70});
        QPainter painter(&part);
        drawSoftShadow(painter, path, shade(0.5), 5, {1, 2});
        painter.end();
        EXPECT_FALSE(inkBounds(expected).isEmpty());
        EXPECT_LE(difference(window, expected, 0).largest, 1) << ratio;
    }
}

TEST(SoftShadow, IsNotCutAtTheEdgeOfThePicture) {
    // What a larger picture shows of it.
    for (const QPointF& center : {QPointF(0, 0), QPointF(100, 40), QPointF(-10, 30), QPointF(50, 92)}) {
        const QImage picture = shadowOf(circlePath(center, 12), 6, {0, 0});
        const QImage larger =
            shadowOf(circlePath(center + QPointF(50, 50), 12), 6, {0, 0}, {200, 180}).copy(50, 50, 100, 80);
        EXPECT_FALSE(inkBounds(picture).isEmpty());
        EXPECT_LE(difference(picture, larger, 0).largest, 1) << center.x();
    }
}

TEST(SoftShadow, IsNothingWhenWhollyOutside) {
    for (const QPointF& center : {QPointF(-40, 40), QPointF(140, 40), QPointF(50, -40), QPointF(50, 120),
                                  QPointF(1e6, 1e6), QPointF(-1e9, 40)})
        EXPECT_TRUE(inkBounds(shadowOf(circlePath(center, 12), 6, {0, 0})).isEmpty()) << center.x();
    EXPECT_TRUE(inkBounds(shadowOf(circlePath({50, 40}, 12), 6, {500, 0})).isEmpty());
    EXPECT_FALSE(inkBounds(shadowOf(circlePath({-40, 40}, 12), 6, {60, 0})).isEmpty());
}

TEST(SoftShadow, IsNothingForAnEmptyPathOrNoColour) {
    EXPECT_TRUE(inkBounds(shadowOf({}, 6, {0, 0})).isEmpty());
    QImage picture = ground({50, 50});
    QPainter painter(&picture);
    drawSoftShadow(painter, circlePath({25, 25}, 10), QColor(0, 0, 0, 0), 6, {0, 0});
    painter.end();
    EXPECT_TRUE(inkBounds(picture).isEmpty());
}

TEST(SoftShadow, MayBeFarLargerThanThePicture) {
    EXPECT_TRUE(isFilled(shadowOf(rectPath({-1e6, -1e6, 2e6, 2e6}), 6, {0, 0}), QRect(0, 0, 100, 80),
                         blended(black, 0.5, white)));
    const QImage edge = shadowOf(rectPath({-1e6, 40, 2e6, 1e6}), 6, {0, 0});
    EXPECT_EQ(edge, shadowOf(rectPath({-50, 40, 200, 200}), 6, {0, 0}));
    // Larger than pictures can be.
    EXPECT_TRUE(isFilled(shadowOf(rectPath({-1e12, -1e12, 2e12, 2e12}), 6, {0, 0}), QRect(0, 0, 100, 80),
                         blended(black, 0.5, white)));
}

TEST(SoftShadow, IsAPlainAreaWithoutBlur) {
    const QImage picture = shadowOf(rectPath({30, 20, 40, 30}), 0, {0, 0});
    EXPECT_EQ(inkBounds(picture), QRect(30, 20, 40, 30));
    EXPECT_TRUE(isFilled(picture, QRect(30, 20, 40, 30), blended(black, 0.5, white)));
}

TEST(SoftShadow, ReachesAsFarAsItSays) {
    for (const qreal blur : {0.0, 1.0, 3.0, 4.0, 10.0}) {
        const qreal reach = softShadowReach(blur);
        for (const qreal part : {0.0, 0.3, 0.9}) {
            const QRectF rect(35 + part, 30 + part, 20, 12);
            const QRectF area = rect.adjusted(-reach, -reach, reach, reach).translated(2, 3);
            const QRectF ink(inkBounds(shadowOf(rectPath(rect), blur, {2, 3})));
            EXPECT_TRUE(area.contains(ink)) << blur << " at " << part;
            // Its faintest part does not show.
            EXPECT_LE(ink.left() - area.left(), 0.3 * blur + 4) << blur << " at " << part;
        }
    }
    EXPECT_EQ(softShadowReach(3), 7.5);
    EXPECT_EQ(softShadowReach(4), 9);
}

TEST(SoftShadow, StaysInsideTheClip) {
    QImage picture = ground({100, 80});
    QPainter painter(&picture);
    painter.setClipRect(QRect(0, 0, 50, 80));
    drawSoftShadow(painter, circlePath({50, 40}, 15), shade(0.5), 6, {0, 0});
    painter.end();
    EXPECT_EQ(picture.copy(0, 0, 50, 80), shadowOf(circlePath({50, 40}, 15), 6, {0, 0}).copy(0, 0, 50, 80));
    EXPECT_TRUE(isFilled(picture, QRect(50, 0, 50, 80), white));
}

TEST(SoftShadow, LeavesThePainterAsItWas) {
    QImage picture = ground({100, 80});
    QPainter painter(&picture);
    setUnusual(painter);
    const PainterSettings before(painter);
    drawSoftShadow(painter, circlePath({30, 30}, 10), shade(0.5), 6, {1, 1});
    EXPECT_EQ(PainterSettings(painter), before);
    EXPECT_FALSE(inkBounds(picture).isEmpty());
}

} // namespace orvane::test
