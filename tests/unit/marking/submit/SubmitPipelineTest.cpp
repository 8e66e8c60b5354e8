#include "tests/unit/marking/submit/SubmitFixture.h"

#include "OrvaneCore/marking/submit/SubmitPictures.h"
#include "OrvaneCore/marking/submit/SubmitTexts.h"

#include <QThread>

namespace orvane::test {

using ::testing::ElementsAre;
using ::testing::Pair;

namespace {

class Submit : public SubmitFixture {};

TEST_F(Submit, WithoutMarkersDoesNothing) {
    EXPECT_FALSE(
        submit({.markers = {}, .annotations = {box({10, 10, 50, 50})}, .modes = {}, .sendTarget = {}}));
    EXPECT_TRUE(sessions().isEmpty());
    EXPECT_TRUE(events.isEmpty());
    EXPECT_TRUE(screens.captured.empty());
    EXPECT_TRUE(clipboard.writes.empty());
    EXPECT_TRUE(log.isEmpty());
}

TEST_F(Submit, OfOneDisplayMakesASession) {
    desktop.addApplication(7, u"Mail"_s, 40, {20, 10, 300, 200});
    const std::vector<Marker> markers{marker(1, {30, 40, 50, 60}, u"Button"_s),
                                      marker(2, {200, 100, 80, 40})};
    const auto result = submit({.markers = markers, .annotations = {}, .modes = {}, .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->sessionId, sessions().value(0));
    EXPECT_THAT(files(), ElementsAre(u"SESSION.md"_s, u"display-annotated.png"_s, u"region-1.png"_s,
                                     u"region-2.png"_s));
    const QImage screen = screens.pictures[mainId];
    EXPECT_EQ(picture(u"region-1.png"_s), screen.copy(30, 40, 50, 60));
    EXPECT_EQ(picture(u"region-2.png"_s), screen.copy(200, 100, 80, 40));
    const SubmitPictures pictures(screen, {0, 0, 400, 300});
    EXPECT_EQ(picture(u"display-annotated.png"_s),
              pictures.annotatedDisplay(markers, {}, marker_painter::Spotlight::off));

    ASSERT_EQ(result->captures.size(), 1U);
    const CaptureWithMarkers& capture = result->captures.front();
    EXPECT_EQ(capture.appName, u"Mail"_s);
    EXPECT_EQ(capture.windowTitle, u"Display 11"_s);
    EXPECT_EQ(capture.displayId, mainId);
    EXPECT_EQ(capture.pngData, bytes(u"display-annotated.png"_s));
    EXPECT_EQ(capture.width, 400);
    EXPECT_EQ(capture.height, 300);
    ASSERT_EQ(capture.markers.size(), 2U);
    EXPECT_EQ(capture.markers[0].id, markers[0].id);
    EXPECT_EQ(capture.markers[1].id, markers[1].id);
    EXPECT_THAT(result->cropPixels, ElementsAre(Pair(1, QSize(50, 60)), Pair(2, QSize(80, 40))));
    EXPECT_FALSE(result->copiedOcrText);
    EXPECT_FALSE(result->sendOutcome);

    const QString path = displayedFolder();
    EXPECT_EQ(clipboard.text(), u"[Orvane] 2 annotation(s) on Mail\nScreenshot: "_s + path +
                                    u"/display-annotated.png\nManifest: "_s + path +
                                    u"/SESSION.md\n  [1] Button → "_s + path +
                                    u"/region-1.png\n  [2] region → "_s + path + u"/region-2.png\n"_s);
    EXPECT_EQ(storage.latestSessionDir(), QFileInfo(folder()).canonicalFilePath());
    EXPECT_EQ(log, u"orvane: SESSION.md saved to "_s + folder() + u"/SESSION.md\norvane: session "_s +
                       result->sessionId + u" saved (1 capture(s), 2 region(s))\n"_s);
}

TEST_F(Submit, TheManifestTellsAllThatWasFoundOut) {
    desktop.addApplication(7, u"Mail"_s, 40, {20, 10, 300, 200});
    submit({.markers = {marker(1, {30, 40, 50, 60}, u"Button"_s)},
            .annotations = {},
            .modes = {},
            .sendTarget = {}});
    const QString text = QString::fromUtf8(bytes(u"SESSION.md"_s));
    EXPECT_TRUE(text.startsWith(u"# Orvane Session\n\n- **Session ID:** "_s + sessions().value(0) +
                                u"\n- **Timestamp:** 2026-11-15T09:26:11Z\n"_s));
    EXPECT_TRUE(text.contains(
        u"### [1] Mail\n\n**Description:** Button\n\n**Region image:** region-1.png\n\n"
        "**Display:** Display 1 (400×300, main)\n\n"
        "**Position on Display 1:** (30, 40), 50×60 px (region-1.png) from the display's top-left\n\n"
        "**On display:** 8% across × 13% down from the top-left; spans 13% × 20% of the display\n\n"
        "**Window:** Mail — 300×200\n\n**Window-relative:** (10, 30) 50x60\n\n"
        "**Global desktop position (for automation):** (30, 40) 50×60 pt\n\n## Files\n"_s));
}

TEST_F(Submit, CapturesComeFirstThenPicturesClipboardManifestAndLink) {
    addLeftDisplay();
    QStringList atCaptured;
    QStringList atClipboard;
    bool linkedAtClipboard = true;
    clipboard.written = [&] {
        event(u"clipboard"_s);
        atClipboard = files();
        linkedAtClipboard = storage.latestSessionDir().has_value();
    };
    testing::internal::CaptureStderr();
    pipeline.submit({.markers = {marker(1, {10, 10, 50, 50}), marker(2, {-100, 100, 20, 20}, u"there"_s)},
                     .annotations = {},
                     .modes = {},
                     .sendTarget = {}},
                    [&] {
                        event(u"captured"_s);
                        atCaptured = files();
                        EXPECT_THAT(screens.captured, ElementsAre(mainId, leftId));
                    });
    testing::internal::GetCapturedStderr();
    EXPECT_THAT(events, ElementsAre(u"sleep 300"_s, u"captured"_s, u"clipboard"_s));
    EXPECT_TRUE(atCaptured.isEmpty());
    EXPECT_THAT(atClipboard, ElementsAre(u"display-annotated-11.png"_s, u"display-annotated-3000000012.png"_s,
                                         u"region-1.png"_s, u"region-2.png"_s));
    EXPECT_FALSE(linkedAtClipboard);
    EXPECT_TRUE(files().contains(u"SESSION.md"_s));
    EXPECT_TRUE(storage.latestSessionDir());
}

TEST_F(Submit, TheSessionIsTheLatestOnceItsManifestIsWritten) {
    std::optional<QString> latest = u"nobody has asked"_s;
    SubmitPipeline submitting({.storage = storage,
                               .discovery = discovery,
                               .screenCapture = screenCapture,
                               .displays = desktop,
                               .pngWriter = pngWriter,
                               .textRecognizer = textRecognizer,
                               .clipboard = clipboard,
                               .words = words,
                               .sleep = [](std::chrono::milliseconds) {},
                               .clock =
                                   [&] {
                                       latest = storage.latestSessionDir();
                                       return now;
                                   }});
    testing::internal::CaptureStderr();
    submitting.submit(
        {.markers = {marker(1, {10, 10, 50, 50})}, .annotations = {}, .modes = {}, .sendTarget = {}}, [] {});
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(latest, std::nullopt);
    EXPECT_EQ(storage.latestSessionDir(), QFileInfo(folder()).canonicalFilePath());
}

TEST_F(Submit, TheScreenIsLookedAtAfterTheWaitWithoutTheCursor) {
    submit({.markers = {marker(1, {10, 10, 50, 50})}, .annotations = {}, .modes = {}, .sendTarget = {}});
    EXPECT_THAT(screens.cursors, ElementsAre(false));
    EXPECT_THAT(events, ElementsAre(u"sleep 300"_s, u"captured"_s));
}

TEST_F(Submit, OfTwoDisplaysCropsAtTheScaleOfEach) {
    addLeftDisplay();
    const auto result = submit({.markers = {marker(1, {10, 20, 50, 60}), marker(2, {-100, 100, 20, 30})},
                                .annotations = {},
                                .modes = {},
                                .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_EQ(picture(u"region-1.png"_s), screens.pictures[mainId].copy(10, 20, 50, 60));
    EXPECT_EQ(picture(u"region-2.png"_s), screens.pictures[leftId].copy(400, 100, 40, 60));
    EXPECT_EQ(picture(u"display-annotated-11.png"_s).size(), QSize(400, 300));
    EXPECT_EQ(picture(u"display-annotated-3000000012.png"_s).size(), QSize(600, 400));
    EXPECT_THAT(result->cropPixels, ElementsAre(Pair(1, QSize(50, 60)), Pair(2, QSize(40, 60))));
    const QString path = displayedFolder();
    EXPECT_EQ(clipboard.text(), u"[Orvane] 2 annotation(s) on Display\nScreenshot (Display): "_s + path +
                                    u"/display-annotated-11.png\nScreenshot (Display): "_s + path +
                                    u"/display-annotated-3000000012.png\nManifest: "_s + path +
                                    u"/SESSION.md\n  [1] region → "_s + path +
                                    u"/region-1.png\n  [2] region → "_s + path + u"/region-2.png\n"_s);
    const QString text = QString::fromUtf8(bytes(u"SESSION.md"_s));
    EXPECT_TRUE(text.contains(
        u"## Displays\n\n- **Display 1**: 300×200 pt @2× (600×400 px) — global desktop origin (-300, 50)\n"
        "- **Display 2** (main): 400×300 pt — global desktop origin (0, 0)\n\n## Annotations\n"_s));
    EXPECT_TRUE(text.contains(
        u"**Position on Display 1:** (200, 50), 20×30 pt = 40×60 px @2× (region-2.png) from"_s));
    EXPECT_TRUE(text.contains(u"**Position on Display 2:** (10, 20), 50×60 px (region-1.png) from"_s));
    EXPECT_TRUE(log.endsWith(u" saved (2 capture(s), 2 region(s))\n"_s));
}

TEST_F(Submit, OnlyDisplaysWithRegionsAreCaptured) {
    addLeftDisplay();
    const auto result = submit({.markers = {marker(1, {-100, 100, 20, 20})},
                                .annotations = {box({10, 10, 50, 50})},
                                .modes = {},
                                .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_THAT(screens.captured, ElementsAre(leftId));
    EXPECT_THAT(files(), ElementsAre(u"SESSION.md"_s, u"display-annotated.png"_s, u"region-1.png"_s));
    EXPECT_EQ(picture(u"region-1.png"_s), screens.pictures[leftId].copy(400, 100, 40, 40))
        << "a drawing on another display is on no picture";
    EXPECT_EQ(result->annotations.front().displayId, mainId);
    EXPECT_FALSE(result->annotations.front().regionIndex);
    EXPECT_TRUE(clipboard.text().contains(u"Note: arrows, boxes"_s)) << "and is told of nevertheless";
}

TEST_F(Submit, ARegionBelongsToTheDisplayOfItsMidpoint) {
    addLeftDisplay();
    // 30 points on the left display, 50 on the main one.
    const auto result = submit(
        {.markers = {marker(1, {-30, 100, 80, 20})}, .annotations = {}, .modes = {}, .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->allMarkers.front().displayId, mainId);
    const QImage crop = picture(u"region-1.png"_s);
    ASSERT_EQ(crop.size(), QSize(80, 20));
    EXPECT_EQ(crop.copy(30, 0, 50, 20).convertToFormat(QImage::Format_RGB32),
              screens.pictures[mainId].copy(0, 100, 50, 20));
    EXPECT_EQ(crop.pixel(29, 10), 0U) << "what lies beyond the display is transparent";
}

TEST_F(Submit, MidpointsOnEdgesBelongToTheRightAndBelow) {
    addDisplay(makeDisplay(13, {400, 0, 100, 300}), knownPicture(100, 300, false));
    const auto result = submit({.markers = {marker(1, {390, 100, 20, 20}), marker(2, {490, 100, 20, 20}),
                                            marker(3, {190, 290, 20, 20})},
                                .annotations = {},
                                .modes = {},
                                .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->allMarkers[0].displayId, 13U);
    EXPECT_FALSE(result->allMarkers[1].displayId);
    EXPECT_FALSE(result->allMarkers[2].displayId);
}

TEST_F(Submit, ADrawingIsOnTheCropOfItsRegionWhicheverDisplayHasIt) {
    addLeftDisplay();
    // The region's midpoint is on the main display, the middle of the drawing on the left one.
    const auto result = submit({.markers = {marker(1, {-30, 100, 80, 40})},
                                .annotations = {box({-28, 110, 40, 20})},
                                .modes = {},
                                .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->annotations.front().displayId, leftId);
    EXPECT_EQ(result->annotations.front().regionIndex, 1);
    EXPECT_EQ(picture(u"region-1.png"_s).pixel(42, 20), 0xFFFF0000);
    EXPECT_NE(picture(u"display-annotated.png"_s).pixel(12, 120), 0xFFFF0000)
        << "a display's picture has what is drawn on that display";
}

TEST_F(Submit, OnlyTheFirstSixteenDisplaysCount) {
    for (quint32 id = 101; id <= 116; ++id)
        addDisplay(makeDisplay(id, {400.0 + 100 * (id - 101), 0, 100, 100}), knownPicture(100, 100, false));
    const auto result = submit({.markers = {marker(1, {1810, 10, 20, 20}), marker(2, {1910, 10, 20, 20})},
                                .annotations = {},
                                .modes = {},
                                .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->allMarkers[0].displayId, 115U);
    EXPECT_FALSE(result->allMarkers[1].displayId);
}

TEST_F(Submit, ASizeInPointsIsTruncated) {
    desktop.displayList = {makeDisplay(mainId, {0, 0, 266.7, 200.7}, 1.5)};
    const auto result =
        submit({.markers = {marker(1, {10, 10, 20, 20})}, .annotations = {}, .modes = {}, .sendTarget = {}});
    ASSERT_TRUE(result);
    ASSERT_EQ(result->captures.size(), 1U);
    EXPECT_EQ(result->captures.front().width, 266);
    EXPECT_EQ(result->captures.front().height, 200);
}

TEST_F(Submit, ARegionOffAllDisplaysHasNoCropAndStillCounts) {
    const auto result = submit({.markers = {marker(1, {1000, 1000, 50, 50}), marker(2, {10, 10, 20, 20})},
                                .annotations = {},
                                .modes = {},
                                .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_THAT(files(), ElementsAre(u"SESSION.md"_s, u"display-annotated.png"_s, u"region-2.png"_s));
    EXPECT_FALSE(result->allMarkers[0].displayId);
    EXPECT_FALSE(result->allMarkers[0].displayBounds);
    EXPECT_TRUE(log.endsWith(u" saved (1 capture(s), 2 region(s))\n"_s));
    EXPECT_TRUE(
        QString::fromUtf8(bytes(u"SESSION.md"_s))
            .contains(u"**Screen coordinates (global desktop):** (1000, 1000) 50×50\n\n---\n\n### [2]"_s));
}

TEST_F(Submit, TheWindowUnderTheMidpointIsTheFrontmostOne) {
    desktop.addApplication(7, u"Front"_s, 40, {0, 0, 100, 100});
    desktop.addApplication(8, u"Back"_s, 41, {50, 20, 200, 200});
    const auto result = submit(
        {.markers = {marker(1, {60, 30, 20, 20}), marker(2, {90, 40, 20, 20}), marker(3, {300, 250, 20, 20})},
         .annotations = {},
         .modes = {},
         .sendTarget = {}});
    ASSERT_TRUE(result);
    const std::vector<Marker>& markers = result->allMarkers;
    EXPECT_EQ(markers[0].windowAppName, u"Front"_s);
    EXPECT_EQ(markers[0].windowBounds, QRectF(0, 0, 100, 100));
    EXPECT_EQ(markers[0].windowRelativeRect, QRectF(60, 30, 20, 20));
    EXPECT_EQ(markers[1].windowAppName, u"Back"_s) << "the right edge of a window is not in it";
    EXPECT_EQ(markers[1].windowRelativeRect, QRectF(40, 20, 20, 20));
    EXPECT_FALSE(markers[2].windowAppName);
    EXPECT_FALSE(markers[2].windowBounds);
    EXPECT_FALSE(markers[2].windowRelativeRect);
    EXPECT_EQ(result->captures.front().appName, u"Front"_s);
}

TEST_F(Submit, ACaptureIsNamedAfterItsFirstMarker) {
    desktop.addApplication(7, u"Mail"_s, 40, {100, 100, 100, 100});
    const auto result = submit({.markers = {marker(1, {10, 10, 20, 20}), marker(2, {120, 120, 20, 20})},
                                .annotations = {},
                                .modes = {},
                                .sendTarget = {}});
    EXPECT_EQ(result->captures.front().appName, u"Display"_s);
    EXPECT_EQ(result->allMarkers[1].windowAppName, u"Mail"_s) << "each marker has a window of its own";
}

TEST_F(Submit, AnnotationsBelongToTheFirstRegionAroundTheirAnchor) {
    const Annotation inBoth = box({60, 60, 20, 20});
    const Annotation inNone = box({300, 200, 20, 20});
    const auto result = submit({.markers = {marker(1, {50, 50, 60, 60}), marker(2, {40, 40, 80, 80})},
                                .annotations = {inBoth, inNone},
                                .modes = {},
                                .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->annotations[0].regionIndex, 1);
    EXPECT_EQ(result->annotations[0].displayId, mainId);
    EXPECT_FALSE(result->annotations[1].regionIndex);
    EXPECT_EQ(result->annotations[1].displayId, mainId);
    const QImage screen = screens.pictures[mainId];
    EXPECT_NE(picture(u"region-1.png"_s), screen.copy(50, 50, 60, 60));
    EXPECT_EQ(picture(u"region-2.png"_s), screen.copy(40, 40, 80, 80));
    const QImage annotated = picture(u"display-annotated.png"_s);
    EXPECT_EQ(annotated.pixel(300, 210), 0xFFFF0000) << "one without a region is on the display's picture";
    EXPECT_TRUE(clipboard.text().contains(u"/region-1.png — markup: box\n"_s));
    EXPECT_TRUE(QString::fromUtf8(bytes(u"SESSION.md"_s)).contains(u"**User markup:** box\n\n"_s));
}

TEST_F(Submit, ASpotlightBlursTheDisplayAndNoCrop) {
    const auto result = submit({.markers = {marker(1, {100, 100, 50, 60})},
                                .annotations = {},
                                .modes = {.spotlight = true},
                                .sendTarget = {}});
    ASSERT_TRUE(result);
    const QImage screen = screens.pictures[mainId];
    EXPECT_EQ(picture(u"region-1.png"_s), screen.copy(100, 100, 50, 60));
    const SubmitPictures pictures(screen, {0, 0, 400, 300});
    EXPECT_EQ(picture(u"display-annotated.png"_s),
              pictures.annotatedDisplay(result->allMarkers, {}, marker_painter::Spotlight::on));
    EXPECT_TRUE(clipboard.text().contains(
        u"\nPrivacy: spotlight on — background blurred; use region crops for detail.\n"_s));
    EXPECT_TRUE(QString::fromUtf8(bytes(u"SESSION.md"_s)).contains(u"\n- **Privacy:** spotlight"_s));
}

TEST_F(Submit, TheImageModePutsTheLastRegionOntoTheClipboard) {
    submit({.markers = {marker(1, {10, 10, 30, 30}), marker(2, {100, 100, 50, 60})},
            .annotations = {},
            .modes = {.image = true},
            .sendTarget = {}});
    EXPECT_EQ(clipboard.image().convertToFormat(QImage::Format_RGB32),
              screens.pictures[mainId].copy(100, 100, 50, 60));
}

TEST_F(Submit, TextIsReadInTheCleanCrops) {
    recognition.lines = {{u"Hello"_s, {0, 0, 10, 10}, 0.9F}, {u"World"_s, {0, 10, 10, 10}, 0.9F}};
    const auto result =
        submit({.markers = {marker(1, {50, 50, 60, 60}), marker(2, {200, 100, 30, 20}, u"Two"_s)},
                .annotations = {box({60, 60, 20, 20})},
                .modes = {.ocr = true},
                .sendTarget = {}});
    ASSERT_TRUE(result);
    const QImage screen = screens.pictures[mainId];
    EXPECT_THAT(recognition.pictures,
                ElementsAre(screen.copy(50, 50, 60, 60), screen.copy(200, 100, 30, 20)));
    const QString text = u"[1]\nHello\nWorld\n\n[2] Two\nHello\nWorld"_s;
    EXPECT_EQ(result->copiedOcrText, text);
    EXPECT_EQ(clipboard.text(), text);
    EXPECT_EQ(bytes(u"ocr.txt"_s), text.toUtf8());
    EXPECT_EQ(result->allMarkers[1].recognizedText, u"Hello\nWorld"_s);
    EXPECT_EQ(result->captures.front().markers.at(1).recognizedText, u"Hello\nWorld"_s);
    EXPECT_TRUE(QString::fromUtf8(bytes(u"SESSION.md"_s))
                    .contains(u"**Recognized text:**\n\n```\nHello\nWorld\n```\n\n---\n\n### [2]"_s));
    EXPECT_TRUE(QString::fromUtf8(bytes(u"SESSION.md"_s)).contains(u"\n| ocr.txt | Recognized text"_s));
}

/// Reads something in pictures of one size only.
class PickyRecognition final : public TextRecognitionBackend {
public:
    explicit PickyRecognition(const QSize& size)
        : m_size(size) {}
    QStringList supportedLanguages() override { return {u"en-US"_s}; }
    PictureText recognize(const QImage& picture, const QStringList&, const IsTimeUp&) override {
        if (picture.size() != m_size)
            return {};
        return {.lines = {{u"Grüße"_s, {0, 0, 10, 10}, 0.9F}}, .found = 1};
    }

private:
    QSize m_size;
};

TEST_F(Submit, TextInOneOfTwoRegionsStandsAlone) {
    PickyRecognition picky({30, 20});
    const TextRecognizer recognizer(picky);
    SubmitPipeline submitting({.storage = storage,
                               .discovery = discovery,
                               .screenCapture = screenCapture,
                               .displays = desktop,
                               .pngWriter = pngWriter,
                               .textRecognizer = recognizer,
                               .clipboard = clipboard,
                               .words = words,
                               .sleep = [](std::chrono::milliseconds) {}});
    testing::internal::CaptureStderr();
    const auto result =
        submitting.submit({.markers = {marker(1, {50, 50, 60, 60}), marker(2, {200, 100, 30, 20})},
                           .annotations = {},
                           .modes = {.ocr = true},
                           .sendTarget = {}},
                          [] {});
    testing::internal::GetCapturedStderr();
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->allMarkers[0].recognizedText);
    EXPECT_EQ(bytes(u"ocr.txt"_s), u"Grüße"_s.toUtf8());
    EXPECT_EQ(clipboard.text(), u"Grüße"_s);
}

TEST_F(Submit, WithoutAnyTextThePathsAreCopied) {
    const auto result = submit({.markers = {marker(1, {50, 50, 60, 60})},
                                .annotations = {},
                                .modes = {.ocr = true},
                                .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_EQ(recognition.pictures.size(), 1U);
    EXPECT_FALSE(result->copiedOcrText);
    EXPECT_FALSE(files().contains(u"ocr.txt"_s));
    EXPECT_TRUE(clipboard.text().startsWith(u"[Orvane] 1 annotation(s) on "_s));
}

TEST_F(Submit, OnlyTheOcrModeReads) {
    recognition.lines = {{u"Hello"_s, {0, 0, 10, 10}, 0.9F}};
    Marker before = marker(1, {50, 50, 60, 60});
    before.recognizedText = u"from another time"_s;
    const auto result = submit({.markers = {before}, .annotations = {}, .modes = {}, .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_TRUE(recognition.pictures.empty());
    EXPECT_FALSE(files().contains(u"ocr.txt"_s));
    EXPECT_FALSE(result->allMarkers.front().recognizedText);
}

TEST_F(Submit, TwoInOneMillisecondHaveFoldersOfTheirOwn) {
    // The wait for the overlay is what moves this clock.
    const QDateTime start = now;
    const SubmitRequest request{
        .markers = {marker(1, {10, 10, 20, 20})}, .annotations = {}, .modes = {}, .sendTarget = {}};
    const auto first = submit(request);
    now = start;
    events.clear();
    const auto second = submit(request);
    EXPECT_THAT(events, ElementsAre(u"sleep 1"_s, u"sleep 300"_s, u"captured"_s));
    EXPECT_NE(first->sessionId, second->sessionId);
    EXPECT_EQ(sessions().size(), 2);
    EXPECT_EQ(storage.latestSessionDir(),
              QFileInfo(storage.sessionDir(second->sessionId)).canonicalFilePath());
}

TEST_F(Submit, AFolderThatSomebodyElseHasBegunIsLeftAlone) {
    const QString theirs = storage.createSessionDir().dir;
    QFile file(theirs + u"/.hidden"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const auto result =
        submit({.markers = {marker(1, {10, 10, 20, 20})}, .annotations = {}, .modes = {}, .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_NE(storage.sessionDir(result->sessionId), theirs);
    EXPECT_THAT(QDir(theirs).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                ElementsAre(u".hidden"_s));
}

TEST_F(Submit, ThumbnailsAreOfTheFirstDisplay) {
    addLeftDisplay();
    const auto one =
        submit({.markers = {marker(1, {10, 10, 20, 20})}, .annotations = {}, .modes = {}, .sendTarget = {}});
    EXPECT_FALSE(files().contains(u"thumbnail.png"_s)) << "nobody has asked for it yet";
    pipeline.generateThumbnail(*one);
    EXPECT_EQ(picture(u"thumbnail.png"_s).size(), QSize(400, 300));

    desktop.displayList = {desktop.displayList[1], desktop.displayList[0]};
    const auto two = submit({.markers = {marker(1, {10, 10, 20, 20}), marker(2, {-100, 100, 20, 20})},
                             .annotations = {},
                             .modes = {},
                             .sendTarget = {}});
    pipeline.generateThumbnail(*two);
    const QString second = storage.sessionDir(two->sessionId);
    EXPECT_EQ(two->captures.front().displayId, leftId);
    EXPECT_EQ(QImage(second + u"/thumbnail.png"_s).size(), QSize(400, 267));
}

TEST_F(Submit, RunsOnAnyThread) {
    std::optional<SubmitResult> result;
    QThread* caller = nullptr;
    testing::internal::CaptureStderr();
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        result = pipeline.submit({.markers = {marker(1, {10, 10, 20, 20}, u"label"_s)},
                                  .annotations = {box({10, 10, 5, 5})},
                                  .modes = {},
                                  .sendTarget = {}},
                                 [&] { caller = QThread::currentThread(); });
    }));
    thread->start();
    thread->wait();
    testing::internal::GetCapturedStderr();
    ASSERT_TRUE(result);
    EXPECT_EQ(caller, thread.get());
    EXPECT_TRUE(files().contains(u"display-annotated.png"_s));
}

} // namespace
} // namespace orvane::test
