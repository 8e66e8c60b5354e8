#include "OrvaneCore/marking/overlay/OverlayTexts.h"

#include "tests/unit/marking/overlay/drawing/OverlayScenes.h"

#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;

TEST(OverlayTexts, InstructionsWithoutRegions) {
    EXPECT_EQ(overlayInstructions({}, 0), u"  Drag to mark a region  •  Cancel (esc)  "_s);
    EXPECT_EQ(overlayInstructions({.ocr = true}, 0),
              u"  OCR: drag a region to extract text  •  Cancel (esc)  "_s);
}

TEST(OverlayTexts, InstructionsWithRegions) {
    EXPECT_EQ(overlayInstructions({}, 1),
              u"  1 region(s)  •  Drag to add more  •  Edge moves · corner resizes  •  "
              u"Right-click to label  •  Delete to undo  •  Submit (enter)  "_s);
    EXPECT_EQ(overlayInstructions({.ocr = true}, 12),
              u"  OCR · 12 region(s)  •  Drag to add more  •  Delete to undo  •  Submit (enter)  "_s);
}

TEST(OverlayTexts, OtherModesChangeNoInstructions) {
    const MarkupModes modes{.spotlight = true, .image = true, .directSend = true};
    for (const int count : {0, 3})
        EXPECT_EQ(overlayInstructions(modes, count), overlayInstructions({}, count));
}

TEST(OverlayTexts, InstructionsOfToolsForShapes) {
    using Tool = AnnotationTool;
    const auto instructions = [](Tool tool, int markers, bool hasShapes, bool ocr = false) {
        return overlayInstructions({.ocr = ocr}, markers, tool, hasShapes);
    };
    EXPECT_EQ(instructions(Tool::select, 0, false), u"  Drag a shape to move it  •  Cancel (esc)  "_s);
    EXPECT_EQ(instructions(Tool::arrow, 0, false), u"  Drag to draw an arrow  •  Cancel (esc)  "_s);
    EXPECT_EQ(instructions(Tool::box, 0, false), u"  Drag to draw a box  •  Cancel (esc)  "_s);
    EXPECT_EQ(instructions(Tool::ellipse, 0, false), u"  Drag to draw an ellipse  •  Cancel (esc)  "_s);
    EXPECT_EQ(instructions(Tool::highlight, 0, false), u"  Drag to highlight  •  Cancel (esc)  "_s);
    EXPECT_EQ(instructions(Tool::text, 0, false), u"  Click to place a text  •  Cancel (esc)  "_s);
    EXPECT_EQ(instructions(Tool::image, 0, false), u"  Drag to place an image  •  Cancel (esc)  "_s);
    EXPECT_EQ(instructions(Tool::arrow, 0, true),
              u"  Drag to draw an arrow  •  Delete to undo  •  Mark a region to submit  •  Cancel (esc)  "_s);
    for (const bool hasShapes : {false, true}) {
        EXPECT_EQ(instructions(Tool::box, 3, hasShapes),
                  u"  3 region(s)  •  Drag to draw a box  •  Delete to undo  •  Submit (enter)  "_s);
        EXPECT_EQ(instructions(Tool::box, 3, hasShapes, true),
                  u"  OCR · 3 region(s)  •  Drag to draw a box  •  Delete to undo  •  Submit (enter)  "_s);
        EXPECT_EQ(instructions(Tool::region, 0, hasShapes), overlayInstructions({}, 0));
        EXPECT_EQ(instructions(Tool::region, 2, hasShapes), overlayInstructions({}, 2));
    }
}

TEST(OverlayTexts, LinesAreBrokenBetweenTheirParts) {
    const auto widthOf = [](const QString& line) { return static_cast<qreal>(line.size()); };
    const QString text = u"  One two  •  Three  •  Four five six  •  Seven  "_s;
    EXPECT_EQ(instructionsInLines(text, 49, widthOf), QStringList{text});
    // No line much shorter than the others, though more would fit in the first.
    EXPECT_EQ(instructionsInLines(text, 43, widthOf),
              (QStringList{u"  One two  •  Three  "_s, u"  Four five six  •  Seven  "_s}));
    EXPECT_EQ(instructionsInLines(text, 24, widthOf),
              (QStringList{u"  One two  •  Three  "_s, u"  Four five six  "_s, u"  Seven  "_s}));
    EXPECT_EQ(instructionsInLines(text, 17, widthOf),
              (QStringList{u"  One two  "_s, u"  Three  "_s, u"  Four five six  "_s, u"  Seven  "_s}));
    // Between words where a part is wider.
    EXPECT_EQ(
        instructionsInLines(text, 13, widthOf),
        (QStringList{u"  One two  "_s, u"  Three  "_s, u"  Four five  "_s, u"  six  "_s, u"  Seven  "_s}));
    // A word is not broken.
    EXPECT_EQ(instructionsInLines(u"  Abcdef gh  •  i  "_s, 3, widthOf),
              (QStringList{u"  Abcdef  "_s, u"  gh  "_s, u"  i  "_s}));
}

TEST(OverlayTexts, Hint) {
    EXPECT_EQ(labelHintText(), u" right-click to label "_s);
}

TEST(OverlayTexts, NumbersAreWhole) {
    EXPECT_EQ(sizeTagText({300, 200}), u" 300x200 "_s);
    EXPECT_EQ(sizeTagText({299.5, 200.4}), u" 300x200 "_s);
    EXPECT_EQ(dimensionText({10.6, 0.2}), u"11 x 0"_s);
    EXPECT_EQ(coordinateText({412, 97}), u"412, 97"_s);
    EXPECT_EQ(coordinateText({-1919.6, -0.2}), u"-1920, 0"_s);
}

TEST(OverlayTexts, BadNumbersMakeShortTexts) {
    for (const qreal bad : {notANumber, infinite, -infinite, 1e300, -1e300}) {
        EXPECT_LE(sizeTagText({bad, bad}).size(), 24);
        EXPECT_LE(dimensionText({bad, bad}).size(), 24);
        EXPECT_LE(coordinateText({bad, bad}).size(), 24);
    }
}

} // namespace orvane::test
