#pragma once

#include "OrvaneCore/drawing/PointMap.h"
#include "OrvaneCore/marking/Annotation.h"
#include "OrvaneCore/marking/Marker.h"
#include "OrvaneCore/marking/MarkerPainter.h"

#include <QImage>
#include <QRectF>

#include <vector>

namespace orvane {

/// The pictures that are made of one captured display. Regions and annotations are in global points. Needs a
/// QGuiApplication; any thread, and several at a time.
class SubmitPictures {
public:
    /// `capture` shows all of the display, `boundsPoints` in global points, and neither is empty.
    SubmitPictures(QImage capture, const QRectF& boundsPoints);

    /// The whole display with the markers and, on top of them, the annotations; under a spotlight all but
    /// the markers' regions is blurred.
    QImage annotatedDisplay(const std::vector<Marker>& markers, const std::vector<Annotation>& annotations,
                            marker_painter::Spotlight spotlight) const;

    /// The region's pixels as they were captured, nothing drawn on them. The corner and the size are rounded
    /// to whole pixels, the size to at least one each way. What lies beyond the capture is transparent; a
    /// region within it has a crop in the capture's own format. Null for a region that is not finite or too
    /// large for a picture (see checkRegionSize).
    QImage regionCrop(const QRectF& region) const;

    /// Draws annotations onto the crop of a region.
    void drawOnCrop(QImage& crop, const QRectF& region, const std::vector<Annotation>& annotations) const;

private:
    PointMap mapFrom(const QPointF& origin) const;
    qreal scale() const;

    QImage m_capture;
    QRectF m_boundsPoints;
    qreal m_scaleX;
    qreal m_scaleY;
};

} // namespace orvane
