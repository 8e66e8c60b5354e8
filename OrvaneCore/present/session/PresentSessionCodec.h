#pragma once

#include "OrvaneCore/marking/Annotation.h"
#include "OrvaneCore/platform/Displays.h"
#include "OrvaneCore/present/session/PresentSession.h"

#include <QHash>
#include <QUuid>

#include <optional>
#include <vector>

/// Drawn shapes as the records of a session and back. Pure; any thread.
namespace orvane::present_session_codec {

/// The displays as a session lists them. One without a number, 0, is left out, and still its position
/// counts for the `index` of those after it.
std::vector<DisplayInfo> currentDisplays(const std::vector<Display>& displays);

/// Keeps the order of the shapes. `timestampsMs` tells when they were drawn, where that is known.
PresentSessionBundle encode(const std::vector<Annotation>& annotations,
                            const std::vector<DisplayInfo>& displays,
                            const std::optional<WindowContext>& window,
                            const QHash<QUuid, qint64>& timestampsMs, const SessionMeta& meta);

/// One shape. Its display, for both of its ends, is the first that contains its centre, else the first of
/// all. Without displays the unit square stands for one.
StrokeRecord encodeStroke(const Annotation& annotation, qint64 zOrder,
                          const std::vector<DisplayInfo>& displays, std::optional<qint64> timestampMs);

/// The name of the file that keeps the picture of an image.
QString imageFileName(const QUuid& annotationId);

/// The shapes where they were drawn. Strokes of an unknown kind are left out, an id that is no UUID is
/// replaced by a new one, an unknown role is the human's, and the colour is what can be read of it.
/// Pictures are not loaded.
std::vector<Annotation> decode(const PresentSessionBundle& bundle);

/// As `decode`, and with each shape moved to the same fractions of another display: the one at the
/// position `displayIndex` in `displays`, else the first, else the unit square.
std::vector<Annotation> remap(const PresentSessionBundle& bundle, const std::vector<DisplayInfo>& displays);

/// The point in fractions of the rectangle, neither clamped nor rounded; (0, 0) in an empty one.
QPointF normalize(const QPointF& point, const QRectF& rect);

} // namespace orvane::present_session_codec
