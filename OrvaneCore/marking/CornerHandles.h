#pragma once

#include "OrvaneCore/drawing/RectEdges.h"
#include "OrvaneCore/marking/Annotation.h"

#include <QPointF>

#include <optional>
#include <vector>

namespace orvane {

// What rectangles are reshaped by: shapes and regions alike. Pure; any thread.

/// The four corners in the order of `Annotation::Handle`.
std::vector<Annotation::HandlePoint> cornerHandles(const RectEdges& edges);

/// What stays where it is while a corner is dragged. A handle that is no corner counts as the bottom right
/// one.
QPointF cornerOpposite(const RectEdges& edges, Annotation::Handle handle);

/// The first of those that are nearest to the point, when it is no farther than `tolerance`.
std::optional<Annotation::Handle> nearestHandle(const std::vector<Annotation::HandlePoint>& handles,
                                                const QPointF& point, qreal tolerance);

} // namespace orvane
