#include "tests/unit/marking/submit/SubmitFixture.h"

#include <limits>

namespace orvane::test {

using ::testing::ElementsAre;

namespace {

class SubmitFailure : public SubmitFixture {
protected:
    static SubmitRequest request(std::vector<Marker> markers, const MarkupModes& modes = {}) {
        return {.markers = std::move(markers), .annotations = {}, .modes = modes, .sendTarget = {}};
    }

    /// Puts a folder where a file is to be written, as soon as the session's folder is there.
    void blockWhenCaptured(const QString& file) { m_blocked.append(file); }

    std::optional<SubmitResult> submitBlocked(const SubmitRequest& request) {
        testing::internal::CaptureStderr();
        std::optional<SubmitResult> result = pipeline.submit(request, [this] {
            for (const QString& file : m_blocked)
                ASSERT_TRUE(QDir(folder()).mkpath(file + u"/in the way"_s));
        });
        log = QString::fromStdString(testing::internal::GetCapturedStderr());
        return result;
    }

    QString lastLines() const {
        return u"orvane: SESSION.md saved to "_s + folder() + u"/SESSION.md\norvane: session "_s +
               sessions().value(0) + u" saved "_s;
    }

    QStringList m_blocked;
};

TEST_F(SubmitFailure, ADisplayThatCannotBeCapturedIsSkipped) {
    addLeftDisplay();
    screens.failures[mainId] = [] { throw PlatformError(u"The screen is locked."_s); };
    const auto result = submit(request({marker(1, {10, 10, 20, 20}), marker(2, {-100, 100, 20, 20})}));
    ASSERT_TRUE(result);
    EXPECT_EQ(log, u"orvane: display capture error: The screen is locked.\n"_s + lastLines() +
                       u"(1 capture(s), 2 region(s))\n"_s);
    EXPECT_EQ(events.count(u"captured"_s), 1);
    EXPECT_THAT(files(),
                ElementsAre(u"SESSION.md"_s, u"display-annotated-3000000012.png"_s, u"region-2.png"_s));
    ASSERT_EQ(result->captures.size(), 1U);
    EXPECT_EQ(result->captures.front().displayId, leftId);
    EXPECT_TRUE(
        clipboard.text().contains(u"\nScreenshot: "_s + displayedFolder() + u"/display-annotated.png\n"_s));
    EXPECT_TRUE(clipboard.text().contains(u"/region-1.png\n"_s));
}

TEST_F(SubmitFailure, WithoutAnyCaptureTheManifestAloneIsWritten) {
    words.remedies.screen = u"Knock twice"_s;
    // What fails, what the log says of it and what the human is told.
    for (const auto& [failure, message, told] :
         std::vector<std::tuple<std::function<void()>, QString, QString>>{
             {[] { throw OrvaneError::permissionDenied(); }, OrvaneError::permissionDenied().description(),
              u"Knock twice"_s},
             {[] { throw PlatformError(u"No screen."_s); }, u"No screen."_s, u"No screen."_s},
             {[] { throw std::runtime_error("out of luck"); }, u"out of luck"_s, u"out of luck"_s}}) {
        screens.failures[mainId] = failure;
        clipboard.writes.clear();
        events.clear();
        const auto result = submit(request({marker(1, {10, 10, 20, 20})}));
        ASSERT_TRUE(result);
        EXPECT_TRUE(result->captures.empty());
        EXPECT_EQ(result->captureError, told);
        EXPECT_EQ(log, u"orvane: display capture error: "_s + message + u'\n' + lastLines() +
                           u"(0 capture(s), 1 region(s))\n"_s);
        EXPECT_THAT(files(), ElementsAre(u"SESSION.md"_s));
        EXPECT_TRUE(clipboard.text().startsWith(u"[Orvane] 1 annotation(s) on \nScreenshot: "_s));
        EXPECT_EQ(events.count(u"captured"_s), 1);
        pipeline.generateThumbnail(*result);
        EXPECT_THAT(files(), ElementsAre(u"SESSION.md"_s));
        ASSERT_TRUE(QDir(folder()).removeRecursively());
    }
}

TEST_F(SubmitFailure, OfSeveralErrorsTheLastIsTold) {
    addLeftDisplay();
    screens.failures[mainId] = [] { throw PlatformError(u"The first."_s); };
    screens.failures[leftId] = [] { throw PlatformError(u"The second."_s); };
    const auto result = submit(request({marker(1, {10, 10, 20, 20}), marker(2, {-100, 100, 20, 20})}));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->captureError, u"The second."_s);
}

TEST_F(SubmitFailure, APictureOfNothingIsSkippedInSilence) {
    screens.pictures[mainId] = QImage();
    const auto result = submit(request({marker(1, {10, 10, 20, 20})}));
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->captures.empty());
    EXPECT_EQ(log, lastLines() + u"(0 capture(s), 1 region(s))\n"_s);
    EXPECT_THAT(files(), ElementsAre(u"SESSION.md"_s));
}

