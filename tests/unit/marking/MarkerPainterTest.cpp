#include "OrvaneCore/marking/MarkerPainter.h"

#include "OrvaneCore/drawing/DrawnText.h"
#include "OrvaneCore/drawing/SoftShadow.h"
#include "OrvaneCore/marking/Palettes.h"
#include "tests/unit/marking/Drawings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <ostream>
#include <string>
#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

using Spotlight = marker_painter::Spotlight;

constexpr QRectF region(60, 50, 120, 70);
/// Has a width and no ink.
const QString blank = u"               "_s;

Marker markerOf(QRgb color, const QString& label = {}, int index = 1) {
    return {.label = label, .color = QColor::fromRgba(color), .index = index};
}

QImage drawnMarker(const Marker& marker, const QRectF& rect, qreal scale, const MarkerStyle& style,
                   Spotlight spotlight, QImage picture) {
    QPainter painter(&picture);
    marker_painter::draw(painter, marker, rect, scale, style, spotlight);
    painter.end();
    return picture;
}

struct Look {
    const char* name;
    const MarkerStyle& style;
    qreal scale;
    Spotlight spotlight;
    // What the style says, for markers at that place.
    qreal outlineWidth;
    qreal badgeDiameter;
    int numberPixelSize;
    int labelPixelSize;
};

std::string nameOf(const Look& look) {
    return look.name + std::to_string(std::lround(look.scale * 100));
}

/// For messages.
std::ostream& operator<<(std::ostream& out, const Look& look) {
    return out << nameOf(look);
}

std::vector<Look> allLooks() {
    std::vector<Look> looks;
    looks.reserve(12);
    for (const qreal scale : displayScales) {
        looks.push_back({"image", MarkerStyle::onImage, scale, Spotlight::off, 2, 27, 15, 13});
        looks.push_back({"imageSpotlight", MarkerStyle::onImage, scale, Spotlight::on, 2, 27, 15, 13});
        looks.push_back({"overlay", MarkerStyle::onOverlay, scale, Spotlight::off, 1.5, 24, 13, 12});
        looks.push_back({"overlaySpotlight", MarkerStyle::onOverlay, scale, Spotlight::on, 2, 24, 13, 12});
    }
    return looks;
}

class DrawsMarkers : public testing::TestWithParam<Look> {
protected:
    static qreal scale() { return GetParam().scale; }
    static QRectF rect() { return {region.topLeft() * scale(), region.size() * scale()}; }
    static qreal badgeRadius() { return GetParam().badgeDiameter / 2 * scale(); }

    static QImage drawn(const Marker& marker, QRgb under, Spotlight spotlight = GetParam().spotlight) {
        // The edge has a test of its own.
        MarkerStyle style = GetParam().style;
        style.hasLabelEdge = false;
        return drawnMarker(marker, rect(), scale(), style, spotlight,
                           ground((QSizeF(240, 190) * scale()).toSize(), under));
    }

    /// With white where those are.
    static QImage besideBadgeAndRegion(QImage picture) {
        const qreal ringReach = badgeRadius() + 2 * scale() + 2;
        const qreal haloReach = 1.25 * scale() + 2;
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawRect(rect().adjusted(-haloReach, -haloReach, haloReach, haloReach));
        painter.drawEllipse(rect().topLeft(), ringReach, ringReach);
        painter.end();
        return picture;
    }

    static QSizeF textSize(const QString& label) {
        return DrawnText(label, GetParam().labelPixelSize, GetParam().style.labelWeight, scale()).size();
    }
    static QRectF capsuleOf(const QString& label) {
        const qreal s = scale();
        return {rect().bottomLeft() + QPointF(0, 6 * s), textSize(label) + QSizeF(31 * s, 8 * s)};
    }
};

/// What a capsule's fill makes of black.
QRgb capsuleOnBlack() {
    return blended(marker_palette::labelFill().rgb(), 0.9, black);
}

} // namespace

