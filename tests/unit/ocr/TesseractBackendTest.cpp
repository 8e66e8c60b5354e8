// The module as the program loads it, with the language data that are installed.
#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/ocr/LazyTextRecognition.h"
#include "tests/unit/ocr/TextPicture.h"

#include <QDir>
#include <QPainter>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace orvane::ocr {
namespace {

using test::drawLine;
using test::DrawnText;
using test::fontOf;
using test::interfaceFont;
using test::pictureOf;

const QColor darkBackground(30, 30, 30);
const QColor lightInk(220, 220, 220);

class TesseractBackendTest : public testing::Test {
protected:
    /// The engines take long to load, so the tests that run in one process share them. Not longer than that:
    /// they need what Tesseract keeps in static storage when they go.
    static void SetUpTestSuite() { sharedBackend = std::make_unique<LazyTextRecognition>(); }
    static void TearDownTestSuite() { sharedBackend.reset(); }

    static LazyTextRecognition& backend() { return *sharedBackend; }

    static QStringList allLanguages() {
        return {u"en-US"_s, u"zh-Hans"_s, u"zh-Hant"_s, u"ja-JP"_s, u"ko-KR"_s};
    }

    /// In English alone unless told, which loads in a moment.
    static std::vector<TextLine> read(const QImage& picture, const QStringList& languages = {u"en-US"_s}) {
        return backend().recognize(picture, languages, [] { return false; }).lines;
    }

    static QStringList textsIn(const QImage& picture, const QStringList& languages = {u"en-US"_s}) {
        QStringList texts;
        for (const TextLine& line : read(picture, languages))
            texts.append(line.text);
        return texts;
    }

    static QImage sheet(int width, int height, const QColor& background) {
        QImage picture(width, height, QImage::Format_RGB32);
        picture.fill(background);
        return picture;
    }

private:
    static inline std::unique_ptr<LazyTextRecognition> sharedBackend;
};

TEST_F(TesseractBackendTest, SupportsTheLanguagesWhoseDataAreInstalled) {
    EXPECT_EQ(backend().supportedLanguages(), allLanguages());
}

TEST_F(TesseractBackendTest, ReadsALineDarkOnLight) {
    const QString text = u"Your changes have been saved."_s;
    const std::vector<TextLine> lines =
        read(pictureOf(text, Qt::black, Qt::white, interfaceFont()), allLanguages());

    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, text);
    EXPECT_GT(lines[0].confidence, 0.7F);
    EXPECT_LE(lines[0].confidence, 1.0F);
}

TEST_F(TesseractBackendTest, ReadsALineLightOnDark) {
    EXPECT_EQ(
        textsIn(pictureOf(u"Your changes have been saved."_s, lightInk, darkBackground, interfaceFont())),
        QStringList{u"Your changes have been saved."_s});
}

TEST_F(TesseractBackendTest, ReadsALineThatTouchesTheEdges) {
    const QImage picture = pictureOf(u"Recording stopped"_s, Qt::black, Qt::white, interfaceFont());
    EXPECT_EQ(textsIn(picture.copy(test::inkIn(picture, picture.rect()))),
              QStringList{u"Recording stopped"_s});
}

TEST_F(TesseractBackendTest, TellsWhereTheLinesAre) {
    QImage picture = sheet(400, 100, Qt::white);
    const DrawnText first = drawLine(picture, {20, 10}, u"Show hidden files"_s, Qt::black, interfaceFont());
    const DrawnText second =
        drawLine(picture, {60, 50}, u"Please choose a password"_s, Qt::black, interfaceFont());

    const std::vector<TextLine> lines = read(picture);

    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].text, first.text);
    EXPECT_TRUE(lines[0].box.adjusted(-1, -1, 1, 1).contains(first.ink));
    EXPECT_TRUE(QRectF(first.ink).adjusted(-1, -1, 1, 1).contains(lines[0].box));
    EXPECT_EQ(lines[1].text, second.text);
    EXPECT_TRUE(lines[1].box.adjusted(-1, -1, 1, 1).contains(second.ink));
    EXPECT_TRUE(QRectF(second.ink).adjusted(-1, -1, 1, 1).contains(lines[1].box));
}

