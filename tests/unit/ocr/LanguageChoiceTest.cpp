#include "OrvanePlatform/ocr/reading/LanguageChoice.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace orvane::ocr {
namespace {

const QString english = u"en-US"_s;
const QString simplified = u"zh-Hans"_s;
const QString traditional = u"zh-Hant"_s;
const QString japanese = u"ja-JP"_s;
const QString korean = u"ko-KR"_s;

QStringList all() {
    return {english, simplified, traditional, japanese, korean};
}

QString chosen(const Readings& readings) {
    return chooseReadings({readings}, all())[0].text;
}

TEST(LanguageChoiceTest, TheShorterALineIsTheMoreCertainItHasToBe) {
    EXPECT_FALSE(isDoubtful({u"Open the file"_s, 0.8F}));
    EXPECT_TRUE(isDoubtful({u"Open the file"_s, 0.7F}));
    EXPECT_FALSE(isDoubtful({u"Open the file /home/user/notes.txt"_s, 0.7F}));
    EXPECT_TRUE(isDoubtful({u"Open the file /home/user/notes.txt"_s, 0.5F}));
    EXPECT_FALSE(isDoubtful({u"Save"_s, 0.95F}));
    EXPECT_TRUE(isDoubtful({u"Save"_s, 0.8F}));
    EXPECT_TRUE(isDoubtful({}));
}

TEST(LanguageChoiceTest, KanaAndHangulAreUnmistakableWhenTheyAreCertain) {
    EXPECT_TRUE(isUnmistakable(japanese, {u"開くファイル"_s, 0.9F}));
    EXPECT_FALSE(isUnmistakable(japanese, {u"開くファイル"_s, 0.5F}));
    EXPECT_FALSE(isUnmistakable(japanese, {u"設定"_s, 0.9F}));
    EXPECT_TRUE(isUnmistakable(korean, {u"새 창"_s, 0.9F}));
    EXPECT_FALSE(isUnmistakable(korean, {u"OK"_s, 0.9F}));
    EXPECT_FALSE(isUnmistakable(simplified, {u"设置"_s, 0.9F}));
}

TEST(LanguageChoiceTest, ThePreferredLanguageIsAskedFirstAndThenThoseThatSettleMost) {
    EXPECT_EQ(inOrderOfAsking(all()), (QStringList{english, japanese, korean, traditional, simplified}));
    EXPECT_EQ(inOrderOfAsking({simplified, korean}), (QStringList{simplified, korean}));
    EXPECT_EQ(inOrderOfAsking({japanese, korean}), (QStringList{japanese, korean}));
    EXPECT_EQ(inOrderOfAsking({english}), QStringList{english});
}

TEST(LanguageChoiceTest, WhatJapaneseDataReadAsLatinTooIsSettled) {
    const Reading doubtful{u"Ctri+S"_s, 0.61F};
    EXPECT_TRUE(isSettledBy(japanese, {u"Ctrl+S"_s, 0.5F}, doubtful));
    EXPECT_TRUE(isSettledBy(japanese, {u"CtHキ5 12345"_s, 0.5F}, doubtful));
    EXPECT_FALSE(isSettledBy(japanese, {u"Ct設定5 12345"_s, 0.5F}, {u"Ct5 12345"_s, 0.49F}));
    EXPECT_FALSE(isSettledBy(japanese, {u"最近使用"_s, 0.5F}, doubtful));
    EXPECT_FALSE(isSettledBy(japanese, {u"設定定a a a a a a a"_s, 0.5F}, doubtful));
    EXPECT_TRUE(isSettledBy(japanese, {u"設定a a a a a a a"_s, 0.5F}, doubtful));
    EXPECT_FALSE(isSettledBy(japanese, {}, doubtful));
    EXPECT_FALSE(isSettledBy(japanese, {u"L}7}7]"_s, 0.4F}, {u"3}2| L}7}7]"_s, 0.45F}));
}

TEST(LanguageChoiceTest, OthersSettleOnlyWhatIsUnmistakable) {
    const Reading doubtful{u"Ctri+S"_s, 0.61F};
    EXPECT_FALSE(isSettledBy(korean, {u"Ctrl+S"_s, 0.9F}, doubtful));
    EXPECT_TRUE(isSettledBy(korean, {u"새 창"_s, 0.9F}, doubtful));
    EXPECT_TRUE(isSettledBy(japanese, {u"開くファイル"_s, 0.9F}, doubtful));
}

TEST(LanguageChoiceTest, TheReadingWithMoreConfidenceWins) {
    EXPECT_EQ(chosen({{english, {u"Rea"_s, 0.4F}}, {simplified, {u"设置"_s, 0.9F}}}), u"设置"_s);
    EXPECT_EQ(chosen({{english, {u"Rea"_s, 0.89F}}, {simplified, {u"重"_s, 0.3F}}}), u"Rea"_s);
    EXPECT_EQ(chosen({{english, {u"a"_s, 0.1F}}, {simplified, {u"论"_s, 0.2F}}, {japanese, {u"つ"_s, 0.8F}}}),
              u"つ"_s);
}

TEST(LanguageChoiceTest, AnotherLanguageHasNoSayAboutLatinLetters) {
    EXPECT_EQ(
        chosen({{english, {u"Ctrl"_s, 0.3F}}, {simplified, {u"CtrI"_s, 0.9F}}, {korean, {u"Ctr"_s, 0.9F}}}),
        u"Ctrl"_s);
}

TEST(LanguageChoiceTest, OfTwoThatAreNearlyEquallyCertainTheOneFurtherUpWins) {
    EXPECT_EQ(chosen({{english, {}}, {simplified, {u"复制"_s, 0.80F}}, {traditional, {u"複製"_s, 0.82F}}}),
              u"复制"_s);
    EXPECT_EQ(chosen({{english, {}}, {simplified, {u"复制"_s, 0.30F}}, {traditional, {u"複製"_s, 0.82F}}}),
              u"複製"_s);
}

TEST(LanguageChoiceTest, TheOtherLinesOfThePictureHaveASay) {
    const Readings traditionalLine{{simplified, {u"网路连线已中断"_s, 0.3F}},
                                   {traditional, {u"網路連線已中斷"_s, 0.9F}}};
    const Readings uncertainLine{{simplified, {u"错误"_s, 0.85F}}, {traditional, {u"錯誤"_s, 0.8F}}};

    EXPECT_EQ(chosen(uncertainLine), u"错误"_s);
    const std::vector<Reading> readings = chooseReadings({traditionalLine, uncertainLine}, all());
    ASSERT_EQ(readings.size(), 2U);
    EXPECT_EQ(readings[1].text, u"錯誤"_s);
}

TEST(LanguageChoiceTest, SpacesAndPunctuationDoNotSpeakForALanguage) {
    EXPECT_EQ(chosen({{english, {}},
                      {japanese, {u"正在下載更新 : 請勿開閉電騰"_s, 0.71F}},
                      {traditional, {u"正在下載更新,請勿關閉電腦"_s, 0.77F}}}),
              u"正在下載更新,請勿關閉電腦"_s);
}

TEST(LanguageChoiceTest, ALineThatNobodyReadIsEmpty) {
    EXPECT_EQ(chosen({}), QString());
    EXPECT_EQ(chosen({{english, {}}}), QString());
}

} // namespace
} // namespace orvane::ocr