TEST_P(DrawsMarkers, OutlineOfTheStylesWidth) {
    const qreal s = scale();
    // Nothing but the white outline shows on black, where no tint is.
    const QImage picture = drawn(markerOf(white), black, Spotlight::on);
    const QPointF middle = rect().center();
    const qreal width = 2 * s;
    const auto isLine = [&](const Span& span, qreal at, qreal lineWidth) {
        return isSpan(span, at - lineWidth / 2, at + lineWidth / 2, 0.1);
    };
    EXPECT_TRUE(isLine(spanInRow(picture, middle.y(), 0, middle.x(), black, white), rect().left(), width));
    EXPECT_TRUE(isLine(spanInRow(picture, middle.y(), middle.x(), 1e4, black, white), rect().right(), width));
    EXPECT_TRUE(isLine(spanInColumn(picture, middle.x(), 0, middle.y(), black, white), rect().top(), width));
    EXPECT_TRUE(
        isLine(spanInColumn(picture, middle.x(), middle.y(), 1e4, black, white), rect().bottom(), width));

    // The tint ends below the middle of the outline: as if it were one of its colour.
    const QImage plain = drawn(markerOf(white), black);
    const qreal tint = GetParam().spotlight == Spotlight::on ? 0 : 0.09;
    const qreal inside = middle.x() - rect().left();
    const qreal sum = spanInRow(plain, middle.y(), 0, middle.x() - 1, black, white).length();
    const qreal outline = (sum - tint * inside) / (1 - tint / 2);
    EXPECT_NEAR(outline, GetParam().outlineWidth * s, 0.15);
}

TEST_P(DrawsMarkers, OutlineWithRoundCorners) {
    const qreal s = scale();
    const QImage picture = drawn(markerOf(white), black, Spotlight::on);
    const qreal radius = 6 * s;
    for (const QPointF& side : {QPointF(1, -1), QPointF(-1, 1), QPointF(1, 1)}) {
        const QPointF corner =
            rect().center() + QPointF(side.x() * rect().width() / 2, side.y() * rect().height() / 2);
        const QPointF arcCenter = corner - radius * side;
        EXPECT_TRUE(isColor(picture, arcCenter + std::numbers::sqrt2 / 2 * radius * side, white, 110));
        EXPECT_TRUE(isColor(picture, corner, black));
        EXPECT_TRUE(isColor(picture, arcCenter, black));
        EXPECT_TRUE(isColor(picture, arcCenter + QPointF(radius * side.x(), 0), white, 130));
    }
}

TEST_P(DrawsMarkers, HaloJustOutsideTheOutline) {
    const qreal s = scale();
    // Without a colour nothing covers it.
    const QImage picture = drawn(markerOf(qRgba(0, 0, 0, 0)), white, Spotlight::on);
    const QRgb halo = blended(black, 0.18, white);
    const QPointF middle = rect().center();
    const auto isLine = [&](const Span& span, qreal at) {
        return isSpan(span, at - s / 2, at + s / 2, 0.12);
    };
    EXPECT_TRUE(
        isLine(spanInRow(picture, middle.y(), rect().left() - 9 * s, rect().left() + 9 * s, white, halo),
               rect().left() - 0.75 * s));
    EXPECT_TRUE(
        isLine(spanInRow(picture, middle.y(), rect().right() - 9 * s, rect().right() + 9 * s, white, halo),
               rect().right() + 0.75 * s));
    EXPECT_TRUE(
        isLine(spanInColumn(picture, middle.x(), rect().top() - 9 * s, rect().top() + 9 * s, white, halo),
               rect().top() - 0.75 * s));
    EXPECT_TRUE(isLine(
        spanInColumn(picture, middle.x(), rect().bottom() - 9 * s, rect().bottom() + 9 * s, white, halo),
        rect().bottom() + 0.75 * s));
    // It is below the outline.
    EXPECT_EQ(drawn(markerOf(white), white, Spotlight::on).pixel(pixelAt({rect().left(), middle.y()})),
              white);
}

TEST_P(DrawsMarkers, TintUnlessInTheSpotlight) {
    for (const QRgb under : {white, black, qRgb(90, 160, 30)}) {
        const QImage picture = drawn(markerOf(blue), under);
        const QRgb expected = GetParam().spotlight == Spotlight::on ? under : blended(blue, 0.09, under);
        const qreal s = scale();
        const QRectF inside = rect().adjusted(22 * s, 22 * s, -7 * s, -7 * s);
        EXPECT_TRUE(isFilled(picture, pixelsInside(inside), expected));
    }
}