TEST_F(TesseractBackendTest, ReadsManyLinesSideBySideAndGivesThemInOrder) {
    const QStringList words{u"Save"_s, u"Print"_s, u"Rename"_s, u"Delete"_s, u"Search"_s, u"Replace"_s};
    QImage picture = sheet(300, 24 * 28 + 10, Qt::white);
    QStringList expected;
    for (int row = 0; row < 24; ++row) {
        expected.append(words[row % words.size()] + u" the document "_s + QString::number(100 + row));
        drawLine(picture, {10, 5 + 28 * row}, expected.back(), Qt::black, interfaceFont());
    }
    EXPECT_EQ(textsIn(picture), expected);
}

TEST_F(TesseractBackendTest, LeavesOffWhenTimeIsUp) {
    QImage picture = sheet(300, 24 * 28 + 10, Qt::white);
    QStringList all;
    for (int row = 0; row < 24; ++row) {
        all.append(u"Save the document "_s + QString::number(100 + row));
        drawLine(picture, {10, 5 + 28 * row}, all.back(), Qt::black, interfaceFont());
    }
    std::atomic<int> asked = 0;
    const PictureText some = backend().recognize(picture, {u"en-US"_s}, [&asked] { return ++asked > 20; });
    EXPECT_EQ(some.found, 24);
    EXPECT_GT(some.unread, 0);
    // The first ones were read, and none of them was left in the middle.
    ASSERT_EQ(static_cast<qsizetype>(some.lines.size()), 24 - some.unread);
    EXPECT_GT(some.lines.size(), 4U);
    for (size_t index = 0; index < some.lines.size(); ++index)
        EXPECT_EQ(some.lines[index].text, all[static_cast<qsizetype>(index)]);

    const PictureText none = backend().recognize(picture, {u"en-US"_s}, [] { return true; });
    EXPECT_TRUE(none.lines.empty());
    EXPECT_EQ(none.found, 24);
    EXPECT_EQ(none.unread, 24);
}

TEST_F(TesseractBackendTest, ReadsALightPaneAndADarkOneInOnePicture) {
    QImage picture = sheet(500, 90, Qt::white);
    QPainter(&picture).fillRect(QRect(200, 0, 300, 90), darkBackground);
    drawLine(picture, {12, 10}, u"Print Preview"_s, Qt::black, interfaceFont());
    drawLine(picture, {12, 50}, u"Word Count"_s, Qt::black, interfaceFont());
    drawLine(picture, {212, 10}, u"Nobody has commented on this yet."_s, lightInk, interfaceFont());
    drawLine(picture, {212, 50}, u"Compare both branches before you go."_s, lightInk, interfaceFont());

    EXPECT_EQ(textsIn(picture),
              (QStringList{u"Print Preview"_s, u"Word Count"_s, u"Nobody has commented on this yet."_s,
                           u"Compare both branches before you go."_s}));
}

TEST_F(TesseractBackendTest, ReadsTheOtherLanguages) {
    const std::vector<QString> texts{
        u"请选择要打开的文件"_s,
        u"網路連線已中斷"_s,
        u"最近使ったファイルを開く"_s,
        u"네트워크 연결이 끊어졌습니다"_s,
    };
    const QFont font = fontOf(u"WenQuanYi Micro Hei"_s, 18);
    for (const QString& text : texts)
        EXPECT_EQ(textsIn(pictureOf(text, Qt::black, Qt::white, font), allLanguages()), QStringList{text});
}

TEST_F(TesseractBackendTest, ReadsOnlyTheLanguagesItIsAskedFor) {
    const QImage picture =
        pictureOf(u"请选择要打开的文件"_s, Qt::black, Qt::white, fontOf(u"WenQuanYi Micro Hei"_s, 18));
    for (const TextLine& line : read(picture)) {
        for (const QChar character : line.text)
            EXPECT_NE(character.script(), QChar::Script_Han) << line.text.toStdString();
    }
    EXPECT_THROW(read(picture, {u"tlh"_s}), PlatformError);
    EXPECT_TRUE(read(picture, {}).empty());
}

