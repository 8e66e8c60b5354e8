#include "OrvaneCore/marking/submit/SubmitPictures.h"

#include "OrvaneCore/capture/RegionSize.h"
#include "OrvaneCore/drawing/DrawingLimits.h"
#include "OrvaneCore/drawing/RectEdges.h"
#include "OrvaneCore/drawing/SpotlightBlur.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/submit/SubmitRequest.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

// Far beyond every picture, and a rectangle from there still has whole numbers of 32 bits.
constexpr qreal farthestCorner = 1e9;

bool canBePicture(const QSizeF& pixels) {
    try {
        checkRegionSize(pixels, pixels);
        return true;
    } catch (const RegionSizeError&) {
        return false;
    }
}

QSizeF wholePixels(const QSizeF& size) {
    return {std::max(1.0, std::round(size.width())), std::max(1.0, std::round(size.height()))};
}

} // namespace

SubmitPictures::SubmitPictures(QImage capture, const QRectF& boundsPoints)
    : m_capture(std::move(capture))
    , m_boundsPoints(boundsPoints)
    , m_scaleX(m_capture.width() / boundsPoints.width())
    , m_scaleY(m_capture.height() / boundsPoints.height()) {}

QImage SubmitPictures::annotatedDisplay(const std::vector<Marker>& markers,
                                        const std::vector<Annotation>& annotations,
                                        marker_painter::Spotlight spotlight) const {
    const PointMap map = mapFrom(m_boundsPoints.topLeft());
    std::vector<QRectF> rects;
    rects.reserve(markers.size());
    for (const Marker& marker : markers)
        rects.push_back(map(marker.rect));

    QImage picture = spotlight == marker_painter::Spotlight::on
                         ? blurOutside(m_capture, rects, MarkupModes::spotlightSigma)
                         : m_capture;
    QPainter painter(&picture);
    const QRectF whole = picture.rect();
    for (std::size_t i = 0; i < markers.size(); ++i)
        marker_painter::draw(painter, markers[i], rects[i], scale(), MarkerStyle::onImage, spotlight, whole);
    for (const Annotation& annotation : annotations)
        annotation_renderer::draw(painter, annotation, map, scale(), whole);
    painter.end();
    return picture;
}

QImage SubmitPictures::regionCrop(const QRectF& region) const {
    if (!isFinite(region))
        return {};
    const QRectF mapped = mapFrom(m_boundsPoints.topLeft())(region.normalized());
    const QSizeF size = wholePixels(mapped.size());
    if (!canBePicture(size))
        return {};
    const QRect pixels(drawable(mapped.topLeft(), farthestCorner).toPoint(), size.toSize());
    if (m_capture.rect().contains(pixels))
        return m_capture.copy(pixels);
    QImage crop(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    crop.fill(Qt::transparent);
    QPainter painter(&crop);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(-pixels.topLeft(), m_capture);
    painter.end();
    return crop;
}

void SubmitPictures::drawOnCrop(QImage& crop, const QRectF& region,
                                const std::vector<Annotation>& annotations) const {
    if (annotations.empty())
        return;
    QPainter painter(&crop);
    for (const Annotation& annotation : annotations) {
        annotation_renderer::draw(painter, annotation, mapFrom(region.normalized().topLeft()), scale(),
                                  QRectF(crop.rect()));
    }
}

PointMap SubmitPictures::mapFrom(const QPointF& origin) const {
    return {.origin = origin, .scaleX = m_scaleX, .scaleY = m_scaleY};
}

qreal SubmitPictures::scale() const {
    return std::max(m_scaleX, m_scaleY);
}

} // namespace orvane
