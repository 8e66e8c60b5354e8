#pragma once

#include "OrvaneCore/present/session/PresentSessionCodec.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;

inline const QUuid someId(u"{0f8fad5b-d9cb-469f-a165-70867728950e}"_s);
inline const QString someIdText = u"0F8FAD5B-D9CB-469F-A165-70867728950E"_s;

/// 1000 by 500 points at the origin, and 200 by 100 points to its right, which bears index 3.
inline const std::vector<DisplayInfo> twoDisplays{
    {.displayId = 11, .index = 0, .bounds = {0, 0, 1000, 500}, .scale = 2},
    {.displayId = 22, .index = 3, .bounds = {1000, 50, 200, 100}, .scale = 1},
};

inline Display display(quint32 id, const QRectF& bounds, qreal scale = 1) {
    Display display;
    display.id = id;
    display.boundsPoints = bounds;
    display.scale = scale;
    return display;
}

inline Annotation shape(const QPointF& start, const QPointF& end,
                        Annotation::Kind kind = Annotation::Kind::box) {
    Annotation annotation;
    annotation.kind = kind;
    annotation.start = start;
    annotation.end = end;
    annotation.color = QColor(0x3B, 0x82, 0xF6);
    return annotation;
}

inline StrokeRecord encodedStroke(const Annotation& annotation,
                                  const std::vector<DisplayInfo>& displays = twoDisplays) {
    return present_session_codec::encodeStroke(annotation, 0, displays, std::nullopt);
}

/// From the middle of its display to the corner.
inline StrokeRecord record() {
    return {.id = someIdText,
            .kind = u"ellipse"_s,
            .colorHex = u"#EF4444"_s,
            .startAbs = {1, 2},
            .endAbs = {3, 4},
            .startNorm = {0.5, 0.5},
            .endNorm = {1, 1},
            .displayIndex = 0};
}

inline Annotation decoded(const StrokeRecord& stroke) {
    const std::vector<Annotation> annotations = present_session_codec::decode({.strokes = {stroke}});
    EXPECT_EQ(annotations.size(), 1);
    return annotations.empty() ? Annotation() : annotations.front();
}

inline Annotation remapped(const StrokeRecord& stroke, const std::vector<DisplayInfo>& displays) {
    const std::vector<Annotation> annotations = present_session_codec::remap({.strokes = {stroke}}, displays);
    EXPECT_EQ(annotations.size(), 1);
    return annotations.empty() ? Annotation() : annotations.front();
}

} // namespace orvane::test
