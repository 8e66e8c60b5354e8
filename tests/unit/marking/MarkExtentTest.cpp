#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/MarkerPainter.h"
#include "OrvaneCore/marking/Palettes.h"
#include "tests/unit/marking/Drawings.h"
#include "tests/unit/marking/MarkExtents.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <array>
#include <numbers>
#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

using marker_painter::Spotlight;

constexpr QSize pictureSize(260, 200);
/// Marks that are stacked on their letters and leave their line by far.
const QString stackedMarks = u"lgo\u0323\u0324\u0325\u0300\u0301\u0302\u0303\u0304"_s;

class ExtentOfMarks : public AtScale {
protected:
    static QImage paper() { return ground((QSizeF(pictureSize) * scale()).toSize()); }
    static PointMap map() { return mapAt(scale()); }
    static QRectF visible() { return paper().rect(); }

    static Extent extentOf(const Annotation& annotation) {
        return annotation_renderer::extent(annotation, map(), scale(), visible());
    }
    static QImage pictureOf(const Annotation& annotation) {
        return drawn(annotation, paper(), map(), scale());
    }
    static QImage pictureOfSelected(const Annotation& annotation) {
        QImage picture = paper();
        QPainter painter(&picture);
        annotation_renderer::drawSelectionHandles(painter, annotation, map(), scale());
        return picture;
    }

    static Extent extentOf(const Marker& marker, const MarkerStyle& style, Spotlight spotlight) {
        return marker_painter::extent(marker, map()(marker.rect), scale(), style, spotlight);
    }
    static QImage pictureOf(const Marker& marker, const MarkerStyle& style, Spotlight spotlight) {
        QImage picture = paper();
        QPainter painter(&picture);
        marker_painter::draw(painter, marker, map()(marker.rect), scale(), style, spotlight);
        return picture;
    }
};

/// In the middle of the picture, with room around it.
Annotation shapeInside(Kind kind, qreal strokeWidth = 3) {
    Annotation annotation = shape(kind, {90.25, 80.5}, {170.75, 130}, strokeWidth);
    if (kind == Kind::text)
        annotation.text = u"Some text"_s;
    if (kind == Kind::image)
        annotation.image = ground({40, 30}, blue);
    return annotation;
}

/// The same dice at every run.
class RandomMarks {
public:
    explicit RandomMarks(quint32 seed)
        : m_random(seed) {}

    Annotation annotation() {
        Annotation annotation =
            shape(Kind(m_random.bounded(6)), point(), point(), m_random.bounded(4) + m_random.bounded(9.0));
        annotation.text = text();
        annotation.label = text();
        annotation.rotation = m_random.bounded(2) == 0 ? 0 : m_random.bounded(6.0);
        if (m_random.bounded(3) != 0)
            annotation.image = ground({40, 30}, amber);
        return annotation;
    }

