#include "OrvaneCore/marking/submit/SnapshotManifest.h"

#include "tests/support/FakeDesktop.h"

#include <QTimeZone>

#include <gtest/gtest.h>

#include <limits>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

// Written from the format, not from the code.
const QString headerStart = u"# Orvane Session\n"
                            "\n"
                            "- **Session ID:** 20261115-104133.482\n"
                            "- **Timestamp:** 2026-11-15T09:41:33Z\n"
                            "- **Type:** snapshot\n"
                            "- **Annotated screenshot:** display-annotated.png\n"_s;
const QString headerEnd =
    u"- **Coordinates:** per-display, top-left origin, in **points** (x → right, y → down). Each region's "
    "position is relative to **its own display's top-left corner** (display index in the Displays list / per "
    "region); percentages are of that display. Region crops (`region-N.png`) are saved at **native pixels = "
    "points × the display's backing scale**, so both pt and px sizes are given per region. The global "
    "desktop "
    "position per region is for automation (macOS click coordinates are points).\n"
    "\n"_s;

QDateTime timeOf(int hour, int minute, int second, int millisecond, int offsetSeconds) {
    return QDateTime(QDate(2026, 11, 15), QTime(hour, minute, second, millisecond), Qt::OffsetFromUTC,
                     offsetSeconds);
}

const QDateTime moment = timeOf(10, 41, 33, 999, 3600);

Marker markerOn(const Display& display, int index, const QRectF& rect, const QString& label = {}) {
    return {.rect = rect,
            .label = label,
            .index = index,
            .displayId = display.id,
            .displayBounds = display.boundsPoints};
}

SubmitResult resultOf(std::vector<Marker> markers) {
    SubmitResult result;
    result.sessionId = u"20261115-104133.482"_s;
    result.allMarkers = std::move(markers);
    return result;
}

QString manifest(const SubmitResult& result, const std::vector<Display>& displays,
                 const MarkupModes& modes = {}) {
    return snapshotManifest(result, modes, displays, moment);
}

QString line(const QString& text, const QString& start) {
    for (const QString& candidate : text.split(u'\n')) {
        if (candidate.startsWith(start))
            return candidate;
    }
    return u"no such line"_s;
}

TEST(SnapshotManifest, OfOneRegionOnOneDisplay) {
    const Display display = makeDisplay(11, {0, 0, 1920, 1080});
    SubmitResult result = resultOf({markerOn(display, 1, {100, 50, 300, 200}, u"Button"_s)});
    result.cropPixels[1] = QSize(300, 200);
    EXPECT_EQ(
        manifest(result, {display}),
        headerStart + headerEnd +
            u"## Annotations\n"
            "\n"
            "### [1] Unknown\n"
            "\n"
            "**Description:** Button\n"
            "\n"
            "**Region image:** region-1.png\n"
            "\n"
            "**Display:** Display 1 (1920×1080, main)\n"
            "\n"
            "**Position on Display 1:** (100, 50), 300×200 px (region-1.png) from the display's top-left\n"
            "\n"
            "**On display:** 5% across × 5% down from the top-left; spans 16% × 19% of the display\n"
            "\n"
            "**Global desktop position (for automation):** (100, 50) 300×200 pt\n"
            "\n"
            "## Files\n"
            "\n"
            "| File | Description |\n"
            "|------|-------------|\n"
            "| display-annotated.png | Full display with all markers overlaid |\n"
            "| region-1.png | Crop: Button |\n"
            "| SESSION.md | This file |\n"
            "\n"
            "## Timeline\n"
            "\n"
            "| Time | Event | Details |\n"
            "|------|-------|---------|\n"
            "| 2026-11-15T09:41:33Z | snapshot | 1 annotation(s) captured |\n"_s);
}

