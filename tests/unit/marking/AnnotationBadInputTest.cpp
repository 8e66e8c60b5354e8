#include "OrvaneCore/marking/AnnotationRenderer.h"

#include "tests/unit/marking/Drawings.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

/// Counts what Qt complains of, for as long as it lives.
class QtMessages {
public:
    static inline int count = 0;

    QtMessages()
        : m_before(
              qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++count; })) {
        count = 0;
    }
    ~QtMessages() { qInstallMessageHandler(m_before); }
    QtMessages(const QtMessages&) = delete;
    QtMessages& operator=(const QtMessages&) = delete;

private:
    QtMessageHandler m_before;
};

class BadShape : public testing::TestWithParam<Kind> {
protected:
    static Annotation annotation(const QPointF& start, const QPointF& end) {
        Annotation result = shape(GetParam(), start, end);
        result.text = result.label = u"Words"_s;
        result.image = ground({8, 6}, amber);
        return result;
    }

    /// Draws all that can be drawn of it, and sees that the painter comes back as it was.
    static QImage allDrawn(const Annotation& annotation, const PointMap& map = {}, qreal scale = 1) {
        QImage picture = ground({120, 100});
        QPainter painter(&picture);
        painter.translate(1, 2);
        const PainterSettings before(painter);
        annotation_renderer::draw(painter, annotation, map, scale);
        annotation_renderer::drawSelectionHandles(painter, annotation, map, scale);
        EXPECT_EQ(PainterSettings(painter), before);
        painter.end();
        return picture;
    }
    static bool isBlank(const QImage& picture) { return inkBounds(picture).isEmpty(); }
};

} // namespace

TEST_P(BadShape, IsNotDrawnWhereAPointIsNotFinite) {
    for (const qreal bad : {notANumber, infinite, -infinite}) {
        EXPECT_TRUE(isBlank(allDrawn(annotation({bad, 40}, {80, 70}))));
        EXPECT_TRUE(isBlank(allDrawn(annotation({30, bad}, {80, 70}))));
        EXPECT_TRUE(isBlank(allDrawn(annotation({30, 40}, {bad, 70}))));
        EXPECT_TRUE(isBlank(allDrawn(annotation({30, 40}, {80, bad}))));
        EXPECT_TRUE(isBlank(allDrawn(annotation({bad, bad}, {bad, bad}))));
    }
    EXPECT_FALSE(isBlank(allDrawn(annotation({30, 40}, {80, 70}))));
}

TEST_P(BadShape, HasAThinStrokeWhereItsWidthIsNoNumber) {
    Annotation bad = annotation({30, 40}, {80, 70});
    bad.strokeWidth = 1;
    const QImage thin = allDrawn(bad);
    for (const qreal width : {notANumber, -infinite, -1e300, 0.0}) {
        bad.strokeWidth = width;
        EXPECT_EQ(allDrawn(bad), thin) << width;
    }
}

TEST_P(BadShape, MayHaveAnEndlessStroke) {
    Annotation bad = annotation({30, 40}, {80, 70});
    for (const qreal width : {std::numeric_limits<qreal>::max(), infinite}) {
        bad.strokeWidth = width;
        EXPECT_FALSE(isBlank(allDrawn(bad))) << width;
    }
}

TEST_P(BadShape, IsUprightWhereItsRotationIsNoNumber) {
    Annotation bad = annotation({30, 40}, {80, 70});
    const QImage upright = drawn(bad, 1);
    for (const qreal rotation : {notANumber, infinite, -infinite}) {
        bad.rotation = rotation;
        EXPECT_EQ(drawn(bad, 1), upright) << rotation;
        allDrawn(bad);
    }
}

TEST_P(BadShape, MayBeTurnedManyTimes) {
    Annotation bad = annotation({30, 40}, {80, 70});
    for (const qreal rotation : {1e9, 1e300, std::numeric_limits<qreal>::max()}) {
        bad.rotation = rotation;
        EXPECT_TRUE(isColor(allDrawn(bad).copy(1, 2, 100, 90), {29, 0}, white));
        EXPECT_FALSE(isBlank(drawn(bad, 1)));
    }
}

