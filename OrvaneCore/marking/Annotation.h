#pragma once

#include <QColor>
#include <QImage>
#include <QLatin1String>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QStringView>
#include <QUuid>

#include <optional>
#include <utility>
#include <vector>

namespace orvane {

/// A shape drawn on the screen: a value and its geometry. It knows neither how it looks nor where it is kept.
///
/// Points are global display points, y down. Angles are radians, clockwise on the screen, 0 upright.
/// A rectangle contains the points of its left and top edges and not those of its right and bottom edges.
/// Coordinates that are not finite hit nothing and change nothing, and a shape with such has no handles.
struct Annotation {
    enum class Kind { arrow, box, ellipse, highlight, text, image };
    /// Who drew it.
    enum class Role { human, agent, review };
    enum class Handle { start, end, topLeft, topRight, bottomLeft, bottomRight, rotate };
    using HandlePoint = std::pair<Handle, QPointF>;

    QUuid id = QUuid::createUuid();
    Kind kind = Kind::arrow;
    /// Arrow tail, one corner of a box, the top-left corner of a text.
    QPointF start = {};
    /// Arrow head, the opposite corner.
    QPointF end = {};
    /// What a `text` annotation says.
    QString text = {};
    QColor color = {};
    /// Points.
    qreal strokeWidth = 0;
    /// A note attached to the shape; empty for none.
    QString label = {};
    /// The picture of an `image` annotation; null for none.
    QImage image = {};
    /// About the centre. Only images are rotated.
    qreal rotation = 0;
    Role role = Role::human;
    /// A reviewer struck it out. It is kept and not drawn as the others are.
    bool removed = false;
    /// The index of the marker that it belongs to.
    std::optional<int> regionIndex = {};
    /// The display that it was drawn on.
    std::optional<quint32> displayId = {};

    /// Equality of everything but colour and picture: recolouring alone is no change.
    friend bool operator==(const Annotation& left, const Annotation& right);

    QPointF center() const;
    /// The rectangle between both points, normalised.
    QRectF boundingRect() const;
    /// The point that decides to which region the shape belongs.
    QPointF anchorForRegion() const;

    /// True when a click at the point means this shape. `textSize` is the size of a text's drawn text at
    /// scale 1. A text is picked up in the rectangle that lies above `start`.
    bool hitTest(const QPointF& point, qreal tolerance, const QSizeF& textSize) const;
    /// What it can be reshaped by, in the order in which ties are decided. Texts have none.
    std::vector<HandlePoint> handles() const;
    /// The nearest handle that is no farther than `tolerance`.
    std::optional<Handle> handle(const QPointF& point, qreal tolerance) const;
    Annotation moved(const QPointF& offset) const;
    /// The shape with a handle dragged to a point. Corners may change sides, so that `start` and `end` are
    /// not sorted.
    Annotation reshaped(Handle handle, const QPointF& point) const;

    /// The point turned about a centre.
    static QPointF rotate(const QPointF& point, const QPointF& center, qreal angle);
    /// The way from a point to the nearest point of the segment between two others.
    static qreal distance(const QPointF& point, const QPointF& segmentStart, const QPointF& segmentEnd);
};

/// The word for it in files and messages.
QLatin1String rawValue(Annotation::Kind kind);
QLatin1String rawValue(Annotation::Role role);
std::optional<Annotation::Kind> annotationKind(QStringView rawValue);
std::optional<Annotation::Role> annotationRole(QStringView rawValue);

} // namespace orvane
