#include "OrvaneCore/drawing/PlateEdge.h"

#include "tests/unit/marking/Drawings.h"

#include <gtest/gtest.h>

#include <functional>

namespace orvane::test {

namespace {

constexpr QRectF plate(20, 10, 60, 30);
constexpr qreal radius = 8;

class DrawsPlateEdges : public AtScale {
protected:
    static QImage drawnOn(QRgb under, const std::function<void(QPainter&)>& draw) {
        QImage picture = ground((QSizeF(100, 50) * scale()).toSize(), under);
        QPainter painter(&picture);
        painter.scale(scale(), scale());
        draw(painter);
        painter.end();
        return picture;
    }
    static QImage ofRect(QRgb under) {
        return drawnOn(under, [](QPainter& painter) { drawPlateEdge(painter, plate, radius); });
    }
    static QImage ofPath(QRgb under) {
        QPainterPath outline;
        outline.addRoundedRect(plate, radius, radius);
        return drawnOn(under, [&outline](QPainter& painter) { drawPlateEdge(painter, outline); });
    }
    static QRect pixels(const QRectF& rect) {
        return pixelsInside({rect.topLeft() * scale(), rect.size() * scale()});
    }
};

} // namespace

TEST_P(DrawsPlateEdges, ALightLineInsideThePlate) {
    for (const QImage& picture : {ofRect(black), ofPath(black)}) {
        const QRect ink = inkBounds(picture, black, 1);
        EXPECT_EQ(ink, QRectF(plate.topLeft() * scale(), plate.size() * scale()).toRect());
        EXPECT_TRUE(isFilled(picture, pixels({40, 10, 20, 1}), blended(white, 0.26, black), 3));
        EXPECT_TRUE(isFilled(picture, pixels({20, 20, 1, 10}), blended(white, 0.26, black), 3));
        EXPECT_TRUE(isFilled(picture, pixels({22, 19, 56, 12}), black));
        // Round corners.
        EXPECT_TRUE(isFilled(picture, pixels({20, 10, 2, 2}), black));
    }
}

TEST_P(DrawsPlateEdges, IsNoDarkerThanWhatItLiesOn) {
    EXPECT_TRUE(inkBounds(ofRect(white)).isEmpty());
    EXPECT_TRUE(inkBounds(ofPath(white)).isEmpty());
}

TEST(PlateEdge, LeavesThePainterAsItWas) {
    QImage picture = ground({100, 50});
    QPainter painter(&picture);
    setUnusual(painter);
    const PainterSettings before(painter);
    drawPlateEdge(painter, plate, radius);
    QPainterPath outline;
    outline.addRect(plate);
    drawPlateEdge(painter, outline);
    EXPECT_EQ(PainterSettings(painter), before);
}

INSTANTIATE_TEST_SUITE_P(PlateEdge, DrawsPlateEdges, testing::ValuesIn(displayScales), nameOfScale);

} // namespace orvane::test
