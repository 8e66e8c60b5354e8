#include "OrvaneCore/recognition/TextRecognizer.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvaneCore/platform/TextRecognitionBackend.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

using namespace Qt::StringLiterals;

namespace orvane {
namespace {

/// Reads what a test put in. The two calls fail apart from each other.
class ScriptedBackend final : public TextRecognitionBackend {
public:
    QStringList languages{u"en-US"_s};
    std::vector<TextLine> lines;
    std::optional<QString> languagesFailure;
    std::optional<QString> recognitionFailure;

    int recognitions = 0;
    QStringList askedLanguages;

    QStringList supportedLanguages() override {
        if (languagesFailure)
            throw PlatformError(*languagesFailure);
        return languages;
    }

    std::vector<TextLine> recognize(const QImage&, const QStringList& wanted) override {
        ++recognitions;
        askedLanguages = wanted;
        if (recognitionFailure)
            throw PlatformError(*recognitionFailure);
        return lines;
    }
};

class TextRecognizerTest : public testing::Test {
protected:
    QStringList languagesAskedWhenSupported(const QStringList& supported) {
        m_backend.languages = supported;
        m_recognizer.recognize(m_picture);
        return m_backend.askedLanguages;
    }

    ScriptedBackend m_backend;
    TextRecognizer m_recognizer{m_backend};
    QImage m_picture{200, 100, QImage::Format_RGB32};
};

TEST_F(TextRecognizerTest, GivesTextBoxAndConfidenceOfEachLine) {
    m_backend.lines = {{u"Save"_s, QRectF(20, 10, 50, 25), 0.9F},
                       {u"Cancel"_s, QRectF(100, 50, 100, 50), 0.8F}};

    const std::vector<RecognizedText> texts = m_recognizer.recognize(m_picture);

    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0].text, u"Save"_s);
    EXPECT_EQ(texts[0].boundingBox, QRectF(0.1, 0.1, 0.25, 0.25));
    EXPECT_FLOAT_EQ(texts[0].confidence, 0.9F);
    EXPECT_EQ(texts[1].text, u"Cancel"_s);
    EXPECT_EQ(texts[1].boundingBox, QRectF(0.5, 0.5, 0.5, 0.5));
    EXPECT_FLOAT_EQ(texts[1].confidence, 0.8F);
}

TEST_F(TextRecognizerTest, DropsLinesBelowTheLeastConfidence) {
    m_backend.lines = {{u"guessed"_s, {}, 0.39F}, {u"kept"_s, {}, 0.4F}, {u"certain"_s, {}, 1.0F}};

    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture), u"kept\ncertain"_s);
}

TEST_F(TextRecognizerTest, KeepsTheBackendsOrder) {
    m_backend.lines = {{u"below"_s, QRectF(0, 90, 10, 10), 0.5F}, {u"above"_s, QRectF(0, 0, 10, 10), 0.9F}};

    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture), u"below\nabove"_s);
}

TEST_F(TextRecognizerTest, NoLinesAreAnEmptyText) {
    EXPECT_TRUE(m_recognizer.recognize(m_picture).empty());
    EXPECT_TRUE(m_recognizer.recognizeJoined(m_picture).isEmpty());
    EXPECT_EQ(m_backend.recognitions, 2);
}

TEST_F(TextRecognizerTest, APictureWithoutPixelsIsNotLookedAt) {
    m_backend.lines = {{u"ghost"_s, {}, 1.0F}};

    EXPECT_TRUE(m_recognizer.recognize(QImage()).empty());
    EXPECT_EQ(m_backend.recognitions, 0);
}

TEST_F(TextRecognizerTest, AsksForTheSupportedLanguagesInItsOwnOrder) {
    EXPECT_EQ(languagesAskedWhenSupported(
                  {u"fr-FR"_s, u"ko-KR"_s, u"ja-JP"_s, u"zh-Hant"_s, u"zh-Hans"_s, u"en-US"_s}),
              (QStringList{u"en-US"_s, u"zh-Hans"_s, u"zh-Hant"_s, u"ja-JP"_s, u"ko-KR"_s}));
    EXPECT_EQ(languagesAskedWhenSupported({u"ja-JP"_s, u"zh-Hant"_s}),
              (QStringList{u"zh-Hant"_s, u"ja-JP"_s}));
}

TEST_F(TextRecognizerTest, AsksForEnglishAloneWhenNothingElseIsLeft) {
    EXPECT_EQ(languagesAskedWhenSupported({}), QStringList{u"en-US"_s});
    EXPECT_EQ(languagesAskedWhenSupported({u"fr-FR"_s, u"en-GB"_s}), QStringList{u"en-US"_s});
}

TEST_F(TextRecognizerTest, AsksForEnglishAloneWhenTheLanguagesCannotBeHad) {
    m_backend.languagesFailure = u"no list"_s;
    m_backend.lines = {{u"read all the same"_s, {}, 1.0F}};

    testing::internal::CaptureStderr();
    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture), u"read all the same"_s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(m_backend.askedLanguages, QStringList{u"en-US"_s});
}

TEST_F(TextRecognizerTest, AFailureIsOneLineInTheLogAndNoText) {
    m_backend.lines = {{u"lost"_s, {}, 1.0F}};
    m_backend.recognitionFailure = u"The engine broke."_s;

    testing::internal::CaptureStderr();
    EXPECT_TRUE(m_recognizer.recognize(m_picture).empty());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "orvane: OCR error: The engine broke.\n");

    m_backend.recognitionFailure.reset();
    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture), u"lost"_s);
}

} // namespace
} // namespace orvane
