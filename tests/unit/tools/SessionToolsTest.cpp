#include "OrvaneCore/tools/SessionTools.h"

#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvanePlatform/png/IgzipWriter.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/FakeMedia.h"
#include "tests/support/FakeTextRecognition.h"
#include "tests/support/InMemorySettings.h"
#include "tests/support/KnownPicture.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

namespace orvane {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using test::knownPicture;

class SessionToolsTest : public testing::Test {
protected:
    SessionToolsTest() {
        desktop.displayList = {test::makeDisplay(11, {0, 0, 4000, 3000})};
        desktop.picture = knownPicture(300, 200, false);
        desktop.addApplication(7, u"Terminal"_s, 40, {10, 20, 300, 200}, u"build"_s);
        storage.ensureDirectories();
        storage.setSaveRawVideo(false);
    }

    static QString text(const QJsonObject& result, int index = 0) {
        return result.value(u"content"_s).toArray().at(index).toObject().value(u"text"_s).toString();
    }
    static QImage image(const QJsonObject& result, int index) {
        const QJsonObject item = result.value(u"content"_s).toArray().at(index).toObject();
        EXPECT_EQ(item.value(u"type"_s).toString(), u"image");
        EXPECT_EQ(item.value(u"mimeType"_s).toString(), u"image/png");
        return QImage::fromData(QByteArray::fromBase64(item.value(u"data"_s).toString().toLatin1()), "PNG");
    }
    static qsizetype items(const QJsonObject& result) { return result.value(u"content"_s).toArray().size(); }
    static bool failed(const QJsonObject& result) { return result.value(u"isError"_s).toBool(); }

    template <class Call>
    static QString thrownBy(Call call) {
        try {
            call();
        } catch (const OrvaneError& error) {
            return error.description();
        }
        return u"nothing"_s;
    }

