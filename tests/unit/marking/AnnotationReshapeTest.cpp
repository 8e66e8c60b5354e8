#include "OrvaneCore/marking/Annotation.h"

#include "tests/unit/marking/ExactGeometry.h"

#include <array>

namespace orvane {

namespace {

using Handle = Annotation::Handle;
using Kind = Annotation::Kind;
using test::infinite;
using test::isPoint;
using test::isRect;
using test::notANumber;

constexpr std::array allKinds{Kind::arrow,     Kind::box,  Kind::ellipse,
                              Kind::highlight, Kind::text, Kind::image};
constexpr std::array allHandles{Handle::start,      Handle::end,         Handle::topLeft, Handle::topRight,
                                Handle::bottomLeft, Handle::bottomRight, Handle::rotate};
constexpr qreal pi = 3.14159265358979323846;

/// From (100, 200) to (160, 240): of the centre (130, 220) and the aspect ratio 1.5.
Annotation shape(Kind kind) {
    Annotation annotation;
    annotation.kind = kind;
    annotation.start = {100, 200};
    annotation.end = {160, 240};
    annotation.text = QStringLiteral("text");
    annotation.label = QStringLiteral("label");
    annotation.color = Qt::red;
    annotation.strokeWidth = 6;
    annotation.role = Annotation::Role::agent;
    annotation.removed = true;
    annotation.regionIndex = 2;
    annotation.displayId = 7;
    return annotation;
}

Annotation turnedPicture(qreal rotation) {
    Annotation picture = shape(Kind::image);
    picture.rotation = rotation;
    return picture;
}

::testing::AssertionResult spans(const Annotation& annotation, const QPointF& start, const QPointF& end) {
    ::testing::AssertionResult startIs = isPoint(annotation.start, start);
    return startIs ? isPoint(annotation.end, end) << " as end" : startIs << " as start";
}

/// True when nothing but both points and the rotation differs.
bool keepsTheRest(const Annotation& before, Annotation after) {
    after.start = before.start;
    after.end = before.end;
    after.rotation = before.rotation;
    return before == after && before.color == after.color && before.image == after.image;
}

struct CornerCase {
    Handle handle;
    QPointF anchor;
    QPointF target;
};

/// Each corner dragged outward, then across its opposite.
const std::array<CornerCase, 8> cornerCases{{
    {Handle::topLeft, {160, 240}, {90, 170}},
    {Handle::topRight, {100, 240}, {190, 170}},
    {Handle::bottomLeft, {160, 200}, {90, 270}},
    {Handle::bottomRight, {100, 200}, {190, 270}},
    {Handle::topLeft, {160, 240}, {190, 270}},
    {Handle::topRight, {100, 240}, {90, 270}},
    {Handle::bottomLeft, {160, 200}, {190, 170}},
    {Handle::bottomRight, {100, 200}, {90, 170}},
}};

} // namespace

TEST(AnnotationMove, MovesBothPoints) {
    for (const Kind kind : allKinds) {
        const Annotation moved = shape(kind).moved({-10.5, 20});
        EXPECT_TRUE(spans(moved, {89.5, 220}, {149.5, 260}));
    }
}

TEST(AnnotationMove, KeepsTheRest) {
    const Annotation annotation = turnedPicture(0.5);
    const Annotation moved = annotation.moved({1, 1});
    EXPECT_TRUE(keepsTheRest(annotation, moved));
    EXPECT_EQ(moved.rotation, 0.5);
    EXPECT_TRUE(spans(annotation, {100, 200}, {160, 240}));
}

TEST(AnnotationReshape, EndsGoToThePoint) {
    for (const Kind kind : allKinds) {
        EXPECT_TRUE(spans(shape(kind).reshaped(Handle::start, {5, 6}), {5, 6}, {160, 240}));
        EXPECT_TRUE(spans(shape(kind).reshaped(Handle::end, {5, 6}), {100, 200}, {5, 6}));
    }
}

TEST(AnnotationReshape, KeepsTheRest) {
    for (const Handle handle : allHandles) {
        const Annotation annotation = shape(Kind::box);
        EXPECT_TRUE(keepsTheRest(annotation, annotation.reshaped(handle, {90, 170})));
        EXPECT_TRUE(spans(annotation, {100, 200}, {160, 240}));
    }
}

TEST(AnnotationReshape, CornersGoToThePointAndTheirOppositesStay) {
    for (const Kind kind : {Kind::arrow, Kind::box, Kind::ellipse, Kind::highlight, Kind::text}) {
        for (const auto& [handle, anchor, target] : cornerCases)
            EXPECT_TRUE(spans(shape(kind).reshaped(handle, target), anchor, target));
    }
}

TEST(AnnotationReshape, CornersAreThoseOfTheBoundsHoweverDrawn) {
    Annotation box = shape(Kind::box);
    box.start = {160, 200};
    box.end = {100, 240};
    for (const auto& [handle, anchor, target] : cornerCases)
        EXPECT_TRUE(spans(box.reshaped(handle, target), anchor, target));
}

TEST(AnnotationReshape, ACornerAcrossItsOppositeMirrors) {
    const Annotation box = shape(Kind::box).reshaped(Handle::topLeft, {190, 270});
    EXPECT_TRUE(isRect(box.boundingRect(), {160, 240, 30, 30}));
    EXPECT_TRUE(
        isRect(shape(Kind::box).reshaped(Handle::topLeft, {160, 240}).boundingRect(), {160, 240, 0, 0}));
}

TEST(AnnotationReshape, PicturesKeepTheirAspectRatio) {
    // Each corner twice: the height to the point is what counts, then the width.
    const auto reshaped = [](Handle handle, const QPointF& point) {
        return shape(Kind::image).reshaped(handle, point);
    };
    EXPECT_TRUE(spans(reshaped(Handle::bottomRight, {400, 230}), {100, 200}, {145, 230}));
    EXPECT_TRUE(spans(reshaped(Handle::bottomRight, {130, 400}), {100, 200}, {130, 220}));
    EXPECT_TRUE(spans(reshaped(Handle::topLeft, {-400, 170}), {160, 240}, {55, 170}));
    EXPECT_TRUE(spans(reshaped(Handle::topLeft, {130, -400}), {160, 240}, {130, 220}));
    EXPECT_TRUE(spans(reshaped(Handle::topRight, {400, 210}), {100, 240}, {145, 210}));
    EXPECT_TRUE(spans(reshaped(Handle::topRight, {130, -400}), {100, 240}, {130, 220}));
    EXPECT_TRUE(spans(reshaped(Handle::bottomLeft, {-400, 230}), {160, 200}, {115, 230}));
    EXPECT_TRUE(spans(reshaped(Handle::bottomLeft, {130, 400}), {160, 200}, {130, 220}));
}

TEST(AnnotationReshape, PicturesKeepTheirAspectRatioWhenMirrored) {
    for (const auto& [handle, anchor, target] : cornerCases) {
        const Annotation picture = shape(Kind::image).reshaped(handle, target);
        const QRectF bounds = picture.boundingRect();
        EXPECT_TRUE(isPoint(picture.start, anchor));
        EXPECT_NEAR(bounds.width(), 1.5 * bounds.height(), 1e-9);
        EXPECT_GT(bounds.height(), 0);
        EXPECT_EQ(picture.end.x() > anchor.x(), target.x() > anchor.x());
        EXPECT_EQ(picture.end.y() > anchor.y(), target.y() > anchor.y());
    }
    const Annotation mirrored = shape(Kind::image).reshaped(Handle::topLeft, {175, 300});
    EXPECT_TRUE(isRect(mirrored.boundingRect(), {160, 240, 15, 10}));
    const Annotation halfMirrored = shape(Kind::image).reshaped(Handle::topLeft, {175, 100});
    EXPECT_TRUE(isRect(halfMirrored.boundingRect(), {160, 230, 15, 10}));
}

TEST(AnnotationReshape, APictureDraggedToALineThroughItsOppositeCornerVanishes) {
    EXPECT_TRUE(spans(shape(Kind::image).reshaped(Handle::topLeft, {160, 100}), {160, 240}, {160, 240}));
    EXPECT_TRUE(spans(shape(Kind::image).reshaped(Handle::topLeft, {10, 240}), {160, 240}, {160, 240}));
}

TEST(AnnotationReshape, FlatPicturesGoToThePoint) {
    for (const QPointF& end : {QPointF(100, 240), QPointF(160, 200), QPointF(100, 200)}) {
        Annotation picture = shape(Kind::image);
        picture.end = end;
        EXPECT_TRUE(spans(picture.reshaped(Handle::bottomRight, {190, 203}), {100, 200}, {190, 203}));
    }
}

TEST(AnnotationReshape, ACornerOfATurnedPictureIsDraggedInItsFrame) {
    // A quarter turn: the bottom right corner is seen at (110, 250). 40 to the left of it is 40 down in the
    // frame, 60 below it 60 to the right, and the picture doubles.
    const Annotation picture = turnedPicture(pi / 2).reshaped(Handle::bottomRight, {70, 310});
    EXPECT_TRUE(isPoint(picture.start, {100, 200}));
    EXPECT_TRUE(isPoint(picture.end, {220, 280}, 1e-9));
    EXPECT_EQ(picture.rotation, pi / 2);
}

TEST(AnnotationReshape, ACornerDraggedToItsPlaceLeavesTheBounds) {
    const QRectF bounds(100, 200, 60, 40);
    for (const qreal rotation : {0.0, 0.3, pi / 2, -2.0, pi}) {
        const Annotation picture = turnedPicture(rotation);
        for (const auto& [handle, place] : picture.handles()) {
            EXPECT_TRUE(isRect(picture.reshaped(handle, place).boundingRect(), bounds, 1e-9)) << rotation;
            EXPECT_NEAR(picture.reshaped(handle, place).rotation, rotation, 1e-12);
        }
    }
    for (const auto& [handle, place] : shape(Kind::box).handles())
        EXPECT_TRUE(isRect(shape(Kind::box).reshaped(handle, place).boundingRect(), bounds));
}

TEST(AnnotationReshape, TheFrameOfARotationCountsForAllKinds) {
    Annotation box = shape(Kind::box);
    box.rotation = pi / 2;
    const Annotation reshaped = box.reshaped(Handle::bottomRight, {70, 310});
    EXPECT_TRUE(isPoint(reshaped.start, {100, 200}));
    EXPECT_TRUE(isPoint(reshaped.end, {220, 280}, 1e-9));
}

TEST(AnnotationRotate, GrowsClockwiseFromAboveTheCentre) {
    const auto rotation = [](const QPointF& point) {
        return turnedPicture(0.7).reshaped(Handle::rotate, point).rotation;
    };
    EXPECT_EQ(rotation({130, 170}), 0);
    EXPECT_DOUBLE_EQ(rotation({140, 210}), pi / 4);
    EXPECT_DOUBLE_EQ(rotation({180, 220}), pi / 2);
    EXPECT_DOUBLE_EQ(rotation({140, 230}), 3 * pi / 4);
    EXPECT_DOUBLE_EQ(rotation({130, 270}), pi);
    EXPECT_DOUBLE_EQ(rotation({80, 220}), -pi / 2);
    EXPECT_DOUBLE_EQ(rotation({120, 210}), -pi / 4);
}

TEST(AnnotationRotate, IsZeroAtTheCentre) {
    EXPECT_EQ(turnedPicture(0.7).reshaped(Handle::rotate, {130, 220}).rotation, 0);
    Annotation atOrigin = turnedPicture(0.7);
    for (const qreal zero : {0.0, -0.0}) {
        atOrigin.end = {zero, zero};
        atOrigin.start = {zero, zero};
        for (const QPointF& point :
             {QPointF(0.0, 0.0), QPointF(-0.0, -0.0), QPointF(0.0, -0.0), QPointF(-0.0, 0.0)})
            EXPECT_EQ(atOrigin.reshaped(Handle::rotate, point).rotation, 0);
    }
}

TEST(AnnotationRotate, LeavesBothPoints) {
    EXPECT_TRUE(spans(turnedPicture(0.7).reshaped(Handle::rotate, {180, 220}), {100, 200}, {160, 240}));
}

TEST(AnnotationReshape, APointThatIsNotFiniteChangesNothing) {
    const Annotation picture = turnedPicture(0.7);
    for (const qreal bad : {notANumber, infinite, -infinite}) {
        for (const QPointF& point : {QPointF(bad, 5), QPointF(5, bad)}) {
            EXPECT_TRUE(picture.moved(point) == picture) << bad;
            for (const Handle handle : allHandles)
                EXPECT_TRUE(picture.reshaped(handle, point) == picture) << bad;
        }
    }
}

} // namespace orvane
