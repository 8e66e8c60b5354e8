#include "OrvaneCore/drawing/SoftShadow.h"

#include "OrvaneCore/drawing/GaussianBlur.h"

#include <QImage>
#include <QPainter>

#include <cmath>

namespace orvane {

namespace {

// Three deviations hold all of a Gaussian that eight bits can show.
constexpr qreal shownDeviations = 3;

qreal deviation(qreal blur) {
    return blur / 2;
}

} // namespace

void drawSoftShadow(QPainter& painter, const QPainterPath& path, const QColor& color, qreal blur,
                    const QPointF& offset) {
    const QTransform toDevice = painter.deviceTransform();
    const qreal pixelsPerUnit = std::hypot(toDevice.m11(), toDevice.m12());
    const qreal sigma = deviation(blur) * pixelsPerUnit;
    const int reach = static_cast<int>(std::ceil(shownDeviations * sigma)) + 1;

    const QPainterPath devicePath = toDevice.map(path.translated(offset));
    // A painter adds to what its user set: several pixels to a point, and the place of a widget in its
    // window.
    const QTransform added = painter.worldTransform().inverted() * toDevice;
    const QRectF shown = added.mapRect(QRectF(0, 0, painter.device()->width(), painter.device()->height()))
                             .adjusted(-reach, -reach, reach, reach);
    QRectF bounds = devicePath.boundingRect();
    bounds = bounds.adjusted(-reach, -reach, reach, reach) & shown;
    const QRect area = bounds.toAlignedRect();
    if (area.isEmpty())
        return;

    QImage shape(area.size(), QImage::Format_Alpha8);
    shape.fill(0);
    QPainter shapePainter(&shape);
    shapePainter.setRenderHint(QPainter::Antialiasing);
    shapePainter.translate(-area.topLeft());
    shapePainter.fillPath(devicePath, Qt::black);
    shapePainter.end();

    QImage shadow(area.size(), QImage::Format_ARGB32_Premultiplied);
    shadow.fill(color);
    QPainter shadowPainter(&shadow);
    shadowPainter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    shadowPainter.drawImage(0, 0, gaussianBlur(shape, sigma));
    shadowPainter.end();

    painter.save();
    painter.setWorldTransform(added.inverted());
    painter.drawImage(area.topLeft(), shadow);
    painter.restore();
}

qreal softShadowReach(qreal blur) {
    // The reach is rounded up, by a pixel to spare, and its area grows to whole pixels.
    constexpr qreal rounding = 3;
    return shownDeviations * deviation(blur) + rounding;
}

} // namespace orvane