TEST_P(DrawsMarkers, BadgeOnTheTopLeftCorner) {
    const qreal s = scale();
    const QPointF center = rect().topLeft();
    const qreal radius = badgeRadius();
    const qreal ring = radius + s;
    const QImage filled = drawn(markerOf(amber), white);
    for (int i = 0; i < 12; ++i) {
        const qreal angle = i * std::numbers::pi / 6 + 0.1;
        const QPointF direction(std::cos(angle), std::sin(angle));
        EXPECT_TRUE(isColor(filled, center + (radius - 1.5) * direction, amber)) << i;
        EXPECT_TRUE(isColor(filled, center + ring * direction, marker_palette::badgeRing().rgb(),
                            scale() > 1 ? 3 : 30))
            << i;
    }
    EXPECT_EQ(marker_palette::badgeRing().rgb(), 0xFF0B1220);
}

TEST_P(DrawsMarkers, RingAroundTheBadge) {
    const qreal s = scale();
    const QPointF center = rect().topLeft();
    const QRgb ink = marker_palette::badgeRing().rgb();
    // Black like its ground, the badge does not show, nor does its shadow.
    const QImage picture = drawn(markerOf(black), black, Spotlight::on);
    const qreal begin = badgeRadius();
    const qreal end = begin + 2 * s;
    const qreal inner = 10 * s;
    EXPECT_TRUE(isSpan(spanInRow(picture, center.y() - 0.5, 0, center.x() - inner, black, ink),
                       center.x() - end, center.x() - begin, 0.2));
    EXPECT_TRUE(isSpan(spanInColumn(picture, center.x() - 0.5, 0, center.y() - inner, black, ink),
                       center.y() - end, center.y() - begin, 0.2));
    EXPECT_TRUE(isSpan(spanInRow(picture, center.y() - 0.5, center.x() + inner, 1e4, black, ink),
                       center.x() + begin, center.x() + end, 0.2));
}

TEST_P(DrawsMarkers, NumberInTheMiddleOfTheBadge) {
    const qreal s = scale();
    const QPointF center = rect().topLeft();
    for (const int index : {1, 7, 10, 42, 100}) {
        const QImage picture = drawn(markerOf(black, {}, index), black, Spotlight::on);
        // The ring is darker than this.
        const QRect ink = inkBounds(picture, black, 60);
        EXPECT_NEAR(ink.left() + ink.width() / 2.0, center.x(), s) << index;
        EXPECT_NEAR(ink.top() + ink.height() / 2.0, center.y(), s) << index;
        EXPECT_GT(ink.height(), 0.65 * GetParam().numberPixelSize * s);
        EXPECT_LT(ink.height(), 0.85 * GetParam().numberPixelSize * s + 1);

        QImage expected = ground(picture.size(), black);
        QPainter painter(&expected);
        DrawnText(QString::number(index), GetParam().numberPixelSize, QFont::Bold, s)
            .drawCentered(painter, center, QColor(white));
        painter.end();
        const QRect inside = pixelsInside(
            QRectF(center - QPointF(1, 1) * badgeRadius() * 0.7, QSizeF(1, 1) * badgeRadius() * 1.4));
        EXPECT_LE(difference(picture.copy(inside), expected.copy(inside), 0).largest, 1) << index;
    }
}

TEST_P(DrawsMarkers, ShadowBelowTheBadge) {
    const qreal s = scale();
    const QPointF center = rect().topLeft();
    const QImage picture = drawn(markerOf(amber), white);
    // On arcs to the left, where nothing else is drawn: the lower and its image in the upper half.
    const auto darkness = [&](qreal distance, qreal side) {
        int sum = 0;
        for (int i = 0; i < 14; ++i) {
            const qreal angle = 0.7 + 0.05 * i;
            const QPointF away = (badgeRadius() + distance * s) * QPointF(-std::cos(angle), std::sin(angle));
            const qreal down = std::floor(away.y()) + 0.5;
            sum += 255 - qRed(picture.pixel(pixelAt(center + QPointF(away.x(), side * down))));
        }
        return sum;
    };
    EXPECT_GT(darkness(3.2, 1), 14 * 3);
    EXPECT_GT(darkness(3.2, 1), 3 * darkness(3.2, -1));
    EXPECT_GT(darkness(3.2, 1), darkness(4.5, 1));
    EXPECT_EQ(darkness(9, 1), 0);
}

