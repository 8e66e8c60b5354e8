#pragma once

#include "OrvaneCore/marking/Annotation.h"

#include <QColor>
#include <QRectF>
#include <QString>
#include <QUuid>

#include <optional>
#include <vector>

namespace orvane {

/// A numbered region of the screen: what becomes a crop and a line of text for the agent.
/// Rectangles are in global display points, y down. As with annotations, coordinates that are not finite hit
/// nothing and change nothing.
struct Marker {
    QUuid id = QUuid::createUuid();
    /// Normalised.
    QRectF rect = {};
    /// The human's note; empty for none.
    QString label = {};
    /// That of the outline.
    QColor color = {};
    /// The first is 1.
    int index = 1;

    // Found out when the marks are submitted.
    std::optional<QRectF> windowRelativeRect = {};
    std::optional<QString> windowAppName = {};
    std::optional<QRectF> windowBounds = {};
    std::optional<quint32> displayId = {};
    std::optional<QRectF> displayBounds = {};
    std::optional<QString> recognizedText = {};

    /// The four corners, in the order in which ties are decided.
    std::vector<Annotation::HandlePoint> cornerHandles() const;
    /// The nearest corner that is no farther than `tolerance`.
    std::optional<Annotation::Handle> cornerHandle(const QPointF& point, qreal tolerance) const;
    /// True on the outline and up to `tolerance` beside it.
    bool isOnBorder(const QPointF& point, qreal tolerance) const;

    /// The rectangle with a corner dragged to a point, normalised, however small. A handle that is no corner
    /// counts as the bottom right one.
    static QRectF reshapedRect(const QRectF& rect, Annotation::Handle handle, const QPointF& point);
};

/// The number of the first marker whose region contains the annotation's anchor.
std::optional<int> resolveRegionIndex(const Annotation& annotation, const std::vector<Marker>& markers);

} // namespace orvane
