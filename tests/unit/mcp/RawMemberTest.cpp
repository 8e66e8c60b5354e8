#include "OrvaneCore/mcp/RawMember.h"

#include <gtest/gtest.h>

#include <string>

namespace orvane {
namespace {

using raw_member::find;

/// The text of the member "id", or "nothing".
std::string found(QByteArrayView object) {
    const std::optional<raw_member::Place> place = find(object, "id");
    return place ? object.sliced(place->begin, place->size).toByteArray().toStdString() : "nothing";
}

TEST(RawMember, FindsValuesOfAllKinds) {
    for (const char* value : {"1", "-1.5e+3", "\"\"", R"("a\"b\\")", R"(",}]")", "null", "true", "{}", "[]",
                              R"([[1],{"id":2}])", R"({"id":[{"}":"]"}]})"}) {
        const std::string text = value;
        EXPECT_EQ(found(QByteArray::fromStdString(R"({"id":)" + text + "}")), text);
        EXPECT_EQ(found(QByteArray::fromStdString("\xef\xbb\xbf \n{ \"id\"\t:\r\n" + text + " }")), text);
        EXPECT_EQ(found(QByteArray::fromStdString(R"({"a":"\\","b":{"id":0},"id":)" + text + R"(,"c":[]})")),
                  text);
    }
}

TEST(RawMember, TakesTheLastOfSeveral) {
    EXPECT_EQ(found(R"({"id":1,"id":2})"), "2");
    EXPECT_EQ(found(R"({"id":1,"\u0069d":2,"x":3})"), "2");
    EXPECT_EQ(found(R"({"\u0069\u0064":1})"), "1");
}

TEST(RawMember, OtherKeysAreNotIt) {
    for (const char* text : {"{}", R"({"Id":1})", R"({"id ":1})", R"({"i\\d":1})", R"({"a":"id"})",
                             R"({"a":{"id":1}})", R"(["id",1])", R"("id")", "", " ", "{"})
        EXPECT_EQ(found(text), "nothing") << text;
}

/// What is no JSON is for a parser to refuse; here it only must not be read beyond its end.
TEST(RawMember, SurvivesTextsThatAreCutOffAnywhere) {
    const QByteArray text = R"({"a":[1,{"b":"\"\\"}],"\u0069d":{"c":"d"},"id":"\\","e":-1.5})";
    for (qsizetype size = 0; size < text.size(); ++size) {
        const QByteArray cut = QByteArray(text.constData(), size);
        const std::optional<raw_member::Place> place = find(cut, "id");
        if (place) {
            EXPECT_LE(place->begin + place->size, size);
        }
    }
    EXPECT_EQ(found(QByteArray(100'000, '[')), "nothing");
    EXPECT_EQ(found(QByteArray(R"({"id":)") + QByteArray(100'000, '[')), "nothing");
    EXPECT_EQ(found(QByteArray("{\"") + QByteArray(100'000, '\\')), "nothing");
    EXPECT_EQ(found(QByteArray(R"({"id":)")), "nothing");
    EXPECT_EQ(found(QByteArray(R"({"id":})")), "nothing");
}

TEST(RawMember, KnowsNumbers) {
    for (const char* text :
         {"0", "-0", "7", "10", "-12.50", "1e3", "1E+03", "0.1e-2", "123456789012345678901234567890"})
        EXPECT_TRUE(raw_member::isNumber(text)) << text;
    for (const char* text : {"", "-", "+1", "01", "-01", "1.", ".5", "1e", "1e+", "1e1.5", "1 ", " 1", "0x1",
                             "NaN", "1,2", "\"1\"", "null", "--1"})
        EXPECT_FALSE(raw_member::isNumber(text)) << text;
}

TEST(RawMember, KnowsWhatADoubleHolds) {
    for (const char* text :
         {"0", "-1.7976931348623157e308", "123456789012345678901234567890", "1e-300", "0e9999"})
        EXPECT_TRUE(raw_member::fitsDouble(text)) << text;
    for (const char* text : {"1e309", "-1e400", "1e-400"})
        EXPECT_FALSE(raw_member::fitsDouble(text)) << text;
}

} // namespace
} // namespace orvane
