#include "OrvaneCore/marking/Annotation.h"

#include "tests/unit/marking/ExactGeometry.h"

#include <array>
#include <functional>

namespace orvane {

namespace {

using Handle = Annotation::Handle;
using Kind = Annotation::Kind;
using Role = Annotation::Role;
using test::areHandles;
using test::infinite;
using test::isPoint;
using test::isRect;
using test::notANumber;

constexpr std::array allKinds{Kind::arrow,     Kind::box,  Kind::ellipse,
                              Kind::highlight, Kind::text, Kind::image};
constexpr std::array kindsOfRectangles{Kind::box, Kind::ellipse, Kind::highlight, Kind::image};
constexpr qreal pi = 3.14159265358979323846;

/// Between (100, 200) and (160, 240), unless told otherwise.
Annotation shape(Kind kind, const QPointF& start = {100, 200}, const QPointF& end = {160, 240}) {
    Annotation annotation;
    annotation.kind = kind;
    annotation.start = start;
    annotation.end = end;
    return annotation;
}

bool hits(Kind kind, const QPointF& point, qreal tolerance = 8, const QSizeF& textSize = {0, 0}) {
    return shape(kind).hitTest(point, tolerance, textSize);
}

} // namespace

TEST(Annotation, StartsAsTheHumansArrowOfNoRegion) {
    const Annotation annotation;
    EXPECT_FALSE(annotation.id.isNull());
    EXPECT_NE(annotation.id, Annotation().id);
    EXPECT_EQ(annotation.role, Role::human);
    EXPECT_EQ(annotation.rotation, 0);
    EXPECT_FALSE(annotation.removed);
    EXPECT_FALSE(annotation.regionIndex);
    EXPECT_FALSE(annotation.displayId);
}

TEST(Annotation, KindsHaveWords) {
    constexpr std::array words{"arrow", "box", "ellipse", "highlight", "text", "image"};
    for (std::size_t i = 0; i < allKinds.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(allKinds[i]), i);
        EXPECT_EQ(rawValue(allKinds[i]), QLatin1String(words[i]));
        EXPECT_EQ(annotationKind(QString::fromLatin1(words[i])), allKinds[i]);
    }
    for (const char* other : {"", "Arrow", "arrow ", "select", "region", "human"})
        EXPECT_EQ(annotationKind(QString::fromLatin1(other)), std::nullopt) << other;
}

TEST(Annotation, RolesHaveWords) {
    constexpr std::array roles{Role::human, Role::agent, Role::review};
    constexpr std::array words{"human", "agent", "review"};
    for (std::size_t i = 0; i < roles.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(roles[i]), i);
        EXPECT_EQ(rawValue(roles[i]), QLatin1String(words[i]));
        EXPECT_EQ(annotationRole(QString::fromLatin1(words[i])), roles[i]);
    }
    for (const char* other : {"", "Human", "reviewer", "box"})
        EXPECT_EQ(annotationRole(QString::fromLatin1(other)), std::nullopt) << other;
}

TEST(Annotation, HandlesAreInTheirOrder) {
    constexpr std::array handles{Handle::start,      Handle::end,         Handle::topLeft, Handle::topRight,
                                 Handle::bottomLeft, Handle::bottomRight, Handle::rotate};
    for (std::size_t i = 0; i < handles.size(); ++i)
        EXPECT_EQ(static_cast<std::size_t>(handles[i]), i);
}

TEST(AnnotationEquality, HoldsForCopies) {
    Annotation annotation = shape(Kind::image);
    annotation.rotation = 1;
    annotation.regionIndex = 2;
    annotation.displayId = 7;
    const Annotation copy = annotation;
    EXPECT_TRUE(annotation == copy);
    EXPECT_FALSE(annotation != copy);
}

