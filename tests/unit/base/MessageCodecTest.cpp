#include "OrvaneCore/base/MessageCodec.h"

#include "OrvaneCore/base/MessageError.h"

#include <QJsonArray>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using testing::HasSubstr;

std::string compact(const QByteArray& text) {
    return message_codec::parse(text).toJson(QJsonDocument::Compact).toStdString();
}

class MalformedMessage : public testing::TestWithParam<QByteArray> {};

TEST_P(MalformedMessage, IsRefusedWithAMessage) {
    try {
        message_codec::parse(GetParam());
        FAIL() << "accepted";
    } catch (const MessageError& error) {
        EXPECT_THAT(error.message().toStdString(), HasSubstr("The message is not valid"));
    }
}

INSTANTIATE_TEST_SUITE_P(NotJson, MalformedMessage,
                         testing::Values("not json", "", " ", "\t", "\r", "tru", "'a'", "[NaN]", "[1 2]",
                                         "{1:2}", "{\"a\" 1}", "{\"a\":1 \"b\":2}", "[1,]", "{\"a\":1,}",
                                         "[1]x", "{}{}", "{}}"));
INSTANTIATE_TEST_SUITE_P(Scalar, MalformedMessage, testing::Values("7", "\"text\"", "true", "null", "1.5"));
INSTANTIATE_TEST_SUITE_P(Truncated, MalformedMessage,
                         testing::Values("[", "{", "[1", "{\"a\"", "{\"a\":", "{\"a\":1", "[\"abc", "[\"\\",
                                         "[\"\\u00", "{\"a\":{\"b\":[1,2"));
INSTANTIATE_TEST_SUITE_P(Number, MalformedMessage,
                         testing::Values("[01]", "[1.]", "[.5]", "[-.5]", "[1.e5]", "[+1]", "[-]", "[1e]",
                                         "[0x10]", "[1e400]", "[1.2.3]"));
INSTANTIATE_TEST_SUITE_P(Text, MalformedMessage,
                         testing::Values("[\"\\x\"]", "[\"\\u12g4\"]", "[\"a\tb\"]", "[\"a\nb\"]",
                                         "[\"\x01\"]", "{\"a\x1f\":1}"));
INSTANTIATE_TEST_SUITE_P(Nul, MalformedMessage,
                         testing::Values(QByteArray("[\"a\0b\"]", 7), QByteArray("{\"\0\":1}", 7),
                                         QByteArray("[1]\0", 4), QByteArray("\0[1]", 4),
                                         QByteArray("[\0]", 3), QByteArray("\0", 1)));
INSTANTIATE_TEST_SUITE_P(TooDeep, MalformedMessage,
                         testing::Values(QByteArray(100'000, '['), QByteArray("{\"a\":").repeated(100'000),
                                         QByteArray(100'000, '[') + QByteArray(100'000, ']')));

class InvalidUtf8 : public testing::TestWithParam<QByteArray> {};

TEST_P(InvalidUtf8, IsNamedAsWhatItIsWhereverItStands) {
    try {
        message_codec::parse(GetParam());
        FAIL() << "accepted";
    } catch (const MessageError& error) {
        EXPECT_EQ(error.message(), u"The message is not valid UTF-8"_s);
    }
}

INSTANTIATE_TEST_SUITE_P(All, InvalidUtf8,
                         testing::Values("[\"\xff\"]", "[\"\xc3\"]", "[\"\xc0\x80\"]", "[\"\xed\xa0\x80\"]",
                                         "[\"\xf4\x90\x80\x80\"]", "{\"\xff\":1}", "\xff[1]", "[1]\xff",
                                         "[1,\xff]", "[\"\xe2\x82\"]"));

TEST(MessageCodec, AcceptsObjectsAndArraysWithBlanksAround) {
    EXPECT_EQ(compact(" \t{\"a\" : 1}\r\n "), R"({"a":1})");
    EXPECT_EQ(compact("[\n1,\t2\r\n]"), "[1,2]");
}

TEST(MessageCodec, AcceptsEveryEscape) {
    const QJsonDocument document = message_codec::parse(R"(["\"\\\/\b\f\n\r\t\u0000\u00e9\ud83d\ude00"])");
    EXPECT_EQ(document[0].toString(), QString::fromUtf16(u"\"\\/\b\f\n\r\t\0\u00e9\U0001F600", 12));
}

TEST(MessageCodec, WhatStandsInStringsIsNotTakenForNumbersOrQuotes) {
    EXPECT_EQ(compact(R"(["a.b",".","\\","\".",{"x.":"1."}])"), R"(["a.b",".","\\","\".",{"x.":"1."}])");
}

TEST(MessageCodec, KeepsByteOrderMarksWhereverTheyStandInStrings) {
    const QByteArray mark("\xEF\xBB\xBF");
    const QByteArray texts[] = {R"({")" + mark + R"(key":")" + mark + R"(value"})",
                                R"([")" + mark + mark + R"("])", R"(["a)" + mark + R"(b",")" + mark + R"("])",
                                R"([["\"",")" + mark + R"(x\"",1],"y"])"};
    for (const QByteArray& text : texts)
        EXPECT_EQ(compact(text), text.toStdString());
    EXPECT_EQ(message_codec::parse(R"(["\ufeffx"])").array().at(0).toString(), u"\uFEFFx"_s);
}

TEST(MessageCodec, KeepsAllBitsOfIntegersAndTheShortestFormOfDoubles) {
    const std::string numbers = "[9223372036854775807,-9223372036854775808,9007199254740993,0,0.1,-1.5]";
    EXPECT_EQ(compact(QByteArray::fromStdString(numbers)), numbers);
}

TEST(MessageCodec, AcceptsAThousandLevels) {
    const std::string nested = std::string(1000, '[') + std::string(1000, ']');
    EXPECT_EQ(compact(QByteArray::fromStdString(nested)), nested);
}

TEST(MessageCodec, SerialisesWithSortedKeysOnOneLine) {
    const QJsonObject message{{u"b"_s, QJsonObject{{u"z"_s, 1}, {u"a"_s, u"line\nfeed"_s}}},
                              {u"a"_s, QJsonArray{true, QJsonValue::Null, u"\u00d7"_s}}};
    EXPECT_EQ(message_codec::serialise(message).toStdString(),
              "{\"a\":[true,null,\"\xc3\x97\"],\"b\":{\"a\":\"line\\nfeed\",\"z\":1}}");
}

TEST(MessageCodec, ALoneSurrogateComesOutAsAnEscapeInValidUtf8) {
    const QByteArray bytes = message_codec::serialise(message_codec::parse(R"({"id":"\ud800"})").object());
    EXPECT_EQ(bytes.toStdString(), R"({"id":"\ud800"})");
}

TEST(MessageCodec, RefusesNumbersThatAreNotFiniteWhereverTheyStand) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(message_codec::serialise({{u"a"_s, infinity}}), MessageError);
    EXPECT_THROW(message_codec::serialise({{u"a"_s, QJsonArray{1, notANumber}}}), MessageError);
    EXPECT_THROW(message_codec::serialise({{u"a"_s, QJsonObject{{u"b"_s, -infinity}}}}), MessageError);
}

} // namespace
} // namespace orvane