    /// A session folder, not yet the latest.
    QString makeSession(const QString& name) {
        QDir().mkpath(storage.sessionDir(name));
        return storage.sessionDir(name);
    }
    static void write(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    QByteArray png(int width, int height) const {
        return pngWriter.encode(knownPicture(width, height, false));
    }

    QString start(const QJsonObject& arguments = {{u"app_name"_s, u"TERM"_s}}) {
        QString reply = text(tools.startRecording(arguments));
        clock.awaitSleeper();
        return reply;
    }

    QTemporaryDir home;
    test::InMemorySettings settings;
    test::FakeClock clock;
    StorageManager storage{settings, home.path(), [this] { return clock.now(); },
                           [this](std::chrono::milliseconds time) { clock.jump(time); }};
    test::FakeDesktop desktop;
    png::IgzipWriter pngWriter;
    test::FakeMedia media;
    WindowDiscovery discovery{desktop, desktop};
    ScreenCapture screenCapture{desktop, desktop, pngWriter};
    ScreenRecorder recorder{discovery, screenCapture, storage, pngWriter, media, clock};
    test::FakeTextRecognition textRecognition;
    SessionTools tools{recorder, screenCapture, TextRecognizer(textRecognition, clock), storage};
    QString id = clock.now().toLocalTime().toString(u"yyyyMMdd-HHmmss.zzz"_s);
};

} // namespace

TEST_F(SessionToolsTest, StartsARecording) {
    EXPECT_EQ(start(), u"Recording started for TERM.\nSession ID: "_s + id + u"\nSession path: "_s +
                           storage.sessionDir(id) +
                           u"\nCapturing at 1000ms intervals. Call poll_recording to check for changes, "_s
                           u"read_frame to inspect a frame. Call stop_recording when done."_s);
}

TEST_F(SessionToolsTest, TakesAnIntervalThatIsAnInteger) {
    const std::vector<std::pair<QJsonValue, QString>> intervals{
        {250, u"250"_s},       {0, u"0"_s},        {-5, u"-5"_s},     {1e12, u"1000000000000"_s},
        {u"250"_s, u"1000"_s}, {250.5, u"1000"_s}, {true, u"1000"_s}, {QJsonValue::Null, u"1000"_s}};
    for (const auto& [interval, told] : intervals) {
        clock.jump(5ms);
        const QString reply = start({{u"app_name"_s, u"Terminal"_s}, {u"interval_ms"_s, interval}});
        EXPECT_TRUE(reply.contains(u"Capturing at "_s + told + u"ms intervals."_s)) << reply.toStdString();
        tools.stopRecording({});
    }
}

TEST_F(SessionToolsTest, StartsNothingWithoutAName) {
    EXPECT_EQ(thrownBy([&] { tools.startRecording({}); }), u"Invalid arguments: app_name is required");
    EXPECT_EQ(thrownBy([&] {
                  tools.startRecording({{u"app_name"_s, 5}});
              }),
              u"Invalid arguments: app_name is required");
    EXPECT_EQ(thrownBy([&] {
                  tools.startRecording({{u"app_name"_s, u"Nope"_s}});
              }),
              u"Invalid arguments: No window found for 'Nope'");
}

TEST_F(SessionToolsTest, TakesNamesAndTitlesAsTheyAre) {
    desktop.windows = {};
    desktop.shareable = {};
    desktop.addApplication(8, u"%2 App %3"_s, 41, {0, 0, 300, 200}, u"%1 %2"_s);
    EXPECT_EQ(start({{u"app_name"_s, u"%2 App %3"_s}}),
              u"Recording started for %2 App %3.\nSession ID: "_s + id + u"\nSession path: "_s +
                  storage.sessionDir(id) +
                  u"\nCapturing at 1000ms intervals. Call poll_recording to check for changes, read_frame to "
                  "inspect a frame. Call stop_recording when done."_s);
    EXPECT_EQ(text(tools.pollRecording({})),
              u"Session: "_s + id +
                  u"\nNew events (1):\n  T+0.0s | recording_start | Started monitoring %2 App %3 — %1 %2 "
                  "(300x200) | frame-000-start.png\n"_s);
    const QString folder = storage.sessionDir(id);
    const QString stopped = text(tools.stopRecording({}));
    EXPECT_TRUE(stopped.contains(u"\n- **App:** %2 App %3\n"_s));
    // The report of the latest session, whatever it says.
    EXPECT_EQ(text(tools.getAnnotations({})), u"Session path: "_s + QFileInfo(folder).canonicalFilePath() +
                                                  stopped.mid(stopped.indexOf(u"\n\n# Orvane")));
}

TEST_F(SessionToolsTest, StartsOneRecordingAtATime) {
    start();
    EXPECT_EQ(thrownBy([&] { start(); }),
              u"Invalid arguments: Already recording. Call stop_recording first.");
}

TEST_F(SessionToolsTest, StopsARecording) {
    desktop.picture = knownPicture(3000, 2000, false);
    start();
    clock.advance(1s);
    desktop.picture = knownPicture(300, 200, false);
    clock.advance(1s);
    const QJsonObject result = tools.stopRecording({});
    QFile report(storage.sessionDir(id) + u"/SESSION.md"_s);
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    EXPECT_EQ(text(result), u"Recording stopped.\nSession ID: "_s + id + u"\nSession path: "_s +
                                storage.sessionDir(id) + u"\n\n"_s + QString::fromUtf8(report.readAll()));
    ASSERT_EQ(items(result), 5);
    EXPECT_EQ(text(result, 1), u"--- frame-000-start.png ---");
    EXPECT_EQ(image(result, 2).size(), QSize(1024, 683));
    EXPECT_EQ(text(result, 3), u"--- frame-003-end.png ---");
    EXPECT_EQ(image(result, 4), knownPicture(300, 200, false).convertToFormat(image(result, 4).format()));
    EXPECT_FALSE(failed(result));
}

TEST_F(SessionToolsTest, ShowsWhateverHoldsTheLettersOfStartOrEndWhenItStops) {
    start();
    const QString folder = storage.sessionDir(id);
    write(folder + u"/sender.png"_s, png(8, 8));
    write(folder + u"/Zend.png"_s, png(8, 8));
    write(folder + u"/.restarted.png"_s, png(9, 9));
    write(folder + u"/end.txt"_s, "no picture");
    write(folder + u"/spending.png"_s, "no picture");
    write(folder + u"/END.png"_s, png(8, 8));
    write(folder + u"/weekend.PNG"_s, png(8, 8));
    const QJsonObject result = tools.stopRecording({});
    QStringList names;
    for (int i = 1; i < items(result); i += 2)
        names.append(text(result, i));
    EXPECT_EQ(names, (QStringList{u"--- .restarted.png ---"_s, u"--- Zend.png ---"_s,
                                  u"--- frame-000-start.png ---"_s, u"--- frame-001-end.png ---"_s,
                                  u"--- sender.png ---"_s}));
}

TEST_F(SessionToolsTest, StopsWithoutAReportWhereThereIsNone) {
    start();
    ASSERT_TRUE(QDir(storage.sessionDir(id)).removeRecursively());
    const QJsonObject result = tools.stopRecording({});
    EXPECT_EQ(text(result),
              u"Recording stopped.\nSession ID: "_s + id + u"\nSession path: "_s + storage.sessionDir(id));
    EXPECT_EQ(items(result), 1);
}

TEST_F(SessionToolsTest, StopsOnlyWhatRuns) {
    EXPECT_EQ(thrownBy([&] { tools.stopRecording({}); }), u"Invalid arguments: Not recording.");
}

TEST_F(SessionToolsTest, PollsARecording) {
    EXPECT_EQ(text(tools.pollRecording({})), u"Not recording. Call start_recording first.");
    EXPECT_FALSE(failed(tools.pollRecording({})));
    start();
    EXPECT_EQ(text(tools.pollRecording({})),
              u"Session: "_s + id +
                  u"\nNew events (1):\n  T+0.0s | recording_start | Started monitoring Terminal — build "_s
                  u"(300x200) | frame-000-start.png\n"_s);
    EXPECT_EQ(text(tools.pollRecording({})),
              u"No new events since last poll. Recording is active (session: "_s + id + u")."_s);
    QImage other = desktop.picture.copy();
    other.invertPixels();
    for (int i = 0; i < 2; ++i) {
        std::swap(other, desktop.picture);
        clock.advance(1s);
    }
    const QString polled = text(tools.pollRecording({}));
    EXPECT_TRUE(polled.startsWith(u"Session: "_s + id + u"\nNew events (2):\n  T+1.0s | major_change | "_s))
        << polled.toStdString();
    tools.stopRecording({});
    EXPECT_EQ(text(tools.pollRecording({})), u"Not recording. Call start_recording first.");
}

TEST_F(SessionToolsTest, ReadsAFrame) {
    const QString folder = makeSession(u"one"_s);
    write(folder + u"/a.png"_s, png(2048, 100));
    const QJsonObject arguments{{u"session_id"_s, u"one"_s}, {u"frame"_s, u"a.png"_s}};
    const QJsonObject result = tools.readFrame(arguments);
    EXPECT_EQ(text(result), u"Frame: a.png from session one");
    EXPECT_EQ(image(result, 1).size(), QSize(1024, 50));

    storage.updateLatestLink(folder);
    EXPECT_EQ(text(tools.readFrame({{u"frame"_s, u"a.png"_s}})), u"Frame: a.png from session one");
    // Another type than a string counts as none.
    EXPECT_EQ(text(tools.readFrame({{u"session_id"_s, 1}, {u"frame"_s, u"a.png"_s}})),
              u"Frame: a.png from session one");
}

TEST_F(SessionToolsTest, ReadsAFrameWhereverItsNameLeads) {
    write(home.filePath(u"outside.png"_s), png(8, 8));
    makeSession(u"one"_s);
    EXPECT_EQ(text(tools.readFrame({{u"session_id"_s, u"one"_s}, {u"frame"_s, u"../../../outside.png"_s}})),
              u"Frame: ../../../outside.png from session one");
    EXPECT_EQ(text(tools.readFrame({{u"session_id"_s, u"../../"_s}, {u"frame"_s, u"outside.png"_s}})),
              u"Frame: outside.png from session ..");
}

TEST_F(SessionToolsTest, SaysWhatKeepsAFrameFromBeingRead) {
    EXPECT_EQ(thrownBy([&] {
                  tools.readFrame({{u"frame"_s, u"a.png"_s}});
              }),
              u"Invalid arguments: No latest session. Provide session_id.");
    const QString folder = makeSession(u"one"_s);
    EXPECT_EQ(thrownBy([&] {
                  tools.readFrame({{u"session_id"_s, u"one"_s}});
              }),
              u"Invalid arguments: frame parameter is required");
    EXPECT_EQ(thrownBy([&] {
                  tools.readFrame({{u"session_id"_s, u"one"_s}, {u"frame"_s, u"a.png"_s}});
              }),
              u"Invalid arguments: Frame not found: a.png");
}

TEST_F(SessionToolsTest, NeverPassesOffAsAPictureWhatIsNone) {
    const QString folder = makeSession(u"one"_s);
    write(folder + u"/text.png"_s, "no picture");
    write(folder + u"/empty.png"_s, "");
    write(folder + u"/cut.png"_s, png(300, 200).left(60));
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    ASSERT_TRUE(buffer.open(QIODevice::WriteOnly));
    ASSERT_TRUE(knownPicture(30, 20, false).save(&buffer, "BMP"));
    write(folder + u"/other.png"_s, jpeg);
    QDir(folder).mkdir(u"folder.png"_s);
    for (const QString& name : {u"text.png"_s, u"empty.png"_s, u"cut.png"_s, u"other.png"_s, u"folder.png"_s,
                                u""_s, u"../../../../../../../../../../dev/zero"_s}) {
        EXPECT_EQ(thrownBy([&] {
                      tools.readFrame({{u"session_id"_s, u"one"_s}, {u"frame"_s, name}});
                  }),
                  u"Invalid arguments: Frame not found: "_s + name);
    }
}

TEST_F(SessionToolsTest, SurvivesEveryName) {
    for (const QString& name : {u"a/b"_s, u".."_s, u"/etc"_s, QString(QChar(0)), u"x\0y"_s,
                                QString(100'000, u'a'), u""_s, QString(50'000, u'/')}) {
        EXPECT_EQ(thrownBy([&] {
                      tools.readFrame({{u"session_id"_s, name}, {u"frame"_s, name}});
                  }),
                  u"Invalid arguments: Frame not found: "_s + name);
        const QJsonObject answer =
            QJsonDocument::fromJson(text(tools.getAnnotationFeedback({{u"sessionId"_s, name}})).toUtf8())
                .object();
        EXPECT_EQ(answer.value(u"status"_s), u"not_found"_s);
        EXPECT_EQ(answer.value(u"sessionId"_s), name);
        EXPECT_EQ(answer.value(u"path"_s), storage.displayPath(storage.sessionsDir() + u'/' + name));
    }
}

TEST_F(SessionToolsTest, ReadsAnnotations) {
    const QString folder = makeSession(u"marks"_s);
    write(folder + u"/SESSION.md"_s, "# Marks ä\n");
    write(folder + u"/region-2.png"_s, png(20, 10));
    write(folder + u"/region-1.png"_s, png(2048, 100));
    write(folder + u"/region-3.png"_s, "no picture");
    write(folder + u"/region-4.jpg"_s, png(4, 4));
    write(folder + u"/other-region-.png"_s, png(4, 4));
    storage.updateLatestLink(folder);
    const QString resolved = QFileInfo(folder).canonicalFilePath();
    textRecognition.lines = {{.text = u"Save"_s, .box = {0, 0, 5, 5}, .confidence = 1}};

    for (const QJsonObject& arguments :
         {QJsonObject(), QJsonObject{{u"ocr"_s, false}}, QJsonObject{{u"ocr"_s, 1}}}) {
        const QJsonObject result = tools.getAnnotations(arguments);
        ASSERT_EQ(items(result), 5);
        EXPECT_EQ(text(result, 0), u"Session path: "_s + resolved + u"\n\n# Marks ä\n"_s);
        EXPECT_EQ(text(result, 1), u"--- region-1.png ---");
        EXPECT_EQ(image(result, 2).size(), QSize(1024, 50));
        EXPECT_EQ(text(result, 3), u"--- region-2.png ---");
        EXPECT_EQ(image(result, 4).size(), QSize(20, 10));
    }
    const QJsonObject result = tools.getAnnotations({{u"ocr"_s, true}});
    ASSERT_EQ(items(result), 5);
    EXPECT_EQ(text(result, 1), u"--- region-1.png ---\nRecognized text:\nSave");
    EXPECT_EQ(text(result, 3), u"--- region-2.png ---\nRecognized text:\nSave");
    textRecognition.lines = {};
    EXPECT_EQ(text(tools.getAnnotations({{u"ocr"_s, true}}), 1), u"--- region-1.png ---");
}

TEST_F(SessionToolsTest, AllRegionsOfACallShareTwentySecondsForReading) {
    const QString folder = makeSession(u"marks"_s);
    write(folder + u"/SESSION.md"_s, "text");
    for (const QString& name : {u"/region-1.png"_s, u"/region-2.png"_s, u"/region-3.png"_s})
        write(folder + name, png(20, 10));
    storage.updateLatestLink(folder);
    for (const QString& line : {u"one"_s, u"two"_s, u"three"_s})
        textRecognition.lines.push_back({.text = line, .box = {}, .confidence = 1});
    textRecognition.lineRead = [this] { clock.jump(std::chrono::seconds(4)); };

    for (int call = 0; call < 2; ++call) {
        const QJsonObject result = tools.getAnnotations({{u"ocr"_s, true}});
        ASSERT_EQ(items(result), 7);
        EXPECT_EQ(text(result, 1), u"--- region-1.png ---\nRecognized text:\none\ntwo\nthree");
        EXPECT_EQ(text(result, 3), u"--- region-2.png ---\nRecognized text:\none\ntwo\n"
                                   "(Text not read in time: 1 of 3 lines.)");
        EXPECT_EQ(text(result, 5), u"--- region-3.png ---\nRecognized text:\n(Text not read in time.)");
        EXPECT_FALSE(image(result, 6).isNull());
    }
}

TEST_F(SessionToolsTest, ReadsAnnotationsWithoutRegions) {
    const QString folder = makeSession(u"marks"_s);
    write(folder + u"/SESSION.md"_s, "text");
    storage.updateLatestLink(folder);
    EXPECT_EQ(items(tools.getAnnotations({})), 1);
}

TEST_F(SessionToolsTest, SaysWhenThereAreNoAnnotations) {
    QJsonObject result = tools.getAnnotations({});
    EXPECT_EQ(text(result), u"No annotations found. Use Cmd+Ctrl+P to place markers on screen, then submit.");
    EXPECT_FALSE(failed(result));
    const QString folder = makeSession(u"marks"_s);
    storage.updateLatestLink(folder);
    result = tools.getAnnotations({});
    EXPECT_EQ(text(result), u"No SESSION.md found in latest session.");
    EXPECT_FALSE(failed(result));
    write(folder + u"/SESSION.md"_s, "\xff\xfe not UTF-8");
    EXPECT_EQ(text(tools.getAnnotations({})), u"No SESSION.md found in latest session.");
    ASSERT_TRUE(QDir(folder).removeRecursively());
    EXPECT_EQ(text(tools.getAnnotations({})),
              u"No annotations found. Use Cmd+Ctrl+P to place markers on screen, then submit.");
}

namespace {

QByteArray reviewedSession() {
    return R"({"meta":{"schemaVersion":1,"id":"drawing","createdAtMs":1,"provenance":"p","reviewedAtMs":0},
"displays":[{"displayId":11,"index":0,"bounds":[[0,0],[800,600]],"scale":1},
{"displayId":12,"index":1,"bounds":[[800,0],[800,600]],"scale":2}],
"strokes":[
{"id":"A","kind":"arrow","colorHex":"#FF0000","strokeWidth":3,"text":"","label":"here","role":"agent",
"removed":true,"startAbs":[0,0],"endAbs":[1,1],"startNorm":[0,0],"endNorm":[0.5,0.5],"displayIndex":0,"zOrder":0},
{"id":"B","kind":"text","colorHex":"#FF0000","strokeWidth":3,"text":"no","label":"","role":"review",
"startAbs":[900,60],"endAbs":[1,1],"startNorm":[0.125,0.1],"endNorm":[0.5,0.5],"displayIndex":1,"zOrder":1}]})";
}

} // namespace