TEST_P(BadShape, MayHaveNoSizeOrOnlyOne) {
    for (const QPointF& end : {QPointF(30, 40), QPointF(80, 40), QPointF(30, 70)}) {
        const QImage picture = allDrawn(annotation({30, 40}, end));
        EXPECT_FALSE(isBlank(picture));
        // All of it is near to where it is.
        EXPECT_LT(inkBounds(picture).right(), end.x() + 60);
        EXPECT_LT(inkBounds(picture).bottom(), 70 + 25);
    }
}

TEST_P(BadShape, MayBeFarOutside) {
    for (const qreal far : {1e5, 1e9, 1e15, 1e300, std::numeric_limits<qreal>::max()}) {
        EXPECT_TRUE(isBlank(allDrawn(annotation({far, far}, {far, far})))) << far;
        EXPECT_TRUE(isBlank(allDrawn(annotation({-far, 40}, {-far / 2, 70})))) << far;
        EXPECT_TRUE(isBlank(allDrawn(annotation({30, far / 2}, {80, far})))) << far;
        EXPECT_TRUE(isBlank(allDrawn(annotation({-far, -far}, {-far, -far}), mapAt(1.5), 1.5))) << far;
    }
}

TEST_P(BadShape, MayReachFarOutside) {
    for (const qreal far : {1e5, 1e9, std::numeric_limits<qreal>::max()}) {
        const Annotation wide = annotation({-far, -far}, {far, far});
        const QImage picture = allDrawn(wide);
        switch (GetParam()) {
        case Kind::highlight:
            EXPECT_TRUE(isFilled(picture, picture.rect(), blended(black, 0.35, white))) << far;
            break;
        case Kind::image:
            EXPECT_TRUE(isFilled(picture, picture.rect(), amber)) << far;
            break;
        case Kind::arrow:
            // Along the diagonal.
            EXPECT_TRUE(isColor(picture, {51.5, 52.5}, black)) << far;
            EXPECT_TRUE(isColor(picture, {21.5, 82.5}, white)) << far;
            break;
        case Kind::box:
        case Kind::ellipse:
        case Kind::text:
            EXPECT_TRUE(isBlank(picture)) << far;
            break;
        }
    }
}

TEST(BadArrow, KeepsItsDirectionHoweverLong) {
    for (const qreal far : {1e4, 1e9, 1e12}) {
        const QImage picture = drawn(shape(Kind::arrow, {0, 0}, {far, far / 2}), 1);
        EXPECT_TRUE(isColor(picture, {180, 90}, black, 40)) << far;
        EXPECT_TRUE(isColor(picture, {120, 60}, black, 40)) << far;
        EXPECT_TRUE(isColor(picture, {120, 110}, white)) << far;
    }
}

TEST_P(BadShape, MayHaveOneSideOnThePicture) {
    for (const qreal far : {1e5, 1e9, 1e15, 1e300}) {
        const QImage picture = drawn(annotation({30, 40}, {far, 60}), 1);
        switch (GetParam()) {
        case Kind::box:
            EXPECT_TRUE(isColor(picture, {30, 50}, black)) << far;
            EXPECT_TRUE(isColor(picture, {190, 40}, black)) << far;
            EXPECT_TRUE(isColor(picture, {190, 60}, black)) << far;
            EXPECT_TRUE(isColor(picture, {190, 50}, white)) << far;
            break;
        case Kind::highlight:
            EXPECT_TRUE(isFilled(picture, QRect(30, 40, 170, 20), blended(black, 0.35, white))) << far;
            EXPECT_TRUE(isFilled(picture, QRect(0, 60, 200, 90), white)) << far;
            break;
        case Kind::arrow:
            EXPECT_TRUE(isColor(picture, {100, 40}, black, 40)) << far;
            break;
        case Kind::ellipse:
        case Kind::text:
        case Kind::image:
            break;
        }
        EXPECT_FALSE(isBlank(picture));
    }
}