TEST(AnnotationEquality, IgnoresColourAndPicture) {
    const Annotation annotation = shape(Kind::image);
    Annotation other = annotation;
    other.color = Qt::red;
    other.image = QImage(2, 2, QImage::Format_RGB32);
    EXPECT_TRUE(annotation == other);
}

TEST(AnnotationEquality, EndsWithAChangeOfAnyOtherField) {
    using Change = std::function<void(Annotation&)>;
    const std::array<Change, 15> changes{
        [](Annotation& changed) { changed.id = QUuid::createUuid(); },
        [](Annotation& changed) { changed.kind = Kind::ellipse; },
        [](Annotation& changed) { changed.start.rx() = std::nextafter(100.0, 101.0); },
        [](Annotation& changed) { changed.start.ry() = std::nextafter(200.0, 201.0); },
        [](Annotation& changed) { changed.end.rx() = std::nextafter(160.0, 161.0); },
        [](Annotation& changed) { changed.end.ry() = std::nextafter(240.0, 241.0); },
        [](Annotation& changed) { changed.text = QStringLiteral("text"); },
        [](Annotation& changed) { changed.label = QStringLiteral("label"); },
        [](Annotation& changed) { changed.strokeWidth = 3; },
        [](Annotation& changed) { changed.rotation = 1e-15; },
        [](Annotation& changed) { changed.role = Role::agent; },
        [](Annotation& changed) { changed.removed = true; },
        [](Annotation& changed) { changed.regionIndex = 0; },
        [](Annotation& changed) { changed.displayId = 0; },
        [](Annotation& changed) { std::swap(changed.start, changed.end); },
    };
    const Annotation annotation = shape(Kind::box);
    for (std::size_t i = 0; i < changes.size(); ++i) {
        Annotation changed = annotation;
        changes.at(i)(changed);
        EXPECT_FALSE(annotation == changed) << "change " << i;
        EXPECT_TRUE(annotation != changed) << "change " << i;
    }
}

TEST(AnnotationGeometry, BoundsAreNormalised) {
    const QRectF expected(100, 200, 60, 40);
    for (const auto& [start, end] : {std::pair<QPointF, QPointF>{{100, 200}, {160, 240}},
                                     {{160, 240}, {100, 200}},
                                     {{160, 200}, {100, 240}},
                                     {{100, 240}, {160, 200}}}) {
        const Annotation annotation = shape(Kind::box, start, end);
        EXPECT_TRUE(isRect(annotation.boundingRect(), expected));
        EXPECT_TRUE(isPoint(annotation.center(), {130, 220}));
    }
    EXPECT_TRUE(isRect(shape(Kind::box, {-7, 3}, {-7, 3}).boundingRect(), {-7, 3, 0, 0}));
    EXPECT_TRUE(isRect(shape(Kind::box, {-7, 3}, {-7, 9}).boundingRect(), {-7, 3, 0, 6}));
}

TEST(AnnotationGeometry, BelongsToTheRegionOfItsAnchor) {
    const QPointF start(160, 240);
    const QPointF end(100, 200);
    EXPECT_TRUE(isPoint(shape(Kind::arrow, start, end).anchorForRegion(), end));
    EXPECT_TRUE(isPoint(shape(Kind::text, start, end).anchorForRegion(), start));
    for (const Kind kind : kindsOfRectangles)
        EXPECT_TRUE(isPoint(shape(kind, start, end).anchorForRegion(), {130, 220}));
}

TEST(AnnotationGeometry, RotatesClockwiseOnTheScreen) {
    const QPointF center(10, 20);
    EXPECT_TRUE(isPoint(Annotation::rotate({10, 15}, center, pi / 2), {15, 20}, 1e-12));
    EXPECT_TRUE(isPoint(Annotation::rotate({15, 20}, center, pi / 2), {10, 25}, 1e-12));
    EXPECT_TRUE(isPoint(Annotation::rotate({15, 20}, center, -pi / 2), {10, 15}, 1e-12));
    EXPECT_TRUE(isPoint(Annotation::rotate({13, 24}, center, pi), {7, 16}, 1e-12));
    EXPECT_TRUE(isPoint(Annotation::rotate({12, 20}, center, pi / 6), {10 + std::sqrt(3.0), 21}, 1e-12));
    EXPECT_TRUE(isPoint(Annotation::rotate({13, 24}, center, 0), {13, 24}));
    EXPECT_TRUE(isPoint(Annotation::rotate(center, center, 1), center));
}

