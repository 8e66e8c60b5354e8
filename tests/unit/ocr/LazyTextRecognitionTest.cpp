#include "OrvanePlatform/ocr/LazyTextRecognition.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvaneCore/recognition/TextRecognizer.h"
#include "OrvanePlatform/modules/ModuleLoader.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeClock.h"
#include "tests/unit/ocr/TextPicture.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace orvane::ocr {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

QImage line() {
    return test::pictureOf(u"Open the file"_s, Qt::black, Qt::white, test::interfaceFont());
}

/// Text recognition says once what is missing and reads nothing; the line is what it says.
std::string saidOnceBy(TextRecognitionBackend& backend) {
    const TextRecognizer recognizer(backend);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(recognizer.recognize(line()).empty());
    std::string said = testing::internal::GetCapturedStderr();

    testing::internal::CaptureStderr();
    EXPECT_TRUE(recognizer.recognize(line()).empty());
    EXPECT_TRUE(recognizer.recognizeJoined(line()).isEmpty());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    return said;
}

TEST(LazyTextRecognitionTest, AMissingModuleIsOneLineInTheLog) {
    const QTemporaryDir empty;
    LazyTextRecognition recognition(empty.path());

    const std::string said = saidOnceBy(recognition);

    EXPECT_THAT(said,
                AllOf(StartsWith("orvane: OCR error: Text recognition is not installed"),
                      HasSubstr("tesseract-ocr-eng"), HasSubstr(empty.path().toStdString()), EndsWith("\n")));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1);
}

TEST(LazyTextRecognitionTest, AModuleThatIsNoModuleIsOneLineInTheLog) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"orvane-ocr.so"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no library");
    file.close();
    LazyTextRecognition recognition(folder.path());

    EXPECT_THAT(saidOnceBy(recognition), StartsWith("orvane: OCR error: Text recognition is not installed"));
}

TEST(LazyTextRecognitionTest, TheLanguagesOfAMissingModuleCannotBeHad) {
    const QTemporaryDir empty;
    LazyTextRecognition recognition(empty.path());

    EXPECT_THROW(recognition.supportedLanguages(), PlatformError);
    // Asking for them has not used up the one time that a picture's failure is told.
    EXPECT_NE(saidOnceBy(recognition), "");
}

TEST(LazyTextRecognitionTest, AModuleThatCameInTheMeantimeIsUsed) {
    const QTemporaryDir folder;
    LazyTextRecognition recognition(folder.path());
    saidOnceBy(recognition);

    const QString name = u"orvane-ocr.so"_s;
    ASSERT_TRUE(
        QFile::link(QDir(modules::ModuleLoader::standardFolder()).filePath(name), folder.filePath(name)));

    EXPECT_EQ(TextRecognizer(recognition).recognizeJoined(line()), u"Open the file"_s);
}

TEST(LazyTextRecognitionTest, TheEnginesGoTwoMinutesAfterTheirLastUseAndComeBack) {
    orvane::test::FakeClock clock;
    LazyTextRecognition recognition(clock);
    const TextRecognizer recognizer(recognition);
    EXPECT_FALSE(recognition.isLoaded());
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(recognizer.recognizeJoined(line()), u"Open the file"_s);
        clock.awaitSleeper();
        clock.advance(std::chrono::milliseconds(119'999));
        EXPECT_TRUE(recognition.isLoaded());
        clock.jump(std::chrono::milliseconds(1));
        EXPECT_TRUE(orvane::test::eventually([&] { return !recognition.isLoaded(); }));
    }
}

TEST(LazyTextRecognitionTest, EnginesInUseStayHoweverLongItTakes) {
    orvane::test::FakeClock clock;
    LazyTextRecognition recognition(clock);
    bool isFirst = true;
    recognition.supportedLanguages();
    const PictureText text = recognition.recognize(line(), {u"en-US"_s}, [&] {
        if (std::exchange(isFirst, false)) {
            // The languages were asked for before, by a use that has ended.
            clock.awaitSleeper();
            clock.advance(std::chrono::minutes(10));
            EXPECT_TRUE(recognition.isLoaded());
        }
        return false;
    });
    ASSERT_EQ(text.lines.size(), 1U);
    EXPECT_EQ(text.lines[0].text, u"Open the file"_s);
}

TEST(LazyTextRecognitionTest, MissingLanguageDataAreOneLineInTheLog) {
    const QTemporaryDir empty;
    qputenv("TESSDATA_PREFIX", empty.path().toUtf8());
    LazyTextRecognition recognition;

    EXPECT_TRUE(recognition.supportedLanguages().isEmpty());
    const std::string said = saidOnceBy(recognition);
    qunsetenv("TESSDATA_PREFIX");

    EXPECT_THAT(said, AllOf(StartsWith("orvane: OCR error: No language data"), HasSubstr("tesseract-ocr-eng"),
                            HasSubstr("TESSDATA_PREFIX")));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1);
}

TEST(ModuleLoaderTest, NamesTheModuleAndTheFolderThatItIsMissingFrom) {
    const QTemporaryDir empty;
    const modules::ModuleLoader loader(empty.path());
    try {
        loader.load(u"orvane-nothing"_s);
        FAIL() << "a module that is not there was loaded";
    } catch (const PlatformError& error) {
        EXPECT_TRUE(error.message().contains(u"orvane-nothing"_s));
        EXPECT_TRUE(error.message().contains(empty.path()));
    }
}

} // namespace

class OtherInterface {
public:
    virtual ~OtherInterface() = default;
};

} // namespace orvane::ocr

Q_DECLARE_INTERFACE(orvane::ocr::OtherInterface, "com.orvane.test.OtherInterface")

namespace orvane::ocr {
namespace {

TEST(ModuleLoaderTest, RefusesAModuleOfAnotherInterface) {
    EXPECT_THROW(modules::ModuleLoader().load<OtherInterface>(u"orvane-ocr"_s), PlatformError);
}

} // namespace
} // namespace orvane::ocr
