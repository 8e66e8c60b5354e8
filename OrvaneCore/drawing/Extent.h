#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

#include <optional>
#include <vector>

namespace orvane {

/// Where something that is drawn shows: rectangles in the space of its drawing, y down. The pixel that
/// antialiasing may add at an edge is not counted. Pure; any thread.
struct Extent {
    /// A rectangle whose inside has one look all over.
    struct Plane {
        QRectF outer;
        /// The inside; between it and `outer` is the edge. There is none where it has no width or height.
        QRectF inner;
        /// What it is painted with; nothing where it shows what lies below it.
        std::optional<QColor> paint = {};
    };

    /// Around all that shows but the plane.
    std::vector<QRectF> parts = {};
    std::optional<Plane> plane = {};
    /// A text has marks that stack without end, so that it may show anywhere. It is to be painted in a clip
    /// of the rectangle around all parts and the plane.
    bool overflows = false;

    /// Grown by a margin on every side.
    void add(const QRectF& rect, qreal margin = 0);
    /// The four sides of a rectangle, with a margin on both sides of each.
    void addFrame(const QRectF& rect, qreal margin);
    /// The curve of an ellipse, with a margin on both sides of it.
    void addEllipse(const QRectF& rect, qreal margin);
    /// A straight line that is drawn with round or flat ends and reaches `margin` to both sides.
    void addLine(const QPointF& from, const QPointF& to, qreal margin);
    /// A plate with a text that humans have typed; its ink may leave its lines. `scale` as for DrawnText.
    void addTypedText(const QRectF& plate, const QString& text, qreal scale);
};

} // namespace orvane
