#include "OrvaneCore/marking/Annotation.h"

#include "OrvaneCore/marking/CornerHandles.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane {

namespace {

using Handle = Annotation::Handle;

constexpr qreal rotateHandleDistance = 30;

template <typename Value>
using Word = std::pair<Value, QLatin1String>;

constexpr std::array kindWords{
    Word<Annotation::Kind>{Annotation::Kind::arrow, QLatin1String("arrow")},
    Word<Annotation::Kind>{Annotation::Kind::box, QLatin1String("box")},
    Word<Annotation::Kind>{Annotation::Kind::ellipse, QLatin1String("ellipse")},
    Word<Annotation::Kind>{Annotation::Kind::highlight, QLatin1String("highlight")},
    Word<Annotation::Kind>{Annotation::Kind::text, QLatin1String("text")},
    Word<Annotation::Kind>{Annotation::Kind::image, QLatin1String("image")},
};

constexpr std::array roleWords{
    Word<Annotation::Role>{Annotation::Role::human, QLatin1String("human")},
    Word<Annotation::Role>{Annotation::Role::agent, QLatin1String("agent")},
    Word<Annotation::Role>{Annotation::Role::review, QLatin1String("review")},
};

template <typename Words, typename Value>
QLatin1String wordOf(const Words& words, Value value) {
    const auto found = std::find_if(words.begin(), words.end(),
                                    [value](const Word<Value>& word) { return word.first == value; });
    return found == words.end() ? QLatin1String() : found->second;
}

template <typename Value, typename Words>
std::optional<Value> valueOf(const Words& words, QStringView text) {
    const auto found = std::find_if(words.begin(), words.end(),
                                    [text](const Word<Value>& word) { return text == word.second; });
    return found == words.end() ? std::nullopt : std::optional(found->first);
}

/// QPointF's own comparison lets small differences pass.
bool samePoint(const QPointF& left, const QPointF& right) {
    return left.x() == right.x() && left.y() == right.y();
}

RectEdges edgesOf(const Annotation& annotation) {
    return RectEdges::between(annotation.start, annotation.end);
}

bool hitsEllipse(const RectEdges& edges, const QPointF& point, qreal tolerance) {
    const qreal a = edges.width() / 2;
    const qreal b = edges.height() / 2;
    if (!(a > 0 && b > 0))
        return edges.contains(point, tolerance);
    // The distances in units of the axes, all times the shorter one: that way no quotient overflows.
    const qreal shorter = std::min(a, b);
    const QPointF offset = point - edges.center();
    const qreal reach = std::hypot(offset.x() * (shorter / a), offset.y() * (shorter / b));
    return std::abs(reach - shorter) <= tolerance;
}

bool hitsText(const QPointF& start, const QSizeF& size, const QPointF& point, qreal tolerance) {
    if (!(size.width() >= 0 && size.height() >= 0))
        return false;
    const QPointF opposite(start.x() + size.width(), start.y() - size.height());
    return isFinite(opposite) && RectEdges::between(start, opposite).contains(point, tolerance);
}

/// Clockwise from straight above the centre.
qreal bearing(const QPointF& point, const QPointF& center) {
    const qreal right = point.x() - center.x();
    const qreal up = center.y() - point.y();
    // Where both are zero, atan2 would go by the signs of the zeros.
    return right == 0 && up == 0 ? 0 : std::atan2(right, up);
}

/// The point on the diagonal of a rectangle of these proportions, so that none of its sides passes the
/// target.
QPointF cornerOfSameAspect(const RectEdges& edges, const QPointF& anchor, const QPointF& target) {
    const qreal aspect = edges.width() / edges.height();
    const QPointF offset = target - anchor;
    const qreal height = std::min(std::abs(offset.y()), std::abs(offset.x()) / aspect);
    const qreal width = aspect * height;
    return {anchor.x() + (offset.x() >= 0 ? width : -width),
            anchor.y() + (offset.y() >= 0 ? height : -height)};
}

void dragCorner(Annotation& annotation, Handle handle, const QPointF& point) {
    const RectEdges edges = edgesOf(annotation);
    QPointF target = point;
    if (annotation.rotation != 0)
        target = Annotation::rotate(point, edges.center(), -annotation.rotation);
    annotation.start = cornerOpposite(edges, handle);
    const bool keepsAspect =
        annotation.kind == Annotation::Kind::image && edges.width() > 0 && edges.height() > 0;
    annotation.end = keepsAspect ? cornerOfSameAspect(edges, annotation.start, target) : target;
}

} // namespace

