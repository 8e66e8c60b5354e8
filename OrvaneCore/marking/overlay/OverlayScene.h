#pragma once

#include "OrvaneCore/marking/Annotation.h"
#include "OrvaneCore/marking/Marker.h"
#include "OrvaneCore/marking/submit/SubmitRequest.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QUuid>

#include <optional>
#include <vector>

namespace orvane {

/// All that one overlay view shows, at one moment. Marks are in global points, what is marked "view" is in
/// points of the view; both y down. Any number is allowed; what is not finite is not shown.
struct OverlayScene {
    /// Of the view, in points.
    QSizeF size;
    /// The global point at the view's top-left corner.
    QPointF origin;
    MarkupModes modes;
    std::vector<Marker> markers;
    std::vector<Annotation> annotations;
    std::optional<QUuid> selectedMarkerId;
    std::optional<QUuid> selectedAnnotationId;
    /// The region that is being dragged open, view.
    std::optional<QRectF> currentRect;
    /// The pointer, view.
    std::optional<QPointF> mousePosition;
    /// The shape that is being drawn.
    std::optional<Annotation> draft;
};

} // namespace orvane