TEST_F(SessionToolsTest, TellsTheHumansReview) {
    const QString folder = makeSession(u"drawing"_s);
    write(folder + u"/session.json"_s, reviewedSession());
    write(folder + u"/baked-11.png"_s, png(2048, 100));
    write(folder + u"/baked-12.png"_s, png(5, 5));
    write(folder + u"/baked_review-12.png"_s, png(30, 20));
    const QJsonObject result = tools.getAnnotationFeedback({{u"sessionId"_s, u"drawing"_s}});
    const QJsonObject answer = QJsonDocument::fromJson(text(result).toUtf8()).object();
    EXPECT_EQ(answer.value(u"status"_s), u"submitted"_s);
    EXPECT_EQ(answer.value(u"sessionId"_s), u"drawing"_s);
    EXPECT_EQ(answer.value(u"path"_s), u"~/.orvane/sessions/drawing"_s);
    EXPECT_EQ(answer.value(u"comments"_s).toArray(), (QJsonArray{QJsonObject{{u"id"_s, u"B"_s},
                                                                             {u"kind"_s, u"text"_s},
                                                                             {u"text"_s, u"no"_s},
                                                                             {u"label"_s, u""_s},
                                                                             {u"displayIndex"_s, 1},
                                                                             {u"x"_s, 0.125},
                                                                             {u"y"_s, 0.1}}}));
    EXPECT_EQ(
        answer.value(u"agentStrokes"_s).toArray(),
        (QJsonArray{QJsonObject{
            {u"id"_s, u"A"_s}, {u"kind"_s, u"arrow"_s}, {u"label"_s, u"here"_s}, {u"removed"_s, true}}}));
    ASSERT_EQ(items(result), 3);
    EXPECT_EQ(image(result, 1).size(), QSize(1024, 50));
    EXPECT_EQ(image(result, 2).size(), QSize(30, 20));
    EXPECT_FALSE(failed(result));
}