TEST(SnapshotManifest, WithEverythingInIt) {
    const Display left = makeDisplay(12, {-1440, 100, 1440, 900}, 2);
    const Display main = makeDisplay(11, {0, 0, 1920, 1080}, 1.5);
    Marker first = markerOn(left, 1, {-1290.4, 190.5, 300, 200}, u"Mail list"_s);
    first.windowAppName = u"Mail"_s;
    first.windowBounds = QRectF(-1400, 150, 801, 602);
    first.windowRelativeRect = QRectF(109.6, 40.5, 300, 200);
    first.recognizedText = u"Inbox\nSent"_s;
    Marker second = markerOn(main, 2, {20, 30, 10.5, 20.5});
    second.windowBounds = QRectF(0, 0, 640, 480);
    const Marker nowhere{.rect = {5000.9, -7.9, 12.9, 13.9}, .label = u"gap"_s, .index = 3};
    SubmitResult result = resultOf({first, second, nowhere});
    result.cropPixels[1] = QSize(600, 401);
    result.annotations = {{.kind = Annotation::Kind::arrow, .regionIndex = 1},
                          {.kind = Annotation::Kind::text, .text = u"hi"_s, .regionIndex = 1},
                          {.kind = Annotation::Kind::box}};
    EXPECT_EQ(manifest(result, {main, left}, {.spotlight = true}),
              headerStart +
                  u"- **Privacy:** spotlight (background blurred — rely on region crops for detail)\n"_s +
                  headerEnd +
                  u"> Note: arrows, boxes, ellipses, highlights, and text in these images are user "
                  u"annotations added "
                  "with Orvane — not part of the captured UI.\n"
                  "\n"
                  "## Displays\n"
                  "\n"
                  "- **Display 1**: 1440×900 pt @2× (2880×1800 px) — global desktop origin (-1440, 100)\n"
                  "- **Display 2** (main): 1920×1080 pt @1.5× (2880×1620 px) — global desktop origin (0, 0)\n"
                  "\n"
                  "## Annotations\n"
                  "\n"
                  "### [1] Mail\n"
                  "\n"
                  "**Description:** Mail list\n"
                  "\n"
                  "**User markup:** arrow; text \"hi\"\n"
                  "\n"
                  "**Region image:** region-1.png\n"
                  "\n"
                  "**Display:** Display 1 (1440×900)\n"
                  "\n"
                  "**Position on Display 1:** (150, 91), 300×200 pt = 600×401 px @2× (region-1.png) from the "
                  "display's "
                  "top-left\n"
                  "\n"
                  "**On display:** 10% across × 10% down from the top-left; spans 21% × 22% of the display\n"
                  "\n"
                  "**Window:** Mail — 801×602\n"
                  "\n"
                  "**Window-relative:** (109, 40) 300x200\n"
                  "\n"
                  "**Global desktop position (for automation):** (-1290, 190) 300×200 pt\n"
                  "\n"
                  "**Recognized text:**\n"
                  "\n"
                  "```\n"
                  "Inbox\n"
                  "Sent\n"
                  "```\n"
                  "\n"
                  "---\n"
                  "\n"
                  "### [2] Unknown\n"
                  "\n"
                  "**Description:** \n"
                  "\n"
                  "**Region image:** region-2.png\n"
                  "\n"
                  "**Display:** Display 2 (1920×1080, main)\n"
                  "\n"
                  "**Position on Display 2:** (20, 30), 11×21 pt = 16×31 px @1.5× (region-2.png) from the "
                  "display's "
                  "top-left\n"
                  "\n"
                  "**On display:** 1% across × 3% down from the top-left; spans 1% × 2% of the display\n"
                  "\n"
                  "**Window:** window — 640×480\n"
                  "\n"
                  "**Global desktop position (for automation):** (20, 30) 10×20 pt\n"
                  "\n"
                  "---\n"
                  "\n"
                  "### [3] Unknown\n"
                  "\n"
                  "**Description:** gap\n"
                  "\n"
                  "**Region image:** region-3.png\n"
                  "\n"
                  "**Screen coordinates (global desktop):** (5000, -7) 12×13\n"
                  "\n"
                  "## Files\n"
                  "\n"
                  "| File | Description |\n"
                  "|------|-------------|\n"
                  "| display-annotated.png | Full display with all markers overlaid |\n"
                  "| region-1.png | Crop: Mail list |\n"
                  "| region-2.png | Crop: Region 2 |\n"
                  "| region-3.png | Crop: gap |\n"
                  "| ocr.txt | Recognized text from all regions |\n"
                  "| SESSION.md | This file |\n"
                  "\n"
                  "## Timeline\n"
                  "\n"
                  "| Time | Event | Details |\n"
                  "|------|-------|---------|\n"
                  "| 2026-11-15T09:41:33Z | snapshot | 3 annotation(s) captured |\n"_s);
}

