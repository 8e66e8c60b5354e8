#include "OrvaneCore/marking/submit/SubmitClipboard.h"

#include "tests/unit/marking/submit/SubmitFixture.h"

namespace orvane::test {

namespace {

class SubmittedClipboard : public SubmitFixture {
protected:
    void SetUp() override {
        dir = storage.createSessionDir().dir;
        result.allMarkers = {marker(1, {0, 0, 10, 10}), marker(7, {0, 0, 10, 10})};
        result.captures = {capture(5)};
    }

    static CaptureWithMarkers capture(quint32 displayId) {
        return {.appName = u"Mail"_s, .displayId = displayId};
    }

    QImage put(const QString& file, QRgb color) const {
        QImage image(4, 4, QImage::Format_RGB32);
        image.fill(color);
        EXPECT_TRUE(image.save(dir + u'/' + file));
        return image;
    }

    SubmitClipboard submitted() { return {clipboard, result, modes, dir, u"/shown"_s}; }

    QString dir;
    SubmitResult result;
    MarkupModes modes;
};

TEST_F(SubmittedClipboard, TheChoiceIsTheLastRegionElseTheDisplay) {
    EXPECT_EQ(clipboardImageChoice(result.allMarkers), ClipboardImageChoice(RegionCrop{7}));
    EXPECT_EQ(clipboardImageChoice({}), ClipboardImageChoice(FullDisplay()));
}

TEST_F(SubmittedClipboard, RecognisedTextComesBeforeAllElse) {
    put(u"region-7.png"_s, 0xFF112233);
    modes.image = true;
    result.copiedOcrText = u"text\n"_s;
    submitted().copyToClipboard();
    EXPECT_EQ(clipboard.text(), u"text\n"_s);
}

TEST_F(SubmittedClipboard, TheImageModeWritesThePictureAlone) {
    put(u"region-1.png"_s, 0xFF445566);
    const QImage last = put(u"region-7.png"_s, 0xFF112233);
    modes.image = true;
    submitted().copyToClipboard();
    EXPECT_EQ(clipboard.image().convertToFormat(QImage::Format_RGB32), last);
}

TEST_F(SubmittedClipboard, OtherwiseTheTextTellsWhereEverythingIs) {
    put(u"region-7.png"_s, 0xFF112233);
    submitted().copyToClipboard();
    EXPECT_EQ(clipboard.text(),
              u"[Orvane] 2 annotation(s) on Mail\nScreenshot: /shown/display-annotated.png\n"
              "Manifest: /shown/SESSION.md\n  [1] region → /shown/region-1.png\n"
              "  [7] region → /shown/region-7.png\n"_s);
    clipboard.writes.clear();
    modes.spotlight = true;
    submitted().copyToClipboard();
    EXPECT_TRUE(clipboard.text().contains(
        u"/SESSION.md\nPrivacy: spotlight on — background blurred; use region crops for detail.\n"_s));
}

TEST_F(SubmittedClipboard, WithoutRegionsThePictureIsTheDisplays) {
    const QImage only = put(u"display-annotated.png"_s, 0xFF112233);
    const QImage first = put(u"display-annotated-5.png"_s, 0xFF778899);
    result.allMarkers.clear();
    submitted().writeImageToClipboard();
    EXPECT_EQ(clipboard.image().convertToFormat(QImage::Format_RGB32), only);

    clipboard.writes.clear();
    result.captures = {capture(5), capture(6)};
    submitted().writeImageToClipboard();
    EXPECT_EQ(clipboard.image().convertToFormat(QImage::Format_RGB32), first);

    clipboard.writes.clear();
    result.captures.clear();
    submitted().writeImageToClipboard();
    EXPECT_EQ(clipboard.image().convertToFormat(QImage::Format_RGB32), only);
}

TEST_F(SubmittedClipboard, APictureThatCannotBeReadGivesWayToTheText) {
    QFile file(dir + u"/region-7.png"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no picture");
    file.close();
    submitted().writeImageToClipboard();
    EXPECT_TRUE(clipboard.text().startsWith(u"[Orvane] 2 annotation(s) on Mail\n"_s));
}

} // namespace
} // namespace orvane::test
