#include "OrvaneCore/drawing/PointMap.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/editing/AnnotationBounds.h"
#include "OrvaneCore/marking/editing/AnnotationDamage.h"
#include "OrvaneCore/marking/editing/AnnotationScenePainter.h"
#include "tests/support/DrawnPixels.h"
#include "tests/unit/marking/ExactGeometry.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QRegion>

#include <gtest/gtest.h>

#include <array>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

using Kind = Annotation::Kind;

constexpr QRgb red = 0xFFEF4444;
constexpr QRgb blue = 0xFF3B82F6;

AnnotationScene emptyScene(const QSizeF& size = {300, 200}) {
    AnnotationScene scene;
    scene.size = size;
    return scene;
}

Annotation shapeAt(Kind kind, const QPointF& start, const QPointF& end, QRgb color = red) {
    return {.kind = kind, .start = start, .end = end, .color = QColor(color), .strokeWidth = 3};
}

QRegion wholeOf(const AnnotationScene& scene) {
    return QRectF({0, 0}, scene.size).toAlignedRect();
}

QImage pictureOf(const AnnotationScene& scene, const QRegion& exposed) {
    QImage picture = ground(scene.size.toSize());
    QPainter painter(&picture);
    paintAnnotations(painter, scene, exposed);
    return picture;
}

QImage pictureOf(const AnnotationScene& scene) {
    return pictureOf(scene, wholeOf(scene));
}

/// Brings the picture of another scene up to date within a region.
void repaint(QImage& picture, const AnnotationScene& scene, const QRegion& region) {
    QPainter painter(&picture);
    painter.setClipRegion(region);
    painter.fillRect(picture.rect(), QColor(white));
    paintAnnotations(painter, scene, region);
}

qint64 damagedArea(const AnnotationScene& before, const AnnotationScene& after) {
    const QRegion region = damage(before, after);
    EXPECT_FALSE(region.isEmpty());
    EXPECT_TRUE((region - wholeOf(after)).isEmpty());
    qint64 area = 0;
    for (const QRect& rect : region)
        area += qint64(rect.width()) * rect.height();
    return area;
}

/// On a large display.
AnnotationScene largeScene() {
    AnnotationScene scene = emptyScene({3840, 2160});
    scene.annotations = {shapeAt(Kind::arrow, {300, 400}, {1900, 1500}),
                         shapeAt(Kind::ellipse, {2000, 400}, {3000, 1500}),
                         shapeAt(Kind::highlight, {2500, 1600}, {3200, 2000})};
    return scene;
}

} // namespace

TEST(AnnotationScene, IsPaintedInItsOrder) {
    AnnotationScene scene = emptyScene();
    const QPointF place(150, 100);
    const auto at = [&] { return pictureOf(scene).pixel(pixelAt(place)); };
    EXPECT_EQ(at(), white);
    scene.annotations = {shapeAt(Kind::highlight, {100, 50}, {200, 150}, red)};
    QRgb expected = blended(red, 0.35, white);
    EXPECT_LE(colorDistance(at(), expected), 1);
    scene.annotations.push_back(shapeAt(Kind::highlight, {100, 50}, {200, 150}, blue));
    expected = blended(blue, 0.35, expected);
    EXPECT_LE(colorDistance(at(), expected), 2);
    scene.draft = shapeAt(Kind::highlight, {100, 50}, {200, 150}, black);
    expected = blended(black, 0.35, expected);
    EXPECT_LE(colorDistance(at(), expected), 2);
    scene.annotations.push_back(shapeAt(Kind::box, place, {250, 180}));
    EXPECT_LE(colorDistance(at(), blended(black, 0.35, red)), 2);
    scene.selectedId = scene.annotations.back().id;
    EXPECT_EQ(at(), white);
}

TEST(AnnotationScene, IsPaintedWhereItsGlobalPlaceIs) {
    AnnotationScene scene = emptyScene();
    scene.origin = {-1000, 500};
    scene.annotations = {shapeAt(Kind::highlight, {-950, 550}, {-900, 600})};
    EXPECT_EQ(inkBounds(pictureOf(scene)), QRect(50, 50, 50, 50));
}

TEST(AnnotationScene, OnlyWhatIsExposedIsPainted) {
    AnnotationScene scene = emptyScene();
    scene.annotations = {shapeAt(Kind::highlight, {20, 20}, {60, 60}),
                         shapeAt(Kind::highlight, {200, 100}, {240, 140})};
    scene.draft = shapeAt(Kind::highlight, {20, 150}, {60, 190});
    scene.selectedId = scene.annotations[1].id;
    EXPECT_EQ(inkBounds(pictureOf(scene, QRect(30, 30, 5, 5))), QRect(20, 20, 40, 40));
    EXPECT_TRUE(inkBounds(pictureOf(scene, QRect(100, 30, 5, 5))).isEmpty());
    EXPECT_EQ(inkBounds(pictureOf(scene, QRect(30, 170, 5, 5))), QRect(20, 150, 40, 40));
}

