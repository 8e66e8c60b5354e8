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
