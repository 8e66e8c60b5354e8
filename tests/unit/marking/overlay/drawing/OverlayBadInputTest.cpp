#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/marking/overlay/OverlayDamage.h"
#include "tests/unit/marking/overlay/drawing/OverlayScenes.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array badNumbers{notANumber, infinite, -infinite, 1e300, -1e300, 1e9};

OverlayScene scene() {
    OverlayScene result = emptyScene({200, 150});
    result.markers = {markerAt({40, 80, 60, 40}, u"Note"_s), markerAt({120, 80, 60, 40}, {}, 2)};
    result.shapes.annotations.reserve(6);
    for (const Annotation::Kind kind :
         {Annotation::Kind::arrow, Annotation::Kind::box, Annotation::Kind::ellipse,
          Annotation::Kind::highlight, Annotation::Kind::text, Annotation::Kind::image}) {
        result.shapes.annotations.push_back(shapeAt(kind, {30, 70}, {150, 120}));
        result.shapes.annotations.back().text = u"Text"_s;
        result.shapes.annotations.back().label = u"Label"_s;
    }
    result.selectedMarkerId = result.markers[0].id;
    result.shapes.selectedId = result.shapes.annotations[5].id;
    result.currentRect = QRectF(20, 70, 50, 50);
    result.mousePosition = QPointF(70, 120);
    result.shapes.draft = result.shapes.annotations[0];
    return result;
}

/// Updates a picture from the good scene to the bad one and back: the good one comes out again.
void expectHarmless(const OverlayScene& bad) {
    const OverlayScene good = scene();
    const QImage expected = pictureOf(good);
    QImage picture = expected;
    repaint(picture, bad, damage(good, bad));
    if (bad.shapes.size == good.shapes.size) {
        EXPECT_EQ(picture, pictureOf(bad));
    }
    repaint(picture, good, damage(bad, good));
    EXPECT_EQ(picture, expected);
}

} // namespace

TEST(OverlayBadInput, Markers) {
    for (const qreal number : badNumbers) {
        for (const QRectF& rect :
             {QRectF(number, 80, 60, 40), QRectF(40, number, 60, 40), QRectF(40, 80, number, 40),
              QRectF(40, 80, 60, number), QRectF(number, number, number, number), QRectF(40, 80, -60, -40)}) {
            for (const bool spotlight : {false, true}) {
                OverlayScene bad = scene();
                bad.modes.spotlight = spotlight;
                bad.markers[0].rect = rect;
                expectHarmless(bad);
            }
        }
    }
}

TEST(OverlayBadInput, Annotations) {
    for (const qreal number : badNumbers) {
        for (std::size_t i = 0; i < scene().shapes.annotations.size(); ++i) {
            OverlayScene bad = scene();
            bad.shapes.annotations[i].start.setX(number);
            expectHarmless(bad);
            bad.shapes.annotations[i].end = {number, number};
            expectHarmless(bad);
            bad = scene();
            bad.shapes.annotations[i].strokeWidth = number;
            bad.shapes.annotations[i].rotation = number;
            bad.shapes.selectedId = bad.shapes.annotations[i].id;
            expectHarmless(bad);
            bad = scene();
            bad.shapes.draft = bad.shapes.annotations[i];
            bad.shapes.draft->end.setY(number);
            expectHarmless(bad);
        }
    }
}

TEST(OverlayBadInput, PointerAndDraggedRegion) {
    for (const qreal number : badNumbers) {
        OverlayScene bad = scene();
        bad.mousePosition = QPointF(number, 70);
        expectHarmless(bad);
        bad.mousePosition = QPointF(70, number);
        expectHarmless(bad);
        bad = scene();
        bad.currentRect = QRectF(number, 70, 50, 50);
        expectHarmless(bad);
        bad.currentRect = QRectF(20, 70, 50, number);
        expectHarmless(bad);
        bad.currentRect = QRectF(number, number, number, number);
        expectHarmless(bad);
    }
    OverlayScene bad = scene();
    bad.currentRect = QRectF(70, 120, -50, -50);
    expectHarmless(bad);
    bad.currentRect = QRectF(70, 120, 0, 0);
    expectHarmless(bad);
}

TEST(OverlayBadInput, PlaceAndSizeOfTheView) {
    for (const qreal number : badNumbers) {
        OverlayScene bad = scene();
        bad.shapes.origin = {number, 0};
        expectHarmless(bad);
    }
    for (const QSizeF& size : {QSizeF(notANumber, 100), QSizeF(100, infinite), QSizeF(0, 100), QSizeF(-5, -5),
                               QSizeF(0.5, 0.5), QSizeF(1e300, 1e300)}) {
        OverlayScene bad = scene();
        bad.shapes.size = size;
        expectHarmless(bad);
    }
}

TEST(OverlayBadInput, LabelsAndTextsOfManyCharacters) {
    for (const QString& text : {u"wide "_s.repeated(2000), u"x\n"_s.repeated(5000), QString(10000, u'\u0301'),
                                QString(10000, u' ')}) {
        OverlayScene bad = scene();
        bad.markers[0].label = text;
        bad.shapes.annotations[0].label = text;
        bad.shapes.annotations[4].text = text;
        expectHarmless(bad);
    }
}

TEST(OverlayBadInput, TwoHundredMarkers) {
    OverlayScene many = emptyScene({800, 600});
    for (int i = 0; i < 200; ++i) {
        const int column = i % 20;
        const int row = i / 20;
        many.markers.push_back(markerAt(QRectF(20 + 37 * column, 70 + 50 * row, 30, 25),
                                        i % 2 == 0 ? QString() : QString(10000, u'w'), i + 1));
    }
    QImage picture = pictureOf(many);
    OverlayScene after = many;
    after.mousePosition = QPointF(400, 300);
    repaint(picture, after, damage(many, after));
    EXPECT_EQ(picture, pictureOf(after));

    // Finding out what has changed a hundred times takes less than laying out the labels ten times.
    const auto timeOf = [](const auto& work) {
        QElapsedTimer timer;
        timer.start();
        work();
        return timer.nsecsElapsed();
    };
    const qint64 layouts = timeOf([&many] {
        for (const Marker& marker : many.markers)
            EXPECT_FALSE(DrawnText(marker.label, 12, QFont::Normal, 1).size().isNull());
    });
    const qint64 moves = timeOf([&many, &after] {
        for (int i = 0; i < 100; ++i) {
            many = after;
            after.mousePosition = QPointF(i, i);
            EXPECT_FALSE(damage(many, after).isEmpty());
        }
    });
    EXPECT_LT(moves, 10 * layouts);
}

TEST(OverlayBadInput, NumbersAndColoursOfMarkers) {
    for (const int index : {0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        OverlayScene bad = scene();
        bad.markers[0].index = index;
        bad.markers[0].color = QColor();
        expectHarmless(bad);
    }
}

} // namespace orvane::test