    Marker marker() {
        return {.rect = QRectF(point(), point()).normalized(),
                .label = text(),
                .color = marker_palette::border(m_random.bounded(8)),
                .index = m_random.bounded(4) == 0 ? m_random.bounded(100'000) : m_random.bounded(20)};
    }

private:
    /// Sometimes outside the picture.
    QPointF point() { return {m_random.bounded(300.0) - 20, m_random.bounded(240.0) - 20}; }
    QString text() {
        const std::array texts{QString(), u"Note"_s, u"gjÅ"_s, u"Two\nlines"_s, u"日本 שלום"_s};
        return texts[static_cast<std::size_t>(m_random.bounded(5))];
    }

    QRandomGenerator m_random;
};

} // namespace

TEST_P(ExtentOfMarks, HoldsShapesOfAllKinds) {
    for (const Kind kind : allKinds) {
        for (const qreal width : {0.0, 3.0, 11.0}) {
            Annotation annotation = shapeInside(kind, width);
            const auto where = [&] { return testing::Message() << rawValue(kind).data() << " " << width; };
            EXPECT_TRUE(isWithin(pictureOf(annotation), extentOf(annotation))) << where();
            // Of the pixel that antialiasing may add, and of a curve in pieces.
            const qreal slack = kind == Kind::text ? 15 * scale() : 1.7;
            EXPECT_TRUE(isTight(pictureOf(annotation), extentOf(annotation), slack)) << where();
            std::swap(annotation.start, annotation.end);
            EXPECT_TRUE(isWithin(pictureOf(annotation), extentOf(annotation))) << where();
            annotation.label = u"A label"_s;
            EXPECT_TRUE(isWithin(pictureOf(annotation), extentOf(annotation))) << where();
            EXPECT_TRUE(isTight(pictureOf(annotation), extentOf(annotation), 16 * scale() + 1)) << where();
        }
    }
}

TEST_P(ExtentOfMarks, HoldsPicturesThatAreTurnedOrMissing) {
    Annotation annotation = shapeInside(Kind::image);
    for (const qreal angle : {0.3, std::numbers::pi / 2, 4.0, notANumber}) {
        annotation.rotation = angle;
        EXPECT_TRUE(isWithin(pictureOf(annotation), extentOf(annotation))) << angle;
        EXPECT_TRUE(isTight(pictureOf(annotation), extentOf(annotation), 2)) << angle;
    }
    annotation.image = {};
    EXPECT_TRUE(isWithin(pictureOf(annotation), extentOf(annotation)));
    EXPECT_TRUE(isTight(pictureOf(annotation), extentOf(annotation), 1));
}

TEST_P(ExtentOfMarks, LeavesOutTheInsideOfOutlines) {
    for (const Kind kind : {Kind::box, Kind::ellipse}) {
        const QRegion pixels = pixelsOf(extentOf(shapeInside(kind)));
        EXPECT_FALSE(pixels.contains((QPointF(130, 105) * scale()).toPoint()));
        EXPECT_EQ(pixels.contains((QPointF(92, 82) * scale()).toPoint()), kind == Kind::box);
    }
    // An arrow is far from the corners of the rectangle around it.
    const QRegion arrow = pixelsOf(extentOf(shape(Kind::arrow, {10, 10}, {250, 190})));
    EXPECT_FALSE(arrow.contains((QPointF(240, 20) * scale()).toPoint()));
    EXPECT_TRUE(arrow.contains((QPointF(130, 100) * scale()).toPoint()));
}

TEST_P(ExtentOfMarks, HasAPlaneForHighlights) {
    const Annotation highlight = shapeInside(Kind::highlight);
    const Extent extent = extentOf(highlight);
    ASSERT_TRUE(extent.plane);
    EXPECT_EQ(extent.plane->outer, map()(highlight.boundingRect()));
    EXPECT_EQ(extent.plane->inner, extent.plane->outer);
    EXPECT_EQ(extent.plane->paint, highlight.color);
    EXPECT_TRUE(extent.parts.empty());
    for (const Kind kind : {Kind::arrow, Kind::box, Kind::ellipse, Kind::text, Kind::image})
        EXPECT_FALSE(extentOf(shapeInside(kind)).plane);
}

TEST_P(ExtentOfMarks, HoldsTheHandlesOfSelectedShapes) {
    for (const Kind kind : allKinds) {
        for (const qreal angle : {0.0, 0.7, notANumber}) {
            Annotation annotation = shapeInside(kind);
            annotation.rotation = angle;
            const Extent extent = annotation_renderer::selectionExtent(annotation, map(), scale());
            const QImage picture = pictureOfSelected(annotation);
            EXPECT_TRUE(isWithin(picture, extent)) << rawValue(kind).data() << " " << angle;
            if (extent.parts.empty()) {
                EXPECT_TRUE(inkBounds(picture).isEmpty());
            } else {
                EXPECT_TRUE(isTight(picture, extent, 1)) << rawValue(kind).data() << " " << angle;
            }
        }
    }
}

TEST_P(ExtentOfMarks, HoldsHandleDots) {
    const std::vector<QPointF> points{QPointF(40, 50) * scale(), QPointF(100.3, 70.6) * scale(),
                                      QPointF(notANumber, 1)};
    QImage picture = paper();
    QPainter painter(&picture);
    annotation_renderer::drawHandleDots(painter, points, scale());
    painter.end();
    const Extent extent = annotation_renderer::handleDotsExtent(points, scale());
    EXPECT_EQ(extent.parts.size(), 2U);
    EXPECT_TRUE(isWithin(picture, extent));
    EXPECT_TRUE(isTight(picture, extent, 1));
}

TEST_P(ExtentOfMarks, HoldsMarkers) {
    for (const MarkerStyle& style : {MarkerStyle::onImage, MarkerStyle::onOverlay}) {
        for (const Spotlight spotlight : {Spotlight::off, Spotlight::on}) {
            for (const QString& label : {QString(), u"Note"_s, u"Two\nlines, gj"_s}) {
                for (const int index : {1, 88}) {
                    const Marker marker{.rect = {80.5, 60.25, 90, 50},
                                        .label = label,
                                        .color = marker_palette::border(index),
                                        .index = index};
                    const QImage picture = pictureOf(marker, style, spotlight);
                    const Extent extent = extentOf(marker, style, spotlight);
                    EXPECT_TRUE(isWithin(picture, extent)) << index << label.toStdString();
                    // The shadow is not seen as far as it goes.
                    EXPECT_TRUE(isTight(picture, extent, label.isEmpty() ? 8 : 15 * scale()))
                        << index << label.toStdString();
                }
            }
        }
    }
}

TEST_P(ExtentOfMarks, HasAPlaneForRegionsAndPaintsItUnlessInTheSpotlight) {
    const Marker marker{.rect = {80, 60, 90, 50}, .color = QColor(blue)};
    const Extent plain = extentOf(marker, MarkerStyle::onOverlay, Spotlight::off);
    ASSERT_TRUE(plain.plane);
    EXPECT_EQ(plain.plane->paint, marker.color);
    const qreal s = scale();
    EXPECT_TRUE(isRect(plain.plane->outer,
                       map()(marker.rect).adjusted(-1.25 * s, -1.25 * s, 1.25 * s, 1.25 * s), 1e-9));
    EXPECT_TRUE(map()(marker.rect).adjusted(3 * s, 3 * s, -3 * s, -3 * s).contains(QPointF(120, 80) * s));
    EXPECT_TRUE(plain.plane->inner.contains(map()(marker.rect).adjusted(3 * s, 3 * s, -3 * s, -3 * s)));
    const Extent lit = extentOf(marker, MarkerStyle::onOverlay, Spotlight::on);
    ASSERT_TRUE(lit.plane);
    EXPECT_FALSE(lit.plane->paint);
}

TEST_P(ExtentOfMarks, HoldsAnyMarks) {
    RandomMarks marks(7);
    for (int i = 0; i < 60; ++i) {
        const Annotation annotation = marks.annotation();
        EXPECT_TRUE(isWithin(pictureOf(annotation), extentOf(annotation)))
            << i << " " << rawValue(annotation.kind).data();
        EXPECT_TRUE(isWithin(pictureOfSelected(annotation),
                             annotation_renderer::selectionExtent(annotation, map(), scale())))
            << i << " " << rawValue(annotation.kind).data();
    }
    for (int i = 0; i < 40; ++i) {
        const Marker marker = marks.marker();
        const Spotlight spotlight = i % 2 == 0 ? Spotlight::on : Spotlight::off;
        const MarkerStyle& style = i % 3 == 0 ? MarkerStyle::onImage : MarkerStyle::onOverlay;
        EXPECT_TRUE(isWithin(pictureOf(marker, style, spotlight), extentOf(marker, style, spotlight)))
            << i << ": " << marker.rect.x() << "," << marker.rect.y() << " " << marker.rect.width() << "x"
            << marker.rect.height();
    }
}

TEST_P(ExtentOfMarks, HoldsWhatIsKeptOnADisplay) {
    RandomMarks marks(7);
    const QRectF display = map()(QRectF(20, 15, 200, 150));
    for (int i = 0; i < 150; ++i) {
        Marker marker = marks.marker();
        Annotation annotation = marks.annotation();
        if (i % 3 == 0) {
            marker.label = u"A long label that is wrapped. "_s.repeated(1 + i / 10);
            annotation.label = marker.label;
        }
        const QRectF region = map()(marker.rect);
        QImage picture = paper();
        QPainter painter(&picture);
        marker_painter::draw(painter, marker, region, scale(), MarkerStyle::onOverlay, Spotlight::off,
                             display);
        painter.end();
        EXPECT_TRUE(isWithin(picture, marker_painter::extent(marker, region, scale(), MarkerStyle::onOverlay,
                                                             Spotlight::off, display)))
            << i;
        picture = paper();
        painter.begin(&picture);
        annotation_renderer::draw(painter, annotation, map(), scale(), display);
        painter.end();
        EXPECT_TRUE(
            isWithin(picture, annotation_renderer::extent(annotation, map(), scale(), visible(), display)))
            << i;
    }
}

TEST_P(ExtentOfMarks, HoldsWhatIsFarLargerThanThePicture) {
    for (const Kind kind : allKinds) {
        for (const qreal far : {3e3, 1e9, 1e300}) {
            for (const QPointF& end : {QPointF(far, 130), QPointF(far, far), QPointF(-far, 0.5 * far)}) {
                Annotation annotation = shapeInside(kind);
                annotation.end = end;
                EXPECT_TRUE(isWithin(pictureOf(annotation), extentOf(annotation)))
                    << rawValue(kind).data() << " to " << end.x() << "," << end.y();
                std::swap(annotation.start, annotation.end);
                EXPECT_TRUE(isWithin(pictureOf(annotation), extentOf(annotation)))
                    << rawValue(kind).data() << " from " << end.x() << "," << end.y();
            }
        }
    }
}

TEST_P(ExtentOfMarks, IsNowhereForWhatIsNotDrawn) {
    const auto isNowhere = [](const Extent& extent) { return extent.parts.empty() && !extent.plane; };
    for (const Kind kind : allKinds) {
        Annotation annotation = shapeInside(kind);
        annotation.label = u"label"_s;
        annotation.end.setX(notANumber);
        EXPECT_TRUE(isNowhere(extentOf(annotation)));
        EXPECT_TRUE(isNowhere(annotation_renderer::selectionExtent(annotation, map(), scale())));
    }
    Annotation text = shapeInside(Kind::text);
    text.text.clear();
    text.label = u"label"_s;
    EXPECT_TRUE(isNowhere(extentOf(text)));
    Annotation flat = shapeInside(Kind::image);
    flat.end.setY(flat.start.y());
    flat.label = u"label"_s;
    EXPECT_TRUE(isNowhere(extentOf(flat)));
    EXPECT_TRUE(isNowhere(extentOf(shape(Kind::arrow, {1e5, 1e5}, {2e5, 1e5}))));
    const Marker marker{.rect = {infinite, 0, 10, 10}};
    EXPECT_TRUE(isNowhere(extentOf(marker, MarkerStyle::onImage, Spotlight::off)));
}

TEST_P(ExtentOfMarks, SaysWhereTextMayGoAnywhere) {
    Annotation annotation = shapeInside(Kind::text);
    EXPECT_FALSE(extentOf(annotation).overflows);
    annotation.text = stackedMarks;
    EXPECT_TRUE(extentOf(annotation).overflows);
    annotation = shapeInside(Kind::box);
    annotation.text = stackedMarks;
    EXPECT_FALSE(extentOf(annotation).overflows);
    annotation.label = stackedMarks;
    EXPECT_TRUE(extentOf(annotation).overflows);
    Marker marker{.rect = {80, 60, 90, 50}, .label = u"Note"_s};
    EXPECT_FALSE(extentOf(marker, MarkerStyle::onOverlay, Spotlight::off).overflows);
    marker.label = stackedMarks;
    EXPECT_TRUE(extentOf(marker, MarkerStyle::onOverlay, Spotlight::off).overflows);
}

INSTANTIATE_TEST_SUITE_P(MarkExtent, ExtentOfMarks, testing::ValuesIn(displayScales), nameOfScale);

} // namespace orvane::test