TEST_F(SubmitFailure, ADesktopThatDoesNotAnswerHasNeitherWindowsNorDisplays) {
    desktop.failure = u"The desktop is gone."_s;
    const auto result = submit(request({marker(1, {10, 10, 20, 20})}));
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->captures.empty());
    EXPECT_FALSE(result->allMarkers.front().displayId);
    EXPECT_TRUE(log.startsWith(u"orvane: The desktop is gone.\n"_s));
    EXPECT_TRUE(log.endsWith(lastLines() + u"(0 capture(s), 1 region(s))\n"_s));
    EXPECT_EQ(events.count(u"captured"_s), 1);
    EXPECT_EQ(clipboard.writes.size(), 1U);
}

TEST_F(SubmitFailure, FilesThatCannotBeWrittenAreLogged) {
    recognition.lines = {{u"Hello"_s, {0, 0, 10, 10}, 0.9F}};
    for (const QString& file : {u"display-annotated.png"_s, u"region-1.png"_s, u"ocr.txt"_s, u"SESSION.md"_s})
        blockWhenCaptured(file);
    const auto result =
        submitBlocked(request({marker(1, {10, 10, 20, 20}), marker(2, {50, 50, 20, 20})}, {.ocr = true}));
    ASSERT_TRUE(result);
    EXPECT_EQ(log, u"orvane: save error display-annotated.png: the file cannot be written\n"
                   "orvane: save error region-1.png: the file cannot be written\n"
                   "orvane: save error ocr.txt: the file cannot be written\n"_s +
                       lastLines() + u"(1 capture(s), 2 region(s))\n"_s);
    EXPECT_EQ(picture(u"region-2.png"_s), screens.pictures[mainId].copy(50, 50, 20, 20));
    EXPECT_EQ(result->cropPixels.size(), 2U);
    EXPECT_EQ(clipboard.text(), u"[1]\nHello\n\n[2]\nHello"_s);
    EXPECT_TRUE(storage.latestSessionDir());
}

TEST_F(SubmitFailure, AFolderThatCannotBeMadeStopsNothing) {
    const QString blocked = home.path() + u"/blocked"_s;
    QFile file(blocked);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    settings.setValue(u"StorageBaseDirectory"_s, blocked);
    const auto result = submit(request({marker(1, {10, 10, 20, 20})}));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->captures.size(), 1U);
    EXPECT_EQ(log,
              u"orvane: save error display-annotated.png: the file cannot be written\n"
              "orvane: save error region-1.png: the file cannot be written\norvane: SESSION.md saved to "_s +
                  blocked + u"/sessions/"_s + result->sessionId + u"/SESSION.md\norvane: session "_s +
                  result->sessionId + u" saved (1 capture(s), 1 region(s))\n"_s);
    EXPECT_EQ(clipboard.writes.size(), 1U);
}

TEST_F(SubmitFailure, WithoutItsFileTheImageModeCopiesThePaths) {
    blockWhenCaptured(u"region-2.png"_s);
    submitBlocked(request({marker(1, {10, 10, 20, 20}), marker(2, {50, 50, 20, 20})},
                          {.spotlight = true, .image = true}));
    EXPECT_TRUE(clipboard.text().startsWith(u"[Orvane] 2 annotation(s) on Display\n"_s));
    EXPECT_TRUE(clipboard.text().contains(u"\nPrivacy: spotlight on"_s));
}

/// Can make no PNG of pictures of one size.
class PickyWriter final : public PngWriter {
public:
    explicit PickyWriter(const QSize& refused)
        : m_refused(refused) {}
    QByteArray encode(const QImage& image) const override {
        return image.size() == m_refused ? QByteArray() : m_writer.encode(image);
    }

private:
    QSize m_refused;
    png::IgzipWriter m_writer;
};