TEST(AnnotationGeometry, DistanceIsThatToTheNearestPointOfTheSegment) {
    const QPointF start(10, 10);
    const QPointF end(30, 10);
    EXPECT_EQ(Annotation::distance({20, 10}, start, end), 0);
    EXPECT_EQ(Annotation::distance({20, 17}, start, end), 7);
    EXPECT_EQ(Annotation::distance({20, 3}, end, start), 7);
    EXPECT_EQ(Annotation::distance({7, 6}, start, end), 5);
    EXPECT_EQ(Annotation::distance({33, 14}, start, end), 5);
    EXPECT_EQ(Annotation::distance({40, 10}, start, end), 10);
    EXPECT_EQ(Annotation::distance({0, 10}, {0, 0}, {10, 10}), std::hypot(5, 5));
    EXPECT_EQ(Annotation::distance({13, 14}, start, start), 5);
}

TEST(AnnotationHit, AnArrowNearItsShaft) {
    const Annotation arrow = shape(Kind::arrow, {100, 200}, {160, 200});
    const auto hit = [&arrow](const QPointF& point) { return arrow.hitTest(point, 8, {}); };
    EXPECT_TRUE(hit({130, 200}));
    EXPECT_TRUE(hit({130, 208}));
    EXPECT_FALSE(hit({130, 208.001}));
    EXPECT_TRUE(hit({130, 192}));
    EXPECT_TRUE(hit({92, 200}));
    EXPECT_FALSE(hit({91.999, 200}));
    EXPECT_TRUE(hit({168, 200}));
    EXPECT_FALSE(hit({168.001, 200}));
    EXPECT_FALSE(hit({166, 206}));
    // In the corner of the bounding rectangle, far from the diagonal.
    EXPECT_FALSE(hits(Kind::arrow, {160, 200}));
    EXPECT_TRUE(hits(Kind::arrow, {130, 220}, 0));
}

TEST(AnnotationHit, AnArrowWithoutLengthIsAPoint) {
    const Annotation arrow = shape(Kind::arrow, {100, 200}, {100, 200});
    EXPECT_TRUE(arrow.hitTest({103, 204}, 5, {}));
    EXPECT_FALSE(arrow.hitTest({104, 204}, 5, {}));
}

TEST(AnnotationHit, ABoxOnItsOutline) {
    for (const QPointF& point : {QPointF(92, 192), QPointF(167.999, 247.999), QPointF(107.999, 220),
                                 QPointF(152, 220), QPointF(130, 207.999), QPointF(130, 232)})
        EXPECT_TRUE(hits(Kind::box, point)) << point.x() << ", " << point.y();
    for (const QPointF& point : {QPointF(130, 220), QPointF(91.999, 220), QPointF(168, 220),
                                 QPointF(130, 191.999), QPointF(130, 248), QPointF(108, 220),
                                 QPointF(151.999, 220), QPointF(130, 208), QPointF(130, 231.999)})
        EXPECT_FALSE(hits(Kind::box, point)) << point.x() << ", " << point.y();
}

TEST(AnnotationHit, ABoxWithoutRoomForItsInsideIsFilled) {
    EXPECT_TRUE(hits(Kind::box, {130, 220}, 20));
    EXPECT_FALSE(hits(Kind::box, {130, 220}, 19.999));
    EXPECT_TRUE(shape(Kind::box, {100, 200}, {100, 200}).hitTest({100, 200}, 8, {}));
}

