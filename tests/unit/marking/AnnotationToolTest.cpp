#include "OrvaneCore/marking/AnnotationTool.h"

#include <gtest/gtest.h>

namespace orvane {

namespace {

using Kind = Annotation::Kind;

struct ToolCase {
    AnnotationTool tool;
    const char* word;
    std::optional<Kind> kind;
};

constexpr std::array toolCases{
    ToolCase{AnnotationTool::select, "select", std::nullopt},
    ToolCase{AnnotationTool::region, "region", std::nullopt},
    ToolCase{AnnotationTool::arrow, "arrow", Kind::arrow},
    ToolCase{AnnotationTool::box, "box", Kind::box},
    ToolCase{AnnotationTool::ellipse, "ellipse", Kind::ellipse},
    ToolCase{AnnotationTool::highlight, "highlight", Kind::highlight},
    ToolCase{AnnotationTool::text, "text", Kind::text},
    ToolCase{AnnotationTool::image, "image", Kind::image},
};

} // namespace

TEST(AnnotationTool, AllToolsAreListedInTheirOrder) {
    ASSERT_EQ(allAnnotationTools.size(), toolCases.size());
    for (std::size_t i = 0; i < toolCases.size(); ++i) {
        EXPECT_EQ(allAnnotationTools[i], toolCases[i].tool) << i;
        EXPECT_EQ(static_cast<std::size_t>(toolCases[i].tool), i);
    }
}

TEST(AnnotationTool, HasAWord) {
    for (const ToolCase& tool : toolCases)
        EXPECT_EQ(rawValue(tool.tool), QLatin1String(tool.word)) << tool.word;
}

TEST(AnnotationTool, DrawsTheKindOfItsName) {
    for (const ToolCase& tool : toolCases)
        EXPECT_EQ(annotationKind(tool.tool), tool.kind) << tool.word;
}

} // namespace orvane