TEST_P(DrawsMarkers, ShadowIsThatOfTheBadgeALittleLower) {
    const qreal s = scale();
    const QPointF center = rect().topLeft();
    QPainterPath badge;
    badge.addEllipse(center, badgeRadius(), badgeRadius());
    QImage expected = ground((QSizeF(240, 190) * s).toSize());
    QPainter painter(&expected);
    drawSoftShadow(painter, badge, QColor::fromRgbF(0, 0, 0, 0.45F), 3 * s, {0, s});
    painter.end();
    EXPECT_LE(
        difference(besideBadgeAndRegion(drawn(markerOf(amber), white)), besideBadgeAndRegion(expected), 0)
            .largest,
        1);
}

TEST_P(DrawsMarkers, CapsuleBelowTheRegion) {
    const qreal s = scale();
    const QRectF capsule = capsuleOf(blank);
    EXPECT_EQ(capsule.topLeft(), QPointF(60, 126) * s);
    // On black no shadow shows, and the colourless region and its ring are not in the way.
    const QImage picture = drawn(markerOf(black, blank), black, Spotlight::on);
    const QRgb ink = capsuleOnBlack();
    // Between the corners and the dot.
    const qreal row = capsule.top() + 6.5 * s;
    ASSERT_LE(std::floor(row) + 1, capsule.center().y() - 3.5 * s);
    EXPECT_TRUE(isSpan(spanInRow(picture, row, 0, 1e4, black, ink), capsule.left(), capsule.right(), 0.3));
    EXPECT_TRUE(isSpan(spanInColumn(picture, capsule.right() - 10 * s, 100 * s, 1e4, black, ink),
                       capsule.top(), capsule.bottom(), 0.3));
    EXPECT_TRUE(isFilled(picture, pixelsInside(capsule.adjusted(22 * s, 1, -6 * s, -1)), ink));
    // With round corners.
    for (const QPointF& corner :
         {capsule.topLeft(), capsule.topRight(), capsule.bottomLeft(), capsule.bottomRight()}) {
        const QPointF inward(corner.x() < capsule.center().x() ? 1 : -1,
                             corner.y() < capsule.center().y() ? 1 : -1);
        const qreal onArc = 6 * s * (1 - std::numbers::sqrt2 / 2);
        EXPECT_TRUE(isColor(picture, corner + (onArc + 1.1) * inward, ink, 2));
        EXPECT_TRUE(isColor(picture, corner + (onArc - 1.1) * inward, black, 2));
    }
}

TEST_P(DrawsMarkers, CapsuleHasALightEdgeOnTheOverlayAlone) {
    const qreal s = scale();
    const QRectF capsule = capsuleOf(blank);
    const QImage picture = drawnMarker(markerOf(black, blank), rect(), s, GetParam().style, Spotlight::on,
                                       ground((QSizeF(240, 190) * s).toSize(), black));
    const QImage plain = drawn(markerOf(black, blank), black, Spotlight::on);
    EXPECT_EQ(picture == plain, !GetParam().style.hasLabelEdge);
    EXPECT_EQ(GetParam().style.hasLabelEdge, GetParam().style.badgeDiameter == 24);
    if (!GetParam().style.hasLabelEdge)
        return;
    // Along the inside: no pixel beyond the capsule, and none in its middle.
    const QRectF inside = capsule.adjusted(s, s, -s, -s);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool mayDiffer =
                capsule.toAlignedRect().contains(x, y) &&
                !pixelsInside(inside.adjusted(2 * s, 2 * s, -2 * s, -2 * s)).contains(x, y);
            ASSERT_TRUE(mayDiffer || picture.pixel(x, y) == plain.pixel(x, y)) << x << "," << y;
        }
    }
    const QPointF onEdge(capsule.center().x(), capsule.top() + 0.6 * s);
    EXPECT_GT(qGray(picture.pixel(pixelAt(onEdge))), qGray(plain.pixel(pixelAt(onEdge))) + 25);
}