TEST(AnnotationScene, SelectedIsTheFirstWithThatId) {
    AnnotationScene scene = emptyScene();
    EXPECT_EQ(selectedAnnotation(scene), nullptr);
    scene.annotations = {shapeAt(Kind::box, {20, 20}, {60, 60}), shapeAt(Kind::box, {1, 2}, {3, 4})};
    EXPECT_EQ(selectedAnnotation(scene), nullptr);
    scene.selectedId = scene.annotations[1].id;
    EXPECT_EQ(selectedAnnotation(scene), &scene.annotations[1]);
    scene.annotations[0].id = scene.annotations[1].id;
    EXPECT_EQ(selectedAnnotation(scene), &scene.annotations[0]);
    scene.selectedId = QUuid::createUuid();
    EXPECT_EQ(selectedAnnotation(scene), nullptr);
    EXPECT_TRUE(AnnotationBounds(scene).selection().parts.empty());
}

TEST(AnnotationScene, IsNotShownWhereItsPlaceIsNotFinite) {
    AnnotationScene scene = emptyScene();
    scene.annotations = {shapeAt(Kind::highlight, {20, 20}, {60, 60})};
    scene.selectedId = scene.annotations[0].id;
    scene.draft = scene.annotations[0];
    for (const qreal bad : {notANumber, infinite}) {
        scene.origin = {bad, 0};
        EXPECT_TRUE(inkBounds(pictureOf(scene)).isEmpty());
    }
}

TEST(AnnotationScene, IsOnTheFirstDisplayThatHoldsAPoint) {
    AnnotationScene scene = emptyScene();
    scene.origin = {1000, 500};
    scene.displays = {{0, 0, 1000, 800}, {1000, 500, 300, 200}, {1200, 600, 400, 400}};
    EXPECT_EQ(displayInView(scene, {1010, 510}), QRectF(0, 0, 300, 200));
    EXPECT_EQ(displayInView(scene, {1299, 699}), QRectF(0, 0, 300, 200));
    EXPECT_EQ(displayInView(scene, {1300, 699}), QRectF(200, 100, 400, 400));
    EXPECT_EQ(displayInView(scene, {999, 510}), QRectF(-1000, -500, 1000, 800));
    EXPECT_EQ(displayInView(scene, {1000, 900}), std::nullopt);
    EXPECT_EQ(displayInView(scene, {notANumber, 510}), std::nullopt);
}

TEST(AnnotationScene, IsOnItsViewWhereNoDisplaysAreKnown) {
    AnnotationScene scene = emptyScene();
    scene.origin = {1000, 500};
    EXPECT_EQ(displayInView(scene, {1000, 500}), QRectF(0, 0, 300, 200));
    EXPECT_EQ(displayInView(scene, {1300, 510}), std::nullopt);
    EXPECT_EQ(displayInView(scene, {1010, 499}), std::nullopt);
    scene.size = {infinite, 200};
    EXPECT_EQ(displayInView(scene, {1010, 510}), std::nullopt);
}

TEST(AnnotationScene, KeepsALabelOnTheDisplayOfItsShape) {
    AnnotationScene scene = emptyScene({600, 200});
    Annotation highlight = shapeAt(Kind::highlight, {280, 100}, {290, 110});
    highlight.label = u"Words that need some room"_s;
    scene.annotations = {highlight};
    EXPECT_GT(inkBounds(pictureOf(scene)).right(), 310);
    scene.displays = {{0, 0, 300, 200}, {300, 0, 300, 200}};
    const QRect ink = inkBounds(pictureOf(scene));
    EXPECT_LE(ink.right(), 299);
    EXPECT_GE(ink.right(), 298);
}

TEST(AnnotationScene, LeavesNoInkWhereNobodyWipesItOff) {
    AnnotationScene scene = emptyScene();
    // Black on white.
    Annotation text = shapeAt(Kind::text, {100, 150}, {100, 150}, white);
    text.text = u'o' + QString(30, QChar(0x0301));
    scene.annotations = {text};
    const QRect place = AnnotationBounds(scene).annotation(text).boundingRect();
    QImage unbounded = ground(scene.size.toSize());
    QPainter painter(&unbounded);
    annotation_renderer::draw(painter, text, PointMap(), 1);
    painter.end();
    ASSERT_FALSE(place.contains(inkBounds(unbounded)));
    EXPECT_TRUE(place.contains(inkBounds(pictureOf(scene))));
    EXPECT_FALSE(inkBounds(pictureOf(scene)).isEmpty());
}

TEST(AnnotationScene, LeavesThePainterAsItWas) {
    AnnotationScene scene = emptyScene();
    scene.annotations = {shapeAt(Kind::arrow, {20, 20}, {60, 60})};
    scene.selectedId = scene.annotations[0].id;
    QImage picture = ground({300, 200});
    QPainter painter(&picture);
    setUnusual(painter);
    const PainterSettings before(painter);
    paintAnnotations(painter, scene, wholeOf(scene));
    EXPECT_EQ(PainterSettings(painter), before);
    EXPECT_FALSE(inkBounds(picture).isEmpty());
}

