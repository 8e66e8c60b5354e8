#include "OrvaneCore/tools/ToolHandler.h"

#include "OrvaneCore/mcp/ToolCatalogue.h"
#include "OrvaneCore/tools/CaptureTools.h"
#include "OrvaneCore/tools/RegionLabels.h"
#include "OrvaneCore/tools/SessionTools.h"
#include "OrvanePlatform/png/IgzipWriter.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/FakeMedia.h"
#include "tests/support/FakeTextRecognition.h"
#include "tests/support/InMemorySettings.h"
#include "tests/support/KnownPicture.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QJsonArray>
#include <QTemporaryDir>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

using test::FakeDesktop;
using test::knownPicture;
using test::makeDisplay;

const QString invalidArguments = u"Error: The operation could not be completed. (OrvaneError error 1.)"_s;

class ToolHandlerTest : public testing::Test {
protected:
    ToolHandlerTest() {
        desktop.displayList = {makeDisplay(11, {0, 0, 4000, 3000})};
        desktop.picture = knownPicture(300, 200, false);
        desktop.addApplication(7, u"Terminal"_s, 40, {10, 20, 300, 200}, u"build — main"_s);
    }

    QJsonObject call(const char* tool, const QJsonObject& arguments = {}) {
        return handler.handleToolCall(QLatin1String(tool), arguments);
    }

