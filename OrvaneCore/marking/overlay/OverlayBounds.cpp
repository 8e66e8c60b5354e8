#include "OrvaneCore/marking/overlay/OverlayBounds.h"

#include "OrvaneCore/drawing/DrawingLimits.h"
#include "OrvaneCore/marking/AnnotationRenderer.h"
#include "OrvaneCore/marking/overlay/OverlayFonts.h"
#include "OrvaneCore/marking/overlay/OverlayLayout.h"
#include "OrvaneCore/marking/overlay/OverlayTexts.h"

#include <QLineF>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane {

namespace {

// What antialiasing adds at an edge, and what rounding to the pixels of a display moves it by.
constexpr qreal edge = 1;

constexpr qreal haloReach = 1.25;
/// Far enough inside that not even the round corners show there.
constexpr qreal regionInset = 4;
constexpr qreal badgeRadius = 14;
/// The shadow of the badge fades out within this distance, that of the capsule within the next.
constexpr qreal badgeShadowReach = 7.5;
constexpr qreal labelShadowReach = 9;
constexpr qreal shadowDrop = 1;
/// Wider than a digit of the badge's number.
constexpr qreal digitWidth = 13;
/// The em of the largest font that humans type in: how far ink may leave its line.
constexpr qreal inkReach = 15;

constexpr qreal dotReach = 6.25;
constexpr qreal widestStroke = 1e4;
constexpr qreal textPlatePadding = 5;
constexpr qreal labelPlatePadding = 4;

QRect covering(const QRectF& rect, qreal margin) {
    return drawable(rect).adjusted(-margin, -margin, margin, margin).toAlignedRect();
}

/// The whole points inside a rectangle after it has shrunk; none where it is too small for that.
QRect within(const QRectF& rect, qreal inset) {
    const QRectF shrunk = drawable(rect).adjusted(inset, inset, -inset, -inset);
    if (shrunk.width() <= 0 || shrunk.height() <= 0)
        return {};
    const QPoint first(static_cast<int>(std::ceil(shrunk.left())), static_cast<int>(std::ceil(shrunk.top())));
    const QPoint end(static_cast<int>(std::floor(shrunk.right())),
                     static_cast<int>(std::floor(shrunk.bottom())));
    const QRect inside(first, end - QPoint(1, 1));
    // Not even an inverted one, with which Qt would go on to count.
    return inside.isValid() ? inside : QRect();
}

QRect wholeView(const QSizeF& size) {
    if (!isFinite(QPointF(size.width(), size.height())) || size.width() <= 0 || size.height() <= 0)
        return {};
    return QRectF({0, 0}, size.boundedTo({drawingLimit, drawingLimit})).toAlignedRect();
}

bool hasCombiningMarks(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar character) { return character.isMark(); });
}

QRectF around(const QPointF& center, qreal reach) {
    return {center.x() - reach, center.y() - reach, 2 * reach, 2 * reach};
}

template <typename Item>
const Item* withId(const std::vector<Item>& items, const std::optional<QUuid>& id) {
    const auto found =
        std::find_if(items.begin(), items.end(), [&id](const Item& item) { return id && item.id == *id; });
    return found == items.end() ? nullptr : &*found;
}

/// The lines of an annotation in the view, as they are drawn.
struct Points {
    QPointF start;
    QPointF end;
    QRectF rect;
    qreal strokeWidth;
};

Points pointsOf(const Annotation& annotation, const QPointF& origin) {
    const PointMap toView{.origin = origin};
    const QPointF start = toView(annotation.start);
    const QPointF end = toView(annotation.end);
    return {
        .start = start,
        .end = end,
        .rect = QRectF(drawable(start), drawable(end)).normalized(),
        .strokeWidth = std::min(std::max(1.0, annotation.strokeWidth), widestStroke),
    };
}

} // namespace

QRect VisualBounds::boundingRect() const {
    QRect bounds = plane ? plane->outer : QRect();
    for (const QRect& part : parts)
        bounds |= part;
    return bounds;
}