TEST_F(SubmitFailure, PicturesThatCannotBeEncodedHaveNoFile) {
    for (const auto& [size, files] :
         {std::pair(QSize(20, 20),
                    QStringList{u"SESSION.md"_s, u"display-annotated.png"_s, u"region-2.png"_s}),
          std::pair(QSize(400, 300), QStringList{u"SESSION.md"_s, u"region-1.png"_s, u"region-2.png"_s})}) {
        const PickyWriter writer(size);
        SubmitPipeline submitting({.storage = storage,
                                   .discovery = discovery,
                                   .screenCapture = screenCapture,
                                   .displays = desktop,
                                   .pngWriter = writer,
                                   .textRecognizer = textRecognizer,
                                   .clipboard = clipboard,
                                   .words = words,
                                   .sleep = [](std::chrono::milliseconds) {}});
        testing::internal::CaptureStderr();
        const auto result =
            submitting.submit(request({marker(1, {10, 10, 20, 20}), marker(2, {50, 50, 30, 30})}), [] {});
        log = QString::fromStdString(testing::internal::GetCapturedStderr());
        ASSERT_TRUE(result);
        EXPECT_EQ(this->files(), files);
        EXPECT_EQ(result->captures.size(), 1U);
        const bool isDisplay = size == QSize(400, 300);
        EXPECT_EQ(result->cropPixels.contains(1), isDisplay);
        EXPECT_EQ(
            log.contains(u"orvane: save error display-annotated.png: the picture cannot be encoded\n"_s),
            isDisplay);
        EXPECT_EQ(log.count(u"save error"_s), isDisplay ? 1 : 0);
        ASSERT_TRUE(QDir(folder()).removeRecursively());
    }
}

TEST_F(SubmitFailure, TextThatCannotBeReadIsNoText) {
    recognition.failure = u"No engine."_s;
    const auto result = submit(request({marker(1, {10, 10, 20, 20})}, {.ocr = true}));
    ASSERT_TRUE(result);
    EXPECT_TRUE(log.startsWith(u"orvane: OCR error: No engine.\n"_s));
    EXPECT_FALSE(result->copiedOcrText);
    EXPECT_TRUE(clipboard.text().startsWith(u"[Orvane] 1 annotation(s)"_s));
}

TEST_F(SubmitFailure, RegionsThatAreNoneHarmNothing) {
    const qreal nan = std::numeric_limits<qreal>::quiet_NaN();
    const qreal infinite = std::numeric_limits<qreal>::infinity();
    Annotation lost = box({nan, infinite, 1, 1});
    lost.start = {nan, nan};
    const auto result =
        submit({.markers = {marker(1, {nan, nan, nan, nan}), marker(2, {-infinite, 0, infinite, 10}),
                            marker(3, {-1e300, -1e300, 2e300, 2e300}), marker(4, {10, 10, 0, 0}),
                            marker(5, {10, 10, 20, 20})},
                .annotations = {lost},
                .modes = {.spotlight = true, .ocr = true},
                .sendTarget = {}});
    ASSERT_TRUE(result);
    EXPECT_THAT(files(), ElementsAre(u"SESSION.md"_s, u"display-annotated.png"_s, u"region-4.png"_s,
                                     u"region-5.png"_s));
    EXPECT_EQ(result->cropPixels.at(4), QSize(1, 1));
    EXPECT_EQ(recognition.pictures.size(), 2U);
    EXPECT_EQ(picture(u"region-5.png"_s), screens.pictures[mainId].copy(10, 10, 20, 20));
    EXPECT_TRUE(log.endsWith(u"(1 capture(s), 5 region(s))\n"_s));
}

TEST_F(SubmitFailure, AHundredRegionsAreAHundredFiles) {
    std::vector<Marker> markers;
    markers.reserve(100);
    for (int i = 0; i < 100; ++i) {
        const QPoint place(i % 10 * 40, i / 10 * 30);
        markers.push_back(marker(i + 1, QRectF(place, QSize(40, 30)), QString(10000, u'x')));
    }
    const auto result = submit(request(markers));
    ASSERT_TRUE(result);
    EXPECT_EQ(files().size(), 102);
    EXPECT_EQ(picture(u"region-100.png"_s), screens.pictures[mainId].copy(360, 270, 40, 30));
}

} // namespace
} // namespace orvane::test
