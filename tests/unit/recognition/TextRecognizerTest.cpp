#include "OrvaneCore/recognition/TextRecognizer.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvaneCore/platform/TextRecognitionBackend.h"
#include "tests/support/FakeClock.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace orvane {
namespace {

/// Reads what a test put in. The two calls fail apart from each other.
class ScriptedBackend final : public TextRecognitionBackend {
public:
    QStringList languages{u"en-US"_s};
    std::vector<TextLine> lines;
    std::optional<QString> languagesFailure;
    std::optional<QString> recognitionFailure;

    /// What each line takes.
    std::chrono::milliseconds timeOfLine{0};
    test::FakeClock& clock;

    explicit ScriptedBackend(test::FakeClock& clockOfTest)
        : clock(clockOfTest) {}

    int recognitions = 0;
    QStringList askedLanguages;

    QStringList supportedLanguages() override {
        if (languagesFailure)
            throw PlatformError(*languagesFailure);
        return languages;
    }

    PictureText recognize(const QImage&, const QStringList& wanted, const IsTimeUp& isTimeUp) override {
        ++recognitions;
        askedLanguages = wanted;
        if (recognitionFailure)
            throw PlatformError(*recognitionFailure);
        PictureText text{.lines = {}, .found = static_cast<qsizetype>(lines.size()), .unread = 0};
        while (!isTimeUp() && text.lines.size() < lines.size()) {
            text.lines.push_back(lines[text.lines.size()]);
            clock.jump(timeOfLine);
        }
        text.unread = text.found - static_cast<qsizetype>(text.lines.size());
        return text;
    }
};

class TextRecognizerTest : public testing::Test {
protected:
    QStringList languagesAskedWhenSupported(const QStringList& supported) {
        m_backend.languages = supported;
        m_recognizer.recognize(m_picture);
        return m_backend.askedLanguages;
    }

    test::FakeClock m_clock;
    ScriptedBackend m_backend{m_clock};
    TextRecognizer m_recognizer{m_backend, m_clock};
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

class ReadingInTime : public TextRecognizerTest {
protected:
    ReadingInTime() {
        m_backend.timeOfLine = 5s;
        for (const QString& text : {u"one"_s, u"two"_s, u"three"_s, u"four"_s, u"five"_s})
            m_backend.lines.push_back({text, {}, 1.0F});
    }
};

TEST_F(ReadingInTime, AToolCallHasTwentySeconds) {
    const ReadingBudget budget = m_recognizer.budgetOfToolCall();

    m_clock.jump(19'999ms);
    EXPECT_FALSE(budget.isSpent());
    m_clock.jump(1ms);
    EXPECT_TRUE(budget.isSpent());
}

TEST_F(ReadingInTime, TheLastLineSaysHowMuchWasLeftUnread) {
    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture, m_recognizer.budgetOfToolCall()),
              u"one\ntwo\nthree\nfour\n(Text not read in time: 1 of 5 lines.)"_s);
}

TEST_F(ReadingInTime, NothingIsSaidWhereAllWasRead) {
    m_backend.timeOfLine = 3999ms;

    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture, m_recognizer.budgetOfToolCall()),
              u"one\ntwo\nthree\nfour\nfive"_s);
}

TEST_F(ReadingInTime, PicturesOfOneCallShareItsTime) {
    m_backend.timeOfLine = 3s;
    const ReadingBudget budget = m_recognizer.budgetOfToolCall();

    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture, budget), u"one\ntwo\nthree\nfour\nfive"_s);
    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture, budget),
              u"one\ntwo\n(Text not read in time: 3 of 5 lines.)"_s);
    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture, budget), u"(Text not read in time.)"_s);
    EXPECT_TRUE(m_recognizer.recognizeJoined(QImage(), budget).isEmpty());
    EXPECT_EQ(m_backend.recognitions, 2);
}

TEST_F(ReadingInTime, LinesThatWereReadAndDroppedAreNotUnread) {
    m_backend.lines[1].confidence = 0.39F;
    m_backend.timeOfLine = 10s;

    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture, m_recognizer.budgetOfToolCall()),
              u"one\n(Text not read in time: 3 of 5 lines.)"_s);
}

TEST_F(ReadingInTime, WithoutABudgetAllIsRead) {
    m_backend.timeOfLine = 1h;

    EXPECT_EQ(m_recognizer.recognizeJoined(m_picture), u"one\ntwo\nthree\nfour\nfive"_s);
}

TEST_F(ReadingInTime, AFailureLeavesNothingUnread) {
    m_backend.recognitionFailure = u"The engine broke."_s;

    testing::internal::CaptureStderr();
    EXPECT_TRUE(m_recognizer.recognizeJoined(m_picture, m_recognizer.budgetOfToolCall()).isEmpty());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "orvane: OCR error: The engine broke.\n");
}

} // namespace
} // namespace orvane