bool VisualBounds::touches(const QRegion& region) const {
    if (plane) {
        const bool isTouched = region.intersects(plane->outer);
        if (isTouched && (plane->paint || !(region & plane->outer).subtracted(plane->inner).isEmpty()))
            return true;
    }
    return std::any_of(parts.begin(), parts.end(),
                       [&region](const QRect& part) { return region.intersects(part); });
}

QRegion VisualBounds::difference(const VisualBounds& before, const VisualBounds& after) {
    QRegion region;
    for (const VisualBounds* bounds : {&before, &after}) {
        if (bounds->plane)
            region += bounds->plane->outer;
    }
    if (before.plane && after.plane && before.plane->paint == after.plane->paint)
        region -= before.plane->inner & after.plane->inner;
    for (const VisualBounds* bounds : {&before, &after}) {
        for (const QRect& part : bounds->parts)
            region += part;
    }
    return region;
}

OverlayBounds::OverlayBounds(const OverlayScene& scene)
    : m_scene(scene)
    , m_view(wholeView(scene.size)) {}

void OverlayBounds::add(VisualBounds& bounds, const QRectF& rect, qreal margin) const {
    const QRect shown = covering(rect, margin) & m_view;
    if (!shown.isEmpty())
        bounds.parts.push_back(shown);
}

void OverlayBounds::addDot(VisualBounds& bounds, const QPointF& center) const {
    add(bounds, around(drawable(center), dotReach), edge);
}

void OverlayBounds::addFrame(VisualBounds& bounds, const QRectF& rect, qreal margin) const {
    add(bounds, {rect.topLeft(), QSizeF(rect.width(), 0)}, margin);
    add(bounds, {rect.bottomLeft(), QSizeF(rect.width(), 0)}, margin);
    add(bounds, {rect.topLeft(), QSizeF(0, rect.height())}, margin);
    add(bounds, {rect.topRight(), QSizeF(0, rect.height())}, margin);
}

void OverlayBounds::addEllipse(VisualBounds& bounds, const QRectF& rect, qreal margin) const {
    // Larger ones leave their curve by more than the margin where they are drawn as cubic pieces.
    constexpr qreal largestOutline = 4000;
    if (std::max(rect.width(), rect.height()) > largestOutline) {
        add(bounds, rect, margin);
        return;
    }
    // Between two points of a quarter both coordinates only rise or only fall.
    constexpr int pieces = 32;
    const auto pointAt = [&rect](int piece) {
        const qreal angle = piece * 2 * std::numbers::pi / pieces;
        return rect.center() +
               QPointF(rect.width() / 2 * std::cos(angle), rect.height() / 2 * std::sin(angle));
    };
    for (int piece = 0; piece < pieces; ++piece)
        add(bounds, QRectF(pointAt(piece), pointAt(piece + 1)).normalized(), margin);
}

void OverlayBounds::addArrow(VisualBounds& bounds, const QPointF& start, const QPointF& end,
                             qreal width) const {
    const qreal head = std::max(width * 3.5, 12.0);
    add(bounds, around(drawable(end), head + width / 2), edge);

    const qreal margin = width / 2 + edge;
    const QRectF shown =
        QRectF(m_view).adjusted(-head, -head, head, head).adjusted(-margin, -margin, margin, margin);
    // As far as the renderer follows an arrow.
    constexpr qreal farthest = 1e12;
    const auto shaft = clipped(QLineF(drawable(start, farthest), drawable(end, farthest)), shown);
    if (!shaft)
        return;
    // A slanting line is far from the corners of the rectangle around it.
    constexpr qreal pieceLength = 48;
    constexpr qreal mostPieces = 64;
    const qreal slant = std::min(std::abs(shaft->dx()), std::abs(shaft->dy()));
    const int pieces = static_cast<int>(std::clamp(std::ceil(slant / pieceLength), 1.0, mostPieces));
    for (int piece = 0; piece < pieces; ++piece) {
        const QPointF from = shaft->pointAt(static_cast<qreal>(piece) / pieces);
        const QPointF to = shaft->pointAt(static_cast<qreal>(piece + 1) / pieces);
        add(bounds, QRectF(from, to).normalized(), margin);
    }
}

