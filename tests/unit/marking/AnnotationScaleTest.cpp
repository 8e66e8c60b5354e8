#include "OrvaneCore/marking/AnnotationRenderer.h"

#include "tests/unit/marking/Drawings.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize points(320, 240);

/// One of everything that grows with the scale: not the heads of thin arrows and the strokes of placeholders.
std::vector<Annotation> mixedList() {
    std::vector<Annotation> list{
        shape(Kind::arrow, {30, 60}, {110, 100}, 6),
        shape(Kind::box, {130, 40}, {200, 90}, 3),
        shape(Kind::ellipse, {220, 40}, {300, 100}, 5),
        shape(Kind::highlight, {20, 130}, {90, 170}),
        textShape(u"two\nlines"_s, {110, 120}, amber),
        shape(Kind::image, {200, 130}, {290, 190}),
        textShape(u"שלום, ok"_s, {30, 195}),
    };
    list[0].label = u"Arrow"_s;
    list[1].label = u"A box"_s;
    list[1].color = QColor(blue);
    list[2].label = u"q"_s;
    list[3].color = QColor(amber);
    list[3].label = u"above all"_s;
    list[5].image = ground({9, 6}, blue);
    list[5].rotation = 0.3;
    list[5].label = u"Picture"_s;
    return list;
}

QImage drawnAt(qreal scale) {
    QImage picture = ground((QSizeF(points) * scale).toSize(), qRgb(225, 230, 240));
    QPainter painter(&picture);
    for (const Annotation& annotation : mixedList())
        annotation_renderer::draw(painter, annotation, mapAt(scale), scale);
    painter.end();
    return picture;
}

class LooksTheSame : public testing::TestWithParam<int> {};

} // namespace

TEST_P(LooksTheSame, AtEveryScale) {
    const QImage one = drawnAt(1);
    const QImage reduced =
        drawnAt(GetParam()).scaled(points, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    // Edges are smoothed in one way by the painter and in another by making it smaller.
    const Difference found = difference(one, reduced, 48);
    EXPECT_LT(found.mean, 0.4);
    EXPECT_LT(found.share, 0.001);
}

INSTANTIATE_TEST_SUITE_P(AnnotationRenderer, LooksTheSame, testing::Values(2, 3));

TEST(AnnotationScale, ThinArrowsHaveSmallerHeadsInFinerDrawings) {
    const auto headHeight = [](qreal scale) {
        return inkBounds(drawn(shape(Kind::arrow, {20, 60}, {150, 60}, 1), scale), white, 8).height();
    };
    EXPECT_EQ(headHeight(2), headHeight(1));
    EXPECT_EQ(headHeight(3), headHeight(1));
    EXPECT_GT(headHeight(5), headHeight(1));
}

} // namespace orvane::test
