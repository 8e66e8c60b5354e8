#include "OrvaneCore/marking/submit/SubmitTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane::test {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::Pair;

namespace {

const QString path = u"~/.orvane/sessions/20261115-092611.482"_s;

Marker marker(int index, const QString& label = {}) {
    return {.label = label, .index = index};
}

Marker read(int index, const QString& text, const QString& label = {}) {
    return {.label = label, .index = index, .recognizedText = text};
}

Annotation drawing(Annotation::Kind kind, std::optional<int> region, const QString& text = {}) {
    return {.kind = kind, .text = text, .label = u"a label of its own"_s, .regionIndex = region};
}

CaptureWithMarkers capture(quint32 displayId, const QString& appName) {
    return {.appName = appName, .displayId = displayId};
}

SubmitResult resultOf(std::vector<Marker> markers, std::vector<CaptureWithMarkers> captures) {
    SubmitResult result;
    result.allMarkers = std::move(markers);
    result.captures = std::move(captures);
    return result;
}

/// Whatever a label may hold that means something somewhere.
const QString nastyLabel = u"a | b\n## c `d` %1 %2 {e} **f** \u2192 \U0001F600 \\"_s;

TEST(MarkupNotes, TellWhatWasDrawnInEachRegionInTheOrderOfDrawing) {
    using Kind = Annotation::Kind;
    EXPECT_THAT(markupNotes({drawing(Kind::arrow, 1), drawing(Kind::box, 2), drawing(Kind::text, 1, u"hi"_s),
                             drawing(Kind::ellipse, std::nullopt), drawing(Kind::highlight, 2),
                             drawing(Kind::image, 2), drawing(Kind::ellipse, 2), drawing(Kind::text, 3)}),
                ElementsAre(Pair(1, u"arrow; text \"hi\""_s), Pair(2, u"box; highlight; image; ellipse"_s),
                            Pair(3, u"text"_s)));
}

TEST(MarkupNotes, OfNothingAreNone) {
    EXPECT_TRUE(markupNotes({}).empty());
    EXPECT_TRUE(markupNotes({drawing(Annotation::Kind::arrow, std::nullopt)}).empty());
}

TEST(MarkupNotes, TakeTextsAsTheyAre) {
    EXPECT_THAT(markupNotes({drawing(Annotation::Kind::text, 1, nastyLabel),
                             drawing(Annotation::Kind::text, 1, u"say \"hi\""_s)}),
                ElementsAre(Pair(1, u"text \""_s + nastyLabel + u"\"; text \"say \"hi\"\""_s)));
    EXPECT_THAT(markupNotes({drawing(Annotation::Kind::box, 1, u"not a text"_s)}),
                ElementsAre(Pair(1, u"box"_s)));
}

TEST(AggregateOcrText, OfOneRegionWithoutALabelIsTheTextAlone) {
    EXPECT_EQ(aggregateOcrText({read(1, u"one\ntwo"_s)}), u"one\ntwo"_s);
    EXPECT_EQ(aggregateOcrText({marker(1), read(2, u"text"_s), read(3, QString())}), u"text"_s);
}

TEST(AggregateOcrText, OfOneRegionWithALabelNamesIt) {
    EXPECT_EQ(aggregateOcrText({read(3, u"text"_s, u"Title"_s)}), u"[3] Title\ntext"_s);
}

TEST(AggregateOcrText, OfSeveralRegionsNumbersAllOfThemByIndex) {
    EXPECT_EQ(aggregateOcrText({read(3, u"c"_s), read(1, u"a"_s, u"first"_s), marker(2), read(10, u"d\n"_s)}),
              u"[1] first\na\n\n[3]\nc\n\n[10]\nd\n"_s);
}

TEST(AggregateOcrText, IsEmptyWithoutText) {
    EXPECT_TRUE(aggregateOcrText({}).isEmpty());
    EXPECT_TRUE(aggregateOcrText({marker(1, u"label"_s), read(2, QString())}).isEmpty());
}

TEST(NormalClipboardText, OfOneDisplay) {
    const SubmitResult result = resultOf({marker(1, u"Button"_s), marker(2)}, {capture(11, u"Mail"_s)});
    EXPECT_EQ(normalClipboardText(result, path, false),
              u"[Orvane] 2 annotation(s) on Mail\n"
              "Screenshot: ~/.orvane/sessions/20261115-092611.482/display-annotated.png\n"
              "Manifest: ~/.orvane/sessions/20261115-092611.482/SESSION.md\n"
              "  [1] Button → ~/.orvane/sessions/20261115-092611.482/region-1.png\n"
              "  [2] region → ~/.orvane/sessions/20261115-092611.482/region-2.png\n"_s);
}

TEST(NormalClipboardText, OfTwoDisplaysWithSpotlightAndDrawings) {
    SubmitResult result = resultOf({marker(1), marker(2, u"Here"_s)},
                                   {capture(4294967295U, u"Mail"_s), capture(12, u"Display"_s)});
    result.annotations = {drawing(Annotation::Kind::arrow, 2), drawing(Annotation::Kind::text, 2, u"hi"_s)};
    EXPECT_EQ(
        normalClipboardText(result, u"/p"_s, true),
        u"[Orvane] 2 annotation(s) on Mail, Display\n"
        "Screenshot (Mail): /p/display-annotated-4294967295.png\n"
        "Screenshot (Display): /p/display-annotated-12.png\n"
        "Manifest: /p/SESSION.md\n"
        "Privacy: spotlight on — background blurred; use region crops for detail.\n"
        "Note: arrows, boxes, ellipses, highlights, and text in these images are user annotations added "
        "with Orvane — not part of the captured UI.\n"
        "  [1] region → /p/region-1.png\n"
        "  [2] Here → /p/region-2.png — markup: arrow; text \"hi\"\n"_s);
}

TEST(NormalClipboardText, NamesEachApplicationOnce) {
    const SubmitResult result =
        resultOf({marker(1)}, {capture(1, u"Zed"_s), capture(2, u"Mail"_s), capture(3, u"Zed"_s)});
    EXPECT_TRUE(normalClipboardText(result, u"/p"_s, false)
                    .startsWith(u"[Orvane] 1 annotation(s) on Zed, Mail\nScreenshot (Zed): "
                                "/p/display-annotated-1.png\nScreenshot (Mail): /p/display-annotated-2.png\n"
                                "Screenshot (Zed): /p/display-annotated-3.png\n"_s));
}

TEST(NormalClipboardText, WithoutAnyCapture) {
    EXPECT_EQ(normalClipboardText(resultOf({marker(1)}, {}), u"/p"_s, false),
              u"[Orvane] 1 annotation(s) on \n"
              "Screenshot: /p/display-annotated.png\n"
              "Manifest: /p/SESSION.md\n"
              "  [1] region → /p/region-1.png\n"_s);
}

TEST(NormalClipboardText, TakesLabelsAndNamesAsTheyAre) {
    const QString longLabel(10000, u'x');
    const SubmitResult result =
        resultOf({marker(1, nastyLabel), marker(2, longLabel)}, {capture(1, u"%2"_s)});
    EXPECT_EQ(normalClipboardText(result, u"/%3"_s, false),
              u"[Orvane] 2 annotation(s) on %2\nScreenshot: /%3/display-annotated.png\n"
              "Manifest: /%3/SESSION.md\n  [1] "_s +
                  nastyLabel + u" → /%3/region-1.png\n  [2] "_s + longLabel + u" → /%3/region-2.png\n"_s);
}

TEST(DirectSendMetadataText, OfOneDisplayCountsImagesFromZero) {
    SubmitResult result =
        resultOf({marker(1, u"CTA"_s), marker(2), marker(3), marker(4), marker(5)}, {capture(11, u"Mail"_s)});
    result.allMarkers[0].windowAppName = u"Mail"_s;
    result.allMarkers[1].windowAppName = u"Mail"_s;
    result.allMarkers[2].windowAppName = u"Unknown"_s;
    result.allMarkers[3].windowAppName = QString();
    EXPECT_EQ(directSendMetadataText(result, u"/p"_s, u"Chat"_s),
              u"[Orvane] 5 region(s) sent as images → Chat\n"
              "Attached images, in order:\n"
              "  [0] CTA\n"
              "  [1] region in Mail\n"
              "  [2] region\n"
              "  [3] region\n"
              "  [4] region\n"
              "Full screenshot (not attached): {/p/display-annotated.png}\n"
              "Manifest: {/p/SESSION.md}\n"_s);
}

TEST(DirectSendMetadataText, OfTwoDisplaysWithDrawings) {
    SubmitResult result =
        resultOf({marker(1), marker(2, u"Here"_s)}, {capture(11, u"Mail"_s), capture(12, u"Display"_s)});
    result.annotations = {drawing(Annotation::Kind::box, 2), drawing(Annotation::Kind::arrow, std::nullopt)};
    EXPECT_EQ(
        directSendMetadataText(result, path, u"Chat %1"_s),
        u"[Orvane] 2 region(s) sent as images → Chat %1\n"
        "Note: arrows, boxes, ellipses, highlights, and text in these images are user annotations added "
        "with Orvane — not part of the captured UI.\n"
        "Attached images, in order:\n"
        "  [0] region\n"
        "  [1] Here — markup: box\n"
        "Full screenshot (Mail, not attached): "
        "{~/.orvane/sessions/20261115-092611.482/display-annotated-11.png}\n"
        "Full screenshot (Display, not attached): "
        "{~/.orvane/sessions/20261115-092611.482/display-annotated-12.png}\n"
        "Manifest: {~/.orvane/sessions/20261115-092611.482/SESSION.md}\n"_s);
}

} // namespace
} // namespace orvane::test