TEST(AnnotationHit, ABoxDrawnBackwardsIsTheSame) {
    const Annotation box = shape(Kind::box, {160, 240}, {100, 200});
    EXPECT_TRUE(box.hitTest({92, 220}, 8, {}));
    EXPECT_FALSE(box.hitTest({130, 220}, 8, {}));
}

TEST(AnnotationHit, AnEllipseOnItsOutline) {
    // Half axes 30 and 20, so the tolerance is 8 on the short axis and 12 on the long one.
    EXPECT_TRUE(hits(Kind::ellipse, {100, 220}));
    EXPECT_TRUE(hits(Kind::ellipse, {130, 200}));
    EXPECT_TRUE(hits(Kind::ellipse, {130, 248}));
    EXPECT_FALSE(hits(Kind::ellipse, {130, 248.001}));
    EXPECT_TRUE(hits(Kind::ellipse, {130, 192}));
    EXPECT_FALSE(hits(Kind::ellipse, {130, 191.999}));
    EXPECT_TRUE(hits(Kind::ellipse, {130, 232}));
    EXPECT_FALSE(hits(Kind::ellipse, {130, 231.999}));
    EXPECT_TRUE(hits(Kind::ellipse, {171.999, 220}));
    EXPECT_FALSE(hits(Kind::ellipse, {172.001, 220}));
    EXPECT_TRUE(hits(Kind::ellipse, {148.001, 220}));
    EXPECT_FALSE(hits(Kind::ellipse, {147.999, 220}));
    // At 45 degrees of the parameter.
    EXPECT_TRUE(hits(Kind::ellipse, {130 + 30 * std::sqrt(0.5), 220 - 20 * std::sqrt(0.5)}, 1e-9));
    EXPECT_FALSE(hits(Kind::ellipse, {160, 240}));
    EXPECT_FALSE(hits(Kind::ellipse, {130, 220}));
}

TEST(AnnotationHit, AFlatEllipseIsItsBoundsGrown) {
    const Annotation point = shape(Kind::ellipse, {100, 200}, {100, 200});
    EXPECT_TRUE(point.hitTest({100, 200}, 8, {}));
    EXPECT_TRUE(point.hitTest({92, 192}, 8, {}));
    EXPECT_TRUE(point.hitTest({107.999, 207.999}, 8, {}));
    EXPECT_FALSE(point.hitTest({108, 200}, 8, {}));
    EXPECT_FALSE(point.hitTest({100, 208}, 8, {}));
    EXPECT_FALSE(point.hitTest({100, 200}, 0, {}));
    const Annotation line = shape(Kind::ellipse, {100, 200}, {160, 200});
    EXPECT_TRUE(line.hitTest({130, 195}, 8, {}));
    EXPECT_FALSE(line.hitTest({130, 208}, 8, {}));
    EXPECT_TRUE(shape(Kind::ellipse, {100, 200}, {100, 260}).hitTest({95, 230}, 8, {}));
}

TEST(AnnotationHit, AnEllipseOfTheSmallestWidthIsHitNearItOnly) {
    const Annotation ellipse = shape(Kind::ellipse, {0, 0}, {1e-310, 40});
    EXPECT_TRUE(ellipse.hitTest({3, 20}, 8, {}));
    EXPECT_FALSE(ellipse.hitTest({100, 20}, 8, {}));
}

TEST(AnnotationHit, HighlightsAndPicturesAllOver) {
    for (const Kind kind : {Kind::highlight, Kind::image}) {
        for (const QPointF& point : {QPointF(130, 220), QPointF(92, 192), QPointF(167.999, 247.999)})
            EXPECT_TRUE(hits(kind, point)) << point.x() << ", " << point.y();
        for (const QPointF& point :
             {QPointF(91.999, 220), QPointF(168, 220), QPointF(130, 191.999), QPointF(130, 248)})
            EXPECT_FALSE(hits(kind, point)) << point.x() << ", " << point.y();
        EXPECT_TRUE(hits(kind, {100, 200}, 0));
        EXPECT_FALSE(hits(kind, {160, 240}, 0));
    }
}