TEST_P(DrawsMarkers, DotInTheCapsule) {
    const qreal s = scale();
    const QRectF capsule = capsuleOf(blank);
    const QRgb under = capsuleOnBlack();
    for (const int index : {1, 2, 8, 9}) {
        const QImage picture = drawn(markerOf(black, blank, index), black, Spotlight::on);
        const QRgb dot = marker_palette::dot(index).rgb();
        const QPointF center(capsule.left() + 12.5 * s, capsule.center().y());
        EXPECT_TRUE(isColor(picture, center, dot)) << index;
        EXPECT_TRUE(isSpan(
            spanInRow(picture, center.y(), capsule.left() + 7 * s, capsule.left() + 19 * s, under, dot),
            capsule.left() + 9 * s, capsule.left() + 16 * s, 0.25))
            << index;
        EXPECT_TRUE(isSpan(
            spanInColumn(picture, center.x(), capsule.top() + 2 * s, capsule.bottom() - 2 * s, under, dot),
            center.y() - 3.5 * s, center.y() + 3.5 * s, 0.25))
            << index;
        EXPECT_TRUE(isColor(picture, center + QPointF(3.4, 3.4) * s, under, 2)) << "it is round";
    }
}

TEST_P(DrawsMarkers, LabelAfterTheDot) {
    const qreal s = scale();
    const QString label = u"Agreed?"_s;
    const QRectF capsule = capsuleOf(label);
    const QImage picture = drawn(markerOf(black, label), black, Spotlight::on);
    const QRectF text(capsule.topLeft() + QPointF(22, 4) * s, textSize(label));
    EXPECT_DOUBLE_EQ(text.right() + 9 * s, capsule.right());
    EXPECT_DOUBLE_EQ(text.bottom() + 4 * s, capsule.bottom());

    QImage expected = ground(picture.size(), capsuleOnBlack());
    QPainter painter(&expected);
    DrawnText(label, GetParam().labelPixelSize, GetParam().style.labelWeight, s)
        .draw(painter, text.topLeft(), QColor(white));
    painter.end();
    const QRect inside = pixelsInside(text);
    EXPECT_LE(difference(picture.copy(inside), expected.copy(inside), 0).largest, 2);
    const QRect ink = inkBounds(picture.copy(inside), capsuleOnBlack(), 100);
    EXPECT_GT(ink.width(), 0.8 * text.width());
    // Nothing of it is outside, but the dot.
    const QRectF after(text.topLeft(), capsule.bottomRight());
    const QRect written = inkBounds(picture.copy(pixelsInside(after)), capsuleOnBlack(), 60);
    EXPECT_LE(written.right(), text.width());
}

TEST_P(DrawsMarkers, ShadowBelowTheCapsule) {
    const qreal s = scale();
    const QRectF capsule = capsuleOf(blank);
    const QImage picture = drawn(markerOf(amber, blank), white);
    const auto darkness = [&](const QPointF& place) { return 255 - qRed(picture.pixel(pixelAt(place))); };
    const qreal x = capsule.center().x();
    const int below = darkness({x, capsule.bottom() + 1.6 * s});
    const int above = darkness({x, capsule.top() - 1.6 * s});
    EXPECT_GT(below, 15);
    EXPECT_GT(below, 2 * above);
    EXPECT_GT(above, 0);
    EXPECT_GT(below, darkness({x, capsule.bottom() + 3.2 * s}));
    EXPECT_EQ(darkness({x, capsule.bottom() + 12 * s}), 0);
}

TEST_P(DrawsMarkers, ShadowIsThatOfTheCapsuleALittleLower) {
    const qreal s = scale();
    const QRectF capsule = capsuleOf(blank);
    QPainterPath outline;
    outline.addRoundedRect(capsule, 6 * s, 6 * s);
    QImage expected = ground((QSizeF(240, 190) * s).toSize());
    QPainter painter(&expected);
    drawSoftShadow(painter, outline, QColor::fromRgbF(0, 0, 0, 0.3F), 4 * s, {0, s});
    painter.end();
    const QRect below(0, qCeil(capsule.bottom()) + 1, expected.width(), qFloor(10 * s));
    EXPECT_LE(difference(drawn(markerOf(amber, blank), white).copy(below), expected.copy(below), 0).largest,
              1);
}