TEST(SnapshotManifest, SizesComeInPixelsAloneAtScaleOne) {
    for (const auto& [scale, expected] :
         {std::pair(1.0, u"**Position on Display 1:** (10, 20), 300×200 px (region-1.png) from the display's "
                         "top-left"_s),
          std::pair(2.0,
                    u"**Position on Display 1:** (10, 20), 300×200 pt = 600×400 px @2× (region-1.png) from "
                    "the display's top-left"_s),
          std::pair(1.5, u"**Position on Display 1:** (10, 20), 300×200 pt = 450×300 px @1.5× (region-1.png) "
                         "from the display's top-left"_s)}) {
        const Display display = makeDisplay(11, {0, 0, 1920, 1080}, scale);
        EXPECT_EQ(
            line(manifest(resultOf({markerOn(display, 1, {10, 20, 300, 200})}), {display}), u"**Position"_s),
            expected);
    }
}

TEST(SnapshotManifest, ADisplayThatIsGoneIsNumberOneAtScaleOne) {
    const Display left = makeDisplay(12, {-1000, 0, 1000, 500}, 2);
    const Display main = makeDisplay(11, {0, 0, 1000, 500}, 2);
    const Display gone = makeDisplay(13, {1000, 0, 1000, 500}, 2);
    const SubmitResult result = resultOf({markerOn(gone, 1, {1100, 50, 300, 200})});
    const QString text = manifest(result, {main, left});
    EXPECT_EQ(line(text, u"**Display:**"_s), u"**Display:** Display 1 (1000×500)"_s);
    EXPECT_EQ(
        line(text, u"**Position"_s),
        u"**Position on Display 1:** (100, 50), 300×200 px (region-1.png) from the display's top-left"_s);
    EXPECT_EQ(line(manifest(result, {}), u"**Display:**"_s), u"**Display:** Display 1 (1000×500)"_s);
}

TEST(SnapshotManifest, ARegionWithHalfOfItsPlaceHasScreenCoordinates) {
    const Display display = makeDisplay(11, {0, 0, 1000, 500});
    for (const bool dropsId : {true, false}) {
        Marker marker = markerOn(display, 1, {1, 2, 3, 4});
        if (dropsId) {
            marker.displayId.reset();
        } else {
            marker.displayBounds.reset();
        }
        const QString text = manifest(resultOf({marker}), {display});
        EXPECT_TRUE(text.contains(u"\n\n**Screen coordinates (global desktop):** (1, 2) 3×4\n\n"_s));
        EXPECT_FALSE(text.contains(u"**Display:**"_s));
        EXPECT_FALSE(text.contains(u"**Position"_s));
        EXPECT_FALSE(text.contains(u"**On display"_s));
        EXPECT_FALSE(text.contains(u"**Global desktop position"_s));
    }
}

TEST(SnapshotManifest, WholeNumbersAreCutOffAndOthersRoundedAwayFromZero) {
    const Display display = makeDisplay(11, {0.5, 0.5, 1000.9, 500.9});
    Marker marker = markerOn(display, 1, {-1, 1, 2.5, 3.5});
    marker.windowAppName = u"App"_s;
    marker.windowBounds = QRectF(0, 0, 9.99, 8.99);
    marker.windowRelativeRect = QRectF(-1.9, -0.9, 2.9, 3.9);
    const QString text = manifest(resultOf({marker}), {display});
    EXPECT_EQ(line(text, u"**Display:**"_s), u"**Display:** Display 1 (1000×500, main)"_s);
    EXPECT_EQ(line(text, u"**Position"_s),
              u"**Position on Display 1:** (-2, 1), 3×4 px (region-1.png) from the display's top-left"_s);
    EXPECT_EQ(line(text, u"**Window:**"_s), u"**Window:** App — 9×8"_s);
    EXPECT_EQ(line(text, u"**Window-relative"_s), u"**Window-relative:** (-1, 0) 2x3"_s);
    EXPECT_EQ(line(text, u"**Global"_s), u"**Global desktop position (for automation):** (-1, 1) 2×3 pt"_s);
}