TEST(AnnotationHit, ARotatedPictureWhereItWouldStandUpright) {
    Annotation picture = shape(Kind::image, {100, 200}, {300, 220});
    picture.rotation = pi / 2;
    EXPECT_TRUE(picture.hitTest({105, 210}, 8, {}));
    EXPECT_FALSE(picture.hitTest({200, 300}, 8, {}));
}

TEST(AnnotationHit, ATextAboveItsAnchor) {
    const QSizeF size(80, 20);
    for (const QPointF& point :
         {QPointF(140, 190), QPointF(100, 200), QPointF(92, 172), QPointF(187.999, 207.999)})
        EXPECT_TRUE(hits(Kind::text, point, 8, size)) << point.x() << ", " << point.y();
    for (const QPointF& point : {QPointF(91.999, 190), QPointF(188, 190), QPointF(140, 171.999),
                                 QPointF(140, 208), QPointF(140, 215)})
        EXPECT_FALSE(hits(Kind::text, point, 8, size)) << point.x() << ", " << point.y();
}

TEST(AnnotationHit, ATextByItsSizeAndNotByItsEnd) {
    EXPECT_FALSE(hits(Kind::text, {150, 230}, 8, {10, 10}));
    EXPECT_TRUE(hits(Kind::text, {107, 207}, 8, {0, 0}));
    EXPECT_FALSE(hits(Kind::text, {100, 200}, 8, QSizeF()));
    EXPECT_FALSE(hits(Kind::text, {100, 200}, 8, {notANumber, 10}));
    EXPECT_FALSE(hits(Kind::text, {100, 200}, 8, {10, infinite}));
}

TEST(AnnotationHit, TheSizeOfATextIsForTextsOnly) {
    for (const Kind kind : {Kind::arrow, Kind::box, Kind::ellipse, Kind::highlight, Kind::image})
        EXPECT_FALSE(hits(kind, {140, 180}, 8, {80, 40}));
}

TEST(AnnotationHit, NothingWithANegativeTolerance) {
    for (const Kind kind : allKinds) {
        for (const QPointF& point : {QPointF(130, 220), QPointF(100, 200), QPointF(130, 190)}) {
            EXPECT_FALSE(hits(kind, point, -1, {80, 20}));
            EXPECT_FALSE(hits(kind, point, -1000, {80, 20}));
            EXPECT_FALSE(hits(kind, point, notANumber, {80, 20}));
        }
    }
}

TEST(AnnotationHit, NothingAtCoordinatesThatAreNotFinite) {
    for (const Kind kind : allKinds) {
        EXPECT_TRUE(hits(kind, {130, 220}, infinite, {80, 20}));
        for (const qreal bad : {notANumber, infinite, -infinite}) {
            EXPECT_FALSE(hits(kind, {bad, 220}, infinite, {80, 20}));
            EXPECT_FALSE(hits(kind, {130, bad}, infinite, {80, 20}));
            for (const Annotation& annotation :
                 {shape(kind, {bad, 200}), shape(kind, {100, bad}), shape(kind, {100, 200}, {bad, 240}),
                  shape(kind, {100, 200}, {160, bad})}) {
                EXPECT_FALSE(annotation.hitTest({100, 200}, infinite, {80, 20}));
                EXPECT_TRUE(annotation.handles().empty());
                EXPECT_EQ(annotation.handle({100, 200}, infinite), std::nullopt);
            }
        }
    }
}

TEST(AnnotationHandles, AnArrowHasItsEnds) {
    EXPECT_TRUE(areHandles(shape(Kind::arrow, {160, 240}, {100, 200}).handles(),
                           {{Handle::start, {160, 240}}, {Handle::end, {100, 200}}}));
}

