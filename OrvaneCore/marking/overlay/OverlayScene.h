#pragma once

#include "OrvaneCore/marking/AnnotationTool.h"
#include "OrvaneCore/marking/Marker.h"
#include "OrvaneCore/marking/editing/AnnotationScene.h"
#include "OrvaneCore/marking/submit/SubmitRequest.h"

#include <QPointF>
#include <QRectF>
#include <QUuid>

#include <optional>
#include <vector>

namespace orvane {

/// All that one overlay view shows, at one moment. Marks are in global points, what is marked "view" is in
/// points of the view; both y down. Any number is allowed; what is not finite is not shown.
struct OverlayScene {
    /// Shapes, with the place and the size of the view.
    AnnotationScene shapes;
    MarkupModes modes;
    AnnotationTool tool = AnnotationTool::region;
    std::vector<Marker> markers;
    std::optional<QUuid> selectedMarkerId;
    /// The region that is being dragged open, view.
    std::optional<QRectF> currentRect;
    /// The pointer, view.
    std::optional<QPointF> mousePosition;
};

} // namespace orvane