void OverlayBounds::setPlane(VisualBounds& bounds, const QRectF& rect, qreal margin, qreal inset,
                             const std::optional<QColor>& paint) const {
    const QRect outer = covering(rect, margin) & m_view;
    if (!outer.isEmpty())
        bounds.plane = {.outer = outer, .inner = within(rect, inset) & m_view, .paint = paint};
}

void OverlayBounds::addText(VisualBounds& bounds, const QRectF& plate, qreal margin,
                            const QString& text) const {
    add(bounds, plate, std::max(margin, inkReach));
    if (hasCombiningMarks(text))
        add(bounds, bounds.boundingRect(), 0);
}

VisualBounds OverlayBounds::marker(const Marker& marker) const {
    VisualBounds bounds;
    const auto region = regionInView(m_scene, marker);
    if (!region)
        return bounds;
    setPlane(bounds, *region, haloReach + edge, regionInset,
             m_scene.modes.spotlight ? std::nullopt : std::optional(marker.color));
    add(bounds, overlay_layout::sizeTag(*region, m_scene.size), edge);
    const qreal numberReach = digitWidth / 2 * static_cast<qreal>(QString::number(marker.index).size());
    const qreal badgeReach = badgeRadius + badgeShadowReach;
    const qreal badgeWidth = std::max(badgeReach, numberReach);
    add(bounds,
        {region->left() - badgeWidth, region->top() - badgeReach + shadowDrop, 2 * badgeWidth,
         2 * badgeReach},
        edge);
    if (!marker.label.isEmpty()) {
        addText(bounds, overlay_layout::label(*region, marker.label), labelShadowReach + shadowDrop + edge,
                marker.label);
    } else if (!m_scene.modes.ocr) {
        add(bounds, overlay_layout::hint(*region), edge);
    }
    return bounds;
}

VisualBounds OverlayBounds::currentRect() const {
    VisualBounds bounds;
    if (const auto rect = currentRectInView(m_scene)) {
        constexpr qreal halfOutline = 1;
        setPlane(bounds, *rect, halfOutline + edge, halfOutline + 2 * edge, QColor(Qt::yellow));
        add(bounds, overlay_layout::dimensionLabel(*rect, m_scene.size), edge);
    }
    return bounds;
}

VisualBounds OverlayBounds::annotation(const Annotation& annotation) const {
    VisualBounds bounds;
    if (!isShown(m_scene, annotation))
        return bounds;
    const Points points = pointsOf(annotation, m_scene.origin);
    const qreal stroked = points.strokeWidth / 2 + 2 * edge;
    switch (annotation.kind) {
    case Annotation::Kind::arrow:
        addArrow(bounds, points.start, points.end, points.strokeWidth);
        break;
    case Annotation::Kind::box:
        addFrame(bounds, points.rect, stroked);
        break;
    case Annotation::Kind::ellipse:
        addEllipse(bounds, points.rect, stroked);
        break;
    case Annotation::Kind::highlight:
        setPlane(bounds, points.rect, edge, 2 * edge, annotation.color);
        break;
    case Annotation::Kind::text: {
        if (annotation.text.isEmpty())
            return bounds;
        const QPointF padding(textPlatePadding, textPlatePadding);
        addText(bounds,
                {drawable(points.start) - padding, overlayTextSize(OverlayFont::shapeText, annotation.text) +
                                                       QSizeF(2 * textPlatePadding, 2 * textPlatePadding)},
                edge, annotation.text);
        return bounds;
    }
    case Annotation::Kind::image: {
        if (points.rect.width() <= 1 || points.rect.height() <= 1)
            return bounds;
        if (annotation.image.isNull()) {
            add(bounds, points.rect, stroked);
            break;
        }
        const QRectF fitted =
            annotation_renderer::aspectFit(annotation.image.deviceIndependentSize(), points.rect);
        QTransform turn;
        turn.translate(fitted.center().x(), fitted.center().y());
        if (std::isfinite(annotation.rotation))
            turn.rotate(annotation.rotation * 180 / std::numbers::pi);
        turn.translate(-fitted.center().x(), -fitted.center().y());
        add(bounds, turn.mapRect(fitted), 2 * edge);
        break;
    }
    }
    if (!annotation.label.isEmpty()) {
        const QSizeF plate = overlayTextSize(OverlayFont::shapeLabel, annotation.label) +
                             QSizeF(2 * labelPlatePadding, 2 * labelPlatePadding);
        addText(bounds, {points.rect.topLeft() - QPointF(0, labelPlatePadding + plate.height()), plate}, edge,
                annotation.label);
    }
    return bounds;
}