    static QJsonObject item(const QJsonObject& result, int index) {
        return result.value(u"content"_s).toArray().at(index).toObject();
    }
    static QString text(const QJsonObject& result) { return item(result, 0).value(u"text"_s).toString(); }
    static int items(const QJsonObject& result) { return int(result.value(u"content"_s).toArray().size()); }
    static bool failed(const QJsonObject& result) { return result.value(u"isError"_s).toBool(); }
    static QImage image(const QJsonObject& result, int index = 1) {
        const QJsonObject object = item(result, index);
        EXPECT_EQ(object.value(u"type"_s).toString(), u"image");
        EXPECT_EQ(object.value(u"mimeType"_s).toString(), u"image/png");
        return QImage::fromData(QByteArray::fromBase64(object.value(u"data"_s).toString().toLatin1()), "PNG");
    }
    QStringList saved() const {
        return QDir(storage.capturesDir()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    QTemporaryDir home;
    test::InMemorySettings settings;
    StorageManager storage{settings, home.path()};
    FakeDesktop desktop;
    png::IgzipWriter pngWriter;
    WindowDiscovery discovery{desktop, desktop};
    ScreenCapture screenCapture{desktop, desktop, pngWriter};
    QDateTime now{{2026, 3, 4}, {5, 6, 7}, Qt::UTC};
    test::FakeTextRecognition textRecognition;
    test::FakeClock clock;
    CaptureTools captureTools{discovery, screenCapture, TextRecognizer(textRecognition, clock),
                              storage,   pngWriter,     [this] { return now; }};
    test::FakeMedia media;
    ScreenRecorder recorder{discovery, screenCapture, storage, pngWriter, media, clock};
    SessionTools sessionTools{recorder, screenCapture, TextRecognizer(textRecognition, clock), storage};
    ToolHandler handler{captureTools, sessionTools};
    QString stamp = now.toLocalTime().toString(u"yyyyMMdd-HHmmss"_s);
    QJsonObject terminal{{u"app_name"_s, u"TERM"_s}};
};

const QJsonObject square{{u"x"_s, 10}, {u"y"_s, 20}, {u"width"_s, 30}, {u"height"_s, 40}};

QJsonObject joined(QJsonObject object, const QJsonObject& more) {
    for (auto it = more.begin(); it != more.end(); ++it)
        object.insert(it.key(), it.value());
    return object;
}

} // namespace

TEST_F(ToolHandlerTest, HandlesExactlyTheCatalogue) {
    EXPECT_EQ(ToolHandler::toolNames(), tool_catalogue::names());
}

TEST_F(ToolHandlerTest, MakesTheDataFolders) {
    EXPECT_TRUE(QDir(storage.capturesDir()).exists());
    EXPECT_TRUE(QDir(storage.sessionsDir()).exists());
}

TEST_F(ToolHandlerTest, SaysWhichToolsAreStillToCome) {
    const QJsonObject result = call("annotate_understanding", terminal);
    EXPECT_EQ(text(result), u"Error: Not available in this build: annotate_understanding");
    EXPECT_TRUE(failed(result));
}

TEST_F(ToolHandlerTest, KnowsNoOtherTool) {
    EXPECT_EQ(text(call("")), u"Error: Unknown tool: ");
    EXPECT_EQ(text(call("List_windows")), u"Error: Unknown tool: List_windows");
    EXPECT_TRUE(failed(call("list_windows ")));
}

TEST_F(ToolHandlerTest, ListsWindows) {
    const QJsonObject result = call("list_windows", {{u"extra"_s, 1}});
    EXPECT_EQ(
        text(result),
        u"[{\"appName\":\"Terminal\",\"windowTitle\":\"build — main\",\"pid\":7,\"windowId\":40,\"x\":10,"
        u"\"y\":20,\"width\":300,\"height\":200,\"displayId\":11,\"displayBounds\":\"0,0,4000,3000\"}]");
    EXPECT_FALSE(result.contains(u"isError"_s));
}

TEST_F(ToolHandlerTest, ListsNoWindowsOfAnEmptyDesktop) {
    desktop.windows = {};
    EXPECT_EQ(text(call("list_windows")), u"[]");
}

TEST_F(ToolHandlerTest, SaysWhyThereAreNoWindowsAtAll) {
    desktop.failure = u"lost"_s;
    desktop.unavailable = u"There is no display."_s;
    EXPECT_EQ(text(call("list_windows")), u"Error: There is no display.");
    EXPECT_TRUE(failed(call("list_windows")));
}

TEST_F(ToolHandlerTest, ActivatesAWindow) {
    EXPECT_EQ(text(call("activate_window", terminal)), u"Activated Terminal (1 window(s) raised)");
    EXPECT_EQ(text(call("activate_window")), u"Error: app_name is required");
    EXPECT_EQ(text(call("activate_window", {{u"app_name"_s, 3}})), u"Error: app_name is required");
    const QJsonObject result = call("activate_window", {{u"app_name"_s, u"Nope"_s}});
    EXPECT_EQ(text(result), u"Error: App 'Nope' not found. Available: Terminal");
    EXPECT_TRUE(failed(result));
}

TEST_F(ToolHandlerTest, CapturesAWindow) {
    const QJsonObject result = call("capture_window", terminal);
    EXPECT_EQ(
        text(result),
        u"Captured Terminal — build — main.\nwindowId: 40  (pass to annotate_understanding as frame "
        u"{\"type\":\"window\",\"windowId\":40})\nReturned image: 300×200 px — measure any annotation "
        u"coordinates in THIS image and pass these as the frame's imageWidth/imageHeight.\nNative window: "
        u"300×200 pt.");
    EXPECT_EQ(image(result), desktop.picture);
    EXPECT_EQ(items(result), 2);
    EXPECT_EQ(saved(), QStringList{stamp + u"-TERM.png"_s});
    EXPECT_EQ(desktop.cursors, std::vector{false});
}

TEST_F(ToolHandlerTest, TellsThePixelsItReturns) {
    desktop.shareable[0].framePoints = {0, 0, 2048, 1000};
    desktop.picture = knownPicture(2048, 1000, false);
    const QJsonObject result = call("capture_window", terminal);
    EXPECT_TRUE(text(result).contains(u"Returned image: 1024×500 px"_s));
    EXPECT_TRUE(text(result).endsWith(u"Native window: 2048×1000 pt."_s));
    EXPECT_EQ(image(result).size(), QSize(1024, 500));
    EXPECT_EQ(QImage(storage.capturesDir() + u'/' + saved().front()), desktop.picture);
}

TEST_F(ToolHandlerTest, FailsWithoutAWindow) {
    for (const char* tool : {"capture_window", "capture_diff"}) {
        for (const QJsonObject& arguments :
             {QJsonObject(), QJsonObject{{u"app_name"_s, 5}}, QJsonObject{{u"app_name"_s, u"Nope"_s}}}) {
            const QJsonObject result = call(tool, arguments);
            EXPECT_EQ(text(result), invalidArguments);
            EXPECT_TRUE(failed(result));
            EXPECT_EQ(items(result), 1);
        }
    }
    EXPECT_EQ(text(call("capture_window_region", joined(square, {{u"app_name"_s, u"Nope"_s}}))),
              invalidArguments);
    EXPECT_TRUE(saved().isEmpty());
}

TEST_F(ToolHandlerTest, ReportsAWindowThatIsNotOnScreen) {
    desktop.windows.onScreen.clear();
    EXPECT_EQ(text(call("capture_window", terminal)),
              u"Error: The operation could not be completed. (OrvaneError error 0.)");
}

TEST_F(ToolHandlerTest, PassesOnWhatTheDesktopSays) {
    desktop.duringCapture = [] { throw PlatformError(u"The window closed."_s); };
    EXPECT_EQ(text(call("capture_window", terminal)), u"Error: The window closed.");
}

TEST_F(ToolHandlerTest, SaysThatTheDesktopAsksTheHuman) {
    desktop.duringCapture = [] { throw CaptureAwaitsHuman(); };
    const QString asked = u"Error: The desktop is asking the human whether the screen may be captured. Ask "
                          "them to answer it, then try again."_s;
    for (const char* tool : {"capture_window", "capture_diff", "start_recording"}) {
        const QJsonObject result = call(tool, terminal);
        EXPECT_EQ(text(result), asked) << tool;
        EXPECT_TRUE(failed(result));
    }
    EXPECT_TRUE(saved().isEmpty());
}

TEST_F(ToolHandlerTest, SaysThatTheHumanHasRefused) {
    desktop.consent = FakeDesktop::Consent::refused;
    const QString refused =
        u"Error: The human has refused to let the screen be captured. Ask them before you try again."_s;
    EXPECT_EQ(text(call("capture_window", terminal)), refused);
    EXPECT_EQ(text(call("capture_region", square)), refused);
    EXPECT_EQ(text(call("capture_window_region", joined(square, terminal))), refused);
    EXPECT_TRUE(failed(call("capture_region", square)));
    desktop.consent = FakeDesktop::Consent::given;
    EXPECT_FALSE(failed(call("capture_region", square)));
}

TEST_F(ToolHandlerTest, CapturesAPartOfAWindow) {
    const QJsonObject result = call("capture_window_region", joined(square, terminal));
    EXPECT_EQ(text(result),
              u"Captured region (10,20 30x40) of Terminal - build — main. Returned image: 30×40 px.");
    EXPECT_EQ(image(result), desktop.picture.copy(10, 20, 30, 40));
    EXPECT_EQ(saved(), QStringList{stamp + u"-TERM-region.png"_s});
}

TEST_F(ToolHandlerTest, ReportsTheNumbersAskedForBeyondTheWindow) {
    QJsonObject arguments = joined(square, terminal);
    arguments[u"x"_s] = 290;
    const QJsonObject result = call("capture_window_region", arguments);
    EXPECT_EQ(text(result),
              u"Captured region (290,20 30x40) of Terminal - build — main. Returned image: 30×40 px.");
    EXPECT_EQ(image(result).size(), QSize(30, 40));
}

TEST_F(ToolHandlerTest, NeedsEveryNumberOfARegion) {
    for (const char* tool : {"capture_region", "capture_window_region"}) {
        for (const QString& key : square.keys()) {
            for (const QJsonValue& bad :
                 {QJsonValue(QJsonValue::Undefined), QJsonValue(10.5), QJsonValue(1e30), QJsonValue(u"10"_s),
                  QJsonValue(true), QJsonValue(), QJsonValue(QJsonArray{1})}) {
                QJsonObject arguments = joined(square, terminal);
                arguments.insert(key, bad);
                const QJsonObject result = call(tool, arguments);
                EXPECT_EQ(text(result), invalidArguments) << tool << key.toStdString();
                EXPECT_TRUE(failed(result));
            }
        }
    }
}

TEST_F(ToolHandlerTest, CapturesARegion) {
    const QJsonObject result = call("capture_region", joined(square, {{u"ocr"_s, u"true"_s}}));
    EXPECT_EQ(text(result), u"Captured region (10,20) 30x40. Returned image: 300×200 px.");
    EXPECT_EQ(image(result), desktop.picture);
    EXPECT_EQ(saved(), QStringList{stamp + u"-region.png"_s});
    EXPECT_EQ(desktop.capturedRegions.front().second, QRectF(10, 20, 30, 40));
}

TEST_F(ToolHandlerTest, TakesWholeNumbersHoweverWritten) {
    QJsonObject arguments = square;
    arguments[u"x"_s] = 10.0;
    EXPECT_FALSE(failed(call("capture_region", arguments)));
}

TEST_F(ToolHandlerTest, SaysWhyARegionIsRefused) {
    QJsonObject arguments = joined(square, terminal);
    arguments[u"width"_s] = 0;
    const QString reason = u"Error: A region of 0x40 holds no pixels: width and height must be at least 1."_s;
    EXPECT_EQ(text(call("capture_region", arguments)), reason);
    EXPECT_EQ(text(call("capture_window_region", arguments)), reason);
}

TEST_F(ToolHandlerTest, ReadsTheTextOfARegionWhenAsked) {
    textRecognition.lines = {{u"Save all"_s, {0, 0, 10, 10}, 0.9F}, {u"Cancel"_s, {0, 20, 10, 10}, 0.8F}};
    const QJsonObject asking{{u"ocr"_s, true}};
    EXPECT_EQ(
        text(call("capture_region", joined(square, asking))),
        u"Captured region (10,20) 30x40. Returned image: 300×200 px.\n\nRecognized text:\nSave all\nCancel");
    EXPECT_EQ(textRecognition.pictures.back(), desktop.picture);

    EXPECT_EQ(text(call("capture_window_region", joined(joined(square, terminal), asking))),
              u"Captured region (10,20 30x40) of Terminal - build — main. Returned image: 30×40 px."
              u"\n\nRecognized text:\nSave all\nCancel");
    EXPECT_EQ(textRecognition.pictures.back(), desktop.picture.copy(10, 20, 30, 40));
}

TEST_F(ToolHandlerTest, ReadsForTwentySecondsAndSaysWhatIsLeft) {
    for (const QString& line : {u"one"_s, u"two"_s, u"three"_s, u"four"_s})
        textRecognition.lines.push_back({line, {0, 0, 10, 10}, 0.9F});
    textRecognition.lineRead = [this] { clock.jump(std::chrono::seconds(8)); };

    const QString read = u"\n\nRecognized text:\none\ntwo\nthree\n(Text not read in time: 1 of 4 lines.)"_s;
    const QJsonObject arguments = joined(square, {{u"ocr"_s, true}});
    EXPECT_TRUE(text(call("capture_region", arguments)).endsWith(read));
    EXPECT_TRUE(text(call("capture_window_region", joined(arguments, terminal))).endsWith(read));
}

TEST_F(ToolHandlerTest, ReadsNoTextUnlessTheBooleanSaysSo) {
    textRecognition.lines = {{u"Save all"_s, {0, 0, 10, 10}, 0.9F}};
    for (const QJsonValue& value : {QJsonValue(u"true"_s), QJsonValue(1), QJsonValue(), QJsonValue(false)}) {
        const QJsonObject result = call("capture_region", joined(square, {{u"ocr"_s, value}}));
        EXPECT_EQ(text(result), u"Captured region (10,20) 30x40. Returned image: 300×200 px.");
    }
    EXPECT_TRUE(textRecognition.pictures.empty());
}

TEST_F(ToolHandlerTest, AnswersWithoutTextWhereNoneIsRead) {
    const QJsonObject asking = joined(square, {{u"ocr"_s, true}});
    EXPECT_TRUE(text(call("capture_region", asking)).endsWith(u"px."_s));
    EXPECT_EQ(textRecognition.pictures.size(), 1U);
    textRecognition.failure = u"The engine is broken."_s;
    const QJsonObject result = call("capture_region", asking);
    EXPECT_TRUE(text(result).endsWith(u"px."_s));
    EXPECT_FALSE(failed(result));
}

TEST_F(ToolHandlerTest, AnnotatesACapture) {
    QJsonArray regions{joined(square, {{u"label"_s, u"the button"_s}})};
    for (int i = 2; i <= 6; ++i) {
        regions.append(QJsonObject{{u"x"_s, -i},
                                   {u"y"_s, i},
                                   {u"width"_s, 0},
                                   {u"height"_s, i},
                                   {u"label"_s, u"n°"_s + QString::number(i)}});
    }
    const QJsonObject result = call("capture_annotated", joined(terminal, {{u"regions"_s, regions}}));
    EXPECT_EQ(text(result), u"Captured Terminal - build — main (300x200) with 6 annotation(s):\n"
                            u"  [1] (10,20 30x40) the button\n"
                            u"  [2] (-2,2 0x2) n°2\n"
                            u"  [3] (-3,3 0x3) n°3\n"
                            u"  [4] (-4,4 0x4) n°4\n"
                            u"  [5] (-5,5 0x5) n°5\n"
                            u"  [6] (-6,6 0x6) n°6\n");
    EXPECT_EQ(items(result), 2);
    std::vector<LabelledRegion> expected{{{10, 20, 30, 40}, u"the button"_s}};
    for (int i = 2; i <= 6; ++i)
        expected.push_back({{-i, i, 0, i}, u"n°"_s + QString::number(i)});
    EXPECT_EQ(image(result), renderAnnotations(desktop.picture, expected, 300, 200));
    EXPECT_EQ(saved(), QStringList{stamp + u"-TERM-annotated.png"_s});
}

TEST_F(ToolHandlerTest, AnnotatesNothing) {
    const QJsonObject result = call("capture_annotated", joined(terminal, {{u"regions"_s, QJsonArray()}}));
    EXPECT_EQ(text(result), u"Captured Terminal - build — main (300x200) with 0 annotation(s):\n");
    EXPECT_EQ(image(result), desktop.picture);
}

TEST_F(ToolHandlerTest, LeavesOutRegionsThatAreNotWhole) {
    const QJsonObject whole = joined(square, {{u"label"_s, u"kept"_s}});
    QJsonArray regions;
    for (const QString& key : whole.keys()) {
        QJsonObject without = whole;
        without.remove(key);
        regions.append(without);
        regions.append(joined(whole, {{key, QJsonArray{1}}}));
    }
    regions.append(joined(whole, {{u"x"_s, 10.5}}));
    regions.append(joined(whole, {{u"x"_s, u"10"_s}}));
    regions.append(joined(whole, {{u"more"_s, true}}));
    EXPECT_EQ(
        text(call("capture_annotated", joined(terminal, {{u"regions"_s, regions}}))),
        u"Captured Terminal - build — main (300x200) with 1 annotation(s):\n  [1] (10,20 30x40) kept\n");
}

TEST_F(ToolHandlerTest, NeedsRegionsToAnnotate) {
    for (const QJsonValue& bad : {QJsonValue(QJsonValue::Undefined), QJsonValue(u"[]"_s), QJsonValue(square),
                                  QJsonValue(QJsonArray{square, 3}), QJsonValue()}) {
        const QJsonObject result = call("capture_annotated", joined(terminal, {{u"regions"_s, bad}}));
        EXPECT_EQ(text(result), invalidArguments);
        EXPECT_TRUE(failed(result));
    }
    EXPECT_EQ(text(call("capture_annotated", {{u"regions"_s, QJsonArray()}})), invalidArguments);
    EXPECT_EQ(text(call("capture_annotated", {{u"app_name"_s, u"Nope"_s}, {u"regions"_s, QJsonArray()}})),
              invalidArguments);
    EXPECT_TRUE(saved().isEmpty());
}

TEST_F(ToolHandlerTest, TakesNamesAndTitlesAsTheyAre) {
    desktop.windows = {};
    desktop.shareable = {};
    desktop.addApplication(8, u"%2 App %99"_s, 41, {0, 0, 300, 200}, u"%1 %2 %3 %L1 100%"_s);
    const QJsonObject named{{u"app_name"_s, u"%2 App %99"_s}};
    EXPECT_EQ(
        text(call("capture_window", named)),
        u"Captured %2 App %99 — %1 %2 %3 %L1 100%.\nwindowId: 41  (pass to annotate_understanding as frame "
        u"{\"type\":\"window\",\"windowId\":41})\nReturned image: 300×200 px — measure any annotation "
        u"coordinates in THIS image and pass these as the frame's imageWidth/imageHeight.\nNative window: "
        u"300×200 pt.");
    textRecognition.lines = {{u"%1 read %4"_s, {0, 0, 10, 10}, 0.9F}};
    EXPECT_EQ(text(call("capture_window_region", joined(joined(square, named), {{u"ocr"_s, true}}))),
              u"Captured region (10,20 30x40) of %2 App %99 - %1 %2 %3 %L1 100%. Returned image: 30×40 px."
              u"\n\nRecognized text:\n%1 read %4");
    EXPECT_EQ(text(call("capture_region", joined(square, {{u"ocr"_s, true}}))),
              u"Captured region (10,20) 30x40. Returned image: 300×200 px."
              u"\n\nRecognized text:\n%1 read %4");
    const QJsonArray regions{joined(square, {{u"label"_s, u"%1 of %2"_s}})};
    EXPECT_EQ(text(call("capture_annotated", joined(named, {{u"regions"_s, regions}}))),
              u"Captured %2 App %99 - %1 %2 %3 %L1 100% (300x200) with 1 annotation(s):\n"
              u"  [1] (10,20 30x40) %1 of %2\n");
    EXPECT_EQ(text(call("capture_diff", named)),
              u"Stored 'before' snapshot of %2 App %99 (300x200). Make your changes, then call capture_diff "
              u"again with the same app_name to get the before/after comparison.");
    EXPECT_EQ(text(call("capture_diff", named)),
              u"BEFORE (2026-03-04T05:06:07Z) and AFTER (2026-03-04T05:06:07Z) of %2 App %99 (300x200)");
    EXPECT_EQ(text(call("capture_window", {{u"app_name"_s, u"%2 no %1"_s}})), invalidArguments);
}

TEST_F(ToolHandlerTest, ComparesBeforeAndAfter) {
    const QJsonObject first = call("capture_diff", {{u"app_name"_s, u"Terminal"_s}});
    EXPECT_EQ(text(first), u"Stored 'before' snapshot of Terminal (300x200). Make your changes, then call "
                           u"capture_diff again with the same app_name to get the before/after comparison.");
    EXPECT_EQ(items(first), 1);
    EXPECT_EQ(saved(), QStringList{stamp + u"-Terminal-before.png"_s});

    const QImage before = desktop.picture;
    desktop.picture.fill(Qt::red);
    // Told in UTC, whatever the clock is set to.
    now = now.addSecs(61).toOffsetFromUtc(3 * 3600);
    const QJsonObject second = call("capture_diff", {{u"app_name"_s, u"tERMINAL"_s}});
    EXPECT_EQ(text(second),
              u"BEFORE (2026-03-04T05:06:07Z) and AFTER (2026-03-04T05:07:08Z) of Terminal (300x200)");
    EXPECT_EQ(items(second), 3);
    EXPECT_EQ(image(second, 1), before);
    EXPECT_EQ(image(second, 2), desktop.picture);
    EXPECT_TRUE(
        saved().contains(now.toLocalTime().toString(u"yyyyMMdd-HHmmss"_s) + u"-tERMINAL-after.png"_s));

    EXPECT_TRUE(
        text(call("capture_diff", {{u"app_name"_s, u"Terminal"_s}})).startsWith(u"Stored 'before'"_s));
}

TEST_F(ToolHandlerTest, KeepsEachSpellingsDiffApart) {
    call("capture_diff", {{u"app_name"_s, u"term"_s}});
    EXPECT_TRUE(
        text(call("capture_diff", {{u"app_name"_s, u"terminal"_s}})).startsWith(u"Stored 'before'"_s));
}

TEST_F(ToolHandlerTest, AnswersEvenWhereNothingCanBeSaved) {
    QDir(storage.baseDir()).removeRecursively();
    EXPECT_FALSE(failed(call("capture_window", terminal)));
    EXPECT_FALSE(failed(call("capture_region", square)));
}

} // namespace orvane