TEST(SnapshotManifest, TakesLabelsAsTheyAre) {
    const QString nasty = u"a | b\n## c `d` %1 %2 **e** 日本 \U0001F600"_s;
    const QString longLabel(10000, u'x');
    const Display display = makeDisplay(11, {0, 0, 1000, 500});
    const QString text = manifest(resultOf({markerOn(display, 1, {0, 0, 20, 20}, nasty),
                                            markerOn(display, 2, {0, 0, 20, 20}, longLabel)}),
                                  {display});
    EXPECT_TRUE(
        text.contains(u"\n\n**Description:** "_s + nasty + u"\n\n**Region image:** region-1.png\n\n"_s));
    EXPECT_TRUE(text.contains(u"| region-1.png | Crop: "_s + nasty + u" |\n| region-2.png | Crop: "_s +
                              longLabel + u" |\n"_s));
}

TEST(SnapshotManifest, TakesNamesAndWhatWasReadAsTheyAre) {
    const Display display = makeDisplay(11, {0, 0, 1000, 500});
    Marker marker = markerOn(display, 1, {100, 50, 300, 200}, u"%3 %2 %1"_s);
    marker.windowAppName = u"%2 App %10"_s;
    marker.windowBounds = QRectF(90, 40, 400, 300);
    marker.windowRelativeRect = QRectF(10, 10, 300, 200);
    marker.recognizedText = u"%1 read %2"_s;
    SubmitResult result = resultOf({marker});
    Annotation drawn = Annotation();
    drawn.kind = Annotation::Kind::text;
    drawn.text = u"%1 drawn"_s;
    drawn.regionIndex = 1;
    result.annotations = {drawn};
    const QString text = manifest(result, {display});
    EXPECT_TRUE(text.contains(u"### [1] %2 App %10\n\n**Description:** %3 %2 %1\n\n"
                              "**User markup:** text \"%1 drawn\"\n\n"
                              "**Region image:** region-1.png\n\n"
                              "**Display:** Display 1 (1000×500, main)\n\n"
                              "**Position on Display 1:** (100, 50), 300×200 px (region-1.png) from the "
                              "display's top-left\n\n"
                              "**On display:** 10% across × 10% down from the top-left; spans 30% × 40% of "
                              "the display\n\n"
                              "**Window:** %2 App %10 — 400×300\n\n"
                              "**Window-relative:** (10, 10) 300x200\n\n"_s))
        << text.toStdString();
    EXPECT_TRUE(text.contains(u"**Recognized text:**\n\n```\n%1 read %2\n```\n\n"_s));
}

TEST(SnapshotManifest, RecognisedTextThatIsEmptyIsNone) {
    const Display display = makeDisplay(11, {0, 0, 1000, 500});
    Marker marker = markerOn(display, 1, {0, 0, 20, 20});
    marker.recognizedText = QString();
    const QString text = manifest(resultOf({marker}), {display});
    EXPECT_FALSE(text.contains(u"Recognized"_s));
    EXPECT_FALSE(text.contains(u"ocr.txt"_s));
}

TEST(SnapshotManifest, TimesAreUtcWhateverTheZone) {
    const SubmitResult result = resultOf({});
    for (const QDateTime& time :
         {timeOf(10, 41, 33, 0, 3600), timeOf(4, 11, 33, 1, -19800),
          QDateTime(QDate(2026, 11, 15), QTime(9, 41, 33), QTimeZone("Europe/London"))}) {
        EXPECT_EQ(line(snapshotManifest(result, {}, {}, time), u"- **Timestamp:**"_s),
                  u"- **Timestamp:** 2026-11-15T09:41:33Z"_s);
    }
}

TEST(SnapshotManifest, NumbersThatAreNoneHarmNothing) {
    const qreal nan = std::numeric_limits<qreal>::quiet_NaN();
    const qreal infinite = std::numeric_limits<qreal>::infinity();
    const Display display = makeDisplay(11, {0, 0, 1000, 500});
    Marker marker = markerOn(display, 1, {nan, -infinite, 1e300, infinite});
    marker.displayBounds = QRectF(0, 0, 0, nan);
    const QString text = manifest(resultOf({marker}), {display});
    EXPECT_EQ(line(text, u"**Global"_s),
              u"**Global desktop position (for automation):** (0, -1000000000000000000) "
              "1000000000000000000×1000000000000000000 pt"_s);
    EXPECT_EQ(
        line(text, u"**On display"_s),
        u"**On display:** 0% across × 0% down from the top-left; spans 1000000000000000000% × 0% of the "
        "display"_s);
}

} // namespace
} // namespace orvane::test