TEST_P(DrawsMarkers, NoCapsuleWithoutALabel) {
    const QImage picture = drawn(markerOf(amber), white);
    const int below = static_cast<int>(std::ceil(rect().bottom() + 1.25 * scale()));
    EXPECT_TRUE(isFilled(picture, QRect(0, below, picture.width(), picture.height() - below), white));
    EXPECT_FALSE(isFilled(drawn(markerOf(amber, u" "_s), white),
                          QRect(0, below, picture.width(), picture.height() - below), white));
}

TEST_P(DrawsMarkers, ColoursRepeatAfterEight) {
    const auto capsuleAndRegion = [](int index) {
        QImage picture = drawn(markerOf(marker_palette::border(index).rgb(), blank, index), white);
        // The number is another.
        QPainter painter(&picture);
        painter.fillRect(
            QRectF(rect().topLeft() - QPointF(1, 1) * badgeRadius(), QSizeF(2, 2) * badgeRadius()),
            Qt::black);
        painter.end();
        return picture;
    };
    EXPECT_EQ(capsuleAndRegion(9), capsuleAndRegion(1));
    EXPECT_NE(capsuleAndRegion(8), capsuleAndRegion(1));
    EXPECT_NE(drawn(markerOf(blue, {}, 9), white), drawn(markerOf(blue, {}, 1), white));
}

TEST_P(DrawsMarkers, TheSameOnAPictureOfMorePixelsToThePoint) {
    const Marker marker = markerOf(amber, u"Note"_s, 3);
    QImage picture = ground((QSizeF(240, 190) * 2 * scale()).toSize());
    QPainter painter(&picture);
    painter.scale(2, 2);
    marker_painter::draw(painter, marker, rect(), scale(), GetParam().style, GetParam().spotlight);
    painter.end();
    QImage fine = ground(picture.size());
    fine.setDevicePixelRatio(2);
    fine = drawnMarker(marker, rect(), scale(), GetParam().style, GetParam().spotlight, fine);
    EXPECT_LE(difference(fine, picture, 0).largest, 1);
}

INSTANTIATE_TEST_SUITE_P(MarkerPainter, DrawsMarkers, testing::ValuesIn(allLooks()),
                         [](const auto& look) { return nameOf(look.param); });

namespace {

class AnyMarker : public testing::TestWithParam<Spotlight> {
protected:
    static QImage drawn(const Marker& marker, const QRectF& rect, qreal scale = 1) {
        QImage picture = ground({200, 150});
        QPainter painter(&picture);
        painter.translate(2, 3);
        const PainterSettings before(painter);
        marker_painter::draw(painter, marker, rect, scale, MarkerStyle::onOverlay, GetParam());
        EXPECT_EQ(PainterSettings(painter), before);
        painter.end();
        return picture;
    }
};

} // namespace

TEST_P(AnyMarker, IsNotDrawnWhereItsRegionIsNotFinite) {
    const Marker marker = markerOf(amber, u"label"_s);
    for (const qreal bad : {notANumber, infinite, -infinite}) {
        for (const QRectF& rect : {QRectF(bad, 40, 50, 40), QRectF(40, bad, 50, 40), QRectF(40, 40, bad, 40),
                                   QRectF(40, 40, 50, bad), QRectF(bad, bad, bad, bad)})
            EXPECT_TRUE(inkBounds(drawn(marker, rect)).isEmpty());
    }
    EXPECT_FALSE(inkBounds(drawn(marker, {40, 40, 50, 40})).isEmpty());
}

TEST_P(AnyMarker, MayHaveNoSize) {
    const Marker marker = markerOf(amber, u"label"_s);
    for (const QSizeF& size : {QSizeF(0, 0), QSizeF(0, 40), QSizeF(50, 0), QSizeF(0.5, 0.5)}) {
        const QImage picture = drawn(marker, QRectF({60, 50}, size));
        EXPECT_TRUE(isColor(picture, {62 - 9, 53}, amber));
        EXPECT_FALSE(isFilled(picture, QRect(62, static_cast<int>(53 + size.height()) + 8, 40, 10), white));
    }
}