VisualBounds OverlayBounds::selectedMarker() const {
    VisualBounds bounds;
    const Marker* marker = orvane::selectedMarker(m_scene);
    const auto region = marker ? regionInView(m_scene, *marker) : std::nullopt;
    if (region) {
        for (const QPointF& corner :
             {region->topLeft(), region->topRight(), region->bottomLeft(), region->bottomRight()})
            addDot(bounds, corner);
    }
    return bounds;
}

VisualBounds OverlayBounds::selectedAnnotation() const {
    VisualBounds bounds;
    const Annotation* annotation = orvane::selectedAnnotation(m_scene);
    if (annotation == nullptr || !isShown(m_scene, *annotation))
        return bounds;
    const PointMap toView{.origin = m_scene.origin};
    for (const auto& [handle, point] : annotation->handles()) {
        if (!isFinite(point))
            continue;
        addDot(bounds, toView(point));
        if (handle != Annotation::Handle::rotate)
            continue;
        const QRectF rect = annotation->boundingRect();
        const QPointF top =
            Annotation::rotate({rect.center().x(), rect.top()}, annotation->center(), annotation->rotation);
        add(bounds, QRectF(drawable(toView(top)), drawable(toView(point))).normalized(), 2 * edge);
    }
    return bounds;
}

VisualBounds OverlayBounds::crosshair() const {
    VisualBounds bounds;
    if (const auto pointer = pointerInView(m_scene)) {
        constexpr qreal lineWidth = 0.5;
        add(bounds, QRectF(0, pointer->y(), m_view.width(), lineWidth), edge);
        add(bounds, QRectF(pointer->x(), 0, lineWidth, m_view.height()), edge);
        add(bounds,
            overlay_layout::coordinatePlate(*pointer, coordinateText(m_scene, *pointer), m_scene.size), edge);
    }
    return bounds;
}

VisualBounds OverlayBounds::instructions() const {
    VisualBounds bounds;
    if (m_view.isEmpty())
        return bounds;
    const QRectF text = overlay_layout::instructionsText(overlayInstructions(m_scene), m_scene.size);
    add(bounds, overlay_layout::instructionsPill(text), edge);
    return bounds;
}

std::optional<QRectF> regionInView(const OverlayScene& scene, const Marker& marker) {
    const QRectF region = PointMap{.origin = scene.origin}(marker.rect);
    if (!isFinite(region))
        return std::nullopt;
    return drawable(region);
}

std::optional<QRectF> currentRectInView(const OverlayScene& scene) {
    if (!scene.currentRect || !isFinite(*scene.currentRect))
        return std::nullopt;
    return drawable(*scene.currentRect);
}

std::optional<QPointF> pointerInView(const OverlayScene& scene) {
    if (!scene.mousePosition || !isFinite(*scene.mousePosition))
        return std::nullopt;
    return drawable(*scene.mousePosition);
}

bool isShown(const OverlayScene& scene, const Annotation& annotation) {
    return isFinite(scene.origin) && isFinite(annotation.start) && isFinite(annotation.end);
}

const Marker* selectedMarker(const OverlayScene& scene) {
    return withId(scene.markers, scene.selectedMarkerId);
}

const Annotation* selectedAnnotation(const OverlayScene& scene) {
    return withId(scene.annotations, scene.selectedAnnotationId);
}

QString coordinateText(const OverlayScene& scene, const QPointF& pointer) {
    return coordinateText(scene.origin + pointer);
}

QString overlayInstructions(const OverlayScene& scene) {
    return overlayInstructions(scene.modes, static_cast<int>(scene.markers.size()));
}

} // namespace orvane