TEST_F(TesseractBackendTest, FindsNothingWhereNothingIs) {
    EXPECT_TRUE(read(QImage()).empty());
    EXPECT_TRUE(read(sheet(1, 1, Qt::black)).empty());
    EXPECT_TRUE(read(sheet(2, 200, Qt::white)).empty());
    EXPECT_TRUE(read(sheet(640, 480, Qt::white), allLanguages()).empty());
    EXPECT_TRUE(read(sheet(640, 480, Qt::black)).empty());
    QImage transparent(300, 60, QImage::Format_ARGB32_Premultiplied);
    transparent.fill(Qt::transparent);
    EXPECT_TRUE(read(transparent).empty());
}

TEST_F(TesseractBackendTest, ReadsEveryPixelFormat) {
    const QImage picture = pictureOf(u"Select a printer"_s, Qt::black, Qt::white, interfaceFont());
    for (const QImage::Format format :
         {QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB888, QImage::Format_Grayscale8,
          QImage::Format_Indexed8, QImage::Format_RGBA64}) {
        EXPECT_EQ(textsIn(picture.convertToFormat(format)), QStringList{u"Select a printer"_s}) << format;
    }
    QImage dense = picture;
    dense.setDevicePixelRatio(2);
    dense.setDotsPerMeterX(0);
    EXPECT_EQ(textsIn(dense), QStringList{u"Select a printer"_s});
}

TEST_F(TesseractBackendTest, TextOnATranslucentPictureIsSeenOnWhite) {
    QImage picture(300, 40, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setFont(interfaceFont());
    painter.setPen(Qt::black);
    painter.drawText(10, 25, u"Keep the original"_s);
    painter.end();
    EXPECT_EQ(textsIn(picture), QStringList{u"Keep the original"_s});
}

TEST_F(TesseractBackendTest, ReadsAFewLinesOnAScreenOfFourThousandPixels) {
    QImage picture = sheet(3840, 2160, QColor(240, 240, 240));
    drawLine(picture, {40, 30}, u"Sign in again"_s, Qt::black, interfaceFont());
    drawLine(picture, {3600, 2100}, u"Notifications are paused"_s, Qt::black, interfaceFont());
    EXPECT_EQ(textsIn(picture), (QStringList{u"Sign in again"_s, u"Notifications are paused"_s}));
}

TEST_F(TesseractBackendTest, RefusesAPictureThatIsTooLarge) {
    QImage picture(20'000, 6'000, QImage::Format_Mono);
    picture.fill(0);
    EXPECT_THROW(read(picture), PlatformError);
}

TEST_F(TesseractBackendTest, ServesSeveralThreads) {
    const std::vector<QString> texts{u"Your trial ends in nine days"_s, u"Failed to parse the text"_s};
    std::vector<QImage> pictures;
    pictures.reserve(texts.size());
    for (const QString& text : texts)
        pictures.push_back(pictureOf(text, Qt::black, Qt::white, interfaceFont()));
    std::vector<QStringList> results(texts.size());
    std::vector<std::thread> threads;
    threads.reserve(texts.size());
    for (size_t index = 0; index < texts.size(); ++index) {
        threads.emplace_back([&, index] {
            for (int count = 0; count < 3; ++count)
                results[index] += textsIn(pictures[index]);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (size_t index = 0; index < texts.size(); ++index)
        EXPECT_EQ(results[index], (QStringList{texts[index], texts[index], texts[index]}));
}

TEST_F(TesseractBackendTest, WritesNothingAndLeavesNoThreadsOfTheEngine) {
    const QImage picture = pictureOf(u"Use the arrow keys"_s, Qt::black, Qt::white, interfaceFont());
    const auto threads = [] {
        return QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    };
    const auto before = threads();
    ASSERT_GT(before, 0);
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    read(picture);
    read(sheet(3, 12, Qt::white));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    // One waits for the time to free the engines, unless another test has made it already.
    EXPECT_LE(threads(), before + 1);
}

} // namespace
} // namespace orvane::ocr