TEST_P(AnyMarker, MayBeInsideOut) {
    const Marker marker = markerOf(amber, u"label"_s);
    EXPECT_EQ(drawn(marker, QRectF(90, 80, -50, -40)), drawn(marker, {40, 40, 50, 40}));
}

TEST_P(AnyMarker, MayBeFarOutsideOrAroundThePicture) {
    const Marker marker = markerOf(amber, u"label"_s);
    for (const qreal far : {1e5, 1e9, 1e300}) {
        EXPECT_TRUE(inkBounds(drawn(marker, {far, far, 50, 40})).isEmpty());
        EXPECT_TRUE(inkBounds(drawn(marker, {-far, 40, 50, 40})).isEmpty());
        const QRgb inside = GetParam() == Spotlight::on ? white : blended(amber, 0.09, white);
        EXPECT_TRUE(isFilled(drawn(marker, {-far, -far, 2 * far, 2 * far}), QRect(0, 0, 200, 150), inside));
        EXPECT_TRUE(isColor(drawn(marker, {40, 40, far, 50}), {150, 43}, amber, 60));
    }
}

TEST_P(AnyMarker, MayHaveAnyNumber) {
    for (const int index : {0, -1, -100, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        const QImage picture = drawn(markerOf(amber, blank, index), {40, 40, 50, 40});
        EXPECT_TRUE(isColor(picture, {42 + 12.5, 43 + 40 + 6 + 12}, marker_palette::dot(index).rgb(), 2))
            << index;
    }
}

TEST_P(AnyMarker, MayHaveALabelLongerThanThePictureAndOfManyLines) {
    const QImage wide = drawn(markerOf(amber, u"word "_s.repeated(2000)), {40, 20, 50, 40});
    EXPECT_EQ(inkBounds(wide).right(), 199);
    const QImage high = drawn(markerOf(amber, u"x\n"_s.repeated(2000)), {40, 20, 50, 40});
    EXPECT_EQ(inkBounds(high).bottom(), 149);
}

TEST_P(AnyMarker, MayHaveNoColour) {
    Marker marker = markerOf(black, u"label"_s);
    const QImage inBlack = drawn(marker, {40, 40, 50, 40});
    marker.color = QColor();
    EXPECT_EQ(drawn(marker, {40, 40, 50, 40}), inBlack);
}

TEST_P(AnyMarker, LeavesAnyPainterAsItWas) {
    QImage picture = ground({200, 150});
    QPainter painter(&picture);
    setUnusual(painter);
    const PainterSettings before(painter);
    marker_painter::draw(painter, markerOf(amber, u"label"_s), {40, 40, 50, 40}, 1, MarkerStyle::onImage,
                         GetParam());
    EXPECT_EQ(PainterSettings(painter), before);
    EXPECT_FALSE(inkBounds(picture).isEmpty());
}

TEST(MarkerPainter, LooksAnotherAfterAChangeOfAnythingThatShows) {
    Marker marker = markerOf(amber, u"label"_s);
    marker.rect = region;
    Marker changed = marker;
    changed.id = QUuid::createUuid();
    changed.windowAppName = u"Terminal"_s;
    EXPECT_TRUE(marker_painter::looksSame(marker, changed));
    changed.rect.setWidth(region.width() + 1e-9);
    EXPECT_FALSE(marker_painter::looksSame(marker, changed));
    changed = marker;
    changed.label = u"another"_s;
    EXPECT_FALSE(marker_painter::looksSame(marker, changed));
    changed = marker;
    changed.color = QColor(blue);
    EXPECT_FALSE(marker_painter::looksSame(marker, changed));
    changed = marker;
    changed.index = 2;
    EXPECT_FALSE(marker_painter::looksSame(marker, changed));
}

INSTANTIATE_TEST_SUITE_P(MarkerPainter, AnyMarker, testing::Values(Spotlight::off, Spotlight::on),
                         [](const auto& spotlight) {
                             return std::string(spotlight.param == Spotlight::on ? "inSpotlight" : "plain");
                         });

} // namespace orvane::test
