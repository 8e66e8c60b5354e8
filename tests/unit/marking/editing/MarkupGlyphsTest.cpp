#include "OrvaneCore/marking/editing/MarkupGlyphs.h"

#include "OrvaneCore/marking/Palettes.h"
#include "tests/unit/marking/ExactGeometry.h"

#include <QPainterPath>

#include <gtest/gtest.h>

#include <vector>

namespace orvane::test {

TEST(MarkupGlyphs, EveryToolHasOneOfItsOwn) {
    std::vector<QPainterPath> glyphs;
    glyphs.reserve(allAnnotationTools.size());
    for (const AnnotationTool tool : allAnnotationTools) {
        const QPainterPath glyph = toolGlyph(tool);
        const QRectF bounds = glyph.boundingRect();
        EXPECT_GE(bounds.width(), 9) << rawValue(tool).data();
        EXPECT_GE(bounds.height(), 9) << rawValue(tool).data();
        EXPECT_TRUE(QRectF(-9.5, -9.5, 19, 19).contains(bounds)) << rawValue(tool).data();
        for (const QPainterPath& other : glyphs)
            EXPECT_NE(glyph, other) << rawValue(tool).data();
        glyphs.push_back(glyph);
    }
}

TEST(MarkupGlyphs, AStrokeIsALineOfItsWidth) {
    for (const qreal width : markup_colors::strokePresets)
        EXPECT_TRUE(isRect(strokeGlyph(width).boundingRect(), {-9, -width / 2, 18, width}, 1e-9)) << width;
}

} // namespace orvane::test