TEST_P(BadShape, MayHaveNoColour) {
    Annotation bad = annotation({30, 40}, {80, 70});
    const QImage inBlack = drawn(bad, 1);
    bad.color = QColor();
    EXPECT_EQ(drawn(bad, 1), inBlack);
}

TEST_P(BadShape, MayHaveAMapThatOverflows) {
    const qreal far = std::numeric_limits<qreal>::max();
    const PointMap map{.origin = {-far, -far}, .scaleX = 2, .scaleY = 2};
    EXPECT_TRUE(isBlank(allDrawn(annotation({far / 2, far}, {far, far}), map, 2)));
    EXPECT_TRUE(isBlank(allDrawn(annotation({3, 4}, {30, 40}), map, 2)));
}

TEST_P(BadShape, MayStandOnAPictureWithoutPixels) {
    QImage picture(1, 1, QImage::Format_RGB32);
    QPainter painter(&picture);
    annotation_renderer::draw(painter, annotation({-30, -40}, {80, 70}), mapAt(0.001), 0.001);
    const PainterSettings before(painter);
    annotation_renderer::draw(painter, annotation({30, 40}, {80, 70}), mapAt(1), 1);
    EXPECT_EQ(PainterSettings(painter), before);
}

INSTANTIATE_TEST_SUITE_P(AnnotationRenderer, BadShape, testing::ValuesIn(allKinds),
                         [](const auto& kind) { return std::string(rawValue(kind.param).data()); });

TEST(AnnotationBadInput, HandleDotsAreNotDrawnWhereAPointIsNotFinite) {
    QImage picture = ground({100, 100});
    QPainter painter(&picture);
    const PainterSettings before(painter);
    const QtMessages messages;
    for (const qreal bad : {notANumber, infinite, -infinite})
        annotation_renderer::drawHandleDots(painter, {{bad, 30}, {30, bad}, {bad, bad}}, 1);
    annotation_renderer::drawHandleDots(painter, {{1e300, 30}, {-1e9, 1e9}}, 1);
    EXPECT_EQ(PainterSettings(painter), before);
    EXPECT_TRUE(inkBounds(picture).isEmpty());
    annotation_renderer::drawHandleDots(painter, {{notANumber, 30}, {50, 50}}, 1);
    EXPECT_TRUE(isColor(picture, {50, 50}, white));
    EXPECT_FALSE(inkBounds(picture).isEmpty()) << "the others are";
    EXPECT_EQ(QtMessages::count, 0) << "Qt was given something that it cannot draw";
}

TEST(AnnotationBadInput, HandlesOfAPictureWithoutARotationAreNotDrawnInTheWrongPlace) {
    Annotation image = shape(Kind::image, {30, 50}, {80, 90});
    for (const qreal rotation : {notANumber, infinite}) {
        image.rotation = rotation;
        QImage picture = ground({120, 120});
        QPainter painter(&picture);
        const QtMessages messages;
        annotation_renderer::drawSelectionHandles(painter, image, mapAt(1), 1);
        EXPECT_TRUE(inkBounds(picture).isEmpty());
        EXPECT_EQ(QtMessages::count, 0);
    }
}

TEST(AnnotationBadInput, ThousandsOfShapesOnASmallPicture) {
    constexpr int count = 5000;
    QImage picture = ground({200, 150});
    QPainter painter(&picture);
    const PainterSettings before(painter);
    for (int i = 0; i < count; ++i) {
        const QPointF start((i * 37) % 220 - 10, (i * 53) % 170 - 10);
        Annotation annotation = shape(allKinds[static_cast<std::size_t>(i) % allKinds.size()], start,
                                      start + QPointF(i % 60, i % 45));
        annotation.text = annotation.label = u"n%1"_s.arg(i % 10);
        annotation.color = QColor::fromHsv(i % 360, 200, 200);
        annotation_renderer::draw(painter, annotation, mapAt(1), 1);
    }
    annotation_renderer::draw(painter, shape(Kind::box, {90, 70}, {110, 90}, 5), mapAt(1), 1);
    EXPECT_EQ(PainterSettings(painter), before);
    painter.end();
    EXPECT_TRUE(isColor(picture, {90, 80}, black));
}

} // namespace orvane::test
