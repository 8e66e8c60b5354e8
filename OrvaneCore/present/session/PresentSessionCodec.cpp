#include "OrvaneCore/present/session/PresentSessionCodec.h"

#include "OrvaneCore/drawing/ColorText.h"
#include "OrvaneCore/drawing/RectEdges.h"

#include <algorithm>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

const QRectF unitSquare(0, 0, 1, 1);

const DisplayInfo* displayOf(const Annotation& annotation, const std::vector<DisplayInfo>& displays) {
    if (displays.empty())
        return nullptr;
    const QPointF center = annotation.center();
    const auto found = std::find_if(displays.begin(), displays.end(), [&center](const DisplayInfo& display) {
        return RectEdges::between(display.bounds.topLeft(), display.bounds.bottomRight()).contains(center, 0);
    });
    return found == displays.end() ? &displays.front() : &*found;
}

/// QUuid alone would also take braces and whatever follows the last digit.
std::optional<QUuid> parseUuid(const QString& text) {
    const QUuid id = QUuid::fromString(text);
    return uuidText(id) == text.toUpper() ? std::optional(id) : std::nullopt;
}

std::optional<Annotation> decodeStroke(const StrokeRecord& stroke) {
    const std::optional<Annotation::Kind> kind = annotationKind(stroke.kind);
    if (!kind)
        return std::nullopt;
    return Annotation{
        .id = parseUuid(stroke.id).value_or(QUuid::createUuid()),
        .kind = *kind,
        .start = stroke.startAbs,
        .end = stroke.endAbs,
        .text = stroke.text,
        .color = colorFromHex(stroke.colorHex),
        .strokeWidth = stroke.strokeWidth,
        .label = stroke.label,
        .rotation = stroke.rotation,
        .role = annotationRole(stroke.role).value_or(Annotation::Role::human),
        .removed = stroke.removed,
    };
}

QRectF targetBounds(const std::optional<qint64>& displayIndex, const std::vector<DisplayInfo>& displays) {
    if (displays.empty())
        return unitSquare;
    const bool exists =
        displayIndex && *displayIndex >= 0 && *displayIndex < static_cast<qint64>(displays.size());
    return displays[exists ? static_cast<std::size_t>(*displayIndex) : 0].bounds;
}

QPointF pointAt(const QPointF& fractions, const QRectF& rect) {
    const QRectF normal = rect.normalized();
    return {normal.x() + fractions.x() * normal.width(), normal.y() + fractions.y() * normal.height()};
}

} // namespace

std::vector<DisplayInfo> present_session_codec::currentDisplays(const std::vector<Display>& displays) {
    std::vector<DisplayInfo> infos;
    infos.reserve(displays.size());
    qint64 index = 0;
    for (const Display& display : displays) {
        if (display.id != 0) {
            infos.push_back({.displayId = display.id,
                             .index = index,
                             .bounds = display.boundsPoints,
                             .scale = display.scale});
        }
        ++index;
    }
    return infos;
}

PresentSessionBundle present_session_codec::encode(const std::vector<Annotation>& annotations,
                                                   const std::vector<DisplayInfo>& displays,
                                                   const std::optional<WindowContext>& window,
                                                   const QHash<QUuid, qint64>& timestampsMs,
                                                   const SessionMeta& meta) {
    PresentSessionBundle bundle{.meta = meta, .displays = displays, .window = window};
    bundle.strokes.reserve(annotations.size());
    for (const Annotation& annotation : annotations) {
        const auto timestamp = timestampsMs.constFind(annotation.id);
        bundle.strokes.push_back(encodeStroke(
            annotation, static_cast<qint64>(bundle.strokes.size()), displays,
            timestamp == timestampsMs.constEnd() ? std::nullopt : std::optional(timestamp.value())));
    }
    return bundle;
}

StrokeRecord present_session_codec::encodeStroke(const Annotation& annotation, qint64 zOrder,
                                                 const std::vector<DisplayInfo>& displays,
                                                 std::optional<qint64> timestampMs) {
    const DisplayInfo* display = displayOf(annotation, displays);
    const QRectF bounds = display ? display->bounds : unitSquare;
    const bool isImage = annotation.kind == Annotation::Kind::image;
    return {
        .id = uuidText(annotation.id),
        .kind = rawValue(annotation.kind),
        .colorHex = toHexString(annotation.color),
        .strokeWidth = annotation.strokeWidth,
        .text = annotation.text,
        .label = annotation.label,
        .imageFile = isImage ? std::optional(imageFileName(annotation.id)) : std::nullopt,
        .rotation = annotation.rotation,
        .role = rawValue(annotation.role),
        .removed = annotation.removed,
        .startAbs = annotation.start,
        .endAbs = annotation.end,
        .startNorm = normalize(annotation.start, bounds),
        .endNorm = normalize(annotation.end, bounds),
        .displayIndex = display ? std::optional(display->index) : std::nullopt,
        .zOrder = zOrder,
        .timestampMs = timestampMs,
    };
}

QString present_session_codec::imageFileName(const QUuid& annotationId) {
    return u"img-"_s + uuidText(annotationId) + u".png"_s;
}

std::vector<Annotation> present_session_codec::decode(const PresentSessionBundle& bundle) {
    std::vector<Annotation> annotations;
    annotations.reserve(bundle.strokes.size());
    for (const StrokeRecord& stroke : bundle.strokes) {
        if (std::optional<Annotation> annotation = decodeStroke(stroke))
            annotations.push_back(*std::move(annotation));
    }
    return annotations;
}

std::vector<Annotation> present_session_codec::remap(const PresentSessionBundle& bundle,
                                                     const std::vector<DisplayInfo>& displays) {
    std::vector<Annotation> annotations;
    annotations.reserve(bundle.strokes.size());
    for (const StrokeRecord& stroke : bundle.strokes) {
        std::optional<Annotation> annotation = decodeStroke(stroke);
        if (!annotation)
            continue;
        const QRectF bounds = targetBounds(stroke.displayIndex, displays);
        annotation->start = pointAt(stroke.startNorm, bounds);
        annotation->end = pointAt(stroke.endNorm, bounds);
        annotations.push_back(*std::move(annotation));
    }
    return annotations;
}

QPointF present_session_codec::normalize(const QPointF& point, const QRectF& rect) {
    const QRectF normal = rect.normalized();
    if (normal.width() == 0 || normal.height() == 0)
        return {0, 0};
    return {(point.x() - normal.x()) / normal.width(), (point.y() - normal.y()) / normal.height()};
}

} // namespace orvane
