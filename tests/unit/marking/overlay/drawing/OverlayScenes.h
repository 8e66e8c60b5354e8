#pragma once

#include "OrvaneCore/marking/MarkerPainter.h"
#include "OrvaneCore/marking/overlay/OverlayPainter.h"
#include "tests/support/DrawnPixels.h"

#include <QImage>
#include <QPainter>
#include <QRegion>
#include <QTransform>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

/// Scenes of the overlay and pictures of them, as all tests of its drawing make them.
namespace orvane::test {

inline constexpr qreal notANumber = std::numeric_limits<qreal>::quiet_NaN();
inline constexpr qreal infinite = std::numeric_limits<qreal>::infinity();

inline constexpr QRgb blue = 0xFF3B82F6;
inline constexpr QRgb red = 0xFFEF4444;
inline constexpr QRgb yellow = 0xFFFFCC00;
/// What plates are made of.
inline constexpr QRgb plateGround = 0xFF1F1F1F;

inline const std::array<qreal, 3> displayScales{1, 1.5, 2};

inline std::string nameOfScale(qreal scale) {
    return std::to_string(std::lround(scale * 100));
}

inline OverlayScene emptyScene(const QSizeF& size = {400, 300}) {
    OverlayScene scene;
    scene.shapes.size = size;
    return scene;
}

inline Marker markerAt(const QRectF& rect, const QString& label = {}, int index = 1, QRgb color = blue) {
    return {.rect = rect, .label = label, .color = QColor(color), .index = index};
}

/// Where the layers of a marker with that region in the view lie.
inline MarkerLayout placed(const QRectF& region, const QString& label = {},
                           const std::optional<QRectF>& display = std::nullopt) {
    return marker_painter::layout(markerAt({}, label), region, 1, MarkerStyle::onOverlay,
                                  marker_painter::Spotlight::off, display);
}

inline Annotation shapeAt(Annotation::Kind kind, const QPointF& start, const QPointF& end, QRgb color = red) {
    return {.kind = kind, .start = start, .end = end, .color = QColor(color), .strokeWidth = 3};
}

/// A picture of a view's ground with that many pixels to the point; as large as what Qt shows of such a view.
inline QImage viewGround(const QSizeF& size, qreal ratio, QRgb under) {
    const QSizeF pixels = size * ratio;
    QImage picture = ground(
        {static_cast<int>(std::lround(pixels.width())), static_cast<int>(std::lround(pixels.height()))},
        under);
    picture.setDevicePixelRatio(ratio);
    return picture;
}

inline QRegion wholeOf(const OverlayScene& scene) {
    return QRectF({0, 0}, scene.shapes.size).toAlignedRect();
}

/// Of a whole scene.
inline QImage pictureOf(const OverlayScene& scene, qreal ratio = 1, QRgb under = white) {
    QImage picture = viewGround(scene.shapes.size, ratio, under);
    QPainter painter(&picture);
    paintOverlay(painter, scene, wholeOf(scene));
    painter.end();
    return picture;
}

/// Brings the picture of another scene up to date within a region, as a window does: the pixels of the
/// region are those whose rounded places are in it.
inline void repaint(QImage& picture, const OverlayScene& scene, const QRegion& region, QRgb under = white) {
    const qreal ratio = picture.devicePixelRatio();
    QPainter painter(&picture);
    // Clipped in pixels.
    painter.setTransform(QTransform::fromScale(1 / ratio, 1 / ratio));
    painter.setClipRegion(QTransform::fromScale(ratio, ratio).map(region));
    painter.fillRect(QRect({0, 0}, picture.size()), QColor(under));
    painter.resetTransform();
    paintOverlay(painter, scene, region);
}

inline qint64 areaOf(const QRegion& region) {
    qint64 area = 0;
    for (const QRect& rect : region)
        area += qint64(rect.width()) * rect.height();
    return area;
}

} // namespace orvane::test