TEST(AnnotationHandles, ARectangleHasItsCornersHoweverDrawn) {
    for (const Kind kind : {Kind::box, Kind::ellipse, Kind::highlight}) {
        for (Annotation annotation : {shape(kind), shape(kind, {160, 200}, {100, 240})}) {
            // Only pictures turn.
            annotation.rotation = 1;
            EXPECT_TRUE(areHandles(annotation.handles(), {{Handle::topLeft, {100, 200}},
                                                          {Handle::topRight, {160, 200}},
                                                          {Handle::bottomLeft, {100, 240}},
                                                          {Handle::bottomRight, {160, 240}}}));
        }
    }
}

TEST(AnnotationHandles, APictureCanBeTurned) {
    EXPECT_TRUE(areHandles(shape(Kind::image).handles(), {{Handle::topLeft, {100, 200}},
                                                          {Handle::topRight, {160, 200}},
                                                          {Handle::bottomLeft, {100, 240}},
                                                          {Handle::bottomRight, {160, 240}},
                                                          {Handle::rotate, {130, 170}}}));
}

TEST(AnnotationHandles, TurnWithThePicture) {
    Annotation picture = shape(Kind::image);
    picture.rotation = pi / 2;
    EXPECT_TRUE(areHandles(picture.handles(),
                           {{Handle::topLeft, {150, 190}},
                            {Handle::topRight, {150, 250}},
                            {Handle::bottomLeft, {110, 190}},
                            {Handle::bottomRight, {110, 250}},
                            {Handle::rotate, {180, 220}}},
                           1e-12));
    EXPECT_EQ(picture.handle({178, 221}, 12), Handle::rotate);
    EXPECT_EQ(picture.handle({130, 170}, 12), std::nullopt);
}

TEST(AnnotationHandles, ATextHasNone) {
    EXPECT_TRUE(shape(Kind::text).handles().empty());
    EXPECT_EQ(shape(Kind::text).handle({100, 200}, 1000), std::nullopt);
}

TEST(AnnotationHandles, TheNearestWithinTheToleranceIsTaken) {
    const Annotation box = shape(Kind::box);
    EXPECT_EQ(box.handle({160, 212}, 12), Handle::topRight);
    EXPECT_EQ(box.handle({160, 212.001}, 12), std::nullopt);
    EXPECT_EQ(box.handle({150, 235}, 1000), Handle::bottomRight);
    EXPECT_EQ(box.handle({100, 240}, 0), Handle::bottomLeft);
    EXPECT_EQ(box.handle({103, 204}, 5), Handle::topLeft);
    EXPECT_EQ(box.handle({104, 204}, 5), std::nullopt);
    EXPECT_EQ(box.handle({100, 200}, -1), std::nullopt);
    EXPECT_EQ(box.handle({100, 200}, notANumber), std::nullopt);
    EXPECT_EQ(box.handle({infinite, 200}, infinite), std::nullopt);
}

TEST(AnnotationHandles, OnTiesTheEarlierIsTaken) {
    EXPECT_EQ(shape(Kind::box).handle({130, 220}, 100), Handle::topLeft);
    EXPECT_EQ(shape(Kind::box).handle({130, 230}, 100), Handle::bottomLeft);
    EXPECT_EQ(shape(Kind::box).handle({150, 220}, 100), Handle::topRight);
    EXPECT_EQ(shape(Kind::arrow).handle({130, 220}, 100), Handle::start);
    EXPECT_EQ(shape(Kind::box, {5, 5}, {5, 5}).handle({5, 5}, 12), Handle::topLeft);
    // 15 points above the top edge of a picture of no width, its corner and the rotate handle are equally
    // far.
    EXPECT_EQ(shape(Kind::image, {130, 200}, {130, 240}).handle({130, 185}, 20), Handle::topLeft);
}

} // namespace orvane