bool operator==(const Annotation& left, const Annotation& right) {
    return left.id == right.id && left.kind == right.kind && samePoint(left.start, right.start) &&
           samePoint(left.end, right.end) && left.text == right.text && left.label == right.label &&
           left.strokeWidth == right.strokeWidth && left.rotation == right.rotation &&
           left.role == right.role && left.removed == right.removed &&
           left.regionIndex == right.regionIndex && left.displayId == right.displayId;
}

QPointF Annotation::center() const {
    return edgesOf(*this).center();
}

QRectF Annotation::boundingRect() const {
    return edgesOf(*this).toRect();
}

QPointF Annotation::anchorForRegion() const {
    switch (kind) {
    case Kind::arrow:
        return end;
    case Kind::text:
        return start;
    case Kind::box:
    case Kind::ellipse:
    case Kind::highlight:
    case Kind::image:
        break;
    }
    return center();
}

bool Annotation::hitTest(const QPointF& point, qreal tolerance, const QSizeF& textSize) const {
    if (!isFinite(point) || !isFinite(start) || !isFinite(end) || tolerance < 0)
        return false;
    switch (kind) {
    case Kind::arrow:
        return distance(point, start, end) <= tolerance;
    case Kind::box:
        return edgesOf(*this).outlineContains(point, tolerance);
    case Kind::ellipse:
        return hitsEllipse(edgesOf(*this), point, tolerance);
    case Kind::highlight:
    case Kind::image:
        return edgesOf(*this).contains(point, tolerance);
    case Kind::text:
        return hitsText(start, textSize, point, tolerance);
    }
    return false;
}

std::vector<Annotation::HandlePoint> Annotation::handles() const {
    if (!isFinite(start) || !isFinite(end))
        return {};
    const RectEdges edges = edgesOf(*this);
    std::vector<HandlePoint> handles;
    switch (kind) {
    case Kind::arrow:
        return {{Handle::start, start}, {Handle::end, end}};
    case Kind::box:
    case Kind::ellipse:
    case Kind::highlight:
        return cornerHandles(edges);
    case Kind::image:
        handles = cornerHandles(edges);
        handles.emplace_back(Handle::rotate, QPointF(edges.center().x(), edges.top - rotateHandleDistance));
        break;
    case Kind::text:
        break;
    }
    if (rotation != 0) {
        for (auto& [handle, place] : handles)
            place = rotate(place, edges.center(), rotation);
    }
    return handles;
}

std::optional<Handle> Annotation::handle(const QPointF& point, qreal tolerance) const {
    return nearestHandle(handles(), point, tolerance);
}

Annotation Annotation::moved(const QPointF& offset) const {
    Annotation copy = *this;
    if (isFinite(offset)) {
        copy.start += offset;
        copy.end += offset;
    }
    return copy;
}

Annotation Annotation::reshaped(Handle handle, const QPointF& point) const {
    Annotation copy = *this;
    if (!isFinite(point))
        return copy;
    switch (handle) {
    case Handle::start:
        copy.start = point;
        break;
    case Handle::end:
        copy.end = point;
        break;
    case Handle::rotate:
        copy.rotation = bearing(point, center());
        break;
    case Handle::topLeft:
    case Handle::topRight:
    case Handle::bottomLeft:
    case Handle::bottomRight:
        dragCorner(copy, handle, point);
        break;
    }
    return copy;
}

QPointF Annotation::rotate(const QPointF& point, const QPointF& center, qreal angle) {
    const qreal sine = std::sin(angle);
    const qreal cosine = std::cos(angle);
    const QPointF offset = point - center;
    return {center.x() + cosine * offset.x() - sine * offset.y(),
            center.y() + sine * offset.x() + cosine * offset.y()};
}

qreal Annotation::distance(const QPointF& point, const QPointF& segmentStart, const QPointF& segmentEnd) {
    const QPointF segment = segmentEnd - segmentStart;
    const QPointF offset = point - segmentStart;
    const qreal squaredLength = QPointF::dotProduct(segment, segment);
    const qreal part = squaredLength == 0
                           ? 0
                           : std::clamp<qreal>(QPointF::dotProduct(offset, segment) / squaredLength, 0, 1);
    const QPointF gap = offset - part * segment;
    return std::hypot(gap.x(), gap.y());
}

QLatin1String rawValue(Annotation::Kind kind) {
    return wordOf(kindWords, kind);
}

QLatin1String rawValue(Annotation::Role role) {
    return wordOf(roleWords, role);
}

std::optional<Annotation::Kind> annotationKind(QStringView rawValue) {
    return valueOf<Annotation::Kind>(kindWords, rawValue);
}

std::optional<Annotation::Role> annotationRole(QStringView rawValue) {
    return valueOf<Annotation::Role>(roleWords, rawValue);
}

} // namespace orvane