TEST_F(SessionToolsTest, TakesTheSecondSpellingOfASessionId) {
    const QString folder = makeSession(u"drawing"_s);
    write(folder + u"/session.json"_s, reviewedSession());
    const auto status = [&](const QJsonObject& arguments) {
        return QJsonDocument::fromJson(text(tools.getAnnotationFeedback(arguments)).toUtf8())
            .object()
            .value(u"status"_s)
            .toString();
    };
    EXPECT_EQ(status({{u"session_id"_s, u"drawing"_s}}), u"submitted");
    EXPECT_EQ(status({{u"sessionId"_s, 5}, {u"session_id"_s, u"drawing"_s}}), u"submitted");
    EXPECT_EQ(status({{u"sessionId"_s, u"other"_s}, {u"session_id"_s, u"drawing"_s}}), u"not_found");
    const QJsonObject none = tools.getAnnotationFeedback({{u"session_id"_s, 5}});
    EXPECT_EQ(text(none), u"Error: sessionId is required (from annotate_understanding's result).");
    EXPECT_TRUE(failed(none));
}

TEST_F(SessionToolsTest, ShowsFourPicturesOfAReviewAtMost) {
    const QString folder = makeSession(u"drawing"_s);
    QByteArray session = reviewedSession();
    session.replace("\"removed\":true", "\"removed\":false")
        .replace("\"role\":\"review\"", "\"role\":\"human\"");
    write(folder + u"/session.json"_s, session);
    // The second is broken: it is passed over and takes its place all the same.
    for (int i = 1; i <= 6; ++i)
        write(folder + u"/baked-%1.png"_s.arg(i), i == 2 ? QByteArray("broken") : png(i, 1));
    const QJsonObject result = tools.getAnnotationFeedback({{u"sessionId"_s, u"drawing"_s}});
    ASSERT_EQ(items(result), 4);
    EXPECT_EQ(image(result, 1).width(), 1);
    EXPECT_EQ(image(result, 2).width(), 3);
    EXPECT_EQ(image(result, 3).width(), 4);
}

TEST_F(SessionToolsTest, FindsNoReviewInWhatIsNoSession) {
    const QString folder = makeSession(u"drawing"_s);
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("{"), reviewedSession().left(300), QByteArray("[]"),
          QByteArray(100'000, '['), QByteArray(50'000'000, ' ')}) {
        write(folder + u"/session.json"_s, bytes);
        const QJsonObject result = tools.getAnnotationFeedback({{u"sessionId"_s, u"drawing"_s}});
        EXPECT_TRUE(text(result).contains(u"\"status\": \"not_found\""));
        EXPECT_FALSE(failed(result));
    }
}

} // namespace orvane