TEST(AnnotationDamage, IsNoneBetweenEqualScenesAndAllWhereTheViewIsAnother) {
    AnnotationScene before = largeScene();
    before.annotations[0].strokeWidth = notANumber;
    before.draft = before.annotations[1];
    EXPECT_TRUE(damage(before, AnnotationScene(before)).isEmpty());
    AnnotationScene after = before;
    after.origin = {0.25, 0};
    EXPECT_EQ(damage(before, after), wholeOf(after));
    after = before;
    after.size = {1000, 800.5};
    EXPECT_EQ(damage(before, after), QRegion(0, 0, 1000, 801));
    after = before;
    after.displays = {{0, 0, 1920, 1080}};
    EXPECT_EQ(damage(before, after), wholeOf(after));
}

TEST(AnnotationDamage, OfOneOfManyIsThatOne) {
    const AnnotationScene before = largeScene();
    AnnotationScene after = before;
    after.annotations.erase(after.annotations.begin());
    // A line from corner to corner is far less than the rectangle around it.
    const qint64 length = 1942;
    EXPECT_LE(damagedArea(before, after), length * 60);
    EXPECT_FALSE(damage(before, after).contains(QPoint(2600, 1700)));
    after = before;
    after.annotations[1] = after.annotations[1].moved({5, 5});
    EXPECT_LE(damagedArea(before, after), 2 * 1000 * 1100 / 2);
    EXPECT_FALSE(damage(before, after).contains(QPoint(2500, 950)));
    after = before;
    after.annotations[2] = after.annotations[2].moved({5, 5});
    EXPECT_LE(damagedArea(before, after), 2 * (700 + 400) * 2 * 10);
    after.annotations[2].color = QColor(blue);
    EXPECT_TRUE(damage(before, after).contains(QPoint(2800, 1800)));
}

TEST(AnnotationDamage, OfASelectionIsItsHandles) {
    const AnnotationScene before = largeScene();
    AnnotationScene after = before;
    after.selectedId = after.annotations[0].id;
    EXPECT_LE(damagedArea(before, after), 2 * 17 * 17);
    EXPECT_LE(damagedArea(after, before), 2 * 17 * 17);
    EXPECT_TRUE(damage(before, after).contains(QPoint(300, 400)));
}

TEST(AnnotationDamage, OfADraftIsWhatItWasAndIs) {
    AnnotationScene before = largeScene();
    AnnotationScene after = before;
    after.draft = shapeAt(Kind::box, {100, 100}, {700, 500});
    EXPECT_LE(damagedArea(before, after), 2 * (600 + 400) * 6 + 100);
    before.draft = after.draft;
    EXPECT_TRUE(damage(before, after).isEmpty());
    after.draft->end = {710, 500};
    EXPECT_TRUE(damage(before, after).contains(QPoint(710, 300)));
    EXPECT_FALSE(damage(before, after).contains(QPoint(400, 300)));
}

TEST(AnnotationDamage, IsAllThatDiffers) {
    QRandomGenerator random(11);
    const auto point = [&random] { return QPointF(random.bounded(340) - 20, random.bounded(240) - 20); };
    const auto shape = [&] {
        // But pictures, which may differ by a grey level.
        Annotation annotation = shapeAt(Kind(random.bounded(5)), point(), point(), blue);
        const std::array texts{QString(), u"Note"_s, u"gj\nÅ"_s, u"a\u0301\u0302\u0303\u0304\u0305"_s};
        annotation.text = texts[static_cast<std::size_t>(random.bounded(4))];
        annotation.label = texts[static_cast<std::size_t>(random.bounded(4))];
        annotation.strokeWidth = random.bounded(12);
        return annotation;
    };
    AnnotationScene scene = emptyScene();
    QImage picture = pictureOf(scene);
    int changes = 0;
    for (int i = 0; i < 150; ++i) {
        const AnnotationScene before = scene;
        switch (random.bounded(5)) {
        case 0:
            scene.annotations.push_back(shape());
            break;
        case 1:
            if (scene.annotations.size() > 4)
                scene.annotations.erase(scene.annotations.begin() + random.bounded(4));
            break;
        case 2:
            scene.draft = shape();
            break;
        case 3:
            scene.draft.reset();
            if (!scene.annotations.empty())
                scene.annotations.front() = scene.annotations.front().moved({7, -3});
            break;
        default:
            scene.selectedId.reset();
            if (!scene.annotations.empty())
                scene.selectedId = scene.annotations.back().id;
            break;
        }
        const QImage stale = picture;
        repaint(picture, scene, damage(before, scene));
        ASSERT_EQ(picture, pictureOf(scene)) << i;
        changes += picture != stale ? 1 : 0;
    }
    EXPECT_GT(changes, 60);
}

} // namespace orvane::test
