#pragma once

#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "tests/support/DrawnPixels.h"
#include "tests/unit/marking/ExactGeometry.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <array>
#include <string>

/// Shapes on pictures, as all tests of the drawing make them.
namespace orvane::test {

using Kind = Annotation::Kind;

inline constexpr std::array allKinds{Kind::arrow,     Kind::box,  Kind::ellipse,
                                     Kind::highlight, Kind::text, Kind::image};

inline constexpr QRgb blue = 0xFF3B82F6;
inline constexpr QRgb amber = 0xFFF59E0B;

/// Drawn in black unless a test says otherwise.
inline Annotation shape(Kind kind, const QPointF& start, const QPointF& end, qreal strokeWidth = 3) {
    return {.kind = kind, .start = start, .end = end, .color = QColor(black), .strokeWidth = strokeWidth};
}

inline Annotation textShape(const QString& text, const QPointF& start, QRgb color = black) {
    return {.kind = Kind::text, .start = start, .end = start, .text = text, .color = QColor(color)};
}

/// Of the global point 0,0 and `scale` pixels a point.
inline PointMap mapAt(qreal scale) {
    return {.origin = {}, .scaleX = scale, .scaleY = scale};
}

/// Draws on a copy of the picture.
inline QImage drawn(const Annotation& annotation, QImage picture, const PointMap& map, qreal scale) {
    QPainter painter(&picture);
    annotation_renderer::draw(painter, annotation, map, scale);
    painter.end();
    return picture;
}

/// On a picture of that many points, `scale` pixels each.
inline QImage drawn(const Annotation& annotation, qreal scale, const QSize& points = {200, 150},
                    QRgb under = white) {
    return drawn(annotation, ground((QSizeF(points) * scale).toSize(), under), mapAt(scale), scale);
}

/// For tests that run once for each scale of a display.
class AtScale : public testing::TestWithParam<qreal> {
protected:
    static qreal scale() { return GetParam(); }
};

inline const std::array<qreal, 3> displayScales{1, 1.5, 2};

inline std::string nameOfScale(const testing::TestParamInfo<qreal>& info) {
    return std::to_string(std::lround(info.param * 100));
}

} // namespace orvane::test
